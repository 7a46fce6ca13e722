// The frame of a command, the selection, moves, typing, the clipboard, bookmarks and
// the keystroke recorder.
#include "editor/edit_commands.h"

#include <list>
#include <vector>

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

std::optional<std::pair<int, int>> EditCommands::blockLines() const {
  const CodeBufferPosition anchor = editor_.selectionAnchor(), end = editor_.selectionEnd();
  if (editor_.selectionMode() != SelectionMode::Block || !anchor.isValid() || !end.isValid()) return std::nullopt;
  return std::pair(std::min(anchor.line, end.line), std::max(anchor.line, end.line));
}

void EditCommands::setEmptyBlock(int first, int last, int screenColumn) {
  const CodeBufferPosition end(last, columnForScreen(last, screenColumn));
  editor_.setSelection({first, columnForScreen(first, screenColumn)}, end, SelectionMode::Block);
  editor_.setCaret(end);
}

// A deleted block leaves an empty block at its left column, into which typing goes on
// each of its lines.
void EditCommands::deleteSelection() {
  if (!editor_.hasSelection()) return;
  const CodeBufferPosition start = editor_.selectionStart();
  if (blockSelected()) {
    // One piece a line, undone together as one step.
    const int left = editor_.blockLeftColumn(), last = editor_.selectionLast().line;
    editor_.beginEdit(0, 0);
    for (int line = start.line; line <= last; ++line) {
      auto [from, to] = blockColumns(line);
      editor_.deleteRange({line, from}, {line, to});
    }
    setEmptyBlock(start.line, last, left);
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
    editor_.clearSelection();
    const QStringList parts = text.split(u'\n');
    for (int index = 0; index < parts.size(); ++index)
      editor_.insertText({first + index, columnForScreen(first + index, left)}, parts[index]);
  } else {
    deleteSelection();
    editor_.insertText(editor_.caret(), text);
  }
  editor_.endEdit(0);
}

// Into a block over several lines a text of one line goes at the block's left column
// on each line, and leaves the empty block behind it, to type on; a text of as many
// lines as the block puts one on each, as a cut block comes back. Lines go in from the
// bottom up, so that an insert moves no line still to come.
void EditCommands::insertAtCaret(const QString& text) {
  const auto lines = blockLines();
  if (!lines || lines->first == lines->second) return editor_.insertText(editor_.caret(), text);
  const QStringList parts = text.split(u'\n');
  if (parts.size() != 1 && parts.size() != lines->second - lines->first + 1) {
    editor_.clearSelection();
    return editor_.insertText(editor_.caret(), text);
  }
  const int left = editor_.blockLeftColumn();
  for (int line = lines->second; line >= lines->first; --line)
    editor_.insertText({line, columnForScreen(line, left)}, parts.size() == 1 ? text : parts[line - lines->first]);
  if (parts.size() == 1) {
    const int behind = columnForScreen(lines->first, left) + int(text.size());
    setEmptyBlock(lines->first, lines->second, editor_.screenColumn(lines->first, behind));
  } else {
    editor_.clearSelection();
  }
}

std::pair<int, int> EditCommands::selectedLines() const {
  if (!editor_.hasSelection()) return {editor_.caret().line, editor_.caret().line + 1};
  // A selection may reach into virtual space below the last line; only real lines count.
  const CodeBufferPosition start = editor_.selectionStart(), end = editor_.selectionLast();
  const int count = editor_.lineCount();
  return {std::min(start.line, count - 1), std::min(end.column > 0 ? end.line + 1 : end.line, count)};
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

// A sentence ends with ".", "!" or "?" before white space or a line's end, or with the
// last line before a blank one; the blanks behind its end go with it.
void EditCommands::deleteSentence() {
  const CodeBufferPosition caret = editor_.buffer().clamp(editor_.caret());
  CodeBufferPosition end = caret;
  int line = caret.line, column = caret.column;
  for (auto record = editor_.buffer().lineAt(line); record != editor_.buffer().end(); ++record, ++line, column = 0) {
    const QString& text = record->text;
    if (line > caret.line && text.trimmed().isEmpty()) break;
    end = {line, int(text.size())};
    for (; column < text.size(); ++column) {
      const bool stop = text[column] == u'.' || text[column] == u'!' || text[column] == u'?';
      if (stop && (column + 1 == text.size() || text[column + 1].isSpace())) break;
    }
    if (column < text.size()) {
      ++column;
      while (column < text.size() && text[column].isSpace()) ++column;
      end = {line, column};
      break;
    }
  }
  deleteTo(114, caret, end);
}

void EditCommands::duplicateLine() {
  if (!editor_.canEdit()) return;
  editor_.beginEdit(2064, kMacroKind);
  const CodeBufferPosition caret = editor_.caret();
  editor_.insertText({caret.line, 0}, editor_.line(caret.line) + u'\n');
  editor_.setCaret({caret.line + 1, caret.column});
  editor_.endEdit(0);
}

void EditCommands::breakLine() {
  if (!beginCommand(46, kTypingKind)) return;
  deleteSelection();
  editor_.clearSelection();  // a line end ends typing into a block
  const CodeBufferPosition caret = editor_.buffer().clamp(editor_.caret());
  editor_.insertText(caret, QStringLiteral("\n"));
  editor_.setCaret(caret);
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

QString EditCommands::markedLinesText() const {
  QString text;
  for (const CodeLine& record : editor_.buffer())
    if (record.flags & kBookmarkFlag) text += record.text + u'\n';
  return text;
}

void EditCommands::copyMarkedLines(int number, bool append) {
  record(number);
  const QString text = markedLinesText();
  if (!text.isEmpty()) copyText(text, append);
}

void EditCommands::copyMarked() { copyMarkedLines(21, false); }
void EditCommands::copyMarkedAppend() { copyMarkedLines(22, true); }

// Each marked line goes with the line end before it, so that the lines around keep
// their records and their bookmarks; the first line goes with the one behind it.
void EditCommands::cutMarkedLines(int number, bool append) {
  const QString text = markedLinesText();
  if (text.isEmpty()) return record(number);
  copyText(text, append);
  if (!beginCommand(number, kCutKind)) return;
  std::vector<int> marked;
  int index = 0;
  for (const CodeLine& record : editor_.buffer()) {
    if (record.flags & kBookmarkFlag) marked.push_back(index);
    ++index;
  }
  for (auto line = marked.rbegin(); line != marked.rend(); ++line) {
    if (*line > 0) {
      editor_.deleteRange({*line - 1, editor_.buffer().lineLength(*line - 1)}, {*line, editor_.buffer().lineLength(*line)});
    } else {
      const uint32_t nextFlags = editor_.lineFlags(1);
      editor_.deleteRange({0, 0}, editor_.lineCount() > 1 ? CodeBufferPosition(1, 0) : editor_.buffer().endPosition());
      editor_.setLineFlags(0, nextFlags);
    }
  }
  moveCaret({std::min(marked.front(), editor_.lineCount() - 1), 0});
  editor_.endEdit(0);
}

void EditCommands::cutMarked() { cutMarkedLines(15, false); }
void EditCommands::cutMarkedAppend() { cutMarkedLines(16, true); }

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

// --- incremental search

void EditCommands::findIncremental() { finder_.startIncremental(); }
void EditCommands::findIncrementalDialogClosed() { finder_.endIncremental(); }
bool EditCommands::searchIncrementally(const QString& text) { return finder_.searchIncrementally(text); }

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
