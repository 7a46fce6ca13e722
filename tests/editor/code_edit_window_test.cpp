// The editor window driven as a user would, on the offscreen platform: open, type,
// undo, find, replace all, save.
#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTest>

#include "editor/widgets/code_edit_window.h"
#include "tests/editor/editor_printers.h"
#include "tests/support/scratch_folder.h"

// The system's font configuration library keeps a cache for the process's lifetime.
extern "C" const char* __lsan_default_suppressions() { return "leak:libfontconfig.so\n"; }

namespace regmill {
namespace {

using testing::ScratchFolder;

QApplication& application() {
  static int argc = 1;
  static char name[] = "editor_window_tests";
  static char* argv[] = {name, nullptr};
  qputenv("QT_QPA_PLATFORM", "offscreen");
  // Never destroyed: Qt's own statics go first at exit.
  static QApplication* instance = new QApplication(argc, argv);
  return *instance;
}

struct ScriptedFind : FindRequestHandler {
  FindParameters next;
  std::optional<FindParameters> askFind(bool) override { return next; }
};

struct Messages : MessageHandler {
  QStringList shown;
  void showMessage(const QString& title, const QString& text) override { shown.append(title + ": " + text); }
};

struct ScriptedRecovery : RecoverFileHandler {
  RecoverAnswer answer = RecoverAnswer::Other;
  int asked = 0;
  RecoverAnswer askRecover(const QString&, const QString&) override {
    ++asked;
    return answer;
  }
};

TEST(CodeEditWindow, OpenTypeUndoFindReplaceAndSave) {
  application();
  ScratchFolder folder;
  const QString path = QString::fromStdString(folder.write("note.txt", "red fish\r\nblue fish\r\n"));
  CodeEditWindow window;
  window.setBackupDirectory(QString::fromStdString(folder.file("backups")));
  ScriptedFind find;
  Messages messages;
  window.setFindRequestHandler(&find);
  window.setMessageHandler(&messages);
  ASSERT_TRUE(window.open(path));
  window.show();

  QTest::keyClicks(window.view(), "one ");
  QTest::keyClick(window.view(), Qt::Key_Return);
  EXPECT_EQ(window.editor().text(), "one \nred fish\nblue fish\n");
  window.action("undo")->trigger();
  EXPECT_EQ(window.editor().text(), "one red fish\nblue fish\n");
  QTest::keyClick(window.view(), Qt::Key_Backspace);
  EXPECT_EQ(window.editor().text(), "onered fish\nblue fish\n");

  find.next = {kFindWrap | kFindReport, "fish", {}};
  window.action("find")->trigger();
  EXPECT_EQ(window.editor().caret(), CodeBufferPosition(0, 11));
  window.action("find-next")->trigger();
  EXPECT_EQ(window.editor().caret(), CodeBufferPosition(1, 9));
  window.action("find-incremental")->trigger();  // keys search until escape
  QTest::keyClicks(window.view(), "red");
  QTest::keyClick(window.view(), Qt::Key_Escape);
  EXPECT_EQ(window.editor().caret(), CodeBufferPosition(0, 6));

  find.next = {0, "FISH", "cat"};
  window.action("replace-all")->trigger();
  EXPECT_EQ(window.editor().statusMessage(), "2 occurrences have been replaced.");
  window.action("uppercase")->trigger();  // the word at the caret
  window.action("save")->trigger();
  EXPECT_EQ(folder.read("note.txt"), "onered cat\r\nblue CAT\r\n");
  EXPECT_FALSE(window.editor().modified());
  EXPECT_TRUE(messages.shown.isEmpty());
}

// The answer decides: the recovered text, or the file gone; a saved document needs
// its recovery file no longer.
TEST(CodeEditWindow, OpeningAFileOffersItsRecoveryFile) {
  application();
  ScratchFolder folder;
  const QString path = QString::fromStdString(folder.write("doc.txt", "saved\n"));
  const QString backups = QString::fromStdString(folder.file("backups"));
  const QString recoveryPath = RecoveryFile::pathFor(path, backups);
  for (RecoverAnswer answer : {RecoverAnswer::Discard, RecoverAnswer::Recover}) {
    QDir().mkpath(QFileInfo(recoveryPath).path());
    QFile recovery(recoveryPath);
    ASSERT_TRUE(recovery.open(QIODevice::WriteOnly) && recovery.write("unsaved\n") == 8);
    recovery.close();
    CodeEditWindow window;
    ScriptedRecovery handler;
    handler.answer = answer;
    window.setBackupDirectory(backups);
    window.setRecoverFileHandler(&handler);
    ASSERT_TRUE(window.open(path));
    EXPECT_EQ(handler.asked, 1);
    if (answer == RecoverAnswer::Discard) {
      EXPECT_EQ(window.editor().text(), "saved\n");
      EXPECT_FALSE(QFileInfo::exists(recoveryPath));
      continue;
    }
    EXPECT_EQ(window.editor().text(), "unsaved\n");
    ASSERT_TRUE(window.save());
    EXPECT_EQ(folder.read("doc.txt"), "unsaved\n");
    EXPECT_FALSE(QFileInfo::exists(recoveryPath));
  }
}

TEST(CodeEditWindow, EveryCommandHasAMenuActionByItsKebabName) {
  application();
  CodeEditWindow window;
  for (const QString& name : EditCommands::slotNames()) {
    QString kebab;
    for (QChar c : name) kebab += c.isUpper() ? QString("-") + c.toLower() : QString(c);
    EXPECT_NE(window.action(kebab.replace("-h-t-m-l", "-html")), nullptr) << name.toStdString();
  }
}

}  // namespace
}  // namespace regmill
