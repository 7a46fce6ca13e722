// The editing commands on documents written with their caret and selection.
#include <gtest/gtest.h>

#include <QRegularExpression>
#include <functional>
#include <optional>
#include <random>

#include "tests/editor/editor_fixture.h"
#include "tests/editor/editor_printers.h"

namespace regmill {
namespace {

using testing::CommandBench;

struct Case {
  const char* name;
  std::function<void(EditCommands&)> run;
  const char* before;
  const char* after;
};

void runCases(std::initializer_list<Case> cases, const std::function<void(CodeEditSettings&)>& configure = {}) {
  for (const Case& c : cases) {
    CommandBench bench(QString::fromUtf8(c.before));
    if (configure) configure(bench.editor.settings());
    c.run(bench.commands);
    // An expectation without caret or selection marks checks only the text.
    const QString after = QString::fromUtf8(c.after);
    EXPECT_EQ(after.contains(QRegularExpression("[][|]")) ? bench.state() : bench.editor.text(), after) << c.name;
    // Every change is one undo step that gives the document back.
    if (bench.editor.canUndo()) {
      bench.editor.undo();
      EXPECT_EQ(bench.editor.text(), QString::fromUtf8(c.before).remove(u'[').remove(u']').remove(u'|')) << c.name;
    }
  }
}

#define COMMAND(slot) [](EditCommands& e) { e.slot(); }

TEST(EditCommands, CommentsMarkTheSelectedLinesAtColumnZero) {
  runCases({
      {"comment", COMMAND(commentSelection), "a\n[b\nc\nd\n]e", "a\n[//b\n//c\n//d\n]e"},
      {"comment to the end", COMMAND(commentSelection), "[a\nb]", "[//a\n//b]"},
      {"comment caret", COMMAND(commentSelection), "ab|cd", "//ab|cd"},
      {"uncomment", COMMAND(uncommentSelection), "[//a\n  //b\n//c\n]", "[a\n  //b\nc\n]"},
      {"uncomment caret", COMMAND(uncommentSelection), "//a|b", "a|b"},
      {"uncomment caret near start", COMMAND(uncommentSelection), "/|/a", "|a"},
      {"uncomment without marker", COMMAND(uncommentSelection), "x|y", "x|y"},
      {"swap comments", COMMAND(swapCommentSelection), "a|", "//a|"},
      {"swap indented marker", COMMAND(swapCommentSelection), "  //a|", "  //a|"},
  });
}

TEST(EditCommands, CaseChangesCharacterByCharacterAndKeepTheSelection) {
  runCases({
      {"upper word", COMMAND(uppercase), "foo b|ar baz", "foo [B|AR] baz"},
      {"upper keeps length", COMMAND(uppercase), "[straße]", "[STRAßE]"},  // not "SS"
      {"lower", COMMAND(lowercase), "[AbC]", "[abc]"},
      {"switch", COMMAND(switchcase), "[aB1c]", "[Ab1C]"},
      {"hex", COMMAND(uppercaseHex), "[0xab 0Xcd]", "[0xAB 0xCD]"},
      {"no word", COMMAND(uppercase), "a | b", "a | b"},
  });
}

TEST(EditCommands, CamelCaseAndSplitCaseRewriteIdentifiers) {
  runCases({
      {"camel", COMMAND(camelcase), "[foo_bar]", "fooBar"},
      {"camel doubled", COMMAND(camelcase), "[foo__bar]", "foo_Bar"},
      {"camel trailing", COMMAND(camelcase), "[foo_]", "foo_"},
      {"camel digit", COMMAND(camelcase), "[foo_1]", "foo1"},
      {"camel leading", COMMAND(camelcase), "[_x]", "X"},
      {"split", COMMAND(splitcase), "[fooBar]", "foo_bar"},
      {"split capital", COMMAND(splitcase), "[FooBar]", "Foo_bar"},
      {"split run", COMMAND(splitcase), "[aBC]", "a_bC"},
      {"split digit", COMMAND(splitcase), "[x1Y]", "x1Y"},
  });
}

TEST(EditCommands, SortingAndMovingLines) {
  runCases({
      {"ascending", COMMAND(sortAscending), "[c\na\nb\n]z", "[a\nb\nc\n]z"},
      {"descending by code", COMMAND(sortDescending), "[a\nC\nb]", "[b\na\nC]"},
      {"sort needs a selection", COMMAND(sortAscending), "b\na|", "b\na|"},
      {"transpose", COMMAND(transposeLines), "a\nb|\nc", "b\n|a\nc"},
      {"transpose first", COMMAND(transposeLines), "a|\nb", "|b\na"},
      {"up", COMMAND(moveSelectedLineUp), "a\nb\nc|", "a\nc|\nb"},
      {"up on first", COMMAND(moveSelectedLineUp), "a|\nb", "a|\nb"},
      {"down on last", COMMAND(moveSelectedLineDown), "a\nb|", "a\nb|"},
      {"down block", COMMAND(moveSelectedLineDown), "[a\nb\n]c\nd", "c\n[a\nb\n]d"},
      {"duplicate", COMMAND(duplicateLine), "ab|c\nd", "abc\nab|c\nd"},
  });
}

TEST(EditCommands, ASelectionIntoVirtualSpaceTakesOnlyRealLines) {
  CommandBench bench("a\nc\nb");
  bench.editor.setSelection({6, 0}, {1, 9});
  bench.commands.sortAscending();
  EXPECT_EQ(bench.editor.text(), "a\nb\nc");
  bench.editor.undoAll();
  EXPECT_EQ(bench.editor.text(), "a\nc\nb");
}

TEST(EditCommands, MovedLinesComeBackWithCaretAndSelection) {
  CommandBench bench("x\n[a\nb\n]c");
  bench.commands.moveSelectedLineUp();
  EXPECT_EQ(bench.state(), "[a\nb\n]x\nc");
  bench.editor.undo();
  EXPECT_EQ(bench.state(), "x\n[a\nb\n]c");
}

TEST(EditCommands, IndentationTabsAndAlignment) {
  runCases({
      {"tab to stop", COMMAND(tab), "ab|c", "ab  |c"},
      {"tab lines", COMMAND(tab), "[a\n\n#x\nb\n]c", "[    a\n\n#x\n    b\n]c"},
      {"backtab lines", COMMAND(backtab), "[        a\n    b\n]c", "[    a\nb\n]c"},
      {"backtab caret", COMMAND(backtab), "      a|", "  a|"},
      {"align left", COMMAND(alignLeft), "[        a\n    b\n]", "[    a\n    b\n]"},
      {"align left skips blank", COMMAND(alignLeft), "[  a\n\n   b\n]", "[  a\n\n  b\n]"},
      {"align right", COMMAND(alignRight), "[a\n  bbb\n]", "[    a\n  bbb\n]"},
      {"center", COMMAND(center), "[ab\n  abcd\n]", "[  ab\n abcd\n]"},
      {"enter indents", COMMAND(enter), "    ab|cd", "    ab\n    |cd"},
  });
  runCases({{"tab with tabs", COMMAND(tab), "  |x", "\t|x"},
            {"preprocessor lines", COMMAND(tab), "[#a\nb\n]", "[\t#a\n\tb\n]"}},
           [](CodeEditSettings& settings) {
             settings.insertTabs = settings.indentPreprocessorLines = true;
             settings.indentSize = 4;
           });
}

TEST(EditCommands, EnterOnABlankLineLeavesTheCaretInVirtualSpace) {
  CommandBench bench("    |");
  bench.commands.enter();
  EXPECT_EQ(bench.editor.text(), "    \n");
  EXPECT_EQ(bench.editor.caret(), CodeBufferPosition(1, 4));
  bench.commands.typeText("x");  // typing there makes the space real
  EXPECT_EQ(bench.editor.text(), "    \n    x");
}

TEST(EditCommands, TabifyAndUntabifyRewriteRunsByTheirColumns) {
  struct Row {
    const char* before;
    const char* tabified;
    const char* untabified;
  } rows[] = {
      {"ab      x", "ab\t\tx", "ab      x"},
      {"      y", "\t  y", "      y"},
      {"\tx\ty ", "\tx\ty ", "    x   y "},
      {"abc d", "abc\td", "abc d"},
      {"a  \t b", "a\t b", "a    b"},
  };
  for (const Row& row : rows) {
    CommandBench bench(row.before);
    bench.commands.tabify(0, 0);
    EXPECT_EQ(bench.editor.text(), row.tabified) << row.before;
    CommandBench other(row.before);
    other.commands.untabify(0, 0);
    EXPECT_EQ(other.editor.text(), row.untabified) << row.before;
  }
  CommandBench bench("a\tb|");  // the caret keeps its column on screen
  bench.commands.untabify();
  EXPECT_EQ(bench.state(), "a   b|");
  EXPECT_EQ(bench.editor.doneTransactions().front()->label(), "Untabify");
}

TEST(EditCommands, ColumnsAndTrailingWhitespace) {
  runCases({
      {"columnize", COMMAND(columnize), "[a bb c\nddd e]", "a   bb c \nddd e  "},
      {"tidy", COMMAND(columnTidy), "[  x \"a b\" y\n\n    zz w]", "  x  \"a b\" y \n\n  zz w     "},
      {"trailing", COMMAND(deleteTrailingWhitespace), "a  \nb\t\n c |", "a\nb\n c"},
  });
  CommandBench trailing("a \n c |");  // the caret keeps its column
  trailing.commands.deleteTrailingWhitespace();
  EXPECT_EQ(trailing.editor.caret(), CodeBufferPosition(1, 3));
}

TEST(EditCommands, SurroundCastAndConversions) {
  runCases({
      {"surround word", [](EditCommands& e) { e.surround("(", ")"); }, "a fo|o b", "a (foo)| b"},
      {"surround nothing", [](EditCommands& e) { e.surround("(", ")"); }, "a | b", "a (|) b"},
      {"surround lines", [](EditCommands& e) { e.surround("<", ">"); }, "[a\nb]", "<a\nb>|"},
      {"cast", [](EditCommands& e) { e.cast("int"); }, "[x]", "(int)(x)|"},
      {"cast at caret", [](EditCommands& e) { e.cast("int"); }, "|x", "int |x"},
      {"to string", COMMAND(convertToString), "[a\"b]", "\"a\\\"b\"|"},
  });
  EXPECT_EQ(EditCommands::makeString("a\\b\n\"c\""), "\"a\\\\b\\n\\\"c\\\"\"");
  EXPECT_EQ(EditCommands::makeComment("x*/y"), "/*x**y*/");
  EXPECT_EQ(EditCommands::makeHTML("<a&b>"), "&lt;a&amp;b&gt;");
}

TEST(EditCommands, TransposeWordsSwapsTheWordWithTheOneBefore) {
  runCases({
      {"same length", COMMAND(transposeWords), "foo bar|", "bar |foo"},
      {"other lengths", COMMAND(transposeWords), "a, bcd|", "bcd, |a"},
      {"from inside", COMMAND(transposeWords), "one tw|o three", "two |one three"},
      {"no word before", COMMAND(transposeWords), "  o|ne", "  |one"},
  });
}

TEST(EditCommands, TemplatesReplaceTheirCallAndPlaceTheCaret) {
  CommandBench bench("  for|");
  EXPECT_FALSE(bench.commands.expandTemplate({"for", "", "for (|) {\n}\n", 3, 0}));
  EXPECT_EQ(bench.state(), "  for (|) {\n  }\n");
  EXPECT_EQ(bench.editor.statusMessage(), "Expanded template 'for'");
  EXPECT_EQ(bench.editor.doneTransactions().front()->label(), "Template Expansion");
  CommandBench call("x = pf|");
  EXPECT_TRUE(call.commands.expandTemplate({"printf", "", "printf(|)", 2, 0}));
  EXPECT_EQ(call.state(), "x = printf(|)");
}

TEST(EditCommands, ClipboardRingAndRepeatCounts) {
  CommandBench bench("[one] two|");
  bench.commands.copy();
  bench.editor.setSelection({0, 4}, {0, 7});
  bench.commands.cut();
  EXPECT_EQ(bench.editor.text(), "one ");
  EXPECT_EQ(bench.clipboard.text(), "two");
  bench.commands.setArgument(3);
  EXPECT_EQ(bench.editor.statusMessage(), "Argument: 3");
  bench.commands.paste();
  EXPECT_EQ(bench.editor.text(), "one twotwotwo");
  bench.commands.paste();  // the count was used up
  EXPECT_EQ(bench.editor.text(), "one twotwotwotwo");

  CommandBench ring("|");
  ring.commands.clipboardRing() = {{"one", "two"}, 1};
  ring.clipboard.setText("two");
  ring.commands.paste();
  ring.editor.setSelection({0, 0}, {0, 3});
  ring.commands.cycleClipboardRing();  // the pasted entry gives way to the one before
  EXPECT_EQ(ring.editor.text(), "one");
  ring.commands.pasteAll();
  EXPECT_EQ(ring.editor.text(), "onetwo");

  CommandBench lines("a\nb|\nc");
  lines.commands.copy();  // no selection: the caret's line
  EXPECT_EQ(lines.clipboard.text(), "b\n");
  lines.commands.copyLinesAppend();
  EXPECT_EQ(lines.clipboard.text(), "b\nb\n");
  lines.commands.setArgument(2);
  lines.commands.deleteLine();
  EXPECT_EQ(lines.state(), "a\n|");
}

TEST(EditCommands, BookmarksWrapAroundTheDocument) {
  CommandBench bench("0\n1\n2\n3\n4");
  for (int line : {1, 3}) {
    bench.editor.setCaret({line, 0});
    bench.commands.bookmarkToggle();
  }
  bench.editor.insertText({0, 0}, "new\n");  // a bookmark moves with its line
  const std::pair<void (EditCommands::*)(), int> moves[] = {{&EditCommands::bookmarkNext, 2},
                                                            {&EditCommands::bookmarkPrev, 4},
                                                            {&EditCommands::bookmarkFirst, 2},
                                                            {&EditCommands::bookmarkLast, 4}};
  for (auto [move, line] : moves) {
    (bench.commands.*move)();
    EXPECT_EQ(bench.editor.caret().line, line);
  }
  bench.commands.bookmarkClearAll();
  bench.editor.setCaret({0, 0});
  bench.commands.bookmarkNext();
  EXPECT_EQ(bench.editor.caret().line, 0);
  EXPECT_EQ(bench.editor.doneTransactions().size(), 1u);  // only the inserted line
}

TEST(EditCommands, RecordedKeystrokesPlayBackInAnotherEditor) {
  CommandBench bench("a|");
  EditCommands::startRecording();
  bench.commands.typeText("b");
  bench.commands.surround("(", ")");  // does nothing while recording
  EditCommands::pauseRecording(true);
  bench.commands.typeText("-");
  EditCommands::pauseRecording(false);
  bench.commands.selectAll();
  bench.commands.uppercase();
  bench.commands.center();  // records itself, not the untabify it runs
  EditCommands::stopRecording();
  EXPECT_EQ(EditCommands::recordedCount(), 4);
  EXPECT_EQ(bench.editor.text(), "AB-");

  CommandBench other("x|");
  other.commands.playRecording();
  EXPECT_EQ(other.editor.text(), "XB");
  EXPECT_EQ(EditCommands::recordedCount(), 4);  // playing records nothing
  other.editor.undo();
  EXPECT_EQ(other.editor.text(), "x");  // one step for the whole play
  EditCommands::cancelRecording();
  EXPECT_EQ(EditCommands::recordedCount(), 0);
}

TEST(EditCommands, ExtendFormsMoveTheCaretEndAndKeepTheAnchor) {
  auto twice = [](void (EditCommands::*move)()) {
    return [move](EditCommands& e) { (e.*move)(), (e.*move)(); };
  };
  runCases({
      {"char right", twice(&EditCommands::charRightExtend), "a|bcd", "a[bc]d"},
      {"grows a selection", COMMAND(charRightExtend), "[a]bc", "[ab]c"},
      {"back over the anchor", twice(&EditCommands::charLeftExtend), "a[b]c", "]a[bc"},
      {"line up", COMMAND(lineUpExtend), "ab\ncd|", "ab]\ncd["},
      {"line start toggle", COMMAND(lineStartToggleExtend), "  ab|", "  ]ab["},
      {"document end", COMMAND(documentEndExtend), "a|\nbc", "a[\nbc]"},
      {"a plain move clears", COMMAND(charRight), "[a]bc", "ab|c"},
      {"next line end", COMMAND(lineNextEnd), "a|\nbcd\ne", "a\nbcd|\ne"},
      {"down to the text", COMMAND(downLine), "a|b\n   cd", "ab\n   |cd"},
  });
  CommandBench block("ab|cd\nef\nghij");
  block.commands.lineDownBlockExtend();
  block.commands.lineDownBlockExtend();  // an empty block keeps its anchor
  block.commands.charRightBlockExtend();
  EXPECT_EQ(block.editor.selectionMode(), SelectionMode::Block);
  EXPECT_EQ(block.commands.selectedText(), "c\n\ni");
}

TEST(EditCommands, PageAndWindowMovesFollowTheRowsShown) {
  CommandBench bench("0\n1\n2\n3\n4\n5\n6|");
  bench.editor.setVisibleLines(3);  // a chunk is one line
  const std::tuple<void (EditCommands::*)(), int, int> steps[] = {
      // command, caret line and top line after it
      {&EditCommands::pageUp, 3, 0},        {&EditCommands::pageUp, 0, 0},
      {&EditCommands::pageDown, 3, 3},      {&EditCommands::bottomOfWindow, 5, 3},
      {&EditCommands::topOfWindow, 3, 3},   {&EditCommands::pageDown, 6, 6},
      {&EditCommands::lineUpChunk, 5, 6},   {&EditCommands::lineDownChunk, 6, 6},
  };
  for (auto [command, line, top] : steps) {
    (bench.commands.*command)();
    EXPECT_EQ(bench.editor.caret(), CodeBufferPosition(line, 1));
    EXPECT_EQ(bench.editor.topLine(), top);
  }
  bench.commands.pageUpExtend();
  EXPECT_EQ(bench.state(), "0\n1\n2\n3]\n4\n5\n6[");
}

TEST(EditCommands, LineCommandsOfTheNumberList) {
  auto withBookmarks = [](std::initializer_list<int> lines, void (EditCommands::*command)()) {
    return [lines, command](EditCommands& e) {
      for (int line : lines) e.editor().setLineFlags(line, kBookmarkFlag);
      (e.*command)();
    };
  };
  runCases({
      {"break line", COMMAND(breakLine), "    ab|cd", "    ab|\ncd"},
      {"indent keeps the caret on its text", COMMAND(lineIndent), "ab|c", "    ab|c"},
      {"indent lines", COMMAND(lineIndent), "[a\n]b", "[    a\n]b"},
      {"outdent", COMMAND(lineOutdent), "      a|", "  a|"},
      {"sentence", COMMAND(deleteSentence), "One. |Two three.  Four.", "One. |Four."},
      {"sentence over lines", COMMAND(deleteSentence), "a |b\nc! d", "a |d"},
      {"sentence ends at a blank line", COMMAND(deleteSentence), "a |b\nc\n\nd.", "a |\n\nd."},
      {"cut marked", withBookmarks({0, 2}, &EditCommands::cutMarked), "a\nb\nc\nd", "|b\nd"},
  });
  CommandBench marked("a\nb\nc");
  for (int line : {0, 2}) marked.editor.setLineFlags(line, kBookmarkFlag);
  marked.commands.copyMarked();
  EXPECT_EQ(marked.clipboard.text(), "a\nc\n");
  marked.commands.cutMarkedAppend();
  EXPECT_EQ(marked.clipboard.text(), "a\nc\na\nc\n");
  EXPECT_EQ(marked.editor.lineFlags(0), 0u);  // the bookmarks went with their lines
}

TEST(EditCommands, DelimitersAndFunctionsAreFoundThroughCommentsAndStrings) {
  runCases({
      {"to the closing partner", COMMAND(matchDelimiter), "f|(a{b}(c)) x", "f(a{b}(c))| x"},
      {"back to the opening one", COMMAND(matchDelimiter), "f(a{b}(c))| x", "f|(a{b}(c)) x"},
      {"literals and comments hide", COMMAND(matchDelimiter), "|(\")\" ')' /* ) */ // )\n)", "(\")\" ')' /* ) */ // )\n)|"},
      {"a comment over lines", COMMAND(matchDelimiter), "{ /*\n } */ |}", "|{ /*\n } */ }"},
      {"no bracket", COMMAND(matchDelimiter), "a|b", "a|b"},
      {"extend", COMMAND(matchDelimiterExtend), "x|(a)", "x[(a)]"},
  });
  CommandBench bench("int x;\n/* f(\n*/\nvoid f(int a)\n{\n  g(a);\n}\nstatic int h()\n{}");
  const std::pair<void (EditCommands::*)(), int> steps[] = {{&EditCommands::findNextFunction, 3},
                                                            {&EditCommands::findNextFunction, 7},
                                                            {&EditCommands::findNextFunction, 7},
                                                            {&EditCommands::findPrevFunction, 3},
                                                            {&EditCommands::findPrevFunction, 3}};
  for (auto [command, line] : steps) {
    (bench.commands.*command)();
    EXPECT_EQ(bench.editor.caret().line, line);
  }
}

TEST(EditCommands, TidyDocumentIndentsByBraceDepth) {
  runCases({{"tidy", COMMAND(tidyDocument),
             "void f()\n{\nif (a) {\n\"}\";\n  }   \n  #define X\n/* {\n   kept */\n\t\n}",
             "void f()\n{\n    if (a) {\n        \"}\";\n    }\n#define X\n    /* {\n   kept */\n\n}"}});
}

TEST(EditCommands, TemplatesAndTypingGoIntoEveryLineOfABlock) {
  CommandBench bench("x pf\ny pf\nz pf");
  bench.editor.setSelection({0, 4}, {2, 4}, SelectionMode::Block);  // an empty block over three lines
  EXPECT_FALSE(bench.commands.expandTemplate({"printf", "", "printf(|);", 2, 0}));
  EXPECT_EQ(bench.editor.text(), "x printf();\ny printf();\nz printf();");
  bench.commands.typeText("s");
  EXPECT_EQ(bench.editor.text(), "x printf(s);\ny printf(s);\nz printf(s);");
  bench.editor.undo();
  bench.editor.undo();
  EXPECT_EQ(bench.editor.text(), "x pf\ny pf\nz pf");
}

TEST(EditCommands, IncrementalSearchStartsAgainFromItsOriginWithEachText) {
  CommandBench bench("x |alpha beta alphabet");
  bench.commands.findIncremental();
  const std::tuple<const char*, const char*, const char*> steps[] = {
      // text, what is selected (or where the caret went back to), status
      {"al", "al", "Incremental search: al"},
      {"alx", "x |alpha beta alphabet", "Can't find 'alx'"},
      {"alphab", "alphab", "Incremental search: alphab"},
      {"alpha", "alpha", "Incremental search: alpha"},  // from the origin, not from the last match
  };
  for (auto [text, result, status] : steps) {
    EXPECT_EQ(bench.commands.searchIncrementally(text), QString(result) == text);
    EXPECT_EQ(bench.editor.hasSelection() ? bench.commands.selectedText() : bench.state(), result);
    EXPECT_EQ(bench.editor.statusMessage(), status);
  }
  EXPECT_EQ(bench.editor.selectionStart(), CodeBufferPosition(0, 2));
  bench.commands.findIncrementalDialogClosed();
  EXPECT_TRUE(bench.commands.finder().findNext());  // the last text, on from the match
  EXPECT_EQ(bench.editor.caret(), CodeBufferPosition(0, 18));
}

// Random commands on random text with random selections: undoing all gives back the
// text and the caret from before the first change, redoing all the text and caret
// after the last one, and a new edit after an undo empties the redo list.
TEST(EditCommandsProperty, UndoAllAndRedoAllOverRandomCommandSequences) {
  // Undo and redo themselves would make the final text another one.
  QStringList names = EditCommands::slotNames().filter(QRegularExpression("^(?!undo|redo)"));
  const QString pieces[] = {"foo_bar", "  ", "\t", "//", "0xab", "Zed", "\n", "x y z", "\"q\\\"\" w"};
  std::mt19937 random(2026);
  int changedRounds = 0;
  for (int round = 0; round < 150; ++round) {
    CommandBench bench;
    QString text;
    for (int piece = int(random() % 30); piece > 0; --piece) text += pieces[random() % std::size(pieces)];
    bench.editor.setText(text);
    bench.editor.settings().insertTabs = random() % 2;
    bench.clipboard.setText("clip\nboard");
    std::optional<CodeBufferPosition> caretBefore;
    CodeBufferPosition caretAfter;
    for (int step = 0; step < 12; ++step) {
      auto randomPosition = [&] {
        const int line = int(random() % bench.editor.lineCount());
        return CodeBufferPosition(line, int(random() % (bench.editor.buffer().lineLength(line) + 2)));
      };
      const CodeBufferPosition caret = randomPosition();
      if (random() % 2) bench.editor.setSelection(randomPosition(), caret, SelectionMode(random() % 2));
      else bench.editor.clearSelection();
      bench.editor.setCaret(caret);
      const QString name = names[int(random() % names.size())];
      const size_t before = bench.editor.doneTransactions().size();
      (bench.commands.*EditCommands::slotNamed(name))();
      if (bench.editor.doneTransactions().size() != before) {
        if (!caretBefore) caretBefore = caret;
        caretAfter = bench.editor.caret();
      }
    }
    const QString final = bench.editor.text();
    changedRounds += final != text;
    bench.editor.undoAll();
    ASSERT_EQ(bench.editor.text(), text) << round;
    if (caretBefore) {
      EXPECT_EQ(bench.editor.caret(), *caretBefore) << round;
    }
    bench.editor.redoAll();
    ASSERT_EQ(bench.editor.text(), final) << round;
    EXPECT_TRUE(bench.editor.statusMessage().startsWith("Redone "));
    if (caretBefore) {
      EXPECT_EQ(bench.editor.caret(), caretAfter);
    }
    if (bench.editor.canUndo()) {
      bench.editor.undo();
      bench.commands.typeText("!");
      EXPECT_FALSE(bench.editor.canRedo());
    }
  }
  EXPECT_GT(changedRounds, 120);  // the sequences do change the text
}

// A block selection: the same ends, taken as a rectangle of columns on screen.
void makeBlock(CommandBench& bench) {
  bench.editor.setSelection(bench.editor.selectionAnchor(), bench.editor.selectionEnd(), SelectionMode::Block);
}

TEST(EditCommands, BlockSelectionsWorkOnTheirColumnsOfEachLine) {
  struct Row {
    void (EditCommands::*command)();
    const char *before, *selected, *after;
  } rows[] = {
      {&EditCommands::deleteSelection, "a[bcd\nefg]h\nij", "bc\nfg", "ad\neh\nij"},
      {&EditCommands::deleteSelection, "ab[cd\nx\nefgh]", "cd\n\ngh", "ab\nx\nef"},  // a short line inside
      {&EditCommands::sortAscending, "x [b1\nx a2\nx c3]", "b1\na2\nc3", "x a2\nx b1\nx c3"},
      {&EditCommands::alignRight, "x [a\ny bbb]", "a\nbbb", "x   a\ny bbb"},  // only its part of each line
  };
  for (const Row& row : rows) {
    CommandBench bench(row.before);
    makeBlock(bench);
    EXPECT_EQ(bench.commands.selectedText(), row.selected) << row.before;
    (bench.commands.*row.command)();
    EXPECT_EQ(bench.editor.text(), row.after);
    bench.editor.undo();  // a command on a block is one step
    EXPECT_EQ(bench.editor.text(), QString(row.before).remove(u'[').remove(u']'));
  }
  CommandBench tab("a[bc\nde]f");
  makeBlock(tab);
  tab.commands.tab();
  EXPECT_EQ(tab.state(), "a   [bc\nd   e]f");
  tab.commands.backtab();
  EXPECT_EQ(tab.state(), "a[bc\nde]f");
  tab.commands.backtab();  // no white space before the block: nothing moves
  EXPECT_EQ(tab.state(), "a[bc\nde]f");
  tab.commands.cut();
  EXPECT_EQ(tab.editor.text(), "ac\ndf");
  tab.commands.paste();  // the empty block left behind takes its lines back
  EXPECT_EQ(tab.editor.text(), "abc\ndef");
}

}  // namespace
}  // namespace regmill
