// Commands that know the C family of languages: matching brackets, moving between
// function heads and indenting a document by its braces. Comments, strings and
// character literals are seen through, so that a brace in them counts for nothing.
#include <vector>

#include "editor/edit_commands.h"

namespace regmill {

namespace {

// A line as the compiler sees it: each character of a comment or a literal, quotes
// included, becomes a blank, so that columns stay where they were.
struct CodeLineView {
  QString code;
  bool startsInComment = false;
};

// Reads lines in order, carrying an unfinished block comment from one to the next. A
// string or character literal ends at its line's end at the latest.
class CodeScanner {
 public:
  CodeLineView scan(const QString& text) {
    CodeLineView view{text, inComment_};
    QString& code = view.code;
    const int length = int(text.size());
    for (int column = 0; column < length;) {
      const QChar c = text[column];
      const QChar next = column + 1 < length ? text[column + 1] : QChar();
      if (inComment_) {
        if (c == u'*' && next == u'/') {
          code[column++] = u' ';
          inComment_ = false;
        }
        code[column++] = u' ';
      } else if (c == u'/' && next == u'/') {
        code.replace(column, length - column, QString(length - column, u' '));
        break;
      } else if (c == u'/' && next == u'*') {
        code[column++] = u' ';
        code[column++] = u' ';
        inComment_ = true;
      } else if (c == u'"' || c == u'\'') {
        column = blankLiteral(text, code, column, c);
      } else {
        ++column;
      }
    }
    return view;
  }

 private:
  static int blankLiteral(const QString& text, QString& code, int column, QChar quote) {
    code[column++] = u' ';
    while (column < text.size()) {
      const QChar c = text[column];
      code[column++] = u' ';
      if (c == quote) break;
      if (c == u'\\' && column < text.size()) code[column++] = u' ';
    }
    return column;
  }

  bool inComment_ = false;
};

bool isOpener(QChar c) { return c == u'(' || c == u'[' || c == u'{'; }
bool isCloser(QChar c) { return c == u')' || c == u']' || c == u'}'; }

bool pairs(QChar opener, QChar closer) {
  return (opener == u'(' && closer == u')') || (opener == u'[' && closer == u']') || (opener == u'{' && closer == u'}');
}

// A function head starts at column 0 with a name, holds "(" and isn't a statement or
// a declaration in a list (it doesn't end with ";" or ",").
bool isFunctionHead(const CodeLineView& view) {
  if (view.startsInComment || view.code.isEmpty()) return false;
  const QChar first = view.code[0];
  if (!(first.isLetter() || first == u'_') || !view.code.contains(u'(')) return false;
  const QString trimmed = view.code.trimmed();
  return !trimmed.endsWith(u';') && !trimmed.endsWith(u',');
}

int leadingWhitespace(const QString& text) {
  int length = 0;
  while (length < text.size() && text[length].isSpace()) ++length;
  return length;
}

}  // namespace

// One pass from the top with a stack of open brackets: a closing bracket answers the
// open one of its kind on top, and one of another kind is passed over.
CodeBufferPosition EditCommands::matchingDelimiter(CodeBufferPosition caret) const {
  caret = editor_.buffer().clamp(caret);
  CodeScanner scanner;
  std::vector<std::pair<QChar, CodeBufferPosition>> open;
  CodeBufferPosition target;  // the opening bracket whose partner is sought
  int line = 0;
  for (auto record = editor_.buffer().begin(); record != editor_.buffer().end(); ++record, ++line) {
    const QString code = scanner.scan(record->text).code;
    int from = 0;
    if (line == caret.line && !target.isValid()) {
      // Which bracket is meant: one at the caret, else one just before it.
      const int at = caret.column, before = caret.column - 1;
      int column = -1;
      bool forward = false;
      if (at < code.size() && isOpener(code[at])) column = at, forward = true;
      else if (before >= 0 && isCloser(code[before])) column = before;
      else if (at < code.size() && isCloser(code[at])) column = at;
      else if (before >= 0 && isOpener(code[before])) column = before, forward = true;
      if (column < 0) return {};
      for (; from < column; ++from) {
        if (isOpener(code[from])) open.push_back({code[from], {line, from}});
        else if (isCloser(code[from]) && !open.empty() && pairs(open.back().first, code[from])) open.pop_back();
      }
      if (!forward) return !open.empty() && pairs(open.back().first, code[column]) ? open.back().second : CodeBufferPosition();
      target = {line, column};
    }
    for (int column = from; column < code.size(); ++column) {
      if (isOpener(code[column])) {
        open.push_back({code[column], {line, column}});
      } else if (isCloser(code[column]) && !open.empty() && pairs(open.back().first, code[column])) {
        if (open.back().second == target) return {line, column + 1};
        open.pop_back();
      }
    }
  }
  return {};
}

void EditCommands::moveToFunction(bool forward) {
  const int caretLine = editor_.caret().line;
  CodeScanner scanner;
  int line = 0, found = -1;
  for (auto record = editor_.buffer().begin(); record != editor_.buffer().end(); ++record, ++line) {
    if (!forward && line >= caretLine) break;
    if (!isFunctionHead(scanner.scan(record->text))) continue;
    found = line;
    if (forward && line > caretLine) break;
  }
  if (found >= 0 && (!forward || found > caretLine)) moveTo(0, {found, 0}, Extend::None);
}

void EditCommands::findNextFunction() { moveToFunction(true); }
void EditCommands::findPrevFunction() { moveToFunction(false); }

// Each line that starts in code gets as many indent steps as braces are open before
// it, one less when it starts by closing one; a preprocessor line stays at column 0
// while those aren't indented. Blank lines become empty and trailing white space goes.
// A line that starts inside a block comment is left as it is.
void EditCommands::tidyDocument() {
  if (!beginCommand(0, kMacroKind)) return;
  const int indentSize = std::max(1, editor_.settings().indentSize);
  CodeScanner scanner;
  QStringList tidied;
  int depth = 0;
  for (const CodeLine& record : editor_.buffer()) {
    const CodeLineView view = scanner.scan(record.text);
    if (view.startsInComment) {
      tidied.append(record.text);
    } else {
      QString body = record.text.mid(leadingWhitespace(record.text));
      while (!body.isEmpty() && body.back().isSpace()) body.chop(1);
      int steps = view.code.trimmed().startsWith(u'}') ? depth - 1 : depth;
      if (body.startsWith(u'#') && !editor_.settings().indentPreprocessorLines) steps = 0;
      tidied.append(body.isEmpty() ? QString() : runOfWhitespace(0, std::max(0, steps) * indentSize) + body);
    }
    for (QChar c : view.code) depth = c == u'{' ? depth + 1 : c == u'}' ? std::max(0, depth - 1) : depth;
  }
  replaceLines(0, editor_.lineCount(), tidied);
  editor_.endEdit(0);
}

}  // namespace regmill
