#include "editor/code_buffer.h"

#include <algorithm>
#include <cstdlib>
#include <utility>
#include <vector>

namespace regmill {

namespace {

// The text cut at each "\n", empty parts kept, a "\r" at the end of a part dropped.
std::vector<QStringView> splitIntoLines(QStringView text) {
  std::vector<QStringView> parts;
  qsizetype start = 0;
  for (;;) {
    qsizetype end = text.indexOf(u'\n', start);
    QStringView part = text.mid(start, (end < 0 ? text.size() : end) - start);
    if (part.endsWith(u'\r')) part.chop(1);
    parts.push_back(part);
    if (end < 0) return parts;
    start = end + 1;
  }
}

}  // namespace

CodeBuffer::CodeBuffer() : lines_(1), cachedRecord_(lines_.begin()) {}

CodeBuffer::CodeBuffer(const CodeBuffer& other)
    : lines_(other.lines_), modified_(other.modified_), changeCount_(other.changeCount_), cachedRecord_(lines_.begin()) {}

CodeBuffer& CodeBuffer::operator=(const CodeBuffer& other) {
  if (this != &other) {
    lines_ = other.lines_;
    modified_ = other.modified_;
    changeCount_ = other.changeCount_;
    remember(0, lines_.begin());
  }
  return *this;
}

void CodeBuffer::remember(int index, iterator record) const {
  cachedIndex_ = index;
  cachedRecord_ = record;
}

CodeBuffer::iterator CodeBuffer::lineAt(int index) {
  const int count = lineCount();
  if (index < 0 || index >= count) return lines_.end();
  const int fromHead = index, fromTail = count - 1 - index, fromCache = std::abs(index - cachedIndex_);
  iterator record;
  if (fromCache <= fromHead && fromCache <= fromTail) {
    record = cachedRecord_;
    std::advance(record, index - cachedIndex_);
  } else if (fromHead <= fromTail) {
    record = std::next(lines_.begin(), fromHead);
  } else {
    record = std::prev(lines_.end(), fromTail + 1);
  }
  remember(index, record);
  return record;
}

CodeBuffer::const_iterator CodeBuffer::lineAt(int index) const { return const_cast<CodeBuffer*>(this)->lineAt(index); }

QString CodeBuffer::line(int index) const {
  const_iterator record = lineAt(index);
  return record == lines_.end() ? QString() : record->text;
}

void CodeBuffer::touch() {
  modified_ = true;
  ++changeCount_;
}

CodeBufferPosition CodeBuffer::clamp(CodeBufferPosition position) const {
  if (position.line < 0) return {0, 0};
  if (position.line >= lineCount()) return endPosition();
  return {position.line, std::clamp(position.column, 0, lineLength(position.line))};
}

CodeBufferPosition CodeBuffer::endPosition() const {
  return {lineCount() - 1, int(lines_.back().text.size())};
}

CodeBufferPosition CodeBuffer::insert(CodeBufferPosition position, const QString& text) {
  touch();
  if (text.isEmpty() || !position.isValid()) return position;
  std::vector<QStringView> parts = splitIntoLines(text);
  if (position.line >= lineCount()) {
    // Behind the end of the list the parts become new records.
    for (QStringView part : parts) lines_.push_back(CodeLine{part.toString()});
    remember(0, lines_.begin());
    return {lineCount() - 1, int(parts.back().size())};
  }
  iterator record = lineAt(position.line);
  const qsizetype column = std::min<qsizetype>(position.column, record->text.size());
  record->changed = true;
  if (parts.size() == 1) {
    record->text.insert(column, parts.front());
    return {position.line, int(column + parts.front().size())};
  }
  QString tail = record->text.mid(column);
  record->text.truncate(column);
  record->text.append(parts.front());
  iterator behind = std::next(record);
  for (size_t i = 1; i + 1 < parts.size(); ++i) lines_.insert(behind, CodeLine{parts[i].toString()});
  lines_.insert(behind, CodeLine{parts.back().toString() + tail});
  const int lastLine = position.line + int(parts.size()) - 1;
  remember(lastLine, std::prev(behind));
  return {lastLine, int(parts.back().size())};
}

void CodeBuffer::remove(CodeBufferPosition from, CodeBufferPosition to) {
  if (to < from) std::swap(from, to);
  from = clamp(from);
  to = clamp(to);
  if (from != to) {
    iterator first = lineAt(from.line);
    if (from.line == to.line) {
      first->text.remove(from.column, to.column - from.column);
    } else {
      iterator last = lineAt(to.line);
      first->text.truncate(from.column);
      first->text.append(QStringView(last->text).mid(to.column));
      lines_.erase(std::next(first), std::next(last));
    }
    first->changed = true;
    remember(from.line, first);
  }
  touch();
}

void CodeBuffer::setLine(int index, const QString& text) {
  if (index == lineCount()) lines_.push_back(CodeLine{});
  iterator record = lineAt(index);
  if (record == lines_.end()) return;
  record->text = text;
  record->changed = true;
  touch();
}

QString CodeBuffer::textOf(CodeBufferPosition from, CodeBufferPosition to) const {
  if (from == to) return QString();
  if (to < from) std::swap(from, to);
  from = clamp(from);
  to = clamp(to);
  const_iterator record = lineAt(from.line);
  if (from.line == to.line) return record->text.mid(from.column, to.column - from.column);
  QString text = record->text.mid(from.column);
  for (int index = from.line + 1; index <= to.line; ++index) {
    ++record;
    text += u'\n';
    text += index == to.line ? QStringView(record->text).left(to.column) : QStringView(record->text);
  }
  return text;
}

void CodeBuffer::assign(Lines lines) {
  lines_ = std::move(lines);
  if (lines_.empty()) lines_.emplace_back();
  remember(0, lines_.begin());
  touch();
}

}  // namespace regmill
