// The leaves of an expression tree: constants, which evaluate to themselves, and
// names of symbols and registers, which the parser looks up at evaluation time.
#pragma once
#include <QStringList>

#include "expr/expression.h"

namespace regmill {

class ConstantExpression : public Expression {
 public:
  ConstantExpression(ExpressionParser& parser, ExprValue value) : Expression(parser), value_(std::move(value)) {}
  ExprValue evaluate() const override { return value_; }
  QString toString() const override;
  std::unique_ptr<Expression> clone() const override;
  const ExprValue& value() const { return value_; }

 private:
  ExprValue value_;
};

// Every integer literal is a signed 8-byte value, whatever its suffix.
class IntegerConstantExpression : public ConstantExpression {
 public:
  IntegerConstantExpression(ExpressionParser& parser, int64_t value)
      : ConstantExpression(parser, ExprValue::makeSigned(value, 8)) {}
  std::unique_ptr<Expression> clone() const override;
};

class FloatConstantExpression : public ConstantExpression {
 public:
  FloatConstantExpression(ExpressionParser& parser, double value)
      : ConstantExpression(parser, ExprValue::makeFloat(value, 8)) {}
  std::unique_ptr<Expression> clone() const override;
};

class StringConstantExpression : public ConstantExpression {
 public:
  StringConstantExpression(ExpressionParser& parser, const QString& text)
      : ConstantExpression(parser, ExprValue::makeString(text)) {}
  std::unique_ptr<Expression> clone() const override;
};

// A plain name. Once a number is bound to it, it stands for that number as an
// unsigned 4-byte value instead of a symbol.
class IdentifierExpression : public Expression {
 public:
  IdentifierExpression(ExpressionParser& parser, QString name) : Expression(parser), name_(std::move(name)) {}
  ExprValue evaluate() const override;
  QString toString() const override;
  void bindIdentifier(const QString& name, uint64_t value) override;
  std::unique_ptr<Expression> clone() const override;
  const QString& name() const { return name_; }

 private:
  QString name_;
  uint64_t boundValue_ = 0;  // 0 means none
};

class ScopedIdentifierExpression : public Expression {
 public:
  ScopedIdentifierExpression(ExpressionParser& parser, QStringList names)
      : Expression(parser), names_(std::move(names)) {}
  ExprValue evaluate() const override;
  QString toString() const override;
  std::unique_ptr<Expression> clone() const override;
  const QStringList& names() const { return names_; }

 private:
  QStringList names_;
};

class RegisterExpression : public Expression {
 public:
  RegisterExpression(ExpressionParser& parser, QString name) : Expression(parser), name_(std::move(name)) {}
  ExprValue evaluate() const override;
  QString toString() const override;

 private:
  QString name_;
};

}  // namespace regmill
