// Documents written with their caret and selection: "[" is the selection's anchor,
// "]" its other end (where the caret is), "|" a caret without a selection. The same
// notation prints an editor's state, so that a case reads as before and after.
#pragma once
#include <QString>

#include "editor/edit_commands.h"

namespace regmill::testing {

inline void setMarkedText(CodeEdit& editor, const QString& marked) {
  QString text;
  CodeBufferPosition here(0, 0), anchor, end, caret;
  for (QChar c : marked) {
    if (c == u'[') anchor = here;
    else if (c == u']') end = caret = here;
    else if (c == u'|') caret = here;
    else {
      text += c;
      here = c == u'\n' ? CodeBufferPosition(here.line + 1, 0) : CodeBufferPosition(here.line, here.column + 1);
    }
  }
  editor.setText(text);
  editor.setSelection(anchor, end);
  editor.setCaret(caret.isValid() ? caret : CodeBufferPosition(0, 0));
}

inline QString markedText(const CodeEdit& editor) {
  QString out;
  const bool selected = editor.hasSelection();
  for (int line = 0; line < editor.lineCount(); ++line) {
    if (line > 0) out += u'\n';
    const QString text = editor.line(line);
    for (int column = 0; column <= text.size(); ++column) {
      const CodeBufferPosition here(line, column);
      if (selected && editor.selectionAnchor() == here) out += u'[';
      if (selected && editor.selectionEnd() == here) out += u']';
      if (editor.caret() == here && !(selected && editor.selectionEnd() == here)) out += u'|';
      if (column < text.size()) out += text[column];
    }
  }
  return out;
}

// An editor with its commands and a clipboard of its own.
struct CommandBench {
  CodeEdit editor;
  MemoryClipboard clipboard;
  EditCommands commands{editor, clipboard};

  explicit CommandBench(const QString& marked = {}) { setMarkedText(editor, marked); }
  QString state() const { return markedText(editor); }
};

}  // namespace regmill::testing
