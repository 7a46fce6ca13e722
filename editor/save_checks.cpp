#include "editor/save_checks.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace regmill {

namespace {
int gBackupCount = 1;
}  // namespace

bool confirmWriteTarget(const QString& path, SaveQuestions& questions) {
  const QFileInfo target(path);
  if (target.exists() &&
      !questions.ask(QStringLiteral("File '%1' exists").arg(target.fileName()),
                     QStringLiteral("The file '") + path + QStringLiteral("' already exists.\n\nDo you want to replace it?")))
    return false;
  const QString folder = target.absolutePath();
  if (QDir(folder).exists()) return true;
  if (!questions.ask(QStringLiteral("Directory does not exist"),
                     QStringLiteral("The directory '") + folder +
                         QStringLiteral("' does not exist.\n\nDo you want to create it?")))
    return false;
  if (QDir().mkpath(folder)) return true;
  questions.warn(QStringLiteral("Error"), QStringLiteral("Can't create directory"),
                 QStringLiteral("Cannot create directory '") + folder + QStringLiteral("'."));
  return false;
}

int backupCount() { return gBackupCount; }
void setBackupCount(int count) { gBackupCount = count < 0 ? 0 : count; }

QString backupName(const QString& path, int index) {
  return index == 1 ? path + QStringLiteral(".bak") : path + QStringLiteral(".bak.") + QString::number(index);
}

void rotateBackups(const QString& path, int count) {
  if (count <= 0) return;
  QFile::remove(backupName(path, count));
  for (int index = count - 1; index >= 1; --index)
    if (QFile::exists(backupName(path, index))) QFile::rename(backupName(path, index), backupName(path, index + 1));
  QFile::rename(path, backupName(path, 1));
}

}  // namespace regmill
