#include "editor/undo_actions.h"

#include "editor/code_edit.h"

namespace regmill {

namespace {

// "Insert \"text\"", the text cut to ten characters and "...".
QString describe(const char* word, const QString& text) {
  QString shown = text.size() > 10 ? text.left(10) + QStringLiteral("...") : text;
  return QString::fromLatin1(word) + QStringLiteral(" \"") + shown + u'"';
}

}  // namespace

void CodeEditAction::undo(CodeEdit&) {}
void CodeEditAction::redo(CodeEdit&) {}

void CodeEditInsertAction::insert(CodeEdit& editor) const {
  editor.insertText(from_, text_, false);
  editor.setCaret(to_);
}

void CodeEditInsertAction::remove(CodeEdit& editor) const {
  editor.deleteRange(from_, to_, false);
  editor.setCaret(from_);
}

QString CodeEditInsertAction::description() const { return describe("Insert", text_); }
QString CodeEditDeleteAction::description() const { return describe("Delete", text_); }

void CodeEditReplaceAction::undo(CodeEdit& editor) { editor.swapText(position_, newText_, oldText_); }
void CodeEditReplaceAction::redo(CodeEdit& editor) { editor.swapText(position_, oldText_, newText_); }
QString CodeEditReplaceAction::description() const { return describe("Replace", newText_); }

void CodeEditCaretRestorePointAction::undo(CodeEdit& editor) { editor.setCaret(caret_); }

QString CodeEditCaretRestorePointAction::description() const {
  return QStringLiteral("Caret positioned at %1, %2").arg(caret_.column).arg(caret_.line);
}

void CodeEditSelectionRestorePointAction::undo(CodeEdit& editor) {
  editor.setSelection(anchor_, end_, SelectionMode(mode_));
}

QString transactionLabel(int kind) {
  static const char* const kLabels[] = {
      nullptr, "Cut", "Paste", "Delete", "Move", "Copy", "Indent", "Outdent", "Typing", "Typing",
      "Make Uppercase", "Make Lowercase", "Switch Case", "Comment", "Uncomment", "Sort Ascending",
      "Sort Descending", "Transpose Lines", "Transpose Words", "Template Expansion", "Tabify", "Untabify", "Align"};
  if (kind > 0 && kind < int(std::size(kLabels))) return QString::fromLatin1(kLabels[kind]);
  return QStringLiteral("Macro");
}

}  // namespace regmill
