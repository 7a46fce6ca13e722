// Commands on the text of a selection or word: case, identifier styles, transposing
// words, surrounding, casts, conversions and templates.
#include "editor/edit_commands.h"

namespace regmill {

namespace {

// Each character by itself, so that a text keeps its length.
QString toUpperEach(const QString& text) {
  QString result = text;
  for (QChar& c : result) c = c.toUpper();
  return result;
}

QString toLowerEach(const QString& text) {
  QString result = text;
  for (QChar& c : result) c = c.toLower();
  return result;
}

QString switchCaseEach(const QString& text) {
  QString result = text;
  for (QChar& c : result) c = c.isUpper() ? c.toLower() : c.isLower() ? c.toUpper() : c;
  return result;
}

QString toUpperHex(const QString& text) { return toUpperEach(text).replace(QStringLiteral("0X"), QStringLiteral("0x")); }

// One underscore between two letters vanishes and makes the next letter upper case.
QString toCamelCase(const QString& text) {
  QString result;
  bool pending = false;
  for (QChar c : text) {
    if (c == u'_') {
      if (pending) result += u'_';
      pending = true;
    } else if (pending) {
      result += c.isLetter() ? c.toUpper() : c;
      pending = false;
    } else {
      result += c;
    }
  }
  if (pending) result += u'_';
  return result;
}

QString toSplitCase(const QString& text) {
  QString result;
  bool lower = false;
  for (QChar c : text) {
    if (c.isLower()) {
      result += c;
      lower = true;
    } else if (c.isUpper() && lower) {
      result += u'_';
      result += c.toLower();
      lower = false;
    } else {
      result += c;
      lower = false;
    }
  }
  return result;
}

CodeBufferPosition positionBefore(const CodeEdit& editor, CodeBufferPosition position) {
  if (position.column > 0) return {position.line, position.column - 1};
  if (position.line == 0) return position;
  return {position.line - 1, editor.buffer().lineLength(position.line - 1)};
}

bool wordCharacterAt(const CodeEdit& editor, CodeBufferPosition position) {
  const QString text = editor.line(position.line);
  return position.column < text.size() && CodeEdit::isWordCharacter(text[position.column]);
}

}  // namespace

// With no selection the word at the caret is taken; both ends and the caret stay.
void EditCommands::changeCase(int kind, QString (*convert)(const QString&)) {
  if (!editor_.canEdit()) return;
  editor_.beginEdit(0, kind);
  if (!editor_.hasSelection()) {
    auto [from, to] = editor_.wordAt(editor_.caret());
    if (from != to) editor_.setSelection(from, to);
  }
  if (editor_.hasSelection()) {
    const CodeBufferPosition anchor = editor_.selectionAnchor(), end = editor_.selectionEnd(), caret = editor_.caret();
    const QString text = selectedText();
    const QString converted = convert(text);
    if (converted != text) {
      replaceSelection(converted);
      editor_.setSelection(anchor, end);
      editor_.setCaret(caret);
    }
  }
  editor_.endEdit(0);
}

void EditCommands::uppercase() {
  record(92);
  changeCase(kMakeUppercaseKind, toUpperEach);
}

void EditCommands::lowercase() {
  record(93);
  changeCase(kMakeLowercaseKind, toLowerEach);
}

void EditCommands::switchcase() {
  record(95);
  changeCase(kSwitchCaseKind, switchCaseEach);
}

void EditCommands::uppercaseHex() {
  record(94);
  changeCase(kMakeUppercaseKind, toUpperHex);
}

void EditCommands::camelcase() {
  changeCase(0, toCamelCase);
  editor_.clearSelection();
}

void EditCommands::splitcase() {
  changeCase(0, toSplitCase);
  editor_.clearSelection();
}

// A word is a run of letters, digits and "_". It is matched greedily, so that it is
// taken whole.
void EditCommands::transposeWords() {
  if (!beginCommand(117, kTransposeWordsKind)) return;
  const QString word = QStringLiteral("[\\w_]+");
  CodeBufferPosition caret = editor_.caret();
  while (!wordCharacterAt(editor_, caret) && caret != CodeBufferPosition(0, 0)) caret = positionBefore(editor_, caret);
  caret.column = std::min(caret.column, editor_.buffer().lineLength(caret.line));
  const QString line = editor_.line(caret.line);
  while (caret.column > 0 && CodeEdit::isWordCharacter(line[caret.column - 1])) --caret.column;
  CodeBufferPosition noted = caret;
  editor_.clearSelection();
  FindParameters parameters{kFindRegularExpression | kFindWholeWord | kFindGreedy | kFindFromGivenPosition, word, {}};
  if (!finder_.find(caret, word, parameters)) {
    moveCaret(noted);
    return editor_.endEdit(0);
  }
  const QString first = selectedText();
  noted = editor_.selectionStart();
  deleteSelection();
  parameters.options |= kFindBackwards;
  if (!finder_.find(editor_.caret(), word, parameters)) {
    editor_.insertText(noted, first);
    moveCaret(noted);
    return editor_.endEdit(0);
  }
  const QString earlier = selectedText();
  const CodeBufferPosition earlierAt = editor_.selectionStart();
  deleteSelection();
  editor_.insertText(earlierAt, first);
  if (earlierAt.line == noted.line) noted.column += int(first.size()) - int(earlier.size());
  editor_.insertText(noted, earlier);
  moveCaret(noted);
  editor_.endEdit(0);
}

void EditCommands::surround(const QString& left, const QString& right) {
  if (recordingState() == Recording || !editor_.canEdit()) return;
  editor_.beginEdit(0, kMacroKind);
  if (!editor_.hasSelection()) {
    auto [from, to] = editor_.wordAt(editor_.caret());
    if (from != to) editor_.setSelection(from, to);
  }
  if (editor_.hasSelection()) {
    const CodeBufferPosition start = editor_.selectionStart();
    CodeBufferPosition end = editor_.selectionLast();
    editor_.clearSelection();
    editor_.insertText(start, left);
    if (end.line == start.line) end.column += int(left.size());
    editor_.insertText(end, right);  // leaves the caret behind `right`
  } else {
    insertAtCaret(left);
    const CodeBufferPosition between = editor_.caret();
    insertAtCaret(right);
    editor_.setCaret(between);
  }
  editor_.endEdit(0);
}

void EditCommands::cast(const QString& type) {
  if (recordingState() == Recording || !editor_.canEdit()) return;
  editor_.beginEdit(0, kMacroKind);
  if (editor_.hasSelection()) surround(QStringLiteral("(") + type + QStringLiteral(")("), QStringLiteral(")"));
  else insertAtCaret(type + u' ');
  editor_.endEdit(0);
}

QString EditCommands::makeString(QString text) {
  text.replace(u'\\', QStringLiteral("\\\\")).replace(u'\n', QStringLiteral("\\n")).replace(u'"', QStringLiteral("\\\""));
  return u'"' + text + u'"';
}

QString EditCommands::makeComment(QString text) {
  return QStringLiteral("/*") + text.replace(QStringLiteral("*/"), QStringLiteral("**")) + QStringLiteral("*/");
}

QString EditCommands::makeHTML(const QString& text) { return text.toHtmlEscaped(); }

void EditCommands::pasteAsString() {
  if (!beginCommand(31, kPasteKind)) return;
  deleteSelection();
  insertAtCaret(makeString(clipboard_.text()));
  editor_.endEdit(0);
}

void EditCommands::pasteAsComment() {
  if (!beginCommand(32, kPasteKind)) return;
  deleteSelection();
  insertAtCaret(makeComment(clipboard_.text()));
  editor_.endEdit(0);
}

void EditCommands::pasteAsHTML() {
  if (!beginCommand(33, kPasteKind)) return;
  deleteSelection();
  insertAtCaret(makeHTML(clipboard_.text()));
  editor_.endEdit(0);
}

void EditCommands::convertToString() {
  if (!beginCommand(35, kMacroKind)) return;
  if (editor_.hasSelection()) replaceSelection(makeString(selectedText()));
  editor_.endEdit(0);
}

void EditCommands::convertToHTML() {
  if (!beginCommand(36, kMacroKind)) return;
  if (editor_.hasSelection()) replaceSelection(makeHTML(selectedText()));
  editor_.endEdit(0);
}

// In a block the call is deleted and the body inserted on each of its lines, from the
// bottom up so that a body of several lines moves no line still to come; the caret is
// placed from the block's first line, and a body of one line leaves an empty block at
// the caret's column, to type on.
bool EditCommands::expandTemplate(const CodeTemplate& codeTemplate) {
  if (!editor_.canEdit()) return false;
  editor_.beginEdit(0, kTemplateExpansionKind);
  auto block = blockLines();
  if (block && block->first == block->second) block.reset();  // a block on one line calls from the caret
  const int first = block ? block->first : editor_.caret().line, last = block ? block->second : first;
  const int callerScreen = block ? editor_.blockLeftColumn() : editor_.screenColumn(first, editor_.caret().column);
  int from = 0;
  for (int line = last; line >= first; --line) {
    const int length = editor_.buffer().lineLength(line);
    const int column = block ? columnForScreen(line, callerScreen) : editor_.caret().column;
    from = std::clamp(column - codeTemplate.before, 0, length);
    const int to = std::clamp(block ? column : column + codeTemplate.behind, from, length);
    editor_.deleteRange({line, from}, {line, to});
  }
  const CodeBufferPosition caret(first, from);
  const int caretScreen = editor_.screenColumn(first, from);

  int markerLine = 0, markerColumn = -1;
  const QStringList lines = codeTemplate.body.split(u'\n', Qt::SkipEmptyParts);
  for (int index = 0; index < lines.size() && markerColumn < 0; ++index) {
    markerColumn = int(lines[index].indexOf(u'|'));
    markerLine = index;
  }
  QString body = codeTemplate.body;
  body.remove(u'|');
  QString indented;
  for (int index = 0; index < body.size(); ++index) {
    indented += body[index];
    if (body[index] == u'\n' && index + 1 < body.size()) indented += QString(caret.column, u' ');
  }
  for (int line = last; line >= first; --line)
    editor_.insertText(block ? CodeBufferPosition(line, columnForScreen(line, caretScreen)) : caret, indented);
  if (block && !body.contains(u'\n'))
    setEmptyBlock(first, last, caretScreen + (markerColumn > 0 ? markerColumn : int(body.size())));
  else if (block)
    editor_.clearSelection();
  if (markerColumn > 0) editor_.setCaret({caret.line + markerLine, caret.column + markerColumn});
  editor_.showStatus(QStringLiteral("Expanded template '%1'").arg(codeTemplate.name));
  editor_.endEdit(0);
  return body.endsWith(QStringLiteral("()")) && markerColumn > 0;
}

}  // namespace regmill
