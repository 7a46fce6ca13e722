#include "packages/downloader.h"

#include <QNetworkProxy>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QRegularExpression>
#include <QSysInfo>
#include <QTimer>
#include <algorithm>

namespace regmill {

namespace {

int clampToInt(qint64 value) { return int(std::clamp<qint64>(value, -1, INT32_MAX)); }

}  // namespace

QString userAgentText(const QString& clientText) {
  static const QString system =
      QSysInfo::kernelType() + ";" + QSysInfo::kernelVersion() + ";" + "x64";
  QString version = QStringLiteral("0.1").replace(' ', '_');
  return "loom-" + QSysInfo::buildCpuArchitecture() + "/" + version + ".0.0 (" + system + ";" + clientText + ")";
}

Downloader::Downloader(const DownloadSettings& settings, QObject* parent) : QObject(parent), settings_(settings) {}

void Downloader::log(const QString& line) const {
  if (settings_.log) settings_.log(line);
}

namespace {

// A reply that already failed (a 404 flags its error before it finishes) ends by
// itself; aborting it as well would report a second error.
void abortRunning(QNetworkReply* reply) {
  if (reply->isRunning() && reply->error() == QNetworkReply::NoError) reply->abort();
}

}  // namespace

QHttpDownloader::QHttpDownloader(const DownloadSettings& settings, QObject* parent) : Downloader(settings, parent) {
  if (settings.proxyHost.isEmpty())
    manager_.setProxy(QNetworkProxy::NoProxy);
  else
    manager_.setProxy(QNetworkProxy(QNetworkProxy::HttpProxy, settings.proxyHost, settings.proxyPort));
}

QHttpDownloader::~QHttpDownloader() {
  if (reply_) {
    reply_->disconnect(this);
    reply_->abort();
    delete reply_;
  }
}

void QHttpDownloader::start(const QUrl& url, uint32_t offset) {
  if (reply_) {
    reply_->disconnect(this);
    reply_->abort();
    reply_->deleteLater();
  }
  offset_ = offset;
  received_ = 0;
  expected_ = -1;
  headerRead_ = accepted_ = finished_ = false;
  error_.clear();

  QNetworkRequest request(url);
  request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
  request.setTransferTimeout(settings().transferTimeoutMilliseconds);
  request.setRawHeader("User-Agent", settings().userAgent.toUtf8());
  request.setRawHeader("Keep-Alive", "300");
  request.setRawHeader("Connection", "Keep-Alive");
  // Byte counts and offsets are those of the file itself, never of a packed body.
  request.setRawHeader("Accept-Encoding", "identity");
  if (!settings().useCache) {
    request.setRawHeader("Cache-Control", "no-cache, no-store, must-revalidate");
    request.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysNetwork);
    request.setAttribute(QNetworkRequest::CacheSaveControlAttribute, false);
  }
  if (offset > 0) request.setRawHeader("Range", QStringLiteral("bytes=%1-").arg(offset).toLatin1());
  reply_ = manager_.get(request);
  connect(reply_, &QNetworkReply::metaDataChanged, this, &QHttpDownloader::readHeader);
  connect(reply_, &QNetworkReply::readyRead, this, &QHttpDownloader::readData);
  connect(reply_, &QNetworkReply::downloadProgress, this, &QHttpDownloader::readProgress);
  connect(reply_, &QNetworkReply::finished, this, &QHttpDownloader::readFinished);
}

void QHttpDownloader::abort() {
  if (error_.isEmpty()) error_ = "download aborted";
  if (reply_) abortRunning(reply_);
}

// The reply is aborted from the event loop, not inside its own header signal.
void QHttpDownloader::failAttempt(const QString& text) {
  if (error_.isEmpty()) error_ = text;
  if (!reply_) return;
  QTimer::singleShot(0, reply_, [reply = reply_] { abortRunning(reply); });
}

void QHttpDownloader::readHeader() {
  if (headerRead_ || !reply_) return;
  QVariant status = reply_->attribute(QNetworkRequest::HttpStatusCodeAttribute);
  if (!status.isValid()) return;
  headerRead_ = true;
  accepted_ = acceptStatus();
}

// Takes the answer's status and the length it announces; anything but the whole
// file or exactly the asked-for rest of it fails the attempt.
bool QHttpDownloader::acceptStatus() {
  int status = reply_->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
  log(QStringLiteral("readData: (statusCode = %1)").arg(status));
  if (status != 200 && status != 206) {
    log(QStringLiteral("readData: abort (status = %1)").arg(status));
    QString reason = reply_->attribute(QNetworkRequest::HttpReasonPhraseAttribute).toString();
    // Not aborted: the network layer fails an error status by itself, and an abort
    // would race with that failure. The body that follows is not read.
    if (error_.isEmpty()) error_ = QStringLiteral("server replied %1 %2").arg(status).arg(reason).trimmed();
    return false;
  }
  bool known = false;
  qint64 length = reply_->header(QNetworkRequest::ContentLengthHeader).toLongLong(&known);
  if (known) expected_ = length;
  if (status == 206) {
    static const QRegularExpression range(R"(^\s*bytes\s+(\d+)-(\d+)/(\d+|\*)\s*$)");
    QRegularExpressionMatch match = range.match(QString::fromLatin1(reply_->rawHeader("Content-Range")));
    if (!match.hasMatch() || match.captured(1).toULongLong() != offset_) {
      failAttempt("server sent another part of the file than the one asked for");
      return false;
    }
    expected_ = match.captured(2).toLongLong() - match.captured(1).toLongLong() + 1;
  } else if (offset_ > 0) {
    // The server ignored the range and sends the whole file again.
    offset_ = 0;
    emit restarted();
  }
  return true;
}

void QHttpDownloader::readData() {
  readHeader();
  if (!reply_ || !accepted_) return;
  QByteArray block = reply_->readAll();
  if (block.isEmpty()) return;
  received_ += block.size();
  log(QStringLiteral("readData: read (size = %1)").arg(block.size()));
  emit dataReceived(block);
}

void QHttpDownloader::readProgress(qint64 received, qint64 total) {
  readHeader();
  if (accepted_) emit downloadProgress(clampToInt(received), clampToInt(total));
}

void QHttpDownloader::readFinished() {
  if (!reply_) return;
  readHeader();
  if (accepted_ && error_.isEmpty() && reply_->isOpen()) readData();
  if (!headerRead_ && error_.isEmpty()) error_ = reply_->errorString();
  if (error_.isEmpty() && reply_->error() != QNetworkReply::NoError) error_ = reply_->errorString();
  if (error_.isEmpty() && expected_ >= 0 && received_ != expected_)
    error_ = QStringLiteral("connection closed after %1 of %2 bytes").arg(received_).arg(expected_);
  finished_ = true;
  reply_->deleteLater();
  reply_ = nullptr;
  // Told from the event loop, so that a download that reacts by starting again never
  // runs inside this reply's own signal. An abort until then still fails it.
  QTimer::singleShot(0, this, [this] { emit downloadComplete(!error_.isEmpty()); });
}

std::unique_ptr<Downloader> createDownloader(const DownloadSettings& settings) {
  return std::make_unique<QHttpDownloader>(settings);
}

}  // namespace regmill
