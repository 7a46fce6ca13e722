// The records of undo and redo. Every change of a document is a list of actions in a
// transaction; undoing runs the actions backwards, redoing forwards. Insert and
// delete are mirror images of each other.
#pragma once
#include <QString>
#include <memory>
#include <vector>

#include "editor/code_buffer_position.h"

namespace regmill {

class CodeEdit;

class CodeEditAction {
 public:
  virtual void undo(CodeEdit& editor);
  virtual void redo(CodeEdit& editor);
  virtual ~CodeEditAction() = default;
  virtual QString description() const = 0;
};

class CodeEditInsertAction : public CodeEditAction {
 public:
  CodeEditInsertAction(QString text, CodeBufferPosition from, CodeBufferPosition to)
      : text_(std::move(text)), from_(from), to_(to) {}
  void undo(CodeEdit& editor) override { remove(editor); }
  void redo(CodeEdit& editor) override { insert(editor); }
  QString description() const override;

 protected:
  void insert(CodeEdit& editor) const;
  void remove(CodeEdit& editor) const;

  QString text_;
  CodeBufferPosition from_, to_;
};

// The same two operations in swapped slots.
class CodeEditDeleteAction : public CodeEditInsertAction {
 public:
  using CodeEditInsertAction::CodeEditInsertAction;
  void undo(CodeEdit& editor) override { insert(editor); }
  void redo(CodeEdit& editor) override { remove(editor); }
  QString description() const override;
};

// A replacement found on one line; the new text may hold line ends.
class CodeEditReplaceAction : public CodeEditAction {
 public:
  CodeEditReplaceAction(QString oldText, QString newText, CodeBufferPosition position)
      : oldText_(std::move(oldText)), newText_(std::move(newText)), position_(position) {}
  void undo(CodeEdit& editor) override;
  void redo(CodeEdit& editor) override;
  QString description() const override;

 private:
  QString oldText_, newText_;
  CodeBufferPosition position_;
};

class CodeEditCaretRestorePointAction : public CodeEditAction {
 public:
  explicit CodeEditCaretRestorePointAction(CodeBufferPosition caret) : caret_(caret) {}
  void undo(CodeEdit& editor) override;
  QString description() const override;

 private:
  CodeBufferPosition caret_;
};

class CodeEditSelectionRestorePointAction : public CodeEditAction {
 public:
  CodeEditSelectionRestorePointAction(CodeBufferPosition anchor, CodeBufferPosition end, int mode)
      : anchor_(anchor), end_(end), mode_(mode) {}
  void undo(CodeEdit& editor) override;
  QString description() const override { return QStringLiteral("Text Selected"); }

 private:
  CodeBufferPosition anchor_, end_;
  int mode_;
};

// The transaction kinds that commands give to beginEdit.
enum TransactionKind {
  kCutKind = 1, kPasteKind = 2, kDeleteKind = 3, kMoveKind = 4, kCopyKind = 5, kIndentKind = 6,
  kOutdentKind = 7, kTypingKind = 8, kMakeUppercaseKind = 10, kMakeLowercaseKind = 11,
  kSwitchCaseKind = 12, kCommentKind = 13, kUncommentKind = 14, kSortAscendingKind = 15,
  kSortDescendingKind = 16, kTransposeLinesKind = 17, kTransposeWordsKind = 18,
  kTemplateExpansionKind = 19, kTabifyKind = 20, kUntabifyKind = 21, kAlignKind = 22, kMacroKind = 23,
};

// What a user sees for a kind in an undo list; unknown kinds are "Macro".
QString transactionLabel(int kind);

struct CodeEditTransaction {
  int kind = 0;
  CodeBufferPosition caretBefore, caretAfter;
  std::vector<std::unique_ptr<CodeEditAction>> actions;  // in the order they happened

  QString label() const { return transactionLabel(kind); }
};

}  // namespace regmill
