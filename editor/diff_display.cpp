#include "editor/diff_display.h"

#include <cstdio>

namespace regmill {

namespace {

constexpr int kPlain = 30;
constexpr int kChanged = 31;
constexpr int kRightOnly = 32;
constexpr int kLeftOnly = 34;

// Appends numbered rows to one view.
class ViewWriter {
 public:
  ViewWriter(QString& text, bool colour, int width) : text_(text), colour_(colour), width_(width) {}

  void line(int32_t number, const QString& line, int colourCode) {
    char head[48];
    if (colour_)
      std::snprintf(head, sizeof head, "% *d \033[%dm", width_, int(number), colourCode);
    else
      std::snprintf(head, sizeof head, "% *d ", width_, int(number));
    text_ += QLatin1StringView(head);
    text_ += line;
    text_ += colour_ ? QLatin1StringView("\033[30m\n") : QLatin1StringView("\n");
  }
  void emptyRows(int32_t count) {
    for (int32_t row = 0; row < count; ++row) text_ += QLatin1Char('\n');
  }

 private:
  QString& text_;
  bool colour_;
  int width_;
};

// Writes the rows of both views hunk by hunk; lines count from 1.
class RowWriter {
 public:
  RowWriter(const QStringList& left, const QStringList& right, ViewWriter leftView, ViewWriter rightView,
            bool colour)
      : left_(left), right_(right), leftView_(leftView), rightView_(rightView), colour_(colour) {}

  void plainLeftUpTo(int32_t last) {
    for (; nextLeft_ <= last; ++nextLeft_) writeLeft(nextLeft_, kPlain);
  }
  void plainRightUpTo(int32_t last) {
    for (; nextRight_ <= last; ++nextRight_) rightView_.line(nextRight_, right_[nextRight_ - 1], kPlain);
  }

  DiffDifference hunk(const DiffHunk& hunk) {
    plainLeftUpTo(hunk.leftFrom - 1);
    plainRightUpTo(hunk.rightFrom - 1);
    switch (hunk.kind) {
      case DiffKind::RightOnly: {
        const int32_t count = hunk.rightTo - hunk.rightFrom + 1;
        for (; nextRight_ <= hunk.rightTo; ++nextRight_) rightView_.line(nextRight_, right_[nextRight_ - 1], kRightOnly);
        // The left line behind which the insertion falls stands beside the line before it.
        plainLeftUpTo(hunk.leftFrom);
        const int32_t first = rows_;
        leftView_.emptyRows(count);
        rows_ += count;
        return {first, rows_, hunk.kind};
      }
      case DiffKind::LeftOnly: {
        const int32_t first = rows_;
        const int32_t count = hunk.leftTo - hunk.leftFrom + 1;
        for (; nextLeft_ <= hunk.leftTo; ++nextLeft_) writeLeft(nextLeft_, kLeftOnly);
        plainRightUpTo(hunk.rightFrom);
        rightView_.emptyRows(count);
        return {first, rows_, hunk.kind};
      }
      case DiffKind::Changed:
        break;
    }
    const int32_t first = rows_;
    for (; nextLeft_ <= hunk.leftTo && nextRight_ <= hunk.rightTo; ++nextLeft_, ++nextRight_) {
      const auto [leftLine, rightLine] = markedLinePair(left_[nextLeft_ - 1], right_[nextRight_ - 1], colour_);
      leftView_.line(nextLeft_, leftLine, kPlain);
      rightView_.line(nextRight_, rightLine, kPlain);
      ++rows_;
    }
    const int32_t leftRest = hunk.leftTo - nextLeft_ + 1;
    const int32_t rightRest = hunk.rightTo - nextRight_ + 1;
    for (; nextLeft_ <= hunk.leftTo; ++nextLeft_) writeLeft(nextLeft_, kChanged);
    for (; nextRight_ <= hunk.rightTo; ++nextRight_) rightView_.line(nextRight_, right_[nextRight_ - 1], kChanged);
    leftView_.emptyRows(rightRest);
    rightView_.emptyRows(leftRest);
    rows_ += rightRest;
    return {first, rows_, hunk.kind};
  }

  int32_t rows() const { return rows_; }

 private:
  void writeLeft(int32_t number, int colourCode) {
    leftView_.line(number, left_[number - 1], colourCode);
    ++rows_;
  }

  const QStringList& left_;
  const QStringList& right_;
  ViewWriter leftView_;
  ViewWriter rightView_;
  bool colour_;
  int32_t nextLeft_ = 1;
  int32_t nextRight_ = 1;
  int32_t rows_ = 0;  // counted on the left view; both views end with as many
};

}  // namespace

std::pair<QString, QString> markedLinePair(const QString& left, const QString& right, bool colour) {
  if (!colour) return {left, right};
  QString leftOut, rightOut;
  qsizetype leftAt = 0, rightAt = 0;
  for (const DiffHunk& hunk : TextDiff().diff(left, right)) {
    // A hunk with no lines on one side holds the character behind which it falls there.
    const qsizetype leftStart = hunk.kind == DiffKind::RightOnly ? hunk.leftFrom : hunk.leftFrom - 1;
    const qsizetype rightStart = hunk.kind == DiffKind::LeftOnly ? hunk.rightFrom : hunk.rightFrom - 1;
    leftOut += QStringView(left).sliced(leftAt, leftStart - leftAt);
    rightOut += QStringView(right).sliced(rightAt, rightStart - rightAt);
    leftAt = leftStart;
    rightAt = rightStart;
    if (hunk.kind != DiffKind::RightOnly) {
      leftOut += QLatin1StringView("\033[31m");
      leftOut += QStringView(left).sliced(leftAt, hunk.leftTo - leftAt);
      leftOut += QLatin1StringView("\033[30m");
      leftAt = hunk.leftTo;
    }
    if (hunk.kind != DiffKind::LeftOnly) {
      rightOut += QLatin1StringView("\033[31m\033[45m");
      rightOut += QStringView(right).sliced(rightAt, hunk.rightTo - rightAt);
      rightOut += QLatin1StringView("\033[30m\033[47m");
      rightAt = hunk.rightTo;
    }
  }
  leftOut += QStringView(left).sliced(leftAt);
  rightOut += QStringView(right).sliced(rightAt);
  return {leftOut, rightOut};
}

DiffNotice DiffDisplay::compareLists(const QStringList& left, const QStringList& right) {
  leftText_.clear();
  rightText_.clear();
  differences_.clear();
  const std::vector<DiffHunk> hunks = TextDiff().diff(left, right);
  if (hunks.empty())
    label_ = QStringLiteral("Files are identical");
  else if (hunks.size() == 1)
    label_ = QStringLiteral("Files have 1 difference");
  else
    label_ = QStringLiteral("Files have %1 differences").arg(hunks.size());

  RowWriter writer(left, right, ViewWriter(leftText_, colour_, lineNumberWidth_),
                   ViewWriter(rightText_, colour_, lineNumberWidth_), colour_);
  for (const DiffHunk& hunk : hunks) differences_.push_back(writer.hunk(hunk));
  writer.plainLeftUpTo(int32_t(left.size()));
  writer.plainRightUpTo(int32_t(right.size()));
  rows_ = writer.rows();
  current_ = 0;
  if (differences_.empty()) return {{}, QStringLiteral("Files are identical")};
  return locateDifference();
}

DiffNotice DiffDisplay::locateDifference() const {
  if (differences_.empty()) return {};
  switch (differences_[current_].kind) {
    case DiffKind::LeftOnly: return {QStringLiteral("Lines deleted"), {}};
    case DiffKind::RightOnly: return {QStringLiteral("Lines inserted"), {}};
    case DiffKind::Changed: return {QStringLiteral("Lines changed"), {}};
  }
  return {};
}

DiffNotice DiffDisplay::nextDifference() {
  if (differences_.empty() || current_ + 1 == differences_.size()) return {{}, QStringLiteral("No more differences")};
  ++current_;
  return locateDifference();
}

DiffNotice DiffDisplay::prevDifference() {
  if (current_ == 0) return {{}, QStringLiteral("No previous differences")};
  --current_;
  return locateDifference();
}

}  // namespace regmill
