// The comparison of two texts: the longest common subsequence of two lists of
// strings, found over classes of equal lines and their candidate matches, given back
// as the hunks that turn the left list into the right one. A string compares
// character by character through the same engine.
#pragma once
#include <QString>
#include <QStringList>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace regmill {

enum class DiffKind : int32_t {
  RightOnly = 0,  // lines inserted on the right
  LeftOnly = 1,   // lines deleted from the left
  Changed = 2,    // lines on both sides
};

// Lines count from 1. A RightOnly hunk has leftFrom == leftTo, the left line behind
// which the right lines come (0 for the head); a LeftOnly hunk has rightFrom ==
// rightTo, the right line behind which the left lines stood.
struct DiffHunk {
  int32_t leftFrom = 0;
  int32_t leftTo = 0;
  int32_t rightFrom = 0;
  int32_t rightTo = 0;
  DiffKind kind = DiffKind::Changed;
  bool operator==(const DiffHunk&) const = default;
};

class TextDiff {
 public:
  // Both searches give the same hunks. AsWritten walks every member of a line's class
  // for every left line, and sorts with a Shell sort; Fast visits only the members
  // that can change the search's state. AsWritten is kept as the measure that Fast is
  // tested and timed against.
  enum class Search { Fast, AsWritten };

  // Texts with few distinct lines, each repeated all over both sides, make a number
  // of candidate matches that grows with the product of their lengths. Past the limit
  // (12 bytes a candidate: 400 MB by default) a comparison gives up with
  // std::length_error("list too long") rather than fill the memory.
  static constexpr size_t kDefaultCandidateLimit = size_t{1} << 25;

  explicit TextDiff(Search search = Search::Fast, size_t candidateLimit = kDefaultCandidateLimit)
      : search_(search), candidateLimit_(candidateLimit) {}

  // The hunks in file order; none for equal lists. Lines compare exactly.
  std::vector<DiffHunk> diff(const QStringList& left, const QStringList& right) const;
  // The same over the characters of two strings: hunks count characters from 1.
  std::vector<DiffHunk> diff(const QString& left, const QString& right) const;
  // The lines of two whole texts, as splitDiffLines gives them, without making a
  // string of each line. Equal texts cost one comparison.
  std::vector<DiffHunk> diffTexts(const QString& left, const QString& right) const;

 private:
  Search search_;
  size_t candidateLimit_;
};

// A file's text as lines to compare: split at each line feed, empty parts kept (a
// text that ends with a line feed has an empty last line); an empty text has none.
QStringList splitDiffLines(const QString& text);

// The 16-bit hash by which lines are sorted into classes; equal texts hash alike.
int32_t diffLineHash(QStringView line);

}  // namespace regmill
