// Finding, replacing and marking: literal and regular find texts, whole words, case,
// direction, wrap with its status texts, and scopes.
#include <gtest/gtest.h>

#include <QSignalSpy>

#include "tests/editor/editor_fixture.h"
#include "tests/editor/editor_printers.h"

namespace regmill {
namespace {

using testing::CommandBench;

QString firstMatch(const QString& line, const QString& findText, uint32_t options, int from = 0) {
  QRegExp expression = TextFinder::buildExpression(findText, options);
  const LineMatch match = TextFinder::matchInLine(expression, line, from, options);
  return match.found() ? QString("%1:%2").arg(match.column).arg(line.mid(match.column, match.length)) : "none";
}

TEST(TextFinder, MatchingRulesInOneLine) {
  struct Row {
    const char* line;
    const char* find;
    uint32_t options;
    const char* expected;
  } rows[] = {
      {"concat cat_food cat-food", "cat", kFindWholeWord, "16:cat"},
      {"concat", "cat", kFindWholeWord, "none"},
      {"concat", "cat", 0, "3:cat"},
      {"xcat cat", "cat", kFindWholeWord | kFindBackwards, "5:cat"},
      {"f(x)|[y]", "(x)|[y]", 0, "1:(x)|[y]"},
      {"Abc abc", "abc", kFindCaseSensitive, "4:abc"},
      {"baaa", "a+", kFindRegularExpression, "1:a"},
      {"baaa", "a+", kFindRegularExpression | kFindGreedy, "1:aaa"},
      {"b", "a*", kFindRegularExpression | kFindGreedy, "none"},  // empty matches don't count
      {"é1 x1", "x1", kFindWholeWord, "3:x1"},
      {"éx1", "x1", kFindWholeWord, "1:x1"},  // judged by the ASCII form: é is no letter
  };
  for (const Row& row : rows) {
    const uint32_t options = row.options;
    const int from = (options & kFindBackwards) ? int(QString::fromUtf8(row.line).size()) : 0;
    EXPECT_EQ(firstMatch(QString::fromUtf8(row.line), row.find, options, from), row.expected) << row.line << " / " << row.find;
  }
}

TEST(TextFinder, FindSelectsTheMatchAndFindNextWraps) {
  CommandBench bench("one two\ntwo |three\ntwo");
  TextFinder& finder = bench.commands.finder();
  EXPECT_TRUE(finder.find(bench.editor.caret(), "two", {kFindWrap | kFindReport, {}, {}}));
  EXPECT_EQ(bench.state(), "one two\ntwo three\n[two]");
  EXPECT_TRUE(finder.findNext());
  EXPECT_EQ(bench.editor.statusMessage(), "Passed the end of file");
  EXPECT_EQ(bench.state(), "one [two]\ntwo three\ntwo");
  EXPECT_TRUE(finder.findNext());
  EXPECT_EQ(bench.state(), "one two\n[two] three\ntwo");
  EXPECT_TRUE(finder.findPrev());
  EXPECT_EQ(bench.state(), "one [two]\ntwo three\ntwo");
  EXPECT_TRUE(finder.findPrev());
  EXPECT_EQ(bench.editor.statusMessage(), "Passed the start of file");
  EXPECT_EQ(bench.state(), "one two\ntwo three\n[two]");
}

TEST(TextFinder, AFailedSearchReportsEachStepOrStaysQuiet) {
  CommandBench bench("abc\n|def");
  QSignalSpy spy(&bench.editor, &CodeEdit::statusMessageChanged);
  EXPECT_FALSE(bench.commands.finder().find(bench.editor.caret(), "xyz", {kFindWrap | kFindReport, {}, {}}));
  QStringList shown;
  for (const auto& arguments : spy) shown.append(arguments[0].toString());
  EXPECT_EQ(shown, QStringList({"Ready", "Passed the end of file", "Can't find 'xyz'"}));
  spy.clear();
  EXPECT_FALSE(bench.commands.finder().find({0, 0}, "xyz", {}));
  EXPECT_EQ(spy.count(), 0);
  EXPECT_EQ(bench.state(), "abc\n|def");
}

TEST(TextFinder, AMatchOutOfViewScrollsByTheRowsShown) {
  QString text;
  for (int line = 0; line < 200; ++line) text += line == 0 ? "x" : "\nx";
  CommandBench bench(text);
  bench.editor.setVisibleLines(10);
  const std::pair<int, int> rows[] = {
      // line of the match, top line after the find from a view at line 50
      {55, 50}, {59, 50}, {63, 54}, {64, 59}, {46, 46}, {45, 40}, {0, 0}, {199, 194},
  };
  for (auto [line, top] : rows) {
    bench.editor.setTopLine(50);
    bench.editor.clearSelection();
    ASSERT_TRUE(bench.commands.finder().find({line, 0}, "x", {}));
    EXPECT_EQ(bench.editor.topLine(), top) << line;
  }
}

TEST(TextFinder, ReplaceAllGoesOnBehindTheNewTextAndUndoesInOneStep) {
  struct Row {
    FindParameters parameters;
    const char *before, *after;
    int count;
    const char* status;
  } rows[] = {
      {{0, "a", "aa"}, "a a\nxa", "aa aa\nxaa", 3, "3 occurrences have been replaced."},
      {{kFindRegularExpression | kFindGreedy, "(\\w+)=(\\w+)", "\\2=\\1"}, "x=y\nlong=short", "y=x\nshort=long", 2, nullptr},
      {{0, ";", "\n"}, "a;b;c", "a\nb\nc", 2, nullptr},
      {{kFindWholeWord, "cat", "dog"}, "cat concat", "dog concat", 1, "1 occurrence has been replaced."},
      {{0, "", "dog"}, "cat", "cat", 0, nullptr},
  };
  for (const Row& row : rows) {
    CommandBench bench(row.before);
    EXPECT_EQ(bench.commands.finder().replaceAll(row.parameters, false), row.count) << row.before;
    EXPECT_EQ(bench.editor.text(), row.after);
    if (row.status) {
      EXPECT_EQ(bench.editor.statusMessage(), row.status);
    }
    bench.editor.undo();
    EXPECT_EQ(bench.editor.text(), row.before);
  }
}

TEST(TextFinder, SelectionOnlyKeepsToTheScopeAndItsMovingEnd) {
  CommandBench bench("a a\na [a a a]\na a");
  EXPECT_EQ(bench.commands.finder().replaceAll({0, "a", "bb"}, true), 3);
  EXPECT_EQ(bench.state(), "a a\na [bb bb bb]\na a");
  EXPECT_EQ(bench.commands.finder().markAll({0, "a", {}}, false), (std::vector<int>{0, 0, 1, 2, 2}));
  EXPECT_EQ(bench.editor.statusMessage(), "5 occurrences have been marked.");
}

TEST(TextFinder, ReplaceNextAndFindNextSelected) {
  CommandBench bench("|k=1 k=2");
  TextFinder& finder = bench.commands.finder();
  ASSERT_TRUE(finder.find(bench.editor.caret(), "k=(\\d)", {kFindRegularExpression, {}, "v\\1"}));
  finder.replaceNext();
  EXPECT_EQ(bench.state(), "v1 [k=2]");
  finder.replaceNext();
  EXPECT_EQ(bench.editor.text(), "v1 v2");
  EXPECT_EQ(bench.editor.statusMessage(), "Can't find 'k=(\\d)'");
  bench.editor.setText("foo bar foo");  // find next selected takes the word at the caret
  bench.editor.setCaret({0, 9});
  EXPECT_TRUE(finder.findNextSelected());
  EXPECT_EQ(bench.state(), "[foo] bar foo");
}

}  // namespace
}  // namespace regmill
