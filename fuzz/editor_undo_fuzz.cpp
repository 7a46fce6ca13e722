// Edit sequences read from the input, run through the editor's primitives and its
// commands: undoing all must give back the original text, and redoing all the final one.
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include <QRegularExpression>

#include "editor/edit_commands.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size > 2048) return 0;
  regmill::CodeEdit editor;
  regmill::MemoryClipboard clipboard;
  regmill::EditCommands commands(editor, clipboard);
  const QString original = QStringLiteral("first line\n\tsecond // x\n\nfoo_bar 0xab\n  last");
  editor.setText(original);
  static const QString pieces[] = {"a", "\n", "\r\n", " ", "\t", "//", "ab_c", "X\nY"};
  // Undo and redo as steps would change what redoing all gives.
  static const QStringList names = regmill::EditCommands::slotNames().filter(QRegularExpression("^(?!undo|redo)"));
  size_t at = 0;
  auto next = [&] { return at < size ? data[at++] : 0; };
  // Copying and pasting can double the text at each step; a few doublings show as much.
  auto small = [&] { return editor.lineCount() < 4000 && clipboard.text().size() < 1024; };
  while (at + 4 <= size && small()) {
    const int kind = next() % 4;
    // One byte after the other, in an order that doesn't depend on the compiler.
    const int fromLine = next() % (editor.lineCount() + 2), fromColumn = next() % 16;
    const int toLine = next() % (editor.lineCount() + 1), toColumn = next() % 16;
    const regmill::CodeBufferPosition from(fromLine, fromColumn), to(toLine, toColumn);
    switch (kind) {
      case 0: editor.insertText(from, pieces[next() % std::size(pieces)]); break;
      case 1: editor.deleteRange(from, to); break;
      case 2: editor.setSelection(from, to, regmill::SelectionMode(next() % 2)); editor.setCaret(to); break;
      default: (commands.*regmill::EditCommands::slotNamed(names[next() % names.size()]))(); break;
    }
  }
  const QString final = editor.text();
  editor.undoAll();
  if (editor.text() != original) std::abort();
  editor.redoAll();
  if (editor.text() != final) std::abort();
  return 0;
}
