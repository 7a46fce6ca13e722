// The comparison engine: the hunks of small cases written by hand, longest common
// subsequences checked against a table computed by dynamic programming, the fast
// search against the search as written on random and real inputs, and edit counts
// against GNU diff's minimal ones on real file pairs.
#include "editor/text_diff.h"

#include <gtest/gtest.h>

#include <QHash>
#include <filesystem>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/support/regmill_process.h"
#include "tests/support/scratch_folder.h"

namespace regmill {
namespace {

using Kind = DiffKind;
using testing::corpusFolder;
using testing::readFile;
using testing::ScratchFolder;

// One line per character: "abc" is the lines a, b, c.
QStringList linesOf(const std::string& letters) {
  QStringList lines;
  for (char letter : letters) lines.append(QString(QChar(letter)));
  return lines;
}

QStringList linesOfFile(const std::filesystem::path& path) {
  return QString::fromLatin1(readFile(path)).split(QLatin1Char('\n'));
}

// The left list with the hunks applied; also checks that hunks come in order.
QStringList applied(const QStringList& left, const QStringList& right, const std::vector<DiffHunk>& hunks) {
  QStringList result;
  int32_t nextLeft = 1;
  for (const DiffHunk& hunk : hunks) {
    const int32_t keepUpTo = hunk.kind == Kind::RightOnly ? hunk.leftTo : hunk.leftFrom - 1;
    EXPECT_GE(keepUpTo + 1, nextLeft) << "hunks out of order";
    for (; nextLeft <= keepUpTo; ++nextLeft) result.append(left[nextLeft - 1]);
    if (hunk.kind != Kind::LeftOnly)
      for (int32_t j = hunk.rightFrom; j <= hunk.rightTo; ++j) result.append(right[j - 1]);
    if (hunk.kind != Kind::RightOnly) nextLeft = hunk.leftTo + 1;
  }
  for (; nextLeft <= left.size(); ++nextLeft) result.append(left[nextLeft - 1]);
  return result;
}

int64_t editCount(const std::vector<DiffHunk>& hunks) {
  int64_t count = 0;
  for (const DiffHunk& hunk : hunks) {
    if (hunk.kind != Kind::RightOnly) count += hunk.leftTo - hunk.leftFrom + 1;
    if (hunk.kind != Kind::LeftOnly) count += hunk.rightTo - hunk.rightFrom + 1;
  }
  return count;
}

int32_t longestCommonSubsequence(const QStringList& left, const QStringList& right) {
  std::vector<std::vector<int32_t>> table(size_t(left.size()) + 1, std::vector<int32_t>(size_t(right.size()) + 1));
  for (qsizetype i = 1; i <= left.size(); ++i)
    for (qsizetype j = 1; j <= right.size(); ++j)
      table[i][j] = left[i - 1] == right[j - 1] ? table[i - 1][j - 1] + 1 : std::max(table[i - 1][j], table[i][j - 1]);
  return table[left.size()][right.size()];
}

// Both searches agree, the comparison of whole texts gives what the lists give, and
// the hunks turn left into right.
std::vector<DiffHunk> checkedDiff(const QStringList& left, const QStringList& right) {
  std::vector<DiffHunk> fast = TextDiff().diff(left, right);
  EXPECT_EQ(fast, TextDiff(TextDiff::Search::AsWritten).diff(left, right));
  const QString leftText = left.join('\n'), rightText = right.join('\n');
  if (splitDiffLines(leftText) == left && splitDiffLines(rightText) == right) {
    EXPECT_EQ(TextDiff().diffTexts(leftText, rightText), fast);
  }
  EXPECT_EQ(applied(left, right, fast), right);
  return fast;
}

TEST(TextDiff, SmallCasesGiveTheHunksOfTheRules) {
  struct Case {
    const char *left, *right;
    std::vector<DiffHunk> hunks;
  };
  const Case cases[] = {
      {"abc", "abc", {}},
      {"", "ab", {{0, 0, 1, 2, Kind::RightOnly}}},
      {"ab", "", {{1, 2, 0, 0, Kind::LeftOnly}}},
      {"abc", "axc", {{2, 2, 2, 2, Kind::Changed}}},
      {"ac", "abc", {{1, 1, 2, 2, Kind::RightOnly}}},
      {"abc", "ac", {{2, 2, 1, 1, Kind::LeftOnly}}},
      {"ab", "xab", {{0, 0, 1, 1, Kind::RightOnly}}},
      {"abcdef", "axcdyyf", {{2, 2, 2, 2, Kind::Changed}, {5, 5, 5, 6, Kind::Changed}}},
      // Of the two common subsequences of length 1, the search keeps the later left line.
      {"ab", "ba", {{1, 1, 0, 0, Kind::LeftOnly}, {2, 2, 2, 2, Kind::RightOnly}}},
      {"aaa", "aa", {{3, 3, 2, 2, Kind::LeftOnly}}},
  };
  for (const Case& c : cases) EXPECT_EQ(checkedDiff(linesOf(c.left), linesOf(c.right)), c.hunks) << c.left << " / " << c.right;
}

// "aae" and "baa" hash alike, so they fall into one class and the prefix is taken
// off by hashes alone; the full comparison still reports them as changed.
TEST(TextDiff, EqualHashesOfDifferentTextsAreChangedLines) {
  const QString first = QStringLiteral("aae"), second = QStringLiteral("baa"), same = QStringLiteral("same");
  ASSERT_EQ(diffLineHash(first), diffLineHash(second));
  EXPECT_EQ(checkedDiff({first, same}, {second, same}), (std::vector<DiffHunk>{{1, 1, 1, 1, Kind::Changed}}));
  EXPECT_EQ(checkedDiff({same, first, same}, {same, same, second}),
            (std::vector<DiffHunk>{{2, 2, 1, 1, Kind::LeftOnly}, {3, 3, 3, 3, Kind::RightOnly}}));
}

TEST(TextDiff, RandomSmallAlphabetInputsFindALongestCommonSubsequence) {
  std::mt19937 random(14);
  for (int round = 0; round < 3000; ++round) {
    const int alphabet = 2 + round % 4;
    auto randomLetters = [&](size_t length) {
      std::string letters;
      for (size_t at = 0; at < length; ++at) letters += char('a' + random() % alphabet);
      return letters;
    };
    const std::string left = randomLetters(random() % 40), right = randomLetters(random() % 40);
    const QStringList leftLines = linesOf(left), rightLines = linesOf(right);
    const std::vector<DiffHunk> hunks = checkedDiff(leftLines, rightLines);
    EXPECT_EQ(editCount(hunks), left.size() + right.size() - 2 * longestCommonSubsequence(leftLines, rightLines))
        << left << " / " << right;
  }
}

// Two long random texts of two letters make candidates by the product of their
// lengths; past the limit both searches give up alike.
TEST(TextDiff, TooManyCandidatesEndInALengthError) {
  std::mt19937 random(11);
  std::string sides[2];
  for (std::string& side : sides)
    for (int line = 0; line < 400; ++line) side += char('a' + random() % 2);
  for (TextDiff::Search search : {TextDiff::Search::Fast, TextDiff::Search::AsWritten})
    EXPECT_THROW(TextDiff(search, 1000).diff(linesOf(sides[0]), linesOf(sides[1])), std::length_error);
}

// Real texts: a vendor file against a copy with scattered edits made of its own
// lines (so that classes are large), and pairs of related devices' files.
std::vector<std::pair<QStringList, QStringList>> realPairs(size_t lineLimit) {
  std::vector<std::pair<QStringList, QStringList>> pairs;
  const std::filesystem::path svd = corpusFolder("svd");
  const char* related[][2] = {{"Atmel/ATSAM3N2A.svd", "Atmel/ATSAM3N2B.svd"},
                              {"SiliconLabs/Series0/EZR32HG/EZR32HG220F32R60.svd",
                               "SiliconLabs/Series0/EZR32HG/EZR32HG320F64R55.svd"},
                              {"STMicro-modm/stm32wb/STM32WB10_CM4.svd", "STMicro-modm/stm32wb/STM32WB15_CM4.svd"}};
  for (auto& pair : related) {
    QStringList left = linesOfFile(svd / pair[0]), right = linesOfFile(svd / pair[1]);
    pairs.emplace_back(left.mid(0, lineLimit), right.mid(0, lineLimit));
  }
  std::mt19937 random(7);
  QStringList base = linesOfFile(svd / "STMicro/STM32H743x.svd").mid(0, lineLimit);
  QStringList edited = base;
  for (int edit = 0; edit < 200; ++edit) {
    const qsizetype at = random() % edited.size();
    switch (random() % 3) {
      case 0: edited.removeAt(at); break;
      case 1: edited.insert(at, base[random() % base.size()]); break;
      default: edited[at] = base[random() % base.size()];
    }
  }
  pairs.emplace_back(base, edited);
  return pairs;
}

TEST(TextDiff, FastSearchGivesTheHunksOfTheSearchAsWrittenOnRealFiles) {
  REGMILL_SKIP_WITHOUT(corpusFolder("svd"));
  for (const auto& [left, right] : realPairs(17000)) {  // enough lines to sort by counting
    EXPECT_FALSE(checkedDiff(left, right).empty());
    checkedDiff(right, left);
  }
}

// GNU diff's minimal edit script has as many lines as a longest common subsequence
// allows. Our search matches by 16-bit hashes and drops false matches afterwards, so
// a collision can cost matches: with every distinct line renamed to a text of its own
// hash the count must equal GNU's, and the real count may only exceed it.
TEST(TextDiff, EditCountsEqualGnuDiffMinimalOnRealPairs) {
  REGMILL_SKIP_WITHOUT(corpusFolder("svd"));
  REGMILL_SKIP_WITHOUT_PROGRAM("diff");
  ScratchFolder folder;
  for (const auto& [left, right] : realPairs(1 << 30)) {
    const std::string leftFile = folder.write("left", left.join('\n').toLatin1().toStdString() + "\n");
    const std::string rightFile = folder.write("right", right.join('\n').toLatin1().toStdString() + "\n");
    const auto gnu = testing::runProgram(testing::programPath("diff"), {"--minimal", leftFile, rightFile}, folder.path());
    int64_t gnuCount = 0;  // lines of the script that GNU diff prints with < or >
    for (const QString& line : QString::fromStdString(gnu.out).split('\n'))
      gnuCount += line.startsWith('<') || line.startsWith('>');
    QHash<QString, QString> renamed;  // one character from 1 to 0xFFFE: distinct hashes
    auto rename = [&](const QStringList& lines) {
      QStringList result;
      for (const QString& line : lines) {
        if (!renamed.contains(line)) renamed.insert(line, QString(QChar(char16_t(renamed.size() + 1))));
        result.append(renamed[line]);
      }
      return result;
    };
    const QStringList leftRenamed = rename(left), rightRenamed = rename(right);
    ASSERT_LT(renamed.size(), 0xFFFE);
    EXPECT_EQ(editCount(TextDiff().diff(leftRenamed, rightRenamed)), gnuCount);
    EXPECT_GE(editCount(TextDiff().diff(left, right)), gnuCount);
  }
}

}  // namespace
}  // namespace regmill
