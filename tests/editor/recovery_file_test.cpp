// Recovery files: where they live, how they are written, offered, taken or dropped.
#include <gtest/gtest.h>

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include "editor/code_edit.h"
#include "editor/recovery_file.h"
#include "tests/editor/editor_printers.h"
#include "tests/support/scratch_folder.h"

namespace regmill {
namespace {

using testing::ScratchFolder;

struct Answer : RecoverFileHandler {
  RecoverAnswer answer;
  QString asked;
  explicit Answer(RecoverAnswer given) : answer(given) {}
  RecoverAnswer askRecover(const QString& title, const QString& text) override {
    asked = title + ": " + text;
    return answer;
  }
};

TEST(RecoveryFile, PathsFollowTheDigestOfTheDocumentsFolder) {
  // The MD5 digest of "/home/u/src" in lower-case hexadecimal.
  EXPECT_EQ(RecoveryFile::pathFor("/home/u/src/main.c", "/data/backups"),
            "/data/backups/" + QCryptographicHash::hash("/home/u/src", QCryptographicHash::Md5).toHex() + "/main.c");
  EXPECT_EQ(RecoveryFile::pathFor("notes.txt", "/data/backups"), "/data/backups/unsaved/notes.txt");
}

TEST(RecoveryFile, AnUnsavedCopyIsOfferedAndRecoveredAsOneChange) {
  ScratchFolder folder;
  const QString backups = QString::fromStdString(folder.file("backups"));
  const QString path = QString::fromStdString(folder.write("doc.txt", "saved\r\n"));
  {
    CodeEdit editor;
    ASSERT_TRUE(editor.load(path));
    RecoveryFile recovery(editor, backups);
    recovery.autoRecoveryTimeout();  // opens and locks
    ASSERT_TRUE(recovery.isOpen());
    editor.insertText({0, 0}, "un");
    recovery.autoRecoveryTimeout();  // writes the changed document
    CodeEdit other;  // a second editor finds the file locked and leaves it alone
    ASSERT_TRUE(other.load(path));
    Answer never(RecoverAnswer::Recover);
    RecoveryFile(other, backups).offerRecovery(never);
    EXPECT_TRUE(never.asked.isEmpty());
  }
  const QString saved = RecoveryFile::pathFor(path, backups);
  QFile written(saved);
  ASSERT_TRUE(written.open(QIODevice::ReadOnly));
  EXPECT_EQ(written.readAll(), "unsaved\r\n");

  CodeEdit editor;
  ASSERT_TRUE(editor.load(path));
  Answer recover(RecoverAnswer::Recover);
  RecoveryFile(editor, backups).offerRecovery(recover);
  EXPECT_EQ(recover.asked, "Recover File: An unsaved version of " + path +
                               " from another session has been found.\n\nDo you want to recover this file or discard "
                               "the changes?");
  EXPECT_EQ(editor.text(), "unsaved\n");
  editor.undo();
  EXPECT_EQ(editor.text(), "saved\n");

  Answer other(RecoverAnswer::Other);
  RecoveryFile(editor, backups).offerRecovery(other);
  EXPECT_TRUE(QFileInfo::exists(saved));
  Answer discard(RecoverAnswer::Discard);
  RecoveryFile(editor, backups).offerRecovery(discard);
  EXPECT_FALSE(QFileInfo::exists(saved));
  EXPECT_FALSE(QFileInfo::exists(QFileInfo(saved).path()));  // its folder went with it
}

TEST(RecoveryFile, ExpiredFilesAreRemoved) {
  ScratchFolder folder;
  folder.write("old.txt", "x");
  const QString backups = QString::fromStdString(folder.path().string());
  const QDateTime now = QFileInfo(backups + "/old.txt").lastModified();
  EXPECT_EQ(RecoveryFile::removeExpiredAutoRecoveryFiles(backups, 0, now.addDays(100)), 0);
  EXPECT_EQ(RecoveryFile::removeExpiredAutoRecoveryFiles(backups, 3, now.addDays(3)), 0);
  EXPECT_EQ(RecoveryFile::removeExpiredAutoRecoveryFiles(backups, 3, now.addDays(4)), 1);
  EXPECT_FALSE(folder.exists("old.txt"));
}

}  // namespace
}  // namespace regmill
