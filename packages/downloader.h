// The engines that fetch one file over HTTP for a download, and the state that every
// signal of a download carries. An engine only moves bytes and says how an attempt
// ended; the partial file, retries and naming belong to the download itself.
#pragma once
#include <QByteArray>
#include <QNetworkAccessManager>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QUrl>
#include <cstdint>
#include <functional>
#include <memory>

class QNetworkReply;

namespace regmill {

struct DownloadInfo {
  enum Flag : uint32_t { Hidden = 1, ShowIcon = 2, Overwrite = 4, NameAfterWholeUrl = 8 };

  QUrl url;
  QString file;             // target path
  void* context = nullptr;  // the caller's, handed back unchanged
  int32_t done = 0;         // bytes so far, from the start of the file
  int32_t total = -1;       // file size, -1 while not known
  bool finished = false;
  QString error;            // text of the last failure, empty if none
  QString note;             // third field of a history line
  uint32_t offset = 0;      // where the running attempt resumed
  uint32_t flags = 0;
};

// What the engines and the downloads read from the environment's options.
struct DownloadSettings {
  QString networkLibrary = "Qt";
  QString proxyHost;  // empty: no proxy
  uint16_t proxyPort = 0;
  bool useCache = false;
  QString userAgent;
  // An attempt that receives nothing for this long fails, so that nothing hangs.
  int transferTimeoutMilliseconds = 30000;
  // A download resumes while each attempt delivers something, but not without end.
  int maximumRetries = 20;
  int maximumHistory = 20;
  std::function<void(const QString&)> log;  // the network log; none when empty
};

// "name-arch/version.0.0 (system;version;x64;client)": one text for every engine.
QString userAgentText(const QString& clientText);

class Downloader : public QObject {
  Q_OBJECT

 public:
  explicit Downloader(const DownloadSettings& settings, QObject* parent = nullptr);

  virtual void start(const QUrl& url, uint32_t offset) = 0;
  virtual void abort() = 0;
  virtual QString errorText() const = 0;
  virtual bool isFinished() const = 0;

 signals:
  void dataReceived(const QByteArray& block);
  void downloadProgress(int done, int total);
  void downloadComplete(bool error);
  // A resumed attempt is being answered with the whole file: the bytes kept so far
  // must go, and what follows starts at offset 0.
  void restarted();

 protected:
  void log(const QString& line) const;
  const DownloadSettings& settings() const { return settings_; }

 private:
  DownloadSettings settings_;
};

// The HTTP engine over the toolkit's network access manager. Redirects are not
// followed (a 3xx fails the attempt), the body is asked for in identity encoding, and
// an attempt succeeds only when it got every byte that Content-Length or
// Content-Range announced.
class QHttpDownloader : public Downloader {
  Q_OBJECT

 public:
  explicit QHttpDownloader(const DownloadSettings& settings, QObject* parent = nullptr);
  ~QHttpDownloader() override;

  void start(const QUrl& url, uint32_t offset) override;
  void abort() override;
  QString errorText() const override { return error_; }
  bool isFinished() const override { return finished_; }

 private slots:
  void readHeader();
  void readData();
  void readProgress(qint64 received, qint64 total);
  void readFinished();

 private:
  bool acceptStatus();
  void failAttempt(const QString& text);

  QNetworkAccessManager manager_;
  QPointer<QNetworkReply> reply_;
  uint32_t offset_ = 0;
  qint64 received_ = 0;
  qint64 expected_ = -1;  // body bytes this attempt must bring, -1 if not announced
  bool headerRead_ = false;
  bool accepted_ = false;
  bool finished_ = true;
  QString error_;
};

// Both choices of the network library name the same engine here. "Qt" chooses the
// toolkit's HTTP engine; any other word chooses the Windows network library on a
// worker thread of its own, which does not exist on Linux, where the toolkit's
// network classes are the platform's HTTP stack. So both give a QHttpDownloader.
std::unique_ptr<Downloader> createDownloader(const DownloadSettings& settings);

}  // namespace regmill
