// The editor window driven as a user would, on the offscreen platform: open, type,
// undo, find, replace all, save.
#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
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

TEST(CodeEditWindow, OpenTypeUndoFindReplaceAndSave) {
  application();
  ScratchFolder folder;
  const QString path = QString::fromStdString(folder.write("note.txt", "red fish\r\nblue fish\r\n"));
  CodeEditWindow window;
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

  find.next = {0, "FISH", "cat"};
  window.action("replace-all")->trigger();
  EXPECT_EQ(window.editor().statusMessage(), "2 occurrences have been replaced.");
  window.action("uppercase")->trigger();  // the word at the caret
  window.action("save")->trigger();
  EXPECT_EQ(folder.read("note.txt"), "onered cat\r\nblue CAT\r\n");
  EXPECT_FALSE(window.editor().modified());
  EXPECT_TRUE(messages.shown.isEmpty());
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
