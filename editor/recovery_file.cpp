#include "editor/recovery_file.h"

#include <sys/file.h>

#include <QCryptographicHash>
#include <QDir>
#include <QDirIterator>
#include <QFileInfo>

#include "editor/code_edit.h"
#include "editor/code_file.h"

namespace regmill {

RecoveryFile::RecoveryFile(CodeEdit& editor, QString backupDirectory)
    : editor_(editor), backupDirectory_(std::move(backupDirectory)) {}

RecoveryFile::~RecoveryFile() = default;

QString RecoveryFile::pathFor(const QString& documentPath, const QString& backupDirectory) {
  const QFileInfo info(documentPath);
  if (info.isRelative()) return backupDirectory + QStringLiteral("/unsaved/") + info.fileName();
  const QByteArray digest = QCryptographicHash::hash(info.path().toUtf8(), QCryptographicHash::Md5).toHex();
  return backupDirectory + u'/' + QString::fromLatin1(digest) + u'/' + info.fileName();
}

bool RecoveryFile::openLocked() {
  file_.setFileName(pathFor(editor_.path(), backupDirectory_));
  QDir().mkpath(QFileInfo(file_.fileName()).path());
  if (!file_.open(QIODevice::ReadWrite)) return false;
  if (::flock(file_.handle(), LOCK_EX | LOCK_NB) != 0) {
    file_.close();  // another running editor holds it
    return false;
  }
  return true;
}

void RecoveryFile::autoRecoveryTimeout() {
  if (!file_.isOpen()) {
    if (openLocked()) recoveredState_ = editor_.buffer().changeCount();
    return;
  }
  if (editor_.buffer().changeCount() == recoveredState_) return;
  const QByteArray bytes = editor_.encodedText();
  file_.seek(0);
  file_.resize(0);
  file_.write(bytes);
  file_.flush();
  recoveredState_ = editor_.buffer().changeCount();
}

void RecoveryFile::offerRecovery(RecoverFileHandler& handler) {
  if (!QFileInfo::exists(pathFor(editor_.path(), backupDirectory_)) || !openLocked()) return;
  const RecoverAnswer answer = handler.askRecover(
      QStringLiteral("Recover File"),
      QStringLiteral("An unsaved version of ") + editor_.path() +
          QStringLiteral(" from another session has been found.\n\nDo you want to recover this file or discard the changes?"));
  if (answer == RecoverAnswer::Recover) {
    const DecodedFile recovered = decodeFile(file_.readAll(), editor_.encodingName(), editor_.settings());
    QStringList lines;
    for (const CodeLine& line : recovered.lines) lines.append(line.text);
    const QString text = lines.join(u'\n');
    editor_.beginEdit(0, 0);
    editor_.deleteRange({0, 0}, editor_.buffer().endPosition());
    editor_.insertText({0, 0}, text);
    editor_.endEdit(0);
    recoveredState_ = editor_.buffer().changeCount();
  } else if (answer == RecoverAnswer::Discard) {
    closeAndRemove();
  } else {
    file_.close();
  }
}

void RecoveryFile::closeAndRemove() {
  const QString folder = QFileInfo(file_.fileName()).path();
  file_.close();
  file_.remove();
  QDir().rmdir(folder);  // only when it is empty
}

void RecoveryFile::remove() {
  if (file_.isOpen()) closeAndRemove();
}

int RecoveryFile::removeExpiredAutoRecoveryFiles(const QString& backupDirectory, int days, const QDateTime& now) {
  if (days <= 0) return 0;
  int removed = 0;
  QDirIterator files(backupDirectory, QDir::Files, QDirIterator::Subdirectories);
  while (files.hasNext()) {
    const QFileInfo info(files.next());
    if (info.lastModified().addDays(days) < now && QFile::remove(info.filePath())) ++removed;
  }
  return removed;
}

}  // namespace regmill
