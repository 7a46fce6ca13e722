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
      {"axb a.b", "a.b", 0, "4:a.b"},
      {"f(x)|[y]", "(x)|[y]", 0, "1:(x)|[y]"},
      {"Abc abc", "abc", kFindCaseSensitive, "4:abc"},
      {"Abc abc", "abc", 0, "0:Abc"},
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

TEST(TextFinder, ReplaceAllGoesOnBehindTheNewTextAndUndoesInOneStep) {
  CommandBench bench("a a\nxa");
  FindParameters parameters{0, "a", "aa"};
  EXPECT_EQ(bench.commands.finder().replaceAll(parameters, false), 3);
  EXPECT_EQ(bench.editor.text(), "aa aa\nxaa");
  EXPECT_EQ(bench.editor.statusMessage(), "3 occurrences have been replaced.");
  bench.editor.undo();
  EXPECT_EQ(bench.editor.text(), "a a\nxa");

  parameters = {kFindRegularExpression | kFindGreedy, "(\\w+)=(\\w+)", "\\2=\\1"};
  CommandBench swapped("x=y\nlong=short");
  swapped.commands.finder().replaceAll(parameters, false);
  EXPECT_EQ(swapped.editor.text(), "y=x\nshort=long");

  CommandBench lines("a;b;c");
  EXPECT_EQ(lines.commands.finder().replaceAll({0, ";", "\n"}, false), 2);
  EXPECT_EQ(lines.editor.text(), "a\nb\nc");

  CommandBench one("cat concat");
  EXPECT_EQ(one.commands.finder().replaceAll({kFindWholeWord, "cat", "dog"}, false), 1);
  EXPECT_EQ(one.editor.statusMessage(), "1 occurrence has been replaced.");
  EXPECT_EQ(one.commands.finder().replaceAll({0, "", "dog"}, false), 0);
}

TEST(TextFinder, SelectionOnlyKeepsToTheScopeAndItsMovingEnd) {
  CommandBench bench("a a\na [a a a]\na a");
  EXPECT_EQ(bench.commands.finder().replaceAll({0, "a", "bb"}, true), 3);
  EXPECT_EQ(bench.state(), "a a\na [bb bb bb]\na a");
  EXPECT_EQ(bench.commands.finder().markAll({0, "a", {}}, false), (std::vector<int>{0, 0, 1, 2, 2}));
  EXPECT_EQ(bench.editor.statusMessage(), "5 occurrences have been marked.");
}

TEST(TextFinder, ReplaceNextReplacesTheSelectionAndFindsTheNext) {
  CommandBench bench("|k=1 k=2");
  TextFinder& finder = bench.commands.finder();
  ASSERT_TRUE(finder.find(bench.editor.caret(), "k=(\\d)", {kFindRegularExpression, {}, "v\\1"}));
  finder.replaceNext();
  EXPECT_EQ(bench.state(), "v1 [k=2]");
  finder.replaceNext();
  EXPECT_EQ(bench.editor.text(), "v1 v2");
  EXPECT_EQ(bench.editor.statusMessage(), "Can't find 'k=(\\d)'");
}

TEST(TextFinder, FindNextSelectedTakesTheWordAtTheCaret) {
  CommandBench bench("foo bar f|oo");
  EXPECT_TRUE(bench.commands.finder().findNextSelected());
  EXPECT_EQ(bench.state(), "[foo] bar foo");
}

}  // namespace
}  // namespace regmill
