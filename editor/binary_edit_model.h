// The binary editor without its painting: sixteen bytes a row, a caret that stands
// on the high or the low hexadecimal digit of a byte (or types text), moves, typing,
// paste, search, go to, bookmarks, and undo of one record a byte. The model owns its
// bytes (a BinaryEditInterface); the widget that shows it reads caret, top and
// anchor and calls the slots below.
#pragma once
#include <QByteArray>
#include <QString>
#include <cstdint>
#include <memory>
#include <vector>

#include "editor/file_binary_edit.h"

namespace regmill {

struct BinaryEditAction {
  enum Kind : int32_t { Insert = 1, Overwrite = 2, Delete = 4, Extend = 8 };
  int32_t kind;
  uint32_t address;
  uint32_t oldValue;  // the byte before; for Extend the size before
  uint32_t newValue;  // the byte after; for Extend the size after
  int32_t flag;       // 1, and 0 for the records of a paste
  bool operator==(const BinaryEditAction&) const = default;
};

// What the find dialog's field asks for.
struct BinaryFindRequest {
  enum class Kind { Nothing, Byte, Text, Warning };
  Kind kind = Kind::Nothing;
  uint8_t value = 0;   // for Byte
  QString text;        // for Text: one character a byte
  QString warning;     // for Warning, in a box named "Input Warning"
  bool clearField = false;
};

// Reads the find dialog's field, in text or in hexadecimal mode.
BinaryFindRequest parseFindInput(const QString& field, bool hexadecimal);

class BinaryEdit {
 public:
  // `questions` answers the checks and warnings of saving; it must outlive the editor.
  BinaryEdit(std::unique_ptr<BinaryEditInterface> file, SaveQuestions* questions);

  // Insert mode is one setting for all binary editors; it starts off (overwrite).
  static bool insertMode();
  static void toggleOverwrite();

  const BinaryEditInterface& file() const { return *file_; }
  QByteArray bytes() const;
  uint32_t caret() const { return caret_; }
  uint32_t anchor() const { return anchor_; }
  uint32_t top() const { return top_; }
  bool onHighDigit() const { return highDigit_; }
  bool textInput() const { return textInput_; }
  const std::vector<BinaryEditAction>& actions() const { return actions_; }
  int32_t actionIndex() const { return actionIndex_; }
  const std::vector<uint32_t>& bookmarks() const { return bookmarks_; }
  // "At %08X" with the caret.
  QString statusText() const;

  // The rows the view shows; page moves and scrolling go by them. 16 at the start.
  void setVisibleRows(uint32_t rows) { rows_ = rows == 0 ? 1 : rows; }
  void setCaret(uint32_t position);
  void setData(const QByteArray& bytes);

  // Moves; each Extend form keeps the anchor.
  void charLeft();
  void charLeftExtend();
  void charRight();
  void charRightExtend();
  void wordLeft() { setCaret(caret_ - 4); }
  void wordRight() { setCaret(caret_ + 4); }
  void lineStart();
  void lineEnd();
  void lineUp();
  void lineDown();
  void pageUp() { setCaret(caret_ - rows_ * 16); }
  void pageDown();
  void sectorUp() { setCaret(caret_ - 256); }
  void sectorDown() { setCaret(caret_ + 256); }
  void documentStart();
  void documentEnd();
  void scrollUp() { scrollWindow(1); }
  void scrollDown() { scrollWindow(-1); }
  void scrollWindow(int val);
  void setTopLine(int line);
  void selectAll();

  // A typed character: a byte in text input, a digit in hexadecimal input. False
  // when the key isn't used (read-only, or no hexadecimal digit).
  bool type(QChar character);
  void toggleTextHex() { textInput_ = !textInput_; }
  void del();
  void deleteForward() { del(); }
  void deleteBack();
  void paste(const QByteArray& bytes);

  void undo();
  void redo();

  void findNextValue(uint8_t value);
  // A null text searches for the last search text again.
  void findNextValue(const QString& text);
  void findNext() { findNextValue(QString()); }
  // Runs what the find dialog's field asks; gives the warning to show, if any.
  BinaryFindRequest find(const QString& field, bool hexadecimal);
  void findAddress(uint32_t address);
  // Shows the line (from 1, within the file's lines) at the top; the caret stays.
  void gotoLine(uint32_t line);

  void bookmarkToggle();
  void bookmarkNext();
  void bookmarkPrev();
  void bookmarkFirst();
  void bookmarkLast();
  void bookmarkClearAll() { bookmarks_.clear(); }

  void toggleReadOnly();
  void toggleExtendFile();
  // Each warns through the questions as the user is told; true on success.
  bool save();
  bool saveAs(const QString& path);
  // Replaces the bytes by a file's; an empty or unreadable file leaves them as they are.
  bool open(const QString& path);

 private:
  void record(int32_t kind, uint32_t address, uint32_t oldValue, uint32_t newValue, int32_t flag = 1);
  void clearActions();
  uint8_t byteAt(uint32_t address) const;
  void keepCaretInFile();
  void writeByte(uint8_t value);
  void goToAddressWithoutExtending(uint32_t address);

  std::unique_ptr<BinaryEditInterface> file_;
  SaveQuestions* questions_;
  uint32_t caret_ = 0;
  uint32_t anchor_ = 0;
  uint32_t top_ = 0;
  uint32_t rows_ = 16;
  bool highDigit_ = true;
  bool textInput_ = false;
  std::vector<BinaryEditAction> actions_;
  int32_t actionIndex_ = -1;
  QString searchText_;
  std::vector<uint32_t> bookmarks_;
};

}  // namespace regmill
