// Commands on whole lines: comments, sorting, moving, indentation, tabs, alignment,
// columns, trailing white space and the enter key.
#include <algorithm>

#include "editor/edit_commands.h"

namespace regmill {

namespace {

const QString kCommentMarker = QStringLiteral("//");

// A tab if the run reaches the next tab stop, then whole tabs, then blanks.
QString whitespaceRun(int startColumn, int width, int tabSize) {
  const int end = startColumn + width;
  const int nextStop = (startColumn / tabSize + 1) * tabSize;
  if (end < nextStop) return QString(width, u' ');
  const int rest = end - nextStop;
  return QString(1 + rest / tabSize, u'\t') + QString(rest % tabSize, u' ');
}

int leadingWhitespaceLength(const QString& text) {
  int length = 0;
  while (length < text.size() && text[length].isSpace()) ++length;
  return length;
}

bool isBlank(const QString& text) { return leadingWhitespaceLength(text) == text.size(); }

}  // namespace

int EditCommands::columnForScreen(int line, int screenColumn) const {
  const QString text = editor_.line(line);
  const int tabSize = std::max(1, editor_.settings().tabSize);
  int screen = 0;
  for (int column = 0; column < text.size(); ++column) {
    if (screen >= screenColumn) return column;
    screen = text[column] == u'\t' ? (screen / tabSize + 1) * tabSize : screen + 1;
  }
  return int(text.size()) + std::max(0, screenColumn - screen);  // virtual space
}

QString EditCommands::runOfWhitespace(int startColumn, int width) const {
  if (!editor_.settings().insertTabs) return QString(width, u' ');
  return whitespaceRun(startColumn, width, std::max(1, editor_.settings().tabSize));
}

// Each line that differs is replaced as one change of that line.
void EditCommands::replaceLines(int first, int last, const QStringList& lines) {
  const CodeBufferPosition caret = editor_.caret();
  for (int line = first; line < last; ++line) {
    const QString old = editor_.line(line);
    if (old != lines[line - first]) editor_.replaceText({line, 0}, old, lines[line - first]);
  }
  editor_.setCaret(caret);
}

// --- comments

void EditCommands::commentSelection() {
  if (!beginCommand(73, kCommentKind)) return;
  if (editor_.hasSelection()) {
    auto [first, last] = selectedLines();
    for (int line = first; line < last; ++line) editor_.insertText({line, 0}, kCommentMarker);
    const CodeBufferPosition end = last < editor_.lineCount() ? CodeBufferPosition(last, 0) : editor_.buffer().endPosition();
    editor_.setSelection({first, 0}, end);
    editor_.setCaret(end);
  } else {
    const CodeBufferPosition caret = editor_.caret();
    editor_.insertText({caret.line, 0}, kCommentMarker);
    editor_.setCaret({caret.line, caret.column + 2});
  }
  editor_.endEdit(0);
}

void EditCommands::uncommentSelection() {
  record(74);
  if (!editor_.canEdit()) return;
  const CodeBufferPosition caret = editor_.caret();
  if (!editor_.hasSelection()) {
    if (!editor_.line(caret.line).startsWith(kCommentMarker)) return;  // no transaction at all
    editor_.beginEdit(0, kUncommentKind);
    editor_.deleteRange({caret.line, 0}, {caret.line, 2});
    editor_.setCaret({caret.line, std::max(0, caret.column - 2)});
    editor_.endEdit(0);
    return;
  }
  editor_.beginEdit(0, kUncommentKind);
  auto [first, last] = selectedLines();
  for (int line = first; line < last; ++line)
    if (editor_.line(line).startsWith(kCommentMarker)) editor_.deleteRange({line, 0}, {line, 2});
  const CodeBufferPosition end = last < editor_.lineCount() ? CodeBufferPosition(last, 0) : editor_.buffer().endPosition();
  editor_.setSelection({first, 0}, end);
  editor_.setCaret(end);
  editor_.endEdit(0);
}

void EditCommands::swapCommentSelection() {
  const int line = editor_.hasSelection() ? editor_.selectionStart().line : editor_.caret().line;
  if (editor_.line(line).trimmed().startsWith(kCommentMarker)) uncommentSelection();
  else commentSelection();
}

// --- sorting and moving

void EditCommands::sortLines(bool descending, int kind) {
  if (!beginCommand(descending ? 76 : 75, kind)) return;
  if (blockSelected()) {
    QStringList lines = selectedText().split(u'\n');
    if (descending) std::stable_sort(lines.begin(), lines.end(), [](const QString& a, const QString& b) { return b < a; });
    else std::stable_sort(lines.begin(), lines.end());
    replaceSelection(lines.join(u'\n'));
  } else if (editor_.hasSelection()) {
    auto [first, last] = selectedLines();
    QStringList lines;
    for (int line = first; line < last; ++line) lines.append(editor_.line(line));
    // By character code, case significant.
    if (descending) std::stable_sort(lines.begin(), lines.end(), [](const QString& a, const QString& b) { return b < a; });
    else std::stable_sort(lines.begin(), lines.end());
    const CodeBufferPosition anchor = editor_.selectionAnchor(), end = editor_.selectionEnd(), caret = editor_.caret();
    replaceLines(first, last, lines);
    editor_.setSelection(anchor, end);
    editor_.setCaret(caret);
  }
  editor_.endEdit(0);
}

void EditCommands::sortAscending() { sortLines(false, kSortAscendingKind); }
void EditCommands::sortDescending() { sortLines(true, kSortDescendingKind); }

// The caret's line changes places with the one above it, the first line with the second.
void EditCommands::transposeLines() {
  if (!beginCommand(116, kTransposeLinesKind)) return;
  const int line = editor_.caret().line;
  if (editor_.lineCount() > 1 && line < editor_.lineCount()) {
    const int upper = line > 0 ? line - 1 : 0;
    replaceLines(upper, upper + 2, {editor_.line(upper + 1), editor_.line(upper)});
    moveCaret({line > 0 ? line : 0, 0});
  }
  editor_.endEdit(0);
}

void EditCommands::moveLines(int direction) {
  auto [first, last] = selectedLines();
  last = std::max(last, first + 1);
  if ((direction < 0 && first == 0) || (direction > 0 && last >= editor_.lineCount())) return record(-1);
  if (!beginCommand(-1, kMoveKind)) return;
  const CodeBufferPosition caret = editor_.caret();
  const bool selected = editor_.hasSelection();
  const CodeBufferPosition anchor = editor_.selectionAnchor(), end = editor_.selectionEnd();
  editor_.recordAction(std::make_unique<CodeEditCaretRestorePointAction>(caret));
  if (selected)
    editor_.recordAction(std::make_unique<CodeEditSelectionRestorePointAction>(anchor, end, int(editor_.selectionMode())));
  QStringList lines;
  for (int line = first; line < last; ++line) lines.append(editor_.line(line));
  if (direction < 0) {
    lines.append(editor_.line(first - 1));
    replaceLines(first - 1, last, lines);
  } else {
    lines.prepend(editor_.line(last));
    replaceLines(first, last + 1, lines);
  }
  if (selected)
    editor_.setSelection({anchor.line + direction, anchor.column}, {end.line + direction, end.column}, editor_.selectionMode());
  editor_.setCaret({caret.line + direction, caret.column});
  editor_.endEdit(0);
}

void EditCommands::moveSelectedLineUp() { moveLines(-1); }
void EditCommands::moveSelectedLineDown() { moveLines(1); }

// --- indentation

void EditCommands::insertIndentation(CodeBufferPosition position, int columns) {
  if (!editor_.settings().insertTabs) return editor_.insertText(position, QString(columns, u' '));
  // The white space before the position counts in, and the whole is written again.
  const QString text = editor_.line(position.line);
  int start = std::min(position.column, int(text.size()));
  while (start > 0 && (text[start - 1] == u' ' || text[start - 1] == u'\t')) --start;
  const int startScreen = editor_.screenColumn(position.line, start);
  const int endScreen = editor_.screenColumn(position.line, position.column) + columns;
  editor_.deleteRange({position.line, start}, position);
  editor_.insertText({position.line, start}, runOfWhitespace(startScreen, endScreen - startScreen));
}

void EditCommands::indentLine(int line) {
  if (!isBlank(editor_.line(line))) insertIndentation({line, 0}, editor_.settings().indentSize);
}

// Each of the selected lines, or the caret's, but a preprocessor line while those
// aren't indented. A selection comes to cover its lines whole; the caret keeps its
// place in the text of its line, or goes to the line's start.
void EditCommands::indentLines(bool caretToLineStart) {
  editor_.beginEdit(0, kIndentKind);
  const CodeBufferPosition caret = editor_.caret();
  const int caretLineLength = editor_.buffer().lineLength(caret.line);
  auto [first, last] = selectedLines();
  last = std::max(last, first + 1);
  for (int line = first; line < last; ++line)
    if (editor_.settings().indentPreprocessorLines || !editor_.line(line).startsWith(u'#')) indentLine(line);
  if (editor_.hasSelection()) {
    const CodeBufferPosition end = last < editor_.lineCount() ? CodeBufferPosition(last, 0) : editor_.buffer().endPosition();
    editor_.setSelection({first, 0}, end);
  }
  const int grown = editor_.buffer().lineLength(caret.line) - caretLineLength;
  editor_.setCaret({caret.line, caretToLineStart ? 0 : caret.column + grown});
  editor_.endEdit(0);
}

void EditCommands::tab() {
  record(88);
  if (!editor_.canEdit()) return;
  const int indentSize = std::max(1, editor_.settings().indentSize);
  if (blockSelected() && editor_.selectionStart().line != editor_.selectionLast().line) {
    shiftBlock(indentSize - editor_.blockLeftColumn() % indentSize);
    return;
  }
  if (editor_.hasSelection() && editor_.selectionStart().line != editor_.selectionLast().line) return indentLines(true);
  editor_.beginEdit(0, kTypingKind);
  deleteSelection();
  const CodeBufferPosition caret = editor_.caret();
  editor_.ensurePosition(caret);
  insertIndentation(caret, indentSize - editor_.screenColumn(caret.line, caret.column) % indentSize);
  editor_.endEdit(0);
}

void EditCommands::lineIndent() {
  record(70);
  if (editor_.canEdit()) indentLines(false);
}

// Blanks at the block's left column on each of its lines move the block right; white
// space before it removed moves it left. Both ends and the caret move along.
void EditCommands::shiftBlock(int columns) {
  editor_.beginEdit(0, columns > 0 ? kIndentKind : kOutdentKind);
  const CodeBufferPosition anchor = editor_.selectionAnchor(), end = editor_.selectionEnd(), caret = editor_.caret();
  const int left = editor_.blockLeftColumn();
  int shift = columns;
  if (columns < 0) {
    // As far as every line has white space before the block.
    for (int line = editor_.selectionStart().line; line <= editor_.selectionLast().line; ++line) {
      const QString text = editor_.line(line);
      int column = std::min(columnForScreen(line, left), int(text.size())), free = 0;
      while (column > 0 && text[column - 1] == u' ' && free < -columns) --column, ++free;
      shift = std::max(shift, -free);
    }
  }
  for (int line = editor_.selectionStart().line; line <= editor_.selectionLast().line && shift != 0; ++line) {
    const int column = columnForScreen(line, left);
    if (shift > 0) editor_.insertText({line, column}, QString(shift, u' '));
    else editor_.deleteRange({line, column + shift}, {line, column});
  }
  auto moved = [shift](CodeBufferPosition p) { return CodeBufferPosition(p.line, std::max(0, p.column + shift)); };
  editor_.setSelection(moved(anchor), moved(end), SelectionMode::Block);
  editor_.setCaret(moved(caret));
  editor_.endEdit(0);
}

void EditCommands::backtab() {
  record(89);
  if (!editor_.canEdit()) return;
  if (blockSelected() && editor_.selectionStart().line != editor_.selectionLast().line)
    return shiftBlock(-std::max(1, editor_.settings().indentSize));
  outdentLines();
}

void EditCommands::lineOutdent() {
  record(71);
  if (editor_.canEdit()) outdentLines();
}

void EditCommands::outdentLines() {
  editor_.beginEdit(0, kOutdentKind);
  auto [first, last] = selectedLines();
  last = std::max(last, first + 1);
  const CodeBufferPosition caret = editor_.caret();
  for (int line = first; line < last; ++line) {
    const QString text = editor_.line(line);
    const int length = leadingWhitespaceLength(text);
    const int width = editor_.screenColumn(line, length);
    if (width == 0) continue;
    const QString indentation = runOfWhitespace(0, std::max(0, width - editor_.settings().indentSize));
    editor_.replaceText({line, 0}, text.left(length), indentation);
    if (line == caret.line) editor_.setCaret({line, std::max(0, caret.column - length + int(indentation.size()))});
    else editor_.setCaret(caret);
  }
  editor_.endEdit(0);
}

// --- tabs

void EditCommands::rewriteWhitespace(int y0, int y1, bool toTabs) {
  const int tabSize = std::max(1, editor_.settings().tabSize);
  const CodeBufferPosition caret = editor_.caret();
  const int caretScreen = editor_.screenColumn(caret.line, caret.column);
  y0 = std::max(y0, 0);
  y1 = std::min(y1, editor_.lineCount() - 1);
  for (int line = y0; line <= y1; ++line) {
    const QString text = editor_.line(line);
    QString rewritten;
    int screen = 0;
    for (int column = 0; column < text.size();) {
      if (!text[column].isSpace()) {
        rewritten += text[column++];
        ++screen;
        continue;
      }
      const int start = screen;
      for (; column < text.size() && text[column].isSpace(); ++column)
        screen = text[column] == u'\t' ? (screen / tabSize + 1) * tabSize : screen + 1;
      rewritten += toTabs ? whitespaceRun(start, screen - start, tabSize) : QString(screen - start, u' ');
    }
    if (rewritten != text) editor_.replaceText({line, 0}, text, rewritten);
  }
  editor_.setCaret({caret.line, columnForScreen(caret.line, caretScreen)});
}

void EditCommands::tabify(int y0, int y1) {
  if (!beginCommand(90, kTabifyKind)) return;
  rewriteWhitespace(y0, y1, true);
  editor_.endEdit(2066);
}

void EditCommands::untabify(int y0, int y1) {
  if (!beginCommand(91, kUntabifyKind)) return;
  rewriteWhitespace(y0, y1, false);
  editor_.endEdit(2066);
}

void EditCommands::tabify() {
  if (!editor_.hasSelection()) return tabify(editor_.caret().line, editor_.caret().line);
  tabify(editor_.selectionStart().line, editor_.selectionLast().line);
}

void EditCommands::untabify() {
  if (!editor_.hasSelection()) return untabify(editor_.caret().line, editor_.caret().line);
  untabify(editor_.selectionStart().line, editor_.selectionLast().line);
}

// --- alignment. Blank lines neither count nor change. A block aligns its part of
// each line; a stream selection its lines.

namespace {

int widthOf(QStringView text, int tabSize) {
  int width = 0;
  for (QChar c : text) width = c == u'\t' ? (width / tabSize + 1) * tabSize : width + 1;
  return width;
}

QString expandTabs(const QString& text, int tabSize) {
  QString expanded;
  for (QChar c : text) expanded += c == u'\t' ? QString(tabSize - expanded.size() % tabSize, u' ') : QString(c);
  return expanded;
}

}  // namespace

QStringList EditCommands::alignedLines(const QStringList& lines, int mode) const {
  const int tabSize = std::max(1, editor_.settings().tabSize);
  int smallest = 9999, widest = 0;
  for (const QString& text : lines) {
    const int length = leadingWhitespaceLength(text);
    if (length == text.size()) continue;
    smallest = std::min(smallest, widthOf(QStringView(text).left(length), tabSize));
    widest = std::max(widest, widthOf(text, tabSize));
  }
  QStringList aligned;
  for (const QString& text : lines) {
    const QString body = text.mid(leadingWhitespaceLength(text));
    if (body.isEmpty()) {
      aligned.append(text);
      continue;
    }
    const int width = mode == 0 ? smallest : mode == 1 ? widest - int(body.size()) : (widest - int(body.size()) + smallest) / 2;
    aligned.append((mode == 0 ? runOfWhitespace(0, width) : QString(width, u' ')) + body);
  }
  return aligned;
}

void EditCommands::align(int mode) {
  const int number = mode == 0 ? 96 : mode == 1 ? 97 : 98;
  if (!editor_.hasSelection()) return record(number);
  if (!beginCommand(number, kAlignKind)) return;
  if (blockSelected()) {
    QStringList lines = selectedText().split(u'\n');
    if (mode != 0)
      for (QString& text : lines) text = expandTabs(text, std::max(1, editor_.settings().tabSize));
    replaceSelection(alignedLines(lines, mode).join(u'\n'));
  } else {
    auto [first, last] = selectedLines();
    if (mode != 0 && last > first) untabify(first, last - 1);
    QStringList lines;
    for (int line = first; line < last; ++line) lines.append(editor_.line(line));
    replaceLines(first, last, alignedLines(lines, mode));
  }
  editor_.endEdit(0);
}

void EditCommands::alignLeft() { align(0); }
void EditCommands::alignRight() { align(1); }
void EditCommands::center() { align(2); }

// --- columns

namespace {

// Fields padded to their column's widest field plus one.
QStringList padFields(const QList<QStringList>& rows) {
  QList<int> widths;
  for (const QStringList& fields : rows)
    for (int index = 0; index < fields.size(); ++index) {
      if (index == widths.size()) widths.append(0);
      widths[index] = std::max(widths[index], int(fields[index].size()));
    }
  QStringList lines;
  for (const QStringList& fields : rows) {
    QString line;
    for (int index = 0; index < fields.size(); ++index) line += fields[index].leftJustified(widths[index] + 1, u' ');
    lines.append(line);
  }
  return lines;
}

// Fields end at white space; a double-quoted string is one field, in which a
// backslash protects the next character.
QStringList tidyFields(const QString& line) {
  QStringList fields;
  int column = 0;
  while (column < line.size()) {
    if (line[column].isSpace()) {
      ++column;
      continue;
    }
    const int start = column;
    bool quoted = false;
    for (; column < line.size() && (quoted || !line[column].isSpace()); ++column) {
      if (line[column] == u'"') quoted = !quoted;
      else if (quoted && line[column] == u'\\') ++column;
    }
    column = std::min(column, int(line.size()));
    fields.append(line.mid(start, column - start));
  }
  return fields;
}

}  // namespace

// The transaction of columnize is one of alignment.
void EditCommands::columnize() {
  if (!editor_.hasSelection() || !beginCommand(-1, kAlignKind)) return;
  QList<QStringList> rows;
  for (const QString& line : selectedText().split(u'\n')) rows.append(line.split(u' ', Qt::SkipEmptyParts));
  replaceSelection(padFields(rows).join(u'\n'));
  editor_.endEdit(0);
}

void EditCommands::columnTidy() {
  if (!editor_.hasSelection() || !beginCommand(-1, kMacroKind)) return;
  const QStringList lines = selectedText().split(u'\n');
  QList<QStringList> rows;
  int smallest = -1;
  for (const QString& line : lines) {
    rows.append(tidyFields(line));
    if (isBlank(line)) continue;
    QString indentation = line.left(leadingWhitespaceLength(line));
    int width = 0;
    const int tabSize = std::max(1, editor_.settings().tabSize);
    for (QChar c : indentation) width = c == u'\t' ? (width / tabSize + 1) * tabSize : width + 1;
    smallest = smallest < 0 ? width : std::min(smallest, width);
  }
  QStringList padded = padFields(rows);
  for (int index = 0; index < padded.size(); ++index)
    padded[index] = rows[index].isEmpty() ? QString() : runOfWhitespace(0, std::max(0, smallest)) + padded[index];
  replaceSelection(padded.join(u'\n'));
  editor_.endEdit(0);
}

void EditCommands::deleteTrailingWhitespace() {
  if (!beginCommand(-1, kDeleteKind)) return;
  const CodeBufferPosition caret = editor_.caret();
  const int caretScreen = editor_.screenColumn(caret.line, caret.column);
  int first = 0, last = editor_.lineCount() - 1;
  if (editor_.hasSelection()) {
    first = editor_.selectionStart().line;
    last = editor_.selectionLast().line;
  }
  for (int line = first; line <= last; ++line) {
    const QString text = editor_.line(line);
    int end = int(text.size());
    while (end > 0 && text[end - 1].isSpace()) --end;
    if (end < text.size()) editor_.deleteRange({line, end}, {line, int(text.size())});
  }
  editor_.clearSelection();
  editor_.setCaret({caret.line, columnForScreen(caret.line, caretScreen)});
  editor_.endEdit(0);
}

// --- enter

void EditCommands::enter() {
  if (!beginCommand(45, kTypingKind)) return;
  deleteSelection();
  editor_.clearSelection();  // a line end ends typing into a block
  CodeBufferPosition caret = editor_.caret();
  const QString text = editor_.line(caret.line);
  const int indentation = isBlank(text) ? caret.column : leadingWhitespaceLength(text);
  const bool automatic = editor_.settings().indentMode == 1;
  if (editor_.settings().overwrite) {
    editor_.setCaret({std::min(caret.line + 1, editor_.lineCount() - 1), automatic ? indentation : 0});
  } else {
    caret.column = std::min(caret.column, int(text.size()));
    editor_.insertText(caret, QStringLiteral("\n"));
    const int newLine = caret.line + 1;
    if (automatic) {
      if (!isBlank(editor_.line(newLine))) insertIndentation({newLine, 0}, std::min(caret.column, indentation));
      else editor_.setCaret({newLine, indentation});  // virtual space: no blanks added
    }
  }
  editor_.endEdit(0);
}

}  // namespace regmill
