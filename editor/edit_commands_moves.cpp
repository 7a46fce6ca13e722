// Moves of the caret, plain or extending the selection, and selecting. A plain move
// clears the selection; an Extend form moves the selection's caret end and keeps its
// anchor, a BlockExtend form does the same with a block of columns on screen.
#include "editor/edit_commands.h"

namespace regmill {

namespace {

int lastLine(const CodeEdit& editor) { return editor.lineCount() - 1; }

int indentationOf(const QString& text) {
  int indentation = 0;
  while (indentation < text.size() && text[indentation].isSpace()) ++indentation;
  return indentation;
}

CodeBufferPosition charLeftOf(const CodeEdit& editor) {
  const CodeBufferPosition caret = editor.caret();
  if (caret.column > 0) return {caret.line, caret.column - 1};
  if (caret.line > 0) return {caret.line - 1, editor.buffer().lineLength(caret.line - 1)};
  return caret;
}

// The caret may stand in virtual space behind the end of a line.
CodeBufferPosition charRightOf(const CodeEdit& editor) { return {editor.caret().line, editor.caret().column + 1}; }

// Up or down by a number of lines, keeping the column, within the document.
CodeBufferPosition linesAway(const CodeEdit& editor, int lines) {
  return {std::clamp(editor.caret().line + lines, 0, lastLine(editor)), editor.caret().column};
}

// A chunk is half a page.
int chunkLines(const CodeEdit& editor) { return std::max(1, editor.visibleLines() / 2); }

// To the first non-blank character, or to column 0 from there.
CodeBufferPosition lineStartToggleOf(const CodeEdit& editor) {
  const CodeBufferPosition caret = editor.caret();
  const int indentation = indentationOf(editor.line(caret.line));
  return {caret.line, caret.column == indentation ? 0 : indentation};
}

CodeBufferPosition lineEndOf(const CodeEdit& editor, int line) { return {line, editor.buffer().lineLength(line)}; }

CodeBufferPosition topOfWindowOf(const CodeEdit& editor) {
  return {std::min(editor.topLine(), lastLine(editor)), editor.caret().column};
}

CodeBufferPosition bottomOfWindowOf(const CodeEdit& editor) {
  return {std::min(editor.topLine() + editor.visibleLines() - 1, lastLine(editor)), editor.caret().column};
}

}  // namespace

void EditCommands::moveCaret(CodeBufferPosition caret) {
  editor_.clearSelection();
  editor_.setCaret(caret);
}

// A selection of the other mode, or none, starts at the caret. A block keeps its
// anchor even while its two columns are equal, so that it can grow over lines.
void EditCommands::moveTo(int number, CodeBufferPosition target, Extend extend) {
  record(number);
  if (extend == Extend::None) return moveCaret(target);
  const SelectionMode mode = extend == Extend::Block ? SelectionMode::Block : SelectionMode::Stream;
  CodeBufferPosition anchor = editor_.selectionAnchor();
  if (!anchor.isValid() || !editor_.selectionEnd().isValid() || editor_.selectionMode() != mode) anchor = editor_.caret();
  editor_.setSelection(anchor, target, mode);
  editor_.setCaret(target);
}

void EditCommands::charLeft() { moveTo(48, charLeftOf(editor_), Extend::None); }
void EditCommands::charLeftExtend() { moveTo(49, charLeftOf(editor_), Extend::Stream); }
void EditCommands::charLeftBlockExtend() { moveTo(50, charLeftOf(editor_), Extend::Block); }
void EditCommands::charRight() { moveTo(51, charRightOf(editor_), Extend::None); }
void EditCommands::charRightExtend() { moveTo(52, charRightOf(editor_), Extend::Stream); }
void EditCommands::charRightBlockExtend() { moveTo(53, charRightOf(editor_), Extend::Block); }
void EditCommands::wordLeft() { moveTo(54, wordStartBefore(editor_.caret()), Extend::None); }
void EditCommands::wordLeftExtend() { moveTo(55, wordStartBefore(editor_.caret()), Extend::Stream); }
void EditCommands::wordRight() { moveTo(56, wordEndBehind(editor_.caret()), Extend::None); }
void EditCommands::wordRightExtend() { moveTo(57, wordEndBehind(editor_.caret()), Extend::Stream); }
void EditCommands::lineUp() { moveTo(58, linesAway(editor_, -1), Extend::None); }
void EditCommands::lineUpExtend() { moveTo(59, linesAway(editor_, -1), Extend::Stream); }
void EditCommands::lineUpBlockExtend() { moveTo(60, linesAway(editor_, -1), Extend::Block); }
void EditCommands::lineUpChunk() { moveTo(61, linesAway(editor_, -chunkLines(editor_)), Extend::None); }
void EditCommands::lineDown() { moveTo(62, linesAway(editor_, 1), Extend::None); }
void EditCommands::lineDownExtend() { moveTo(63, linesAway(editor_, 1), Extend::Stream); }
void EditCommands::lineDownBlockExtend() { moveTo(64, linesAway(editor_, 1), Extend::Block); }
void EditCommands::lineDownChunk() { moveTo(65, linesAway(editor_, chunkLines(editor_)), Extend::None); }
void EditCommands::lineStartToggle() { moveTo(66, lineStartToggleOf(editor_), Extend::None); }
void EditCommands::lineStartToggleExtend() { moveTo(67, lineStartToggleOf(editor_), Extend::Stream); }
void EditCommands::lineEnd() { moveTo(68, lineEndOf(editor_, editor_.caret().line), Extend::None); }
void EditCommands::lineEndExtend() { moveTo(69, lineEndOf(editor_, editor_.caret().line), Extend::Stream); }
void EditCommands::topOfWindow() { moveTo(37, topOfWindowOf(editor_), Extend::None); }
void EditCommands::topOfWindowExtend() { moveTo(38, topOfWindowOf(editor_), Extend::Stream); }
void EditCommands::bottomOfWindow() { moveTo(39, bottomOfWindowOf(editor_), Extend::None); }
void EditCommands::bottomOfWindowExtend() { moveTo(40, bottomOfWindowOf(editor_), Extend::Stream); }
void EditCommands::documentStart() { moveTo(81, {0, 0}, Extend::None); }
void EditCommands::documentStartExtend() { moveTo(82, {0, 0}, Extend::Stream); }
void EditCommands::documentEnd() { moveTo(84, editor_.buffer().endPosition(), Extend::None); }
void EditCommands::documentEndExtend() { moveTo(83, editor_.buffer().endPosition(), Extend::Stream); }

// To the end of the next line, or of the last line from there.
void EditCommands::lineNextEnd() {
  const int line = std::min(editor_.caret().line + 1, lastLine(editor_));
  moveTo(72, lineEndOf(editor_, line), Extend::None);
}

// To the first non-blank character of the next line.
void EditCommands::downLine() {
  const int line = std::min(editor_.caret().line + 1, lastLine(editor_));
  moveTo(47, {line, indentationOf(editor_.line(line))}, Extend::None);
}

// A page is the rows the view shows; the view scrolls along, so that the caret keeps
// its row on screen.
void EditCommands::pageMove(int number, int direction, Extend extend) {
  const CodeBufferPosition target = linesAway(editor_, direction * editor_.visibleLines());
  editor_.setTopLine(editor_.topLine() + target.line - editor_.caret().line);
  moveTo(number, target, extend);
}

void EditCommands::pageUp() { pageMove(77, -1, Extend::None); }
void EditCommands::pageUpExtend() { pageMove(78, -1, Extend::Stream); }
void EditCommands::pageDown() { pageMove(79, 1, Extend::None); }
void EditCommands::pageDownExtend() { pageMove(80, 1, Extend::Stream); }

void EditCommands::matchDelimiter() {
  const CodeBufferPosition partner = matchingDelimiter(editor_.caret());
  if (partner.isValid()) moveTo(108, partner, Extend::None);
  else record(108);
}

void EditCommands::matchDelimiterExtend() {
  const CodeBufferPosition partner = matchingDelimiter(editor_.caret());
  if (partner.isValid()) moveTo(109, partner, Extend::Stream);
  else record(109);
}

// --- selecting

void EditCommands::selectAll() {
  record(85);
  const CodeBufferPosition end = editor_.buffer().endPosition();
  editor_.setSelection({0, 0}, end);
  editor_.setCaret(end);
}

void EditCommands::selectLine() {
  record(86);
  const int line = editor_.caret().line;
  const CodeBufferPosition end = line + 1 < editor_.lineCount() ? CodeBufferPosition(line + 1, 0) : lineEndOf(editor_, line);
  editor_.setSelection({line, 0}, end);
  editor_.setCaret(end);
}

void EditCommands::selectWord() {
  record(87);
  auto [from, to] = editor_.wordAt(editor_.caret());
  if (from == to) return;
  editor_.setSelection(from, to);
  editor_.setCaret(to);
}

// A word move skips the white space and punctuation before the word it reaches, and
// stops at the ends of lines.
CodeBufferPosition EditCommands::wordStartBefore(CodeBufferPosition position) const {
  const QString text = editor_.line(position.line);
  int column = std::min(position.column, int(text.size()));
  if (column == 0) return position.line > 0 ? lineEndOf(editor_, position.line - 1) : position;
  while (column > 0 && !CodeEdit::isWordCharacter(text[column - 1])) --column;
  while (column > 0 && CodeEdit::isWordCharacter(text[column - 1])) --column;
  return {position.line, column};
}

CodeBufferPosition EditCommands::wordEndBehind(CodeBufferPosition position) const {
  const QString text = editor_.line(position.line);
  int column = position.column;
  if (column >= text.size()) return position.line + 1 < editor_.lineCount() ? CodeBufferPosition(position.line + 1, 0) : position;
  while (column < text.size() && CodeEdit::isWordCharacter(text[column])) ++column;
  while (column < text.size() && !CodeEdit::isWordCharacter(text[column])) ++column;
  return {position.line, column};
}

}  // namespace regmill
