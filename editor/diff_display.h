// The text of a comparison display: two views of equally many rows, the left file's
// lines beside the right file's, changes coloured by terminal escape sequences and a
// changed pair of lines marked character by character; the differences as rows, the
// summary label, and the walk from one difference to the next.
#pragma once
#include <QString>
#include <QStringList>
#include <cstdint>
#include <utility>
#include <vector>

#include "editor/text_diff.h"

namespace regmill {

struct DiffDifference {
  int32_t firstRow;       // rows count from 0
  int32_t rowBehindLast;
  DiffKind kind;
  bool operator==(const DiffDifference&) const = default;
};

// What a step through the differences tells: `note` describes the difference shown,
// `message` says why there is none to show. Either may be empty.
struct DiffNotice {
  QString note;
  QString message;
};

class DiffDisplay {
 public:
  // Without colour, no escape sequence is written: the rows are numbered plain text.
  explicit DiffDisplay(bool colour = true, int lineNumberWidth = 4)
      : colour_(colour), lineNumberWidth_(lineNumberWidth) {}

  // Replaces the whole display by the comparison of the two lists. Gives the notice of
  // the first difference, or "Files are identical" as the message.
  DiffNotice compareLists(const QStringList& left, const QStringList& right);

  const QString& leftText() const { return leftText_; }
  const QString& rightText() const { return rightText_; }
  int32_t rowCount() const { return rows_; }
  // "Files are identical", "Files have 1 difference" or "Files have N differences".
  const QString& label() const { return label_; }
  const std::vector<DiffDifference>& differences() const { return differences_; }
  size_t currentDifference() const { return current_; }

  DiffNotice locateDifference() const;
  DiffNotice nextDifference();
  DiffNotice prevDifference();

 private:
  bool colour_;
  int lineNumberWidth_;
  QString leftText_;
  QString rightText_;
  int32_t rows_ = 0;
  QString label_;
  std::vector<DiffDifference> differences_;
  size_t current_ = 0;
};

// A changed pair of lines with the characters that differ marked: on the left
// between "\033[31m" and "\033[30m", on the right between "\033[31m\033[45m" and
// "\033[30m\033[47m". Without colour the lines come back as they are.
std::pair<QString, QString> markedLinePair(const QString& left, const QString& right, bool colour = true);

}  // namespace regmill
