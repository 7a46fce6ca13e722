// The download queue: every file fetched over HTTP is one row of it, with a partial
// file beside the target, resumption after a break, and at most four transfers at
// once. These classes hold the rows' logic; drawing them is the workbench's.
#pragma once
#include <QElapsedTimer>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QUrl>
#include <memory>
#include <vector>

#include "packages/downloader.h"

namespace regmill {

class DownloadsListViewItem : public QObject {
  Q_OBJECT

 public:
  DownloadsListViewItem(const DownloadInfo& info, const DownloadSettings& settings, QObject* parent = nullptr);
  ~DownloadsListViewItem() override;

  // Empties the partial file and starts the first attempt. Throws HException when
  // the partial file can't be opened.
  void start();
  // A queued download whose partial file can't be made ends at once with `text`.
  void failToStart(const QString& text);
  bool wasStarted() const { return started_; }

  const DownloadInfo& info() const { return info_; }
  bool isRunning() const { return running_; }
  bool isQueued() const { return queued_; }
  void setQueued(bool queued) { queued_ = queued; }
  bool isVisible() const { return (info_.flags & DownloadInfo::Hidden) == 0 && !queued_; }
  int height() const { return height_; }
  const QString& statusText() const { return statusText_; }
  const QString& timeText() const { return timeText_; }
  QString partialPath() const { return info_.file + ".part"; }
  int64_t elapsedMilliseconds() const { return clock_.isValid() ? clock_.elapsed() : 0; }
  int retries() const { return retries_; }

 signals:
  void progress(const regmill::DownloadInfo& info);
  void finished(const regmill::DownloadInfo& info);
  void error(const regmill::DownloadInfo& info);

 public slots:
  void dataReceived(const QByteArray& block);
  void readProgress(int done, int total);
  void downloadComplete(bool failed);
  void retryDownload();
  void downloadComplete();

 private:
  void restartFromZero();
  void log(const QString& line) const;

  DownloadInfo info_;
  DownloadSettings settings_;
  bool running_ = false;
  bool queued_ = false;
  bool gotData_ = false;
  bool started_ = false;
  int retries_ = 0;
  int height_ = 48;
  QString statusText_;
  QString timeText_;
  std::unique_ptr<Downloader> engine_;
  QElapsedTimer clock_;
};

// The list of rows, the running ones and those queued behind them on top.
class DownloadsListView : public QObject {
  Q_OBJECT

 public:
  static constexpr int kMaximumRunning = 4;

  explicit DownloadsListView(const DownloadSettings& settings, QObject* parent = nullptr);

  // Makes the row of a new download into `directory` and starts it when a place is
  // free, else queues it. Throws HException when its partial file can't be opened.
  DownloadsListViewItem* startDownload(const QUrl& url, const QString& directory, void* context, uint32_t flags);

  const std::vector<std::unique_ptr<DownloadsListViewItem>>& rows() const { return rows_; }
  int runningCount() const { return running_; }
  // "url,target,note" for each row that isn't hidden, newest first.
  const QStringList& history() const { return history_; }

 signals:
  void progress(const regmill::DownloadInfo& info);
  void finished(const regmill::DownloadInfo& info);

 public slots:
  void rowFinished(DownloadsListViewItem* row);
  void clearHistory();

 private:
  void moveBehindActiveRows(DownloadsListViewItem* row);

  DownloadSettings settings_;
  std::vector<std::unique_ptr<DownloadsListViewItem>> rows_;  // top first
  QStringList history_;
  int running_ = 0;
};

}  // namespace regmill
