#include "editor/simple_text_diff.h"

#include <algorithm>

namespace regmill {

namespace {

// Walks both lines in step: equal characters go to both sides; a run of places that
// differ (a side that has ended differs from any character) is marked on both.
void markDifferences(const QString& left, const QString& right, QString& leftOut, QString& rightOut) {
  qsizetype i = 0, j = 0;
  auto sameHere = [&] { return i < left.size() && j < right.size() && left[i] == right[j]; };
  while (i < left.size() || j < right.size()) {
    if (sameHere()) {
      leftOut += left[i++];
      rightOut += right[j++];
      continue;
    }
    leftOut += QLatin1StringView("\033[31m");
    rightOut += QLatin1StringView("\033[31m");
    while ((i < left.size() || j < right.size()) && !sameHere()) {
      if (i < left.size()) leftOut += left[i++];
      if (j < right.size()) rightOut += right[j++];
    }
    leftOut += QLatin1StringView("\033[30m");
    rightOut += QLatin1StringView("\033[30m");
  }
}

}  // namespace

void SimpleTextDiff::append(const QStringList& lsl, const QStringList& rsl) {
  for (qsizetype at = 0; at < std::max(lsl.size(), rsl.size()); ++at) {
    const QString left = at < lsl.size() ? lsl[at] : QString();
    const QString right = at < rsl.size() ? rsl[at] : QString();
    if (left.toLatin1() == right.toLatin1()) {
      leftText_ += left;
      rightText_ += right;
    } else {
      markDifferences(left, right, leftText_, rightText_);
      differentLines_.push_back(lineCount_);
    }
    leftText_ += QLatin1Char('\n');
    rightText_ += QLatin1Char('\n');
    ++lineCount_;
  }
  current_ = differentLines_.size();
}

int32_t SimpleTextDiff::locateNextDifferentLine() {
  current_ = current_ == differentLines_.size() ? 0 : current_ + 1;
  return locateCurrentDifferentLine();
}

int32_t SimpleTextDiff::locatePreviousDifferentLine() {
  current_ = current_ == 0 ? differentLines_.size() : current_ - 1;
  return locateCurrentDifferentLine();
}

int32_t SimpleTextDiff::locateCurrentDifferentLine() const {
  return current_ < differentLines_.size() ? differentLines_[current_] : -1;
}

}  // namespace regmill
