// The text editor without its painting: the line store, the caret and selection, the
// file state, and the primitives through which every change passes and records itself
// for undo and redo. Commands (edit_commands.h) are built on these primitives alone.
// A position outside the document reads as empty; nothing here fails.
#pragma once
#include <QDateTime>
#include <QObject>
#include <QString>
#include <algorithm>
#include <deque>
#include <memory>
#include <utility>

#include "base/status.h"
#include "editor/code_buffer.h"
#include "editor/undo_actions.h"

namespace regmill {

struct CodeEditSettings {
  int tabSize = 4;
  int indentSize = 4;
  bool insertTabs = false;               // indentation is written with tab characters
  bool indentPreprocessorLines = false;
  int indentMode = 1;                    // 1: automatic indentation on enter
  bool overwrite = false;
  bool detectUtf8 = true;
  QString defaultEncoding = QStringLiteral("Default");  // "Default": the locale's codec
  int defaultLineEnding = 1;             // the native ending: LF
  int copyWithoutSelection = 1;          // 1 copies the caret's line, 2 its word, else nothing
};

// One question each, so that the logic never depends on a dialog.
class ReadOnlyHandler {
 public:
  virtual ~ReadOnlyHandler() = default;
  // Whether the user makes a read-only document editable.
  virtual bool makeEditable(const QString& path) = 0;
};

class MessageHandler {
 public:
  virtual ~MessageHandler() = default;
  virtual void showMessage(const QString& title, const QString& text) = 0;
};

enum class SelectionMode { Stream = 0, Block = 1 };

class CodeEdit : public QObject {
  Q_OBJECT

 public:
  enum EditState { Editable = 0, AskToEdit = 1, ReadOnly = 2 };
  enum ByteOrderMark { NoMark = 0, Utf8Mark = 1, Utf16LittleEndianMark = 2, Utf16BigEndianMark = 3 };
  enum LineEnding { CrLf = 0, Lf = 1, Cr = 2, UnknownEnding = 3 };

  explicit CodeEdit(QObject* parent = nullptr);
  ~CodeEdit() override;

  CodeEditSettings& settings() { return settings_; }
  const CodeBuffer& buffer() const { return buffer_; }
  int lineCount() const { return buffer_.lineCount(); }
  QString line(int index) const { return buffer_.line(index); }
  // A line's flags (bit 0: a bookmark); they move with the line and aren't undone.
  uint32_t lineFlags(int index) const;
  void setLineFlags(int index, uint32_t flags);
  void clearLineFlagEverywhere(uint32_t flag);
  // The whole text, lines joined by "\n".
  QString text() const;
  // Replaces the document without undo and clears the undo lists.
  void setText(const QString& text);

  // --- gates and state
  void setEditState(EditState state) { editState_ = state; }
  void setReadOnlyHandler(ReadOnlyHandler* handler) { readOnlyHandler_ = handler; }
  void setMessageHandler(MessageHandler* handler) { messageHandler_ = handler; }
  bool canEdit();
  bool readOnly() const { return editState_ != Editable; }
  bool modified() const { return buffer_.modified(); }
  void setModified(bool modified) { buffer_.setModified(modified); }
  bool canUndo() const { return !done_.empty(); }
  bool canRedo() const { return !undone_.empty(); }
  const std::deque<std::unique_ptr<CodeEditTransaction>>& doneTransactions() const { return done_; }
  const std::deque<std::unique_ptr<CodeEditTransaction>>& undoneTransactions() const { return undone_; }
  QString statusMessage() const { return statusMessage_; }
  void showStatus(const QString& text);
  void showMessage(const QString& title, const QString& text);

  // --- caret and selection
  CodeBufferPosition caret() const { return caret_; }
  void setCaret(CodeBufferPosition caret) { caret_ = caret; }
  // A selection exists when both ends are positions (and, in block mode, its columns
  // on screen differ).
  bool hasSelection() const;
  CodeBufferPosition selectionAnchor() const { return anchor_; }
  CodeBufferPosition selectionEnd() const { return selectionEnd_; }
  CodeBufferPosition selectionStart() const { return std::min(anchor_, selectionEnd_); }
  CodeBufferPosition selectionLast() const { return std::max(anchor_, selectionEnd_); }
  SelectionMode selectionMode() const { return selectionMode_; }
  void setSelection(CodeBufferPosition anchor, CodeBufferPosition end, SelectionMode mode = SelectionMode::Stream);
  void clearSelection();
  // The run of letters, digits and "_" that the position touches (the one at it first,
  // else the one ending at it); an empty range when there is none.
  std::pair<CodeBufferPosition, CodeBufferPosition> wordAt(CodeBufferPosition position) const;
  static bool isWordCharacter(QChar c) { return c.isLetterOrNumber() || c == u'_'; }
  // The column on screen of a column of a line, tabs expanded.
  int screenColumn(int line, int column) const;
  int blockLeftColumn() const { return std::min(blockAnchorColumn_, blockEndColumn_); }
  // --- the rows a view shows, by which page moves and searches scroll. Without a view a
  // page is 24 rows, the height of a terminal.
  int topLine() const { return topLine_; }
  void setTopLine(int line) { topLine_ = std::clamp(line, 0, std::max(0, lineCount() - 1)); }
  int visibleLines() const { return visibleLines_; }
  void setVisibleLines(int rows) { visibleLines_ = std::max(1, rows); }

  int blockRightColumn() const { return std::max(blockAnchorColumn_, blockEndColumn_); }

  // --- primitives
  void insertText(CodeBufferPosition position, const QString& text, bool record = true);
  void deleteRange(CodeBufferPosition from, CodeBufferPosition to, bool record = true);
  // Makes virtual space real: newlines below the last line, blanks behind a line's end.
  void ensurePosition(CodeBufferPosition position);
  QString textOf(CodeBufferPosition from, CodeBufferPosition to) const { return buffer_.textOf(from, to); }
  // Replaces the text `oldText` at the position by `newText`, with the caret behind it;
  // recorded as one CodeEditReplaceAction.
  void replaceText(CodeBufferPosition position, const QString& oldText, const QString& newText, bool record = true);
  void beginEdit(int flags, int kind);
  void endEdit(int flags);
  void recordAction(std::unique_ptr<CodeEditAction> action);
  bool isEditing() const { return depth_ > 0; }

  void undo();
  void redo();
  void undoAll();
  void redoAll();

  // The position behind `text` inserted at `position`.
  static CodeBufferPosition endOf(CodeBufferPosition position, const QString& text);

  // --- file state (code_edit_file.cpp)
  QString path() const { return path_; }
  QString encodingName() const { return encodingName_; }
  void setEncodingName(const QString& name) { encodingName_ = name; }
  int byteOrderMark() const { return byteOrderMark_; }
  int lineEnding() const { return lineEnding_; }
  void setLineEnding(int ending) { lineEnding_ = ending; }
  QDateTime fileTime() const { return fileTime_; }
  // Whether some bytes of the loaded file had no character in its codec.
  bool lossyDecoding() const { return lossyDecoding_; }
  qint64 fileSize() const { return fileSize_; }
  // Reads a file; false, with the message shown, when it can't be opened or locked.
  bool load(const QString& path);
  // The document in the file's own form: mark, codec and line ending.
  QByteArray encodedText() const;
  // Writes through a temporary file and a rename; the document is then unmodified.
  Status save(const QString& path);

 signals:
  // Lines counted from 1: a positive delta adds lines at `line`, a negative one
  // removes -delta lines from `line` on.
  void numberOfLinesChanged(int line, int delta);
  void statusMessageChanged(const QString& text);

 private:
  friend class CodeEditReplaceAction;
  // Replaces the text from `position` to the end of `current` by `replacement`,
  // unrecorded, and signals a change in the number of lines.
  void swapText(CodeBufferPosition position, const QString& current, const QString& replacement);
  void signalLineChange(int linesBefore, int line);
  void clearUndo();
  void repeatAll(void (CodeEdit::*step)(), bool (CodeEdit::*more)() const, const char* message);

  CodeEditSettings settings_;
  CodeBuffer buffer_;
  EditState editState_ = Editable;
  ReadOnlyHandler* readOnlyHandler_ = nullptr;
  MessageHandler* messageHandler_ = nullptr;
  QString statusMessage_;

  CodeBufferPosition caret_{0, 0};
  CodeBufferPosition anchor_, selectionEnd_;
  SelectionMode selectionMode_ = SelectionMode::Stream;
  int blockAnchorColumn_ = -1, blockEndColumn_ = -1;
  int topLine_ = 0;
  int visibleLines_ = 24;

  std::deque<std::unique_ptr<CodeEditTransaction>> done_, undone_;  // newest first
  std::unique_ptr<CodeEditTransaction> current_;
  int depth_ = 0;
  int pendingFlags_ = 0;
  bool replaying_ = false;  // undo and redo record nothing
  uint32_t editCounter_ = 0;

  QString path_;
  QString encodingName_;
  int byteOrderMark_ = NoMark;
  int lineEnding_ = UnknownEnding;
  QDateTime fileTime_;
  qint64 fileSize_ = 0;
  bool lossyDecoding_ = false;
};

}  // namespace regmill
