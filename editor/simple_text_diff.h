// The simple comparison of two lists of lines: lines are paired by index, with no
// search, and the characters that differ at the same places are marked. A list of
// the different lines can be stepped through in a cycle that has a stop behind the
// last line, where no line is shown.
#pragma once
#include <QString>
#include <QStringList>
#include <cstdint>
#include <vector>

namespace regmill {

class SimpleTextDiff {
 public:
  // Adds the pairs of lines to both outputs; a missing line is empty. The current
  // line goes to the stop behind the last.
  void append(const QStringList& lsl, const QStringList& rsl);

  const QString& leftText() const { return leftText_; }
  const QString& rightText() const { return rightText_; }
  // Lines count from 0 over all calls of append.
  const std::vector<int32_t>& differentLines() const { return differentLines_; }

  // Each gives the line to show, -1 at the stop.
  int32_t locateNextDifferentLine();
  int32_t locatePreviousDifferentLine();
  int32_t locateCurrentDifferentLine() const;

 private:
  QString leftText_;
  QString rightText_;
  int32_t lineCount_ = 0;
  std::vector<int32_t> differentLines_;
  size_t current_ = 0;  // differentLines_.size() is the stop
};

}  // namespace regmill
