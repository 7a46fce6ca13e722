// The buffer's primitives, their signals, and undo and redo of every kind of action.
#include <gtest/gtest.h>

#include <QSignalSpy>

#include "editor/code_edit.h"
#include "tests/editor/editor_printers.h"
#include "editor/line_tracker.h"

namespace regmill {
namespace {

TEST(CodeBuffer, InsertSplitsAtLineFeedsAndEmptyInsertsRecordNothing) {
  CodeEdit editor;
  editor.setText("xy");
  editor.insertText({0, 1}, "a\r\nb\nc");
  EXPECT_EQ(editor.text(), "xa\nb\ncy");
  EXPECT_EQ(editor.caret(), CodeBufferPosition(2, 1));
  EXPECT_EQ(editor.textOf({0, 1}, {2, 1}), "a\nb\nc");
  EXPECT_TRUE(editor.textOf({1, 0}, {1, 0}).isNull());
  EXPECT_TRUE(editor.line(7).isNull());
  editor.deleteRange({2, 1}, {0, 1});  // ends in either order
  EXPECT_EQ(editor.text(), "xy");
  editor.setText("abc");  // an empty insert marks the document modified but records nothing
  editor.insertText({0, 1}, "");
  EXPECT_TRUE(editor.modified());
  EXPECT_EQ(editor.text(), "abc");
  EXPECT_FALSE(editor.canUndo());
}

TEST(CodeBuffer, TypingInVirtualSpaceFillsItAndUndoesInOneStep) {
  CodeEdit editor;
  editor.insertText({0, 10}, "x");
  EXPECT_EQ(editor.text(), QString(10, ' ') + "x");
  editor.insertText({2, 2}, "y");
  EXPECT_EQ(editor.text(), QString(10, ' ') + "x\n\n  y");
  ASSERT_EQ(editor.doneTransactions().size(), 2u);
  EXPECT_EQ(editor.doneTransactions().front()->actions.size(), 3u);  // newlines, blanks, text
  editor.undo();
  EXPECT_EQ(editor.text(), QString(10, ' ') + "x");
  editor.undo();
  EXPECT_EQ(editor.text(), "");
  EXPECT_EQ(editor.lineCount(), 1);
}

TEST(CodeBuffer, LineCountChangesAreSignalledFromLineOne) {
  CodeEdit editor;
  editor.setText("a\nb\nc\nd");
  QSignalSpy spy(&editor, &CodeEdit::numberOfLinesChanged);
  editor.insertText({1, 0}, "x\ny\n");
  editor.deleteRange({1, 1}, {3, 0});
  editor.insertText({0, 1}, "same line");
  ASSERT_EQ(spy.count(), 2);
  EXPECT_EQ(spy[0], (QList<QVariant>{2, 2}));
  EXPECT_EQ(spy[1], (QList<QVariant>{3, -2}));

  // A tracker fed by the signal keeps an outside line number right.
  LineTracker tracker;
  tracker.track(3);  // "c" in lines counted from 1
  QObject::connect(&editor, &CodeEdit::numberOfLinesChanged, &tracker, &LineTracker::changed);
  editor.insertText({0, 0}, "new\n");
  EXPECT_EQ(tracker.currentLine(3), 4);
  editor.deleteRange({2, 0}, {4, 0});  // removes the lines of b and c (the third and fourth of five)
  EXPECT_EQ(tracker.currentLine(3), -1);
}

TEST(LineTracker, MovesStaysOrLosesLines) {
  struct Case {
    int line, delta, expected;
  } cases[] = {{5, 2, 12}, {5, -3, 7}, {9, -2, -1}, {11, 4, 10}, {10, 1, 11}, {11, -1, 10}, {4, -6, 4}, {4, -7, -1}};
  for (const Case& c : cases) {
    LineTracker tracker;
    tracker.track(10);
    tracker.changed(c.line, c.delta);
    EXPECT_EQ(tracker.currentLine(10), c.expected) << c.line << " " << c.delta;
  }
  FileLineTracker files;
  for (const char* path : {"m.c", "a.c", "z.c"}) files.track(path, 10);
  files.changed("a.c", 1, 5);
  files.changed("none.c", 1, 5);
  EXPECT_EQ(files.trackerOf("a.c")->currentLine(10), 15);
  EXPECT_EQ(files.trackerOf("m.c")->currentLine(10), 10);
  EXPECT_EQ(files.trackerOf("none.c"), nullptr);
}

TEST(Undo, EveryActionKindUndoesAndRedoes) {
  CodeEdit editor;
  editor.setText("one\ntwo\nthree\nfour");
  editor.setCaret({3, 2});
  editor.beginEdit(0, kMoveKind);
  editor.recordAction(std::make_unique<CodeEditCaretRestorePointAction>(editor.caret()));
  editor.recordAction(std::make_unique<CodeEditSelectionRestorePointAction>(CodeBufferPosition(0, 1),
                                                                             CodeBufferPosition(1, 1), 0));
  editor.deleteRange({0, 1}, {2, 2});
  editor.insertText({0, 1}, "--");
  editor.replaceText({0, 0}, "o--r", "O\nR");
  editor.endEdit(0);
  EXPECT_EQ(editor.text(), "O\nRee\nfour");
  const QString after = editor.text();
  editor.undo();
  EXPECT_EQ(editor.text(), "one\ntwo\nthree\nfour");
  EXPECT_EQ(editor.caret(), CodeBufferPosition(3, 2));
  EXPECT_EQ(editor.selectionStart(), CodeBufferPosition(0, 1));
  EXPECT_EQ(editor.selectionLast(), CodeBufferPosition(1, 1));
  editor.redo();
  EXPECT_EQ(editor.text(), after);
  EXPECT_FALSE(editor.hasSelection());
  EXPECT_EQ(editor.doneTransactions().front()->label(), "Move");
}

TEST(Undo, DescriptionsAndLabels) {
  EXPECT_EQ(CodeEditInsertAction("0123456789A", {0, 0}, {0, 11}).description(), "Insert \"0123456789...\"");
  EXPECT_EQ(CodeEditDeleteAction("x", {0, 0}, {0, 1}).description(), "Delete \"x\"");
  EXPECT_EQ(CodeEditReplaceAction("a", "0123456789", {0, 0}).description(), "Replace \"0123456789\"");
  EXPECT_EQ(CodeEditCaretRestorePointAction({4, 7}).description(), "Caret positioned at 7, 4");
  EXPECT_EQ(transactionLabel(9), "Typing");
  EXPECT_EQ(transactionLabel(0), "Macro");
  EXPECT_EQ(transactionLabel(23), "Macro");
}

TEST(Undo, NestedBracketsMakeOneTransactionAndEmptyOnesNone) {
  CodeEdit editor;
  editor.setText("abc");
  editor.insertText({0, 0}, "1");
  editor.beginEdit(0, kCommentKind);
  editor.beginEdit(0, kCutKind);
  editor.insertText({0, 0}, "2");
  editor.endEdit(0);
  editor.insertText({0, 0}, "3");
  editor.endEdit(0);
  editor.beginEdit(0, kSortAscendingKind);  // no effect: no undo step
  editor.endEdit(0);
  ASSERT_EQ(editor.doneTransactions().size(), 2u);
  EXPECT_EQ(editor.doneTransactions().front()->label(), "Comment");
  editor.undo();
  EXPECT_EQ(editor.text(), "1abc");
  editor.undo();
  EXPECT_EQ(editor.text(), "abc");
}

TEST(Undo, ReadOnlyEditorsChangeNothingUnlessTheUserAgrees) {
  struct Answer : ReadOnlyHandler {
    bool yes = false;
    int asked = 0;
    bool makeEditable(const QString&) override { return ++asked, yes; }
  } answer;
  CodeEdit editor;
  editor.setText("abc");
  editor.setEditState(CodeEdit::AskToEdit);
  editor.setReadOnlyHandler(&answer);
  editor.insertText({0, 0}, "x");
  EXPECT_EQ(editor.text(), "abc");
  answer.yes = true;
  editor.insertText({0, 0}, "x");
  editor.insertText({0, 0}, "y");
  EXPECT_EQ(editor.text(), "yxabc");
  EXPECT_EQ(answer.asked, 2);
  editor.setEditState(CodeEdit::ReadOnly);
  editor.undo();
  editor.deleteRange({0, 0}, {0, 2});
  EXPECT_EQ(editor.text(), "yxabc");
}

}  // namespace
}  // namespace regmill
