// The one exception of the expression language: a syntax or evaluation failure
// with its message. The evaluating entries of ExpressionParser catch it.
#pragma once
#include <QByteArray>
#include <QString>
#include <exception>

namespace regmill {

class ParserException : public std::exception {
 public:
  explicit ParserException(QString message)
      : message_(std::move(message)), utf8_(message_.toUtf8()) {}

  const QString& message() const { return message_; }
  const char* what() const noexcept override { return utf8_.constData(); }

 private:
  QString message_;
  QByteArray utf8_;
};

}  // namespace regmill
