#include "editor/text_diff.h"

#include <algorithm>
#include <bit>
#include <stdexcept>

namespace regmill {

int32_t diffLineHash(QStringView line) {
  // Unsigned sums wrap where a signed one would overflow; the fold reads them back
  // as the signed values the hash is defined on.
  uint32_t sum = 1;
  uint32_t shift = 0;
  for (QChar character : line) {
    sum += uint32_t(character.unicode()) << (shift & 15);
    shift = (shift & 15) + 7;
  }
  const int32_t folded = (int32_t(sum) >> 16) + int32_t(sum & 0xFFFF);
  return int32_t(int16_t(folded >> 16)) + int32_t(int16_t(folded));
}

namespace {

struct Line {
  int32_t serial;
  int32_t hash;
};

bool hashThenSerial(const Line& a, const Line& b) {
  return a.hash != b.hash ? a.hash < b.hash : a.serial < b.serial;
}

// Gaps (2^k - 1) / 2, then halved, with 2^k the smallest power of two above the size.
void shellSort(std::vector<Line>& lines) {
  const size_t size = lines.size();
  if (size < 2) return;
  for (size_t gap = (std::bit_floor(size) * 2 - 1) / 2; gap != 0; gap /= 2)
    for (size_t next = gap; next < size; ++next)
      for (size_t at = next; at >= gap && hashThenSerial(lines[at], lines[at - gap]); at -= gap)
        std::swap(lines[at], lines[at - gap]);
}

// A hash lies between two 16-bit values summed: the lines, taken in serial order, are
// sorted by hash in one counting pass, and stay in serial order within one hash.
void countingSort(std::vector<Line>& lines) {
  constexpr int32_t kLowest = 2 * INT16_MIN;
  constexpr size_t kValues = size_t(2 * INT16_MAX - kLowest) + 2;
  std::vector<uint32_t> start(kValues + 1, 0);
  for (const Line& line : lines) ++start[size_t(line.hash - kLowest) + 1];
  for (size_t value = 1; value <= kValues; ++value) start[value] += start[value - 1];
  std::vector<Line> sorted(lines.size());
  for (const Line& line : lines) sorted[start[size_t(line.hash - kLowest)]++] = line;
  lines.swap(sorted);
}

struct Candidate {
  int32_t x;     // left line, behind the prefix
  int32_t y;     // right line, behind the prefix
  int32_t previous;  // index into the candidate list
};

// The classes of the pruned lines: for each left serial the position in `members` of
// the first right line with its hash (0 when there is none), and `members` the right
// serials sorted by hash, each run of one hash starting with its serial negated, the
// whole ended by -1. Positions count from 1.
struct Classes {
  std::vector<int32_t> classOf;
  std::vector<int32_t> members;
};

Classes makeClasses(std::vector<Line> left, std::vector<Line> right, TextDiff::Search search) {
  if (search == TextDiff::Search::AsWritten) {
    shellSort(left);
    shellSort(right);
  } else {
    // Both sorts give the one order by hash and serial; counting pays off only when
    // there are many more lines than its table has entries to sum.
    for (std::vector<Line>* lines : {&left, &right}) {
      if (lines->size() >= 16384)
        countingSort(*lines);
      else
        std::sort(lines->begin(), lines->end(), hashThenSerial);
    }
  }
  Classes classes;
  classes.classOf.assign(left.size() + 1, 0);
  size_t r = 0;
  for (const Line& line : left) {
    while (r < right.size() && right[r].hash < line.hash) ++r;
    if (r < right.size() && right[r].hash == line.hash) classes.classOf[size_t(line.serial)] = int32_t(r + 1);
  }
  classes.members.resize(right.size() + 2, 0);
  for (size_t at = 0; at < right.size(); ++at) {
    const bool startsRun = at == 0 || right[at - 1].hash != right[at].hash;
    classes.members[at + 1] = startsRun ? -right[at].serial : right[at].serial;
  }
  classes.members[right.size() + 1] = -1;
  return classes;
}

// The search for the longest common subsequence of the pruned lines. `best` keeps,
// for each length l found so far, the candidate whose right line is the lowest that
// ends a common subsequence of length l; those right lines rise strictly with l.
class CandidateSearch {
 public:
  CandidateSearch(const Classes& classes, int32_t leftLength, int32_t rightLength, size_t limit)
      : classes_(classes), leftLength_(leftLength), rightLength_(rightLength), limit_(std::min(limit, size_t(INT32_MAX))) {
    candidates_.push_back({0, 0, 0});
    best_.assign(size_t(std::min(leftLength, rightLength)) + 2, 0);
  }

  void walkAsWritten();
  void walkFast();

  // The candidates of the longest common subsequence, from its end backwards.
  template <typename Visit>
  void unravel(Visit visit) const {
    for (int32_t at = best_[size_t(longest_)]; candidates_[size_t(at)].y != 0; at = candidates_[size_t(at)].previous)
      visit(candidates_[size_t(at)]);
  }

 private:
  int32_t yOfBest(int32_t length) const { return candidates_[size_t(best_[size_t(length)])].y; }
  int32_t place(int32_t y) const;
  int32_t newCandidate(int32_t x, int32_t y, int32_t previous) {
    if (candidates_.size() >= limit_) throw std::length_error("list too long");
    candidates_.push_back({x, y, previous});
    return int32_t(candidates_.size() - 1);
  }

  const Classes& classes_;
  int32_t leftLength_;
  int32_t rightLength_;
  size_t limit_;
  std::vector<Candidate> candidates_;
  std::vector<int32_t> best_;
  int32_t longest_ = 0;
};

// The first length from 1 whose best right line is y or above it; longest_ + 1 when
// none is.
int32_t CandidateSearch::place(int32_t y) const {
  if (yOfBest(longest_) < y) return longest_ + 1;
  int32_t low = 0;
  int32_t high = longest_ + 1;
  int32_t middle = 0;
  while (true) {
    middle = (low + high) >> 1;
    if (middle <= low) break;
    const int32_t atMiddle = yOfBest(middle);
    if (atMiddle > y)
      high = middle;
    else if (atMiddle < y)
      low = middle;
    else
      return middle;
  }
  return middle + 1;
}

void CandidateSearch::walkAsWritten() {
  const std::vector<int32_t>& members = classes_.members;
  for (int32_t i = 1; i <= leftLength_; ++i) {
    int32_t member = classes_.classOf[size_t(i)];
    if (member == 0) continue;
    int32_t y = -members[size_t(member)];
    int32_t notedPlace = 0;
    int32_t previous = best_[0];
    do {
      if (y <= candidates_[size_t(previous)].y) continue;
      const int32_t length = place(y);
      if (length != notedPlace + 1) previous = best_[size_t(length - 1)];
      if (length <= longest_) {
        if (yOfBest(length) <= y) continue;
        const int32_t displaced = best_[size_t(length)];
        best_[size_t(length)] = newCandidate(i, y, previous);
        previous = displaced;
        notedPlace = length;
      } else {
        best_[size_t(length)] = newCandidate(i, y, previous);
        ++longest_;
        break;
      }
    } while ((y = members[size_t(++member)]) > 0);
  }
}

// The positions of the member array whose right line is no best right line of any
// length, as bits; all of them at the start.
class FreePositions {
 public:
  explicit FreePositions(size_t count) : words_(count / 64 + 1, ~uint64_t{0}) {}

  void set(int32_t position, bool isFree) {
    const uint64_t bit = uint64_t{1} << (position & 63);
    uint64_t& word = words_[size_t(position) >> 6];
    word = isFree ? word | bit : word & ~bit;
  }
  // The first free position from `from` on, or `end` when there is none before it.
  int32_t next(int32_t from, int32_t end) const {
    size_t word = size_t(from) >> 6;
    uint64_t bits = words_[word] & (~uint64_t{0} << (from & 63));
    while (bits == 0) {
      if (++word << 6 >= size_t(end)) return end;
      bits = words_[word];
    }
    return std::min(end, int32_t((word << 6) + size_t(std::countr_zero(bits))));
  }

 private:
  std::vector<uint64_t> words_;
};

// A left line changes the search only through the members of its class that are no
// best right line yet ("free"): such a member y lies strictly between the best right
// lines of two lengths l - 1 and l, and the lowest one there makes the new best of
// length l, chained to the old best of l - 1, while the other members there change
// nothing. A member that already is a best right line changes nothing either. The
// walk as written finds exactly these, one member at a time; here the free members
// are found through a bit set, and those that cannot matter are skipped by binary
// search. All changes of one left line are computed first and applied after, as the
// walk as written reads the lengths as they stood before the line.
void CandidateSearch::walkFast() {
  const std::vector<int32_t>& members = classes_.members;
  const size_t memberCount = size_t(rightLength_) + 1;
  std::vector<int32_t> serialAt(memberCount + 1, 0);  // position -> right serial
  std::vector<int32_t> positionOf(memberCount, 0);    // right serial -> position
  std::vector<int32_t> classEnd(memberCount + 1, 0);  // class start -> position behind it
  for (size_t at = 1; at < memberCount; ++at) {
    serialAt[at] = std::abs(members[at]);
    positionOf[size_t(serialAt[at])] = int32_t(at);
  }
  serialAt[memberCount] = INT32_MAX;
  for (size_t start = 1; start < memberCount;) {
    size_t end = start + 1;
    while (members[end] > 0) ++end;
    classEnd[start] = int32_t(end);
    start = end;
  }
  FreePositions free(memberCount);

  struct Change {
    int32_t length;
    int32_t y;
    int32_t previous;
  };
  std::vector<Change> changes;
  for (int32_t i = 1; i <= leftLength_; ++i) {
    const int32_t start = classes_.classOf[size_t(i)];
    if (start == 0) continue;
    const int32_t end = classEnd[size_t(start)];
    changes.clear();
    for (int32_t position = free.next(start, end); position < end;) {
      const int32_t y = serialAt[size_t(position)];
      const int32_t length = place(y);
      changes.push_back({length, y, best_[size_t(length - 1)]});
      if (length > longest_) break;
      const int32_t bound = yOfBest(length);
      position = int32_t(std::upper_bound(&serialAt[size_t(position)], &serialAt[size_t(end)], bound) - serialAt.data());
      if (position < end) position = free.next(position, end);
    }
    for (const Change& change : changes) {
      if (change.length > longest_)
        ++longest_;
      else
        free.set(positionOf[size_t(yOfBest(change.length))], true);
      best_[size_t(change.length)] = newCandidate(i, change.y, change.previous);
      free.set(positionOf[size_t(change.y)], false);
    }
  }
}

// The hunk list as the match array J gives it, each gap of unmatched lines one hunk.
class HunkWriter {
 public:
  std::vector<DiffHunk> write(std::vector<int32_t>& match, int32_t leftLength, int32_t rightLength) {
    match[0] = 0;
    match[size_t(leftLength) + 1] = rightLength + 1;
    for (int32_t i0 = 1, i1 = 0; i0 <= leftLength; i0 = i1 + 1) {
      while (i0 <= leftLength && match[size_t(i0)] == match[size_t(i0 - 1)] + 1) ++i0;
      const int32_t j0 = match[size_t(i0 - 1)] + 1;
      i1 = i0 - 1;
      while (i1 < leftLength && match[size_t(i1 + 1)] == 0) ++i1;
      const int32_t j1 = match[size_t(i1 + 1)] - 1;
      match[size_t(i1)] = j1;
      add(i0, i1, j0, j1);
    }
    if (leftLength == 0) add(1, 0, 1, rightLength);
    return std::move(hunks_);
  }

 private:
  void add(int32_t a, int32_t b, int32_t c, int32_t d) {
    if (a > b && c > d) return;
    if (a > b)
      hunks_.push_back({b, b, c, d, DiffKind::RightOnly});
    else if (c > d)
      hunks_.push_back({a, b, d, d, DiffKind::LeftOnly});
    else
      hunks_.push_back({a, b, c, d, DiffKind::Changed});
  }

  std::vector<DiffHunk> hunks_;
};

// Lines as views into the text they stand in, for a text compared whole.
using LineViews = std::vector<QStringView>;

LineViews lineViews(const QString& text) {
  LineViews lines;
  if (text.isEmpty()) return lines;
  for (qsizetype start = 0;;) {
    const qsizetype end = text.indexOf(QLatin1Char('\n'), start);
    if (end < 0) {
      lines.push_back(QStringView(text).sliced(start));
      return lines;
    }
    lines.push_back(QStringView(text).sliced(start, end - start));
    start = end + 1;
  }
}

// Elements of the kinds of sequence: lines of a list or of a text, characters of a
// string.
int32_t hashAt(const LineViews& lines, int32_t at) { return diffLineHash(lines[size_t(at)]); }
bool sameAt(const LineViews& left, int32_t i, const LineViews& right, int32_t j) {
  return left[size_t(i)] == right[size_t(j)];
}
int32_t hashAt(const QStringList& lines, int32_t at) { return diffLineHash(lines[at]); }
int32_t hashAt(const QString& text, int32_t at) {
  const QChar character = text[at];
  return diffLineHash(QStringView(&character, 1));
}
bool sameAt(const QStringList& left, int32_t i, const QStringList& right, int32_t j) { return left[i] == right[j]; }
bool sameAt(const QString& left, int32_t i, const QString& right, int32_t j) { return left[i] == right[j]; }

// The whole run on two sequences whose elements count from 0 here. Elements are
// hashed only where a hash is read: equal texts hash alike, so the head and the tail
// are measured by comparing texts first and hashes only where texts differ, and the
// lines they hold need no hash at all.
template <typename Sequence>
std::vector<DiffHunk> diffSequences(const Sequence& left, const Sequence& right, TextDiff::Search search,
                                    size_t candidateLimit) {
  if (size_t(left.size()) >= size_t(INT32_MAX) || size_t(right.size()) >= size_t(INT32_MAX))
    throw std::length_error("list too long");
  const int32_t leftLength = int32_t(left.size());
  const int32_t rightLength = int32_t(right.size());
  auto sameHash = [&](int32_t i, int32_t j) {
    return sameAt(left, i, right, j) || hashAt(left, i) == hashAt(right, j);
  };

  // Equal hashes at the head and at the tail are taken off before the search.
  int32_t prefix = 0;
  while (prefix < leftLength && prefix < rightLength && sameHash(prefix, prefix)) ++prefix;
  int32_t suffix = 0;
  while (suffix < leftLength - prefix && suffix < rightLength - prefix &&
         sameHash(leftLength - 1 - suffix, rightLength - 1 - suffix))
    ++suffix;
  const int32_t leftPruned = leftLength - prefix - suffix;
  const int32_t rightPruned = rightLength - prefix - suffix;

  auto pruned = [prefix](const Sequence& sequence, int32_t length) {
    std::vector<Line> lines(static_cast<size_t>(length));
    for (int32_t serial = 1; serial <= length; ++serial)
      lines[size_t(serial - 1)] = {serial, hashAt(sequence, prefix + serial - 1)};
    return lines;
  };
  const Classes classes = makeClasses(pruned(left, leftPruned), pruned(right, rightPruned), search);
  CandidateSearch candidates(classes, leftPruned, rightPruned, candidateLimit);
  if (search == TextDiff::Search::AsWritten)
    candidates.walkAsWritten();
  else
    candidates.walkFast();

  std::vector<int32_t> match(size_t(leftLength) + 2, 0);
  for (int32_t i = 0; i <= leftLength; ++i)
    match[size_t(i)] = i <= prefix ? i : i > leftLength - suffix ? i + rightLength - leftLength : 0;
  candidates.unravel([&](const Candidate& candidate) {
    match[size_t(candidate.x + prefix)] = candidate.y + prefix;
  });
  // Equal hashes of different texts lose their match here, so a collision costs a
  // match and never gives a wrong result.
  for (int32_t i = 1; i <= leftLength; ++i)
    if (match[size_t(i)] != 0 && !sameAt(left, i - 1, right, match[size_t(i)] - 1)) match[size_t(i)] = 0;
  return HunkWriter().write(match, leftLength, rightLength);
}

}  // namespace

std::vector<DiffHunk> TextDiff::diff(const QStringList& left, const QStringList& right) const {
  if (left == right) return {};
  return diffSequences(left, right, search_, candidateLimit_);
}

std::vector<DiffHunk> TextDiff::diff(const QString& left, const QString& right) const {
  if (left == right) return {};
  return diffSequences(left, right, search_, candidateLimit_);
}

std::vector<DiffHunk> TextDiff::diffTexts(const QString& left, const QString& right) const {
  if (left == right) return {};
  return diffSequences(lineViews(left), lineViews(right), search_, candidateLimit_);
}

QStringList splitDiffLines(const QString& text) {
  return text.isEmpty() ? QStringList() : text.split(QLatin1Char('\n'));
}

}  // namespace regmill
