#include "packages/loom_network_access_manager.h"

#include <QTimer>
#include <algorithm>
#include <cstring>
#include <utility>
#include <vector>

namespace regmill {

namespace {

struct Rules {
  std::vector<std::pair<QRegularExpression, QString>> content;  // whole-text pattern, HTML
  std::vector<std::pair<QRegularExpression, QString>> rewrite;  // pattern, replacement URL
};

Rules& rules() {
  static Rules all;
  return all;
}

}  // namespace

void LoomNetworkAccessManager::addContentRule(const QString& pattern, const QString& html) {
  rules().content.emplace_back(QRegularExpression(QRegularExpression::anchoredPattern(pattern)), html);
}

void LoomNetworkAccessManager::addRewriteRule(const QString& pattern, const QString& url) {
  rules().rewrite.emplace_back(QRegularExpression(pattern), url);
}

void LoomNetworkAccessManager::clearRules() { rules() = Rules(); }

QNetworkReply* LoomNetworkAccessManager::createRequest(Operation operation, const QNetworkRequest& request,
                                                       QIODevice* outgoingData) {
  const QString url = request.url().toString();
  for (const auto& [pattern, html] : rules().content)
    if (pattern.match(url).hasMatch()) return new StaticContentNetworkReply(request, html.toUtf8(), this);
  for (const auto& [pattern, replacement] : rules().rewrite) {
    if (!pattern.match(url).hasMatch()) continue;
    QString rewritten = url;
    rewritten.replace(pattern, replacement);
    if (rewritten == url) break;
    QNetworkRequest changed(request);
    changed.setUrl(QUrl(rewritten));
    return QNetworkAccessManager::createRequest(operation, changed, outgoingData);
  }
  return QNetworkAccessManager::createRequest(operation, request, outgoingData);
}

StaticContentNetworkReply::StaticContentNetworkReply(const QNetworkRequest& request, const QByteArray& content,
                                                     QObject* parent)
    : QNetworkReply(parent), content_(content) {
  setRequest(request);
  setUrl(request.url());
  setOperation(QNetworkAccessManager::GetOperation);
  setHeader(QNetworkRequest::ContentTypeHeader, "text/html");
  setHeader(QNetworkRequest::ContentLengthHeader, content_.size());
  open(QIODevice::ReadOnly | QIODevice::Unbuffered);
  setFinished(true);
  QTimer::singleShot(0, this, [this] {
    emit readyRead();
    emit finished();
  });
}

qint64 StaticContentNetworkReply::bytesAvailable() const {
  return content_.size() - position_ + QNetworkReply::bytesAvailable();
}

qint64 StaticContentNetworkReply::readData(char* data, qint64 maxSize) {
  if (position_ >= content_.size()) return -1;
  qint64 count = std::min(maxSize, content_.size() - position_);
  std::memcpy(data, content_.constData() + position_, size_t(count));
  position_ += count;
  return count;
}

}  // namespace regmill
