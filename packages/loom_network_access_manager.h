// The network access of the workbench's web views: a URL can be answered with canned
// HTML, or rewritten before it goes out. Both rule lists are process-wide and start
// empty; the first rule that applies wins.
#pragma once
#include <QByteArray>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QRegularExpression>
#include <QString>

namespace regmill {

class LoomNetworkAccessManager : public QNetworkAccessManager {
  Q_OBJECT

 public:
  using QNetworkAccessManager::QNetworkAccessManager;

  // A URL whose whole text matches `pattern` is answered with `html`.
  static void addContentRule(const QString& pattern, const QString& html);
  // In a URL that `pattern` matches anywhere, the match is replaced by `url`, in
  // which \1, \2... stand for the pattern's groups.
  static void addRewriteRule(const QString& pattern, const QString& url);
  static void clearRules();

 protected:
  QNetworkReply* createRequest(Operation operation, const QNetworkRequest& request,
                               QIODevice* outgoingData = nullptr) override;
};

// A finished reply that holds its whole body: sequential, readable to the end, and
// nothing to abort.
class StaticContentNetworkReply : public QNetworkReply {
  Q_OBJECT

 public:
  StaticContentNetworkReply(const QNetworkRequest& request, const QByteArray& content, QObject* parent = nullptr);

  qint64 bytesAvailable() const override;
  bool isSequential() const override { return true; }
  void abort() override {}

 protected:
  qint64 readData(char* data, qint64 maxSize) override;

 private:
  QByteArray content_;
  qint64 position_ = 0;
};

}  // namespace regmill
