// The names and texts of a download: where its file goes, and how its size, its
// progress and the time it still needs read.
#pragma once
#include <QString>
#include <QUrl>
#include <cstdint>

#include "packages/downloader.h"

namespace regmill {

// The target in `directory`: the URL's file name, or with NameAfterWholeUrl the
// whole URL text with the characters a file name can't hold as "%xx". Unless
// Overwrite is set, a name that exists is numbered: "base(1).ext", "base(2).ext"...
QString downloadTarget(const QUrl& url, const QString& directory, uint32_t flags);

// "N bytes", "N.N KB", "N.N MB", "N.N GB" (units of 1024).
QString formatSize(int64_t bytes);

// "N minutes remaining" or "1 minute remaining"; empty while done or total is unknown.
QString timeRemainingText(int64_t elapsedMilliseconds, int64_t done, int64_t total);

// The progress line of a terminal: "12.0 MB of 50.0 MB, 3.1 MB/s, 1 minute remaining";
// the parts that aren't known are left out. Rate and time left both count the bytes
// since the download began over the time since then, as resumed attempts go on.
QString progressLine(const DownloadInfo& info, int64_t elapsedMilliseconds);

}  // namespace regmill
