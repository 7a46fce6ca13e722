// The editing commands of a text editor, each built only on the editor's primitives
// (insertText, deleteRange, beginEdit, endEdit): what a command does with a selection,
// how lines are commented, sorted, moved, indented and aligned, how case changes, how
// the clipboard ring, bookmarks, templates and the keystroke recorder work.
#pragma once
#include <QString>
#include <QStringList>
#include <optional>
#include <utility>

#include "editor/code_edit.h"
#include "editor/text_finder.h"

namespace regmill {

// Where copied text goes; the window connects the system clipboard.
class Clipboard {
 public:
  virtual ~Clipboard() = default;
  virtual QString text() const = 0;
  virtual void setText(const QString& text) = 0;
};

class MemoryClipboard : public Clipboard {
 public:
  QString text() const override { return text_; }
  void setText(const QString& text) override { text_ = text; }

 private:
  QString text_;
};

// The entries copied so far, one of them current.
struct ClipboardRing {
  QStringList entries;
  int current = -1;
};

struct CodeTemplate {
  QString name;
  QString description;  // not used when expanding
  QString body;         // "|" marks where the caret goes
  int before = 0;       // characters before and behind the caret that called it
  int behind = 0;
};

class EditCommands {
 public:
  EditCommands(CodeEdit& editor, Clipboard& clipboard);

  CodeEdit& editor() { return editor_; }
  TextFinder& finder() { return finder_; }
  ClipboardRing& clipboardRing() { return ring_; }

  // --- the selection in words of lines; a block selection is a rectangle of columns
  // on screen over its lines
  QString selectedText() const;
  void replaceSelection(const QString& text);
  void deleteSelection();
  void insertAtCaret(const QString& text);
  // The selected lines [first, last): a selection ending at column 0 leaves its end's
  // line out; without a selection, the caret's line.
  std::pair<int, int> selectedLines() const;

  // --- moves and selection. An Extend form moves the caret end of the selection and
  // keeps its anchor; a BlockExtend form makes the selection a block.
  void charLeft();
  void charLeftExtend();
  void charLeftBlockExtend();
  void charRight();
  void charRightExtend();
  void charRightBlockExtend();
  void wordLeft();
  void wordLeftExtend();
  void wordRight();
  void wordRightExtend();
  void lineUp();
  void lineUpExtend();
  void lineUpBlockExtend();
  void lineUpChunk();  // half a page
  void lineDown();
  void lineDownExtend();
  void lineDownBlockExtend();
  void lineDownChunk();
  void lineStartToggle();  // to the first non-blank character, or to column 0 from there
  void lineStartToggleExtend();
  void lineEnd();
  void lineEndExtend();
  void lineNextEnd();  // to the end of the next line
  void downLine();     // to the first non-blank character of the next line
  void topOfWindow();
  void topOfWindowExtend();
  void bottomOfWindow();
  void bottomOfWindowExtend();
  void pageUp();
  void pageUpExtend();
  void pageDown();
  void pageDownExtend();
  void documentStart();
  void documentStartExtend();
  void documentEnd();
  void documentEndExtend();
  // From a bracket at the caret behind its closing partner, from one before the caret
  // to its opening partner (see matchingDelimiter).
  void matchDelimiter();
  void matchDelimiterExtend();
  void selectAll();
  void selectLine();
  void selectWord();
  void overwriteToggle();

  // --- typing and deleting
  void typeText(const QString& text);       // as typed, replacing a selection
  void overwriteText(const QString& text);  // over the characters at the caret
  void deleteBack();
  void deleteForward();
  void deleteWordLeft();
  void deleteWordRight();
  void deleteWord();
  void deleteStartOfLine();
  void deleteEndOfLine();
  void deleteLine();
  void deleteSentence();  // from the caret through the end of its sentence
  void duplicateLine();
  void insertLineAbove();
  void insertLineBelow();
  void enter();
  void breakLine();  // splits the line at the caret, which stays on the first part
  void tab();
  void backtab();
  void lineIndent();   // the selected lines, or the caret's, by the indent size
  void lineOutdent();

  // --- lines
  void commentSelection();
  void uncommentSelection();
  void swapCommentSelection();
  void sortAscending();
  void sortDescending();
  void transposeLines();
  void moveSelectedLineUp();
  void moveSelectedLineDown();
  void tabify();
  void untabify();
  void tabify(int y0, int y1);
  void untabify(int y0, int y1);
  void alignLeft();
  void alignRight();
  void center();
  void columnize();
  void columnTidy();
  void deleteTrailingWhitespace();

  // --- commands that know the C family of languages: comments, strings and
  // character literals hide the brackets in them
  void findNextFunction();
  void findPrevFunction();
  void tidyDocument();  // indents each line by its depth in braces
  // The position of the partner of the bracket at the caret (or just before it);
  // an invalid position when there is none.
  CodeBufferPosition matchingDelimiter(CodeBufferPosition caret) const;

  // --- incremental search: each change of the text searches again from where the
  // search started; closing keeps the text for findNext
  void findIncremental();
  void findIncrementalDialogClosed();
  bool searchIncrementally(const QString& text);

  // --- text
  void uppercase();
  void lowercase();
  void switchcase();
  void uppercaseHex();
  void camelcase();
  void splitcase();
  void transposeWords();
  void surround(const QString& left, const QString& right);
  void cast(const QString& type);
  static QString makeString(QString text);
  static QString makeComment(QString text);
  static QString makeHTML(const QString& text);
  void pasteAsString();
  void pasteAsComment();
  void pasteAsHTML();
  void convertToString();
  void convertToHTML();
  // True when the body ends with "()" and places the caret.
  bool expandTemplate(const CodeTemplate& codeTemplate);

  // --- clipboard
  void copy();
  void copyAppend();
  void copyLines();
  void copyLinesAppend();
  void cut();
  void cutAppend();
  void cutLines();
  void cutLinesAppend();
  // The lines that carry a bookmark.
  void copyMarked();
  void copyMarkedAppend();
  void cutMarked();
  void cutMarkedAppend();
  void paste();
  void cycleClipboardRing();
  void pasteAll();

  // --- bookmarks
  void bookmarkToggle();
  void bookmarkNext();
  void bookmarkPrev();
  void bookmarkFirst();
  void bookmarkLast();
  void bookmarkClearAll();

  // --- undo and redo as commands, so that they are recorded
  void undo();
  void redo();
  void undoAll();
  void redoAll();

  // --- repeat count: 1 to 9 set it, 0 clears it
  void setArgument(int digit);

  // --- the keystroke recorder, one for the process
  enum RecordingState { Idle = 0, Recording = 1, Paused = 2 };
  static RecordingState recordingState();
  static void startRecording();
  static void pauseRecording(bool pause);
  static void stopRecording();
  static void cancelRecording();
  static int recordedCount();
  void playRecording();
  // Runs a command by its number; false for a number without a command here.
  bool runCommand(int number, const QString& text = {});

  // Commands without arguments by their name (`sortAscending`), for batch runs.
  using Slot = void (EditCommands::*)();
  static Slot slotNamed(const QString& name);
  static QStringList slotNames();

 private:
  // The frame of a command: records it while recording, asks canEdit, opens the bracket.
  bool beginCommand(int number, int kind, int flags = 0);
  enum class Extend { None, Stream, Block };
  void moveTo(int number, CodeBufferPosition target, Extend extend);
  void pageMove(int number, int direction, Extend extend);
  void indentLines(bool caretToLineStart);
  void outdentLines();
  QString markedLinesText() const;
  void copyMarkedLines(int number, bool append);
  void cutMarkedLines(int number, bool append);
  void moveToFunction(bool forward);
  void record(int number, const QString& text = {});
  int takeRepeatCount();
  void moveCaret(CodeBufferPosition caret);
  CodeBufferPosition wordStartBefore(CodeBufferPosition position) const;
  CodeBufferPosition wordEndBehind(CodeBufferPosition position) const;
  void deleteTo(int number, CodeBufferPosition from, CodeBufferPosition to);
  void changeCase(int kind, QString (*convert)(const QString&));
  void replaceLines(int first, int last, const QStringList& lines);
  void insertIndentation(CodeBufferPosition position, int columns);
  void indentLine(int line);
  void shiftBlock(int columns);
  void rewriteWhitespace(int y0, int y1, bool toTabs);
  void moveLines(int direction);
  void sortLines(bool descending, int kind);
  void align(int mode);
  QStringList alignedLines(const QStringList& lines, int mode) const;
  void copyText(const QString& text, bool append);
  void copySelectedLines(int number, bool append);
  void cutSelection(int number, bool append);
  void cutSelectedLines(int number, bool append);
  void jumpToBookmark(int line);
  int columnForScreen(int line, int screenColumn) const;
  bool blockSelected() const;
  // The lines of a block selection, also of one whose two columns are equal: typing
  // and templates go into each of them.
  std::optional<std::pair<int, int>> blockLines() const;
  void setEmptyBlock(int first, int last, int screenColumn);
  // The block's columns on a line, within the line's text.
  std::pair<int, int> blockColumns(int line) const;
  QString runOfWhitespace(int startColumn, int width) const;

  CodeEdit& editor_;
  Clipboard& clipboard_;
  TextFinder finder_;
  ClipboardRing ring_;
  int repeatCount_ = 0;
};

}  // namespace regmill
