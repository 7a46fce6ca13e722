// The text of a document as a doubly linked list of line records: an edit touches
// only the records it concerns and never moves the rest of the document. The buffer
// always holds at least one (possibly empty) line. Reading outside the list gives a
// null string and no error.
#pragma once
#include <QString>
#include <cstdint>
#include <list>

#include "editor/code_buffer_position.h"

namespace regmill {

struct CodeLine {
  QString text;               // without a line ending
  uint32_t flags = 0;         // bit 0: the line carries a bookmark
  int32_t firstValue = -1;    // two integers kept per line beside the text; editing
  int32_t secondValue = -1;   // does not use them
  bool changed = true;        // set again each time the text is replaced
};

constexpr uint32_t kBookmarkFlag = 1;

class CodeBuffer {
 public:
  using Lines = std::list<CodeLine>;
  using iterator = Lines::iterator;
  using const_iterator = Lines::const_iterator;

  CodeBuffer();
  CodeBuffer(const CodeBuffer& other);
  CodeBuffer& operator=(const CodeBuffer& other);

  int lineCount() const { return int(lines_.size()); }
  // The line's text, or a null string outside the list.
  QString line(int index) const;
  int lineLength(int index) const { return int(line(index).size()); }
  // The record of a line, or end(). Walks from the head, the tail or the record
  // reached last, whichever is nearest, so that visiting neighbouring lines costs
  // one step each.
  iterator lineAt(int index);
  const_iterator lineAt(int index) const;

  iterator begin() { return lines_.begin(); }
  iterator end() { return lines_.end(); }
  const_iterator begin() const { return lines_.begin(); }
  const_iterator end() const { return lines_.end(); }

  // Inserts the text (CR LF and LF both end a line) and gives the position behind it.
  // An empty text changes no line, but still counts as a change.
  CodeBufferPosition insert(CodeBufferPosition position, const QString& text);
  // Removes the text between two positions, in either order, clamped to the text.
  void remove(CodeBufferPosition from, CodeBufferPosition to);
  // Replaces a line's text; an index equal to the line count appends a line first.
  void setLine(int index, const QString& text);
  // The text between two positions, lines joined by "\n"; equal positions give a null
  // string.
  QString textOf(CodeBufferPosition from, CodeBufferPosition to) const;
  // Replaces the whole document by these lines (at least one), as one change.
  void assign(Lines lines);
  // The position clamped to the text: a line within the list, a column within it.
  CodeBufferPosition clamp(CodeBufferPosition position) const;
  CodeBufferPosition endPosition() const;

  bool modified() const { return modified_; }
  void setModified(bool modified) { modified_ = modified; }
  uint32_t changeCount() const { return changeCount_; }

 private:
  void touch();
  void remember(int index, iterator record) const;

  Lines lines_;
  bool modified_ = false;
  uint32_t changeCount_ = 0;
  mutable int cachedIndex_ = 0;
  mutable iterator cachedRecord_;
};

}  // namespace regmill
