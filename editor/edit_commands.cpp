// The frame of a command, the selection, moves, typing, the clipboard, bookmarks and
// the keystroke recorder.
#include "editor/edit_commands.h"

#include <list>

namespace regmill {

namespace {

struct Keystroke {
  int command;
  QString text;
};

// The recorder is one for the whole process, shared by every editor.
EditCommands::RecordingState recorderState = EditCommands::Idle;
std::list<Keystroke>& keystrokes() {
  static std::list<Keystroke> list;
  return list;
}

constexpr int kTypeCommand = 131;
constexpr int kOverwriteCommand = 132;

}  // namespace

EditCommands::EditCommands(CodeEdit& editor, Clipboard& clipboard)
    : editor_(editor), clipboard_(clipboard), finder_(editor) {}

// Only the command the user gave is recorded, not those it runs inside its bracket.
void EditCommands::record(int number, const QString& text) {
  if (recorderState == Recording && number > 0 && !editor_.isEditing()) keystrokes().push_back({number, text});
}

bool EditCommands::beginCommand(int number, int kind, int flags) {
  record(number);
  if (!editor_.canEdit()) return false;
  editor_.beginEdit(flags, kind);
  return true;
}

int EditCommands::takeRepeatCount() {
  const int count = repeatCount_ > 0 ? repeatCount_ : 1;
  repeatCount_ = 0;
  return count;
}

void EditCommands::setArgument(int digit) {
  repeatCount_ = digit;
  if (digit > 0) editor_.showStatus(QStringLiteral("Argument: %1").arg(digit));
}

// --- selection

bool EditCommands::blockSelected() const {
  return editor_.hasSelection() && editor_.selectionMode() == SelectionMode::Block;
}

std::pair<int, int> EditCommands::blockColumns(int line) const {
  const int length = editor_.buffer().lineLength(line);
  return {std::min(columnForScreen(line, editor_.blockLeftColumn()), length),
          std::min(columnForScreen(line, editor_.blockRightColumn()), length)};
}

QString EditCommands::selectedText() const {
  if (!editor_.hasSelection()) return QString();
  if (!blockSelected()) return editor_.textOf(editor_.selectionStart(), editor_.selectionLast());
  // A block's text is its part of each line, the parts joined by newlines.
  QStringList parts;
  for (int line = editor_.selectionStart().line; line <= editor_.selectionLast().line; ++line) {
    auto [from, to] = blockColumns(line);
    parts.append(editor_.line(line).mid(from, to - from));
  }
  return parts.join(u'\n');
}

void EditCommands::deleteSelection() {
  if (!editor_.hasSelection()) return;
  const CodeBufferPosition start = editor_.selectionStart();
  if (blockSelected()) {
    // One piece a line, undone together as one step.
    const int left = editor_.blockLeftColumn();
    editor_.beginEdit(0, 0);
    for (int line = start.line; line <= editor_.selectionLast().line; ++line) {
      auto [from, to] = blockColumns(line);
      editor_.deleteRange({line, from}, {line, to});
    }
    editor_.clearSelection();
    editor_.setCaret({start.line, columnForScreen(start.line, left)});
    editor_.endEdit(0);
    return;
  }
  editor_.deleteRange(start, editor_.selectionLast());
  editor_.clearSelection();
  editor_.setCaret(start);
}

void EditCommands::replaceSelection(const QString& text) {
  editor_.beginEdit(0, 0);
  if (blockSelected()) {
    // The lines of the text go one below the other at the block's left column.
    const int first = editor_.selectionStart().line, left = editor_.blockLeftColumn();
    deleteSelection();
    const QStringList parts = text.split(u'\n');
    for (int index = 0; index < parts.size(); ++index)
      editor_.insertText({first + index, columnForScreen(first + index, left)}, parts[index]);
  } else {
    deleteSelection();
    editor_.insertText(editor_.caret(), text);
  }
  editor_.endEdit(0);
}

void EditCommands::insertAtCaret(const QString& text) {
  if (blockSelected() && editor_.selectionStart().line != editor_.selectionLast().line) {
    const int left = editor_.blockLeftColumn();
    for (int line = editor_.selectionStart().line; line <= editor_.selectionLast().line; ++line)
      editor_.insertText({line, columnForScreen(line, left)}, text);
    return;
  }
  editor_.insertText(editor_.caret(), text);
}

std::pair<int, int> EditCommands::selectedLines() const {
  if (!editor_.hasSelection()) return {editor_.caret().line, editor_.caret().line + 1};
  // A selection may reach into virtual space below the last line; only real lines count.
  const CodeBufferPosition start = editor_.selectionStart(), end = editor_.selectionLast();
  const int count = editor_.lineCount();
  return {std::min(start.line, count - 1), std::min(end.column > 0 ? end.line + 1 : end.line, count)};
}

// --- moves

void EditCommands::moveCaret(CodeBufferPosition caret) {
  editor_.clearSelection();
  editor_.setCaret(caret);
}

void EditCommands::charLeft() {
  record(48);
  const CodeBufferPosition caret = editor_.caret();
  if (caret.column > 0) moveCaret({caret.line, caret.column - 1});
  else if (caret.line > 0) moveCaret({caret.line - 1, editor_.buffer().lineLength(caret.line - 1)});
}

void EditCommands::charRight() {
  record(51);
  const CodeBufferPosition caret = editor_.caret();
  moveCaret({caret.line, caret.column + 1});  // the caret may stand in virtual space
}

void EditCommands::lineUp() {
  record(58);
  const CodeBufferPosition caret = editor_.caret();
  if (caret.line > 0) moveCaret({caret.line - 1, caret.column});
}

void EditCommands::lineDown() {
  record(62);
  const CodeBufferPosition caret = editor_.caret();
  if (caret.line + 1 < editor_.lineCount()) moveCaret({caret.line + 1, caret.column});
}

void EditCommands::lineEnd() {
  record(68);
  moveCaret({editor_.caret().line, editor_.buffer().lineLength(editor_.caret().line)});
}

void EditCommands::documentStart() {
  record(81);
  moveCaret({0, 0});
}

void EditCommands::documentEnd() {
  record(84);
  moveCaret(editor_.buffer().endPosition());
}

void EditCommands::selectAll() {
  record(85);
  const CodeBufferPosition end = editor_.buffer().endPosition();
  editor_.setSelection({0, 0}, end);
  editor_.setCaret(end);
}

void EditCommands::selectLine() {
  record(86);
  const int line = editor_.caret().line;
  const CodeBufferPosition end = line + 1 < editor_.lineCount() ? CodeBufferPosition(line + 1, 0)
                                                                 : CodeBufferPosition(line, editor_.buffer().lineLength(line));
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
  if (column == 0) return position.line > 0 ? CodeBufferPosition(position.line - 1, editor_.buffer().lineLength(position.line - 1)) : position;
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

void EditCommands::wordLeft() {
  record(54);
  moveCaret(wordStartBefore(editor_.caret()));
}

void EditCommands::wordRight() {
  record(56);
  moveCaret(wordEndBehind(editor_.caret()));
}

void EditCommands::lineStartToggle() {
  record(66);
  const CodeBufferPosition caret = editor_.caret();
  const QString text = editor_.line(caret.line);
  int indentation = 0;
  while (indentation < text.size() && text[indentation].isSpace()) ++indentation;
  moveCaret({caret.line, caret.column == indentation ? 0 : indentation});
}

void EditCommands::overwriteToggle() {
  record(107);
  editor_.settings().overwrite = !editor_.settings().overwrite;
}

void EditCommands::undo() {
  record(41);
  editor_.undo();
}

void EditCommands::redo() {
  record(42);
  editor_.redo();
}

void EditCommands::undoAll() {
  record(43);
  editor_.undoAll();
}

void EditCommands::redoAll() {
  record(44);
  editor_.redoAll();
}

// --- typing and deleting

void EditCommands::deleteTo(int number, CodeBufferPosition from, CodeBufferPosition to) {
  if (!beginCommand(number, kDeleteKind)) return;
  if (editor_.hasSelection()) {
    deleteSelection();
  } else if (from != to) {
    editor_.deleteRange(from, to);
    editor_.setCaret(std::min(from, to));
  }
  editor_.endEdit(0);
}

void EditCommands::deleteWordLeft() { deleteTo(9, wordStartBefore(editor_.caret()), editor_.caret()); }
void EditCommands::deleteWordRight() { deleteTo(10, editor_.caret(), wordEndBehind(editor_.caret())); }

void EditCommands::deleteWord() {
  auto [from, to] = editor_.wordAt(editor_.caret());
  deleteTo(111, from, to);
}

void EditCommands::deleteStartOfLine() { deleteTo(112, {editor_.caret().line, 0}, editor_.buffer().clamp(editor_.caret())); }

void EditCommands::deleteEndOfLine() {
  const CodeBufferPosition caret = editor_.buffer().clamp(editor_.caret());
  deleteTo(113, caret, {caret.line, editor_.buffer().lineLength(caret.line)});
}

void EditCommands::typeText(const QString& text) {
  record(kTypeCommand, text);
  if (!editor_.canEdit()) return;
  editor_.beginEdit(0, kTypingKind);
  deleteSelection();
  insertAtCaret(text);
  editor_.endEdit(0);
}

void EditCommands::overwriteText(const QString& text) {
  record(kOverwriteCommand, text);
  if (!editor_.canEdit()) return;
  editor_.beginEdit(0, kTypingKind);
  deleteSelection();
  const CodeBufferPosition caret = editor_.caret();
  const int length = editor_.buffer().lineLength(caret.line);
  if (caret.column < length)
    editor_.deleteRange(caret, {caret.line, std::min<int>(length, caret.column + int(text.size()))});
  insertAtCaret(text);
  editor_.endEdit(0);
}

void EditCommands::deleteBack() {
  if (!beginCommand(7, kDeleteKind)) return;
  if (editor_.hasSelection()) {
    deleteSelection();
  } else {
    const CodeBufferPosition caret = editor_.caret();
    const int length = editor_.buffer().lineLength(caret.line);
    if (caret.column > length) {
      editor_.setCaret({caret.line, caret.column - 1});  // in virtual space only the caret moves
    } else if (caret.column > 0 || caret.line > 0) {
      const CodeBufferPosition before = caret.column > 0 ? CodeBufferPosition(caret.line, caret.column - 1)
                                                         : CodeBufferPosition(caret.line - 1, editor_.buffer().lineLength(caret.line - 1));
      editor_.deleteRange(before, caret);
      editor_.setCaret(before);
    }
  }
  editor_.endEdit(0);
}

void EditCommands::deleteForward() {
  if (!beginCommand(8, kDeleteKind)) return;
  if (editor_.hasSelection()) {
    deleteSelection();
  } else {
    const CodeBufferPosition caret = editor_.caret();
    if (caret.line + 1 < editor_.lineCount() || caret.column < editor_.buffer().lineLength(caret.line)) {
      editor_.ensurePosition(caret);  // joining a line from virtual space keeps the blanks
      const CodeBufferPosition next = caret.column < editor_.buffer().lineLength(caret.line)
                                          ? CodeBufferPosition(caret.line, caret.column + 1)
                                          : CodeBufferPosition(caret.line + 1, 0);
      editor_.deleteRange(caret, next);
      editor_.setCaret(caret);
    }
  }
  editor_.endEdit(0);
}

void EditCommands::deleteLine() {
  if (!beginCommand(110, kDeleteKind)) return;
  for (int count = takeRepeatCount(); count > 0; --count) {
    selectLine();
    if (!editor_.hasSelection() || editor_.selectionStart() == editor_.selectionLast()) {
      // The last line of the document: take its line end before it instead.
      const int line = editor_.caret().line;
      if (line == 0) break;
      editor_.setSelection({line - 1, editor_.buffer().lineLength(line - 1)}, {line, 0});
    }
    deleteSelection();
  }
  editor_.endEdit(0);
}

void EditCommands::duplicateLine() {
  if (!editor_.canEdit()) return;
  editor_.beginEdit(2064, kMacroKind);
  const CodeBufferPosition caret = editor_.caret();
  editor_.insertText({caret.line, 0}, editor_.line(caret.line) + u'\n');
  editor_.setCaret({caret.line + 1, caret.column});
  editor_.endEdit(0);
}

void EditCommands::insertLineAbove() {
  if (!beginCommand(99, kTypingKind)) return;
  const int line = editor_.caret().line;
  editor_.insertText({line, 0}, QStringLiteral("\n"));
  editor_.setCaret({line, 0});
  editor_.endEdit(0);
}

void EditCommands::insertLineBelow() {
  if (!beginCommand(100, kTypingKind)) return;
  const int line = editor_.caret().line;
  editor_.insertText({line, editor_.buffer().lineLength(line)}, QStringLiteral("\n"));
  editor_.endEdit(0);
}

// --- clipboard

void EditCommands::copyText(const QString& text, bool append) {
  const QString copied = append ? clipboard_.text() + text : text;
  clipboard_.setText(copied);
  ring_.entries.append(copied);
  ring_.current = int(ring_.entries.size()) - 1;
}

void EditCommands::copy() {
  record(17);
  if (editor_.hasSelection()) return copyText(selectedText(), false);
  if (editor_.settings().copyWithoutSelection == 1) return copyLines();
  if (editor_.settings().copyWithoutSelection == 2) {
    selectWord();
    if (editor_.hasSelection()) copyText(selectedText(), false);
  }
}

void EditCommands::copyAppend() {
  record(18);
  if (editor_.hasSelection()) copyText(selectedText(), true);
}

void EditCommands::copySelectedLines(int number, bool append) {
  record(number);
  auto [first, last] = selectedLines();
  copyText(editor_.textOf({first, 0}, {std::max(last, first + 1), 0}), append);
}

void EditCommands::copyLines() { copySelectedLines(19, false); }
void EditCommands::copyLinesAppend() { copySelectedLines(20, true); }

void EditCommands::cutSelection(int number, bool append) {
  if (!editor_.hasSelection()) return record(number);
  copyText(selectedText(), append);
  if (!beginCommand(number, kCutKind)) return;
  deleteSelection();
  editor_.endEdit(0);
}

void EditCommands::cut() { cutSelection(11, false); }
void EditCommands::cutAppend() { cutSelection(12, true); }

void EditCommands::cutSelectedLines(int number, bool append) {
  auto [first, last] = selectedLines();
  last = std::max(last, first + 1);
  copyText(editor_.textOf({first, 0}, {last, 0}), append);
  if (!beginCommand(number, kCutKind)) return;
  editor_.deleteRange({first, 0}, {last, 0});
  moveCaret({first, 0});
  editor_.endEdit(0);
}

void EditCommands::cutLines() { cutSelectedLines(13, false); }
void EditCommands::cutLinesAppend() { cutSelectedLines(14, true); }

void EditCommands::paste() {
  if (!beginCommand(30, kPasteKind)) return;
  const QString text = clipboard_.text();
  deleteSelection();
  for (int count = takeRepeatCount(); count > 0; --count) insertAtCaret(text);
  editor_.endEdit(0);
}

void EditCommands::cycleClipboardRing() {
  if (ring_.entries.isEmpty() || !beginCommand(-1, kPasteKind)) return;
  if (editor_.hasSelection() && selectedText() == ring_.entries[ring_.current]) deleteSelection();
  ring_.current = (ring_.current + int(ring_.entries.size()) - 1) % int(ring_.entries.size());
  const CodeBufferPosition start = editor_.caret();
  insertAtCaret(ring_.entries[ring_.current]);
  editor_.setSelection(start, editor_.caret());  // so that the next cycle replaces it
  editor_.endEdit(0);
}

void EditCommands::pasteAll() {
  if (!beginCommand(34, kPasteKind)) return;
  deleteSelection();
  insertAtCaret(ring_.entries.join(QString()));
  editor_.endEdit(0);
}

// --- bookmarks

void EditCommands::jumpToBookmark(int line) {
  if (line >= 0) moveCaret({line, 0});
}

void EditCommands::bookmarkToggle() {
  record(101);
  const int line = editor_.caret().line;
  editor_.setLineFlags(line, editor_.lineFlags(line) ^ kBookmarkFlag);
}

void EditCommands::bookmarkNext() {
  record(102);
  const int caretLine = editor_.caret().line;
  int line = 0, first = -1, next = -1;
  for (const CodeLine& record : editor_.buffer()) {
    if (record.flags & kBookmarkFlag) {
      if (first < 0) first = line;
      if (line > caretLine && next < 0) next = line;
    }
    ++line;
  }
  jumpToBookmark(next >= 0 ? next : first);
}

void EditCommands::bookmarkPrev() {
  record(103);
  const int caretLine = editor_.caret().line;
  int line = 0, last = -1, previous = -1;
  for (const CodeLine& record : editor_.buffer()) {
    if (record.flags & kBookmarkFlag) {
      last = line;
      if (line < caretLine) previous = line;
    }
    ++line;
  }
  jumpToBookmark(previous >= 0 ? previous : last);
}

void EditCommands::bookmarkFirst() {
  record(104);
  int line = 0;
  for (const CodeLine& record : editor_.buffer()) {
    if (record.flags & kBookmarkFlag) return jumpToBookmark(line);
    ++line;
  }
}

void EditCommands::bookmarkLast() {
  record(105);
  int line = 0, last = -1;
  for (const CodeLine& record : editor_.buffer()) {
    if (record.flags & kBookmarkFlag) last = line;
    ++line;
  }
  jumpToBookmark(last);
}

void EditCommands::bookmarkClearAll() {
  record(106);
  editor_.beginEdit(0, 0);
  editor_.clearLineFlagEverywhere(kBookmarkFlag);
  editor_.endEdit(2);
}

// --- recorder

EditCommands::RecordingState EditCommands::recordingState() { return recorderState; }

void EditCommands::startRecording() {
  if (recorderState != Idle) return;
  recorderState = Recording;
  keystrokes().clear();
}

void EditCommands::pauseRecording(bool pause) {
  if (pause && recorderState == Recording) recorderState = Paused;
  else if (!pause && recorderState == Paused) recorderState = Recording;
}

void EditCommands::stopRecording() { recorderState = Idle; }

void EditCommands::cancelRecording() {
  recorderState = Idle;
  keystrokes().clear();
}

int EditCommands::recordedCount() { return int(keystrokes().size()); }

void EditCommands::playRecording() {
  if (recorderState != Idle) return;
  editor_.beginEdit(0, kMacroKind);
  for (const Keystroke& keystroke : keystrokes()) runCommand(keystroke.command, keystroke.text);
  editor_.endEdit(0);
}

}  // namespace regmill
