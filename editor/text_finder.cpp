#include "editor/text_finder.h"

#include "base/text.h"
#include "editor/code_edit.h"

namespace regmill {

namespace {

// A word character judged by its ASCII form: a letter of either case, a digit or "_".
bool isAsciiWordCharacter(QChar c) { return c.unicode() < 128 && (isAlnumByte(c.unicode()) || c == u'_'); }

bool standsAlone(const QString& line, int column, int length) {
  if (column > 0 && isAsciiWordCharacter(line[column - 1])) return false;
  return column + length >= line.size() || !isAsciiWordCharacter(line[column + length]);
}

bool isSpecialCharacter(QChar c) {
  static const QString kSpecial = QStringLiteral("\\{}[]():?^$.+*,|");
  return kSpecial.contains(c);
}

}  // namespace

QRegExp TextFinder::buildExpression(const QString& findText, uint32_t options) {
  QString pattern;
  if (options & kFindRegularExpression) {
    pattern = findText;
  } else {
    pattern.reserve(findText.size() * 2);
    for (QChar c : findText) {
      if (isSpecialCharacter(c)) pattern += u'\\';
      pattern += c;
    }
  }
  QRegExp expression(pattern, (options & kFindCaseSensitive) ? Qt::CaseSensitive : Qt::CaseInsensitive);
  expression.setMinimal(!((options & kFindRegularExpression) && (options & kFindGreedy)));
  return expression;
}

LineMatch TextFinder::matchInLine(QRegExp& expression, const QString& line, int from, uint32_t options) {
  const bool backwards = options & kFindBackwards;
  while (from >= 0 && from <= line.size()) {
    const int column = backwards ? expression.lastIndexIn(line, from) : expression.indexIn(line, from);
    if (column < 0) return {};
    const int length = expression.matchedLength();
    if (length > 0 && (!(options & kFindWholeWord) || standsAlone(line, column, length))) return {column, length};
    from = backwards ? column - 1 : column + 1;
  }
  return {};
}

QString TextFinder::expandReplacement(const QString& replacement, const QRegExp& expression, uint32_t options) {
  if (!(options & kFindRegularExpression)) return replacement;
  QString expanded = replacement;
  // One capture after the other, each over the result of the one before.
  for (int capture = 0; capture <= 9; ++capture)
    expanded.replace(QStringLiteral("\\%1").arg(capture), expression.cap(capture));
  return expanded;
}

bool TextFinder::find(CodeBufferPosition start, const QString& findText, const FindParameters& parameters) {
  const uint32_t options = parameters.options;
  const bool backwards = options & kFindBackwards;
  const bool report = options & kFindReport;
  if (editor_.hasSelection() && !(options & kFindFromGivenPosition)) {
    const CodeBufferPosition first = editor_.selectionStart();
    start = {first.line, first.column + (backwards ? -1 : 1)};
  }
  if (report) editor_.showStatus(QStringLiteral("Ready"));
  last_ = parameters;
  last_.findText = findText;
  expression_ = buildExpression(findText, options);
  if (findText.isEmpty()) return false;

  const int lineCount = editor_.lineCount();
  const int startLine = std::clamp(start.line, 0, lineCount - 1);
  int line = startLine;
  int column = start.column;
  bool wrapped = false;
  for (;;) {
    const QString text = editor_.line(line);
    const LineMatch match = matchInLine(expression_, text, column, options);
    // Back on the start line after a wrap, only the part not yet searched counts.
    const bool backOnStart = wrapped && line == startLine;
    if (match.found() && (!backOnStart || (backwards ? match.column > start.column : match.column < start.column))) {
      editor_.setSelection({line, match.column}, {line, match.column + match.length});
      editor_.setCaret({line, match.column + match.length});
      bringIntoView(line);
      return true;
    }
    if (backOnStart) {
      if (report) editor_.showStatus(QStringLiteral("Can't find '%1'").arg(findText));
      return false;
    }
    line += backwards ? -1 : 1;
    if (line < 0 || line >= lineCount) {
      if (!(options & kFindWrap)) return false;
      if (report)
        editor_.showStatus(backwards ? QStringLiteral("Passed the start of file") : QStringLiteral("Passed the end of file"));
      line = backwards ? lineCount - 1 : 0;
      wrapped = true;
    }
    column = backwards ? int(editor_.line(line).size()) : 0;
  }
}

// A line shown stays; one less than 5 lines below the last row shown becomes the last
// row, one less than 5 lines above the first row the first; any other goes to the
// middle.
void TextFinder::bringIntoView(int line) {
  const int top = editor_.topLine(), last = top + editor_.visibleLines() - 1;
  if (line >= top && line <= last) return;
  if (line > last && line - last < 5) editor_.setTopLine(line - editor_.visibleLines() + 1);
  else if (line < top && top - line < 5) editor_.setTopLine(line);
  else editor_.setTopLine(line - editor_.visibleLines() / 2);
}

void TextFinder::startIncremental() {
  incremental_ = true;
  incrementalOrigin_ = editor_.caret();
  editor_.showStatus(QStringLiteral("Incremental search: "));
}

bool TextFinder::searchIncrementally(const QString& text) {
  if (!incremental_) startIncremental();
  editor_.clearSelection();
  editor_.setCaret(incrementalOrigin_);
  if (text.isEmpty()) {
    editor_.showStatus(QStringLiteral("Incremental search: "));
    return false;
  }
  const uint32_t kept = kFindWholeWord | kFindCaseSensitive;
  const FindParameters parameters{(last_.options & kept) | kFindWrap | kFindFromGivenPosition, text, last_.replacement};
  if (find(incrementalOrigin_, text, parameters)) {
    editor_.showStatus(QStringLiteral("Incremental search: %1").arg(text));
    return true;
  }
  editor_.setCaret(incrementalOrigin_);
  editor_.showStatus(QStringLiteral("Can't find '%1'").arg(text));
  return false;
}

bool TextFinder::findAgain(bool backwards) {
  FindParameters parameters = last_;
  parameters.options |= kFindReport | kFindWrap;
  parameters.options &= ~uint32_t(kFindFromGivenPosition);
  if (backwards) parameters.options |= kFindBackwards;
  else parameters.options &= ~uint32_t(kFindBackwards);
  return find(editor_.caret(), parameters.findText, parameters);
}

bool TextFinder::selectedAsFindText() {
  if (!editor_.hasSelection()) {
    auto [from, to] = editor_.wordAt(editor_.caret());
    if (from == to) return false;
    editor_.setSelection(from, to);
  }
  last_.findText = editor_.textOf(editor_.selectionStart(), editor_.selectionLast());
  last_.options &= ~uint32_t(kFindRegularExpression);
  return true;
}

bool TextFinder::findNextSelected() { return selectedAsFindText() && findNext(); }
bool TextFinder::findPrevSelected() { return selectedAsFindText() && findPrev(); }

void TextFinder::replaceNext() {
  FindParameters parameters = last_;
  parameters.options |= kFindReport | kFindWrap;
  if (editor_.hasSelection()) {
    const CodeBufferPosition from = editor_.selectionStart(), to = editor_.selectionLast();
    const QString selected = editor_.textOf(from, to);
    QRegExp expression = buildExpression(parameters.findText, parameters.options);
    expression.indexIn(selected);
    const QString replacement = expandReplacement(parameters.replacement, expression, parameters.options);
    editor_.beginEdit(0, 0);
    editor_.deleteRange(from, to);
    editor_.insertText(from, replacement);
    editor_.clearSelection();
    editor_.endEdit(0);
  }
  find(editor_.caret(), parameters.findText, parameters);
}

template <class OnMatch>
int TextFinder::walkScope(const FindParameters& parameters, bool selectionOnly, OnMatch onMatch) {
  const uint32_t options = parameters.options & ~uint32_t(kFindBackwards);
  QRegExp expression = buildExpression(parameters.findText, options);
  CodeBufferPosition scopeStart(0, 0), scopeEnd = editor_.buffer().endPosition();
  if (selectionOnly && editor_.hasSelection()) {
    scopeStart = editor_.selectionStart();
    scopeEnd = editor_.selectionLast();
  }
  int count = 0;
  int line = scopeStart.line, column = scopeStart.column;
  while (line <= scopeEnd.line) {
    const QString text = editor_.line(line);
    const LineMatch match = matchInLine(expression, text, column, options);
    if (!match.found() || (line == scopeEnd.line && match.column + match.length > scopeEnd.column)) {
      ++line;
      column = 0;
      continue;
    }
    ++count;
    const CodeBufferPosition next = onMatch(line, match, expression);
    // The scope's end follows the text that stood behind the match.
    if (line == scopeEnd.line) scopeEnd = {next.line, scopeEnd.column - (match.column + match.length) + next.column};
    else scopeEnd.line += next.line - line;
    line = next.line;
    column = next.column;
  }
  if (selectionOnly && editor_.hasSelection()) editor_.setSelection(scopeStart, scopeEnd);
  return count;
}

int TextFinder::replaceAll(const FindParameters& parameters, bool selectionOnly) {
  if (parameters.findText.isEmpty()) return 0;
  last_ = parameters;
  editor_.beginEdit(0, 0);
  const int count = walkScope(parameters, selectionOnly, [&](int line, const LineMatch& match, const QRegExp& expression) {
    const CodeBufferPosition at(line, match.column);
    const QString found = editor_.line(line).mid(match.column, match.length);
    editor_.beginEdit(0, 0);
    editor_.replaceText(at, found, expandReplacement(parameters.replacement, expression, parameters.options));
    editor_.endEdit(0);
    return editor_.caret();  // behind the new text: it is never searched again
  });
  if (!selectionOnly) editor_.clearSelection();
  editor_.endEdit(0);
  editor_.showStatus(count == 1 ? QStringLiteral("1 occurrence has been replaced.")
                                : QStringLiteral("%1 occurrences have been replaced.").arg(count));
  return count;
}

std::vector<int> TextFinder::markAll(const FindParameters& parameters, bool selectionOnly) {
  std::vector<int> lines;
  if (parameters.findText.isEmpty()) return lines;
  last_ = parameters;
  const int count = walkScope(parameters, selectionOnly, [&](int line, const LineMatch& match, const QRegExp&) {
    lines.push_back(line);
    return CodeBufferPosition(line, match.column + match.length);
  });
  editor_.showStatus(count == 1 ? QStringLiteral("1 occurrence has been marked.")
                                : QStringLiteral("%1 occurrences have been marked.").arg(count));
  return lines;
}

}  // namespace regmill
