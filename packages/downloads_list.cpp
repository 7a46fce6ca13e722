#include "packages/downloads_list.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTimer>
#include <algorithm>

#include "base/hexception.h"
#include "packages/download_texts.h"

namespace regmill {

DownloadsListViewItem::DownloadsListViewItem(const DownloadInfo& info, const DownloadSettings& settings,
                                             QObject* parent)
    : QObject(parent), info_(info), settings_(settings) {}

DownloadsListViewItem::~DownloadsListViewItem() = default;

void DownloadsListViewItem::log(const QString& line) const {
  if (settings_.log) settings_.log(line);
}

void DownloadsListViewItem::start() {
  QFile partial(partialPath());
  if (!partial.open(QIODevice::WriteOnly | QIODevice::Truncate))
    throw HException("cannot open " + QFile::encodeName(info_.file).toStdString() + ".part for writing");
  partial.close();
  engine_ = createDownloader(settings_);
  connect(engine_.get(), &Downloader::dataReceived, this, &DownloadsListViewItem::dataReceived);
  connect(engine_.get(), &Downloader::downloadProgress, this, &DownloadsListViewItem::readProgress);
  connect(engine_.get(), &Downloader::downloadComplete, this,
          qOverload<bool>(&DownloadsListViewItem::downloadComplete));
  connect(engine_.get(), &Downloader::restarted, this, &DownloadsListViewItem::restartFromZero);
  clock_.start();
  gotData_ = false;
  info_.offset = 0;
  engine_->start(info_.url, 0);
  log(QStringLiteral("download: %1").arg(info_.url.toString()));
  running_ = true;
  started_ = true;
}

void DownloadsListViewItem::failToStart(const QString& text) {
  queued_ = false;
  info_.finished = true;
  info_.error = text;
  QTimer::singleShot(0, this, [this] {
    emit progress(info_);
    emit finished(info_);
    emit error(info_);
  });
}

// The partial file is opened for each block and closed again, so that a crash keeps
// what arrived and a retry can resume behind it.
void DownloadsListViewItem::dataReceived(const QByteArray& block) {
  log(QStringLiteral("dataReceived: bytes=%1").arg(block.size()));
  if (block.isEmpty()) {
    gotData_ = true;
    return;
  }
  QFile partial(partialPath());
  bool written = partial.open(QIODevice::WriteOnly | QIODevice::Append) && partial.write(block) == block.size();
  partial.close();
  if (written && partial.error() == QFileDevice::NoError)
    gotData_ = true;
  else
    engine_->abort();
}

void DownloadsListViewItem::readProgress(int done, int total) {
  log(QStringLiteral("readProgress: done = %1, total=%2 offset=%3").arg(done).arg(total).arg(info_.offset));
  int64_t doneInFile = int64_t(done) + info_.offset;
  int64_t totalInFile = total < 0 ? -1 : int64_t(total) + info_.offset;
  if (totalInFile >= 0 && info_.total < 0) {
    info_.total = int32_t(std::min<int64_t>(totalInFile, INT32_MAX));
    height_ = 64;
  }
  info_.done = int32_t(std::min<int64_t>(doneInFile, INT32_MAX));
  timeText_ = timeRemainingText(elapsedMilliseconds(), info_.done, info_.total);
  emit progress(info_);
}

// The server sends the whole file where the rest was asked for: start the partial
// file again, so that the target ends up equal to the source.
void DownloadsListViewItem::restartFromZero() {
  QFile partial(partialPath());
  if (!partial.open(QIODevice::WriteOnly | QIODevice::Truncate)) engine_->abort();
  partial.close();
  info_.offset = 0;
  info_.done = 0;
}

void DownloadsListViewItem::downloadComplete(bool failed) {
  log(QStringLiteral("readFinished: (error = %1)").arg(failed ? "true" : "false"));
  if (failed && gotData_ && retries_ < settings_.maximumRetries) {
    ++retries_;
    QTimer::singleShot(0, this, &DownloadsListViewItem::retryDownload);
    return;
  }
  info_.finished = true;
  running_ = false;
  QString failure;
  if (!failed) {
    log("readFinished: success");
    if ((info_.flags & DownloadInfo::Overwrite) != 0 && QFileInfo::exists(info_.file)) {
      log(QStringLiteral("readFinished: removing %1").arg(info_.file));
      QFile::remove(info_.file);
    }
    log(QStringLiteral("readFinished: renaming %1 to %2").arg(partialPath(), info_.file));
    if (!QFile::rename(partialPath(), info_.file)) failure = "cannot rename " + partialPath() + " to " + info_.file;
  } else {
    failure = engine_->errorText();
    if (failure.isEmpty()) failure = "download failed";
  }
  if (!failure.isEmpty()) {
    log(QStringLiteral("readFinished: error, removing file %1 (error = %2)\n").arg(partialPath(), failure));
    QFile::remove(partialPath());
    info_.error = failure;
  }
  info_.total = -1;
  emit progress(info_);
  emit finished(info_);
  if (!failure.isEmpty()) emit error(info_);
  height_ = 48;
  statusText_ = formatSize(QFileInfo(info_.file).size()) + " from " + info_.url.host();
  QTimer::singleShot(0, this, qOverload<>(&DownloadsListViewItem::downloadComplete));
}

void DownloadsListViewItem::retryDownload() {
  info_.offset = uint32_t(std::min<qint64>(QFileInfo(partialPath()).size(), UINT32_MAX));
  gotData_ = false;
  engine_->start(info_.url, info_.offset);
  log(QStringLiteral("retrying download: %1 (from %2)").arg(info_.url.toString()).arg(info_.offset));
}

void DownloadsListViewItem::downloadComplete() {
  log("downloadComplete");
  engine_.reset();
}

DownloadsListView::DownloadsListView(const DownloadSettings& settings, QObject* parent)
    : QObject(parent), settings_(settings) {}

DownloadsListViewItem* DownloadsListView::startDownload(const QUrl& url, const QString& directory, void* context,
                                                        uint32_t flags) {
  QDir().mkpath(directory);
  DownloadInfo info;
  info.url = url;
  info.file = downloadTarget(url, directory, flags);
  info.context = context;
  info.flags = flags;
  auto row = std::make_unique<DownloadsListViewItem>(info, settings_);
  DownloadsListViewItem* item = row.get();
  connect(item, &DownloadsListViewItem::progress, this, &DownloadsListView::progress);
  connect(item, &DownloadsListViewItem::finished, this, [this, item](const DownloadInfo& done) {
    rowFinished(item);
    emit finished(done);
  });
  if (running_ == kMaximumRunning) {
    item->setQueued(true);
  } else {
    item->start();
    ++running_;
  }
  rows_.push_back(std::move(row));
  return item;
}

// Active rows stay on top: a row that ends goes behind the last running or queued
// row below it.
void DownloadsListView::moveBehindActiveRows(DownloadsListViewItem* row) {
  auto at = std::find_if(rows_.begin(), rows_.end(), [row](const auto& each) { return each.get() == row; });
  if (at == rows_.end()) return;
  auto lastActive = at;
  for (auto each = at + 1; each != rows_.end(); ++each)
    if ((*each)->isRunning() || (*each)->isQueued()) lastActive = each;
  std::rotate(at, at + 1, lastActive + 1);
}

void DownloadsListView::rowFinished(DownloadsListViewItem* row) {
  moveBehindActiveRows(row);
  // The limit is tested after each line is added, so a maximum of 0 sets none.
  history_.clear();
  for (const auto& each : rows_) {
    if ((each->info().flags & DownloadInfo::Hidden) != 0) continue;
    history_.append(each->info().url.toString() + "," + each->info().file + "," + each->info().note);
    if (history_.size() == settings_.maximumHistory) break;
  }
  if (!row->wasStarted()) return;  // it never held one of the places
  if (running_ == kMaximumRunning) {
    for (const auto& each : rows_) {
      if (!each->isQueued()) continue;
      each->setQueued(false);
      try {
        each->start();
        return;  // one ended, one starts: the count stays
      } catch (const HException& failure) {
        // Its partial file can't be made: it ends here and the next one gets the place.
        each->failToStart(QString::fromStdString(failure.text()));
      }
    }
  }
  --running_;
}

void DownloadsListView::clearHistory() {
  std::erase_if(rows_, [](const auto& row) { return !row->isRunning() && !row->isQueued(); });
  history_.clear();
}

}  // namespace regmill
