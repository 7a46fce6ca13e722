#include "packages/download_texts.h"

#include <QFileInfo>
#include <cmath>

namespace regmill {

namespace {

// The double quote and \ * + , / : ; < = > ? [ ] can't stand in a file name (or
// would make it hard to type), so the whole-URL name writes them as "%xx".
QString escapedUrlName(const QUrl& url) {
  static const QString unsafe = QStringLiteral("\"\\*+,/:;<=>?[]");
  QString name;
  for (QChar c : url.toString()) {
    if (unsafe.contains(c))
      name += QString::asprintf("%%%02x", c.unicode());
    else
      name += c;
  }
  return name;
}

}  // namespace

QString downloadTarget(const QUrl& url, const QString& directory, uint32_t flags) {
  // A URL without a file name ("http://host/") is named after its whole text, so
  // that the target is never the folder itself.
  QString name = url.fileName();
  if ((flags & DownloadInfo::NameAfterWholeUrl) != 0 || name.isEmpty()) name = escapedUrlName(url);
  QString target = directory + "/" + name;
  if ((flags & DownloadInfo::Overwrite) != 0 || !QFileInfo::exists(target)) return target;
  // The number goes before the last extension: "a.tar(1).gz", "notes(1)".
  QFileInfo info(name);
  QString base = info.completeBaseName();
  QString extension = info.suffix();
  for (int n = 1;; ++n) {
    QString numbered = directory + "/" + base + "(" + QString::number(n) + ")";
    if (!extension.isEmpty()) numbered += "." + extension;
    if (!QFileInfo::exists(numbered)) return numbered;
  }
}

QString formatSize(int64_t bytes) {
  if (bytes < 1024) return QString::number(bytes) + " bytes";
  static const char* const units[] = {"KB", "MB", "GB", "TB"};
  double value = double(bytes);
  int unit = -1;
  while (value >= 1024 && unit < 3) {
    value /= 1024;
    ++unit;
  }
  return QString::number(value, 'f', 1) + " " + units[unit];
}

QString timeRemainingText(int64_t elapsedMilliseconds, int64_t done, int64_t total) {
  if (done <= 0 || total < 0) return QString();
  double left = double(elapsedMilliseconds) / double(done) * double(total - done);
  double minutes = std::ceil(left / 60000.0);
  if (minutes > 1) return QString::number(int64_t(minutes)) + " minutes remaining";
  return "1 minute remaining";
}

QString progressLine(const DownloadInfo& info, int64_t elapsedMilliseconds) {
  QString line = formatSize(info.done);
  if (info.total >= 0) line += " of " + formatSize(info.total);
  if (elapsedMilliseconds > 0)
    line += ", " + formatSize(int64_t(info.done) * 1000 / elapsedMilliseconds) + "/s";
  QString left = timeRemainingText(elapsedMilliseconds, info.done, info.total);
  if (!left.isEmpty()) line += ", " + left;
  return line;
}

}  // namespace regmill
