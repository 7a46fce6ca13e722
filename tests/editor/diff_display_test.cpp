// The comparison display: the rows of both views for each kind of hunk written out
// by hand, the marks inside a changed pair, the steps through the differences, and
// the alignment of both views over random inputs; the simple comparison by index.
// The summary labels and the rows without colour are checked through loom diff.
#include "editor/diff_display.h"
#include "editor/simple_text_diff.h"

#include <gtest/gtest.h>

#include <random>

namespace regmill {
namespace {

const QString kEscape = QStringLiteral("\033");

QString escaped(const char* text) { return QString::fromLatin1(text).replace(QLatin1Char('~'), kEscape); }

TEST(DiffDisplay, RowsOfEachKindOfHunkStandSideBySide) {
  const QStringList left{"a", "b", "c", "d"};
  const QStringList right{"n", "a", "c", "dX", "m"};
  DiffDisplay display;
  const DiffNotice first = display.compareLists(left, right);
  EXPECT_EQ(display.leftText(), escaped("\n"
                                        "   1 ~[30ma~[30m\n"
                                        "   2 ~[34mb~[30m\n"
                                        "   3 ~[30mc~[30m\n"
                                        "   4 ~[30md~[30m\n"
                                        "\n"));
  EXPECT_EQ(display.rightText(), escaped("   1 ~[32mn~[30m\n"
                                         "   2 ~[30ma~[30m\n"
                                         "\n"
                                         "   3 ~[30mc~[30m\n"
                                         "   4 ~[30md~[31m~[45mX~[30m~[47m~[30m\n"
                                         "   5 ~[31mm~[30m\n"));
  EXPECT_EQ(display.differences(), (std::vector<DiffDifference>{{0, 1, DiffKind::RightOnly},
                                                                {2, 3, DiffKind::LeftOnly},
                                                                {4, 6, DiffKind::Changed}}));

  // The walk through the differences and what each step tells.
  auto notes = [](const DiffNotice& notice) { return notice.note + "|" + notice.message; };
  QStringList walk{notes(first)};
  for (int step = 0; step < 3; ++step) walk.append(notes(display.nextDifference()));
  for (int step = 0; step < 3; ++step) walk.append(notes(display.prevDifference()));
  EXPECT_EQ(walk, QStringList({"Lines inserted|", "Lines deleted|", "Lines changed|", "|No more differences",
                               "Lines deleted|", "Lines inserted|", "|No previous differences"}));

  EXPECT_EQ(notes(display.compareLists(left, left)), "|Files are identical");
  EXPECT_EQ(notes(display.nextDifference()), "|No more differences");
}

TEST(DiffDisplay, ChangedCharactersAreMarkedOnBothSides) {
  const char* cases[][4] = {  // left, right, and both marked
      {"abc", "axc", "a~[31mb~[30mc", "a~[31m~[45mx~[30m~[47mc"},
      {"abc", "ac", "a~[31mb~[30mc", "ac"},
      {"ac", "abc", "ac", "a~[31m~[45mb~[30m~[47mc"},
      {"ab", "xaby", "ab", "~[31m~[45mx~[30m~[47mab~[31m~[45my~[30m~[47m"},
      {"", "ab", "", "~[31m~[45mab~[30m~[47m"},
  };
  for (const auto& c : cases)
    EXPECT_EQ(markedLinePair(c[0], c[1]), std::make_pair(escaped(c[2]), escaped(c[3]))) << c[0] << " / " << c[1];
}

// Both views have one row per line of their file, in order, and padding rows, equally
// many in each.
TEST(DiffDisplay, BothViewsHoldEveryLineInOrderAndEquallyManyRows) {
  std::mt19937 random(3);
  for (int round = 0; round < 500; ++round) {
    QStringList sides[2];
    for (QStringList& side : sides)
      for (int line = 0, lines = random() % 12; line < lines; ++line) side.append(QString(QChar(char16_t('a' + random() % 3))));
    DiffDisplay display(false);
    display.compareLists(sides[0], sides[1]);
    const QString views[2] = {display.leftText(), display.rightText()};
    for (int side = 0; side < 2; ++side) {
      QStringList rows = views[side].split(QLatin1Char('\n'));
      ASSERT_EQ(rows.takeLast(), "");
      EXPECT_EQ(rows.size(), display.rowCount());
      rows.removeAll(QString());
      QStringList expected;
      for (qsizetype line = 0; line < sides[side].size(); ++line)
        expected.append(QStringLiteral("%1 %2").arg(line + 1, 4).arg(sides[side][line]));
      EXPECT_EQ(rows, expected);
    }
  }
}

TEST(SimpleTextDiff, PairsLinesByIndexAndStepsInACycleWithAStop) {
  SimpleTextDiff diff;
  diff.append({"same", "abcd", "x"}, {"same", "aXYd"});
  EXPECT_EQ(diff.leftText(), escaped("same\na~[31mbc~[30md\n~[31mx~[30m\n"));
  EXPECT_EQ(diff.rightText(), escaped("same\na~[31mXY~[30md\n~[31m~[30m\n"));  // both sides are marked
  diff.append({"ab"}, {"abcd"});
  EXPECT_EQ(diff.differentLines(), (std::vector<int32_t>{1, 2, 3}));
  EXPECT_TRUE(diff.rightText().endsWith(escaped("ab~[31mcd~[30m\n")));

  std::vector<int32_t> shown;
  for (int step = 0; step < 5; ++step) shown.push_back(diff.locateNextDifferentLine());
  shown.push_back(diff.locatePreviousDifferentLine());
  shown.push_back(diff.locatePreviousDifferentLine());
  EXPECT_EQ(shown, (std::vector<int32_t>{1, 2, 3, -1, 1, -1, 3}));
}

}  // namespace
}  // namespace regmill
