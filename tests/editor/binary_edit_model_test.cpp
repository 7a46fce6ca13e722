// The binary editor model: random edits, moves, undo and redo side by side with a
// plain byte array that keeps a copy per undo step; the rules of the digit caret and
// the size modes on hand-made cases; search, bookmarks; saving with backups and the
// check before a file is written.
#include "editor/binary_edit_model.h"

#include <gtest/gtest.h>

#include <QStringList>
#include <deque>
#include <random>

#include "editor/save_checks.h"
#include "tests/support/scratch_folder.h"

namespace regmill {
namespace {

using testing::ScratchFolder;

// Answers the checks from a list (yes once it runs out) and logs what was asked.
struct ScriptedQuestions : SaveQuestions {
  bool ask(const QString& title, const QString& text) override {
    log.append(title + " | " + text);
    const bool answer = answers.empty() || answers.front();
    if (!answers.empty()) answers.pop_front();
    return answer;
  }
  void warn(const QString& objectName, const QString& title, const QString& text) override {
    log.append(objectName + " | " + title + " | " + text);
  }
  std::deque<bool> answers;
  QStringList log;
};

BinaryEdit editorWith(const QByteArray& bytes) {
  BinaryEdit editor(std::make_unique<FileBinaryEdit>(QString(), nullptr), nullptr);
  editor.setData(bytes);
  return editor;
}

// The plain model: the bytes after each undo step, and how many steps are done.
struct ByteHistory {
  std::vector<QByteArray> states;
  size_t done = 0;

  const QByteArray& bytes() const { return states[done]; }
  void step(const QByteArray& after) {
    states.resize(done + 1);
    states.push_back(after);
    ++done;
  }
};

TEST(BinaryEdit, RandomEditsAndUndoMatchAPlainByteArray) {
  std::mt19937 random(29);
  for (int run = 0; run < 40; ++run) {
    BinaryEdit editor = editorWith(QByteArray("\x10\x20\x30\x40\x50", 5));
    if (BinaryEdit::insertMode()) BinaryEdit::toggleOverwrite();
    ByteHistory model{{editor.bytes()}};
    for (int operation = 0; operation < 300; ++operation) {
      QByteArray expected = model.bytes();
      const uint32_t caret = editor.caret();
      const bool fixed = editor.file().isFixedLength();
      const bool inserting = BinaryEdit::insertMode() && !fixed;
      auto put = [&](uint32_t at, char byte, bool insert) {  // one undo step
        insert ? void(expected.insert(at, byte)) : void(expected[at] = byte);
        model.step(expected);
      };
      auto sizeAtLeast = [&](uint32_t size) {
        if (!fixed && uint32_t(expected.size()) < size) {
          expected.resize(size, '\0');
          model.step(expected);
        }
      };
      switch (random() % 14) {
        case 0: case 1: {  // a hexadecimal digit
          const int digit = int(random() % 16);
          const char typed = "0123456789abcdef"[digit];
          const uint8_t old = uint8_t(expected[caret]);
          const bool high = editor.onHighDigit();
          put(caret, char(high ? digit * 16 + (inserting ? 0 : old & 15) : (old & 0xF0) + digit), high && inserting);
          const bool movesOn = !high && caret + 1 < uint32_t(expected.size());  // else it stays
          ASSERT_TRUE(editor.type(QLatin1Char(typed)));
          if (movesOn) sizeAtLeast(caret + 2);
          break;
        }
        case 2: {  // a byte in text input
          editor.toggleTextHex();
          const char typed = char('A' + random() % 26);
          put(caret, typed, inserting);
          ASSERT_TRUE(editor.type(QLatin1Char(typed)));
          sizeAtLeast(caret + 2);
          editor.toggleTextHex();
          break;
        }
        case 3: case 4: {  // delete at the caret, or back from it
          const bool back = random() % 2;
          if (!back || caret > 0) {
            fixed ? void(expected[caret - back] = 0) : void(expected.remove(caret - back, 1));
            model.step(expected);
          }
          back ? editor.deleteBack() : editor.del();
          break;
        }
        case 5: {  // a paste is one step a byte
          const QByteArray pasted = QByteArray::number(uint(random() % 1000));
          for (qsizetype at = 0; at < pasted.size(); ++at) {
            if (fixed && caret + at >= uint32_t(expected.size())) break;
            put(caret + at, pasted[at], !fixed);
          }
          editor.paste(pasted);
          break;
        }
        case 6: case 7:
          for (int count = 1 + random() % 3; count > 0 && model.done > 0; --count) {
            --model.done;
            editor.undo();
          }
          break;
        case 8:
          if (model.done + 1 < model.states.size()) ++model.done;
          editor.redo();
          break;
        case 9:
          sizeAtLeast(caret + 5);
          editor.wordRight();
          break;
        case 10: {
          static void (BinaryEdit::*const moves[])() = {&BinaryEdit::charLeft, &BinaryEdit::charRight,
                                                        &BinaryEdit::lineUp,   &BinaryEdit::lineDown,
                                                        &BinaryEdit::documentStart, &BinaryEdit::documentEnd};
          (editor.*moves[random() % 6])();
          break;
        }
        case 11:
          sizeAtLeast(uint32_t(expected.size()) + 1);
          editor.selectAll();
          break;
        case 12:
          BinaryEdit::toggleOverwrite();
          break;
        case 13:  // a change of size mode can't be undone across
          editor.toggleExtendFile();
          model = ByteHistory{{expected}};
          break;
      }
      ASSERT_EQ(editor.bytes(), model.bytes()) << "run " << run << " operation " << operation;
      ASSERT_EQ(editor.actionIndex() + 1, int32_t(model.done)) << "run " << run << " operation " << operation;
      // An empty file grows a zero byte that no undo knows of at the next move: the
      // run ends there.
      if (editor.file().size() == 0) break;
      ASSERT_LT(editor.caret(), editor.file().size());
    }
  }
  if (BinaryEdit::insertMode()) BinaryEdit::toggleOverwrite();
}

TEST(BinaryEdit, DigitsSizesAndUndoFollowTheCaretRules) {
  BinaryEdit editor = editorWith(QByteArray(2, '\0'));
  EXPECT_FALSE(editor.type(QLatin1Char('g')));
  editor.type(QLatin1Char('4'));
  editor.type(QLatin1Char('1'));
  EXPECT_EQ(editor.caret(), 1u);  // the low digit typed, the caret is on the next byte
  // Behind the last byte of an extendable file: one zero byte more, undone by one
  // undo that leaves the caret on the last byte.
  editor.setCaret(2);
  EXPECT_EQ(editor.actions().back(), (BinaryEditAction{BinaryEditAction::Extend, 2, 2, 3, 1}));
  editor.undo();
  EXPECT_EQ(editor.bytes(), QByteArray("\x41\x00", 2));
  EXPECT_EQ(editor.caret(), 1u);
  // Delete in a file of fixed length writes a zero and moves on.
  editor.toggleExtendFile();
  editor.documentStart();
  editor.del();
  EXPECT_EQ(editor.bytes(), QByteArray("\x00\x00", 2));
  EXPECT_EQ(editor.caret(), 1u);

  // An empty file becomes one zero byte when the caret is set, with nothing to undo.
  BinaryEdit empty = editorWith(QByteArray());
  empty.setCaret(0);
  EXPECT_EQ(empty.bytes(), QByteArray(1, '\0'));
  EXPECT_EQ(empty.actionIndex(), -1);

  // A move before address 0 wraps round and moves nothing; the status shows the caret.
  BinaryEdit moves = editorWith(QByteArray(300, 'x'));
  moves.sectorUp();
  EXPECT_EQ(moves.caret(), 0u);
  moves.sectorDown();
  moves.lineEnd();
  EXPECT_EQ(moves.statusText(), "At 0000010F");
  moves.charRight();
  EXPECT_EQ(moves.caret(), 0x110u);
  moves.charLeft();
  moves.charLeft();
  EXPECT_EQ(moves.caret(), 0x10Fu);  // back one byte to its low digit, then its high one
  EXPECT_TRUE(moves.onHighDigit());
}

TEST(BinaryEdit, SearchesAndBookmarksWrapRound) {
  BinaryEdit editor = editorWith(QByteArray("ab\x01xyab\x01z", 9));
  editor.setCaret(8);
  editor.findNextValue(uint8_t(1));
  EXPECT_EQ(editor.caret(), 2u);  // wrapped from the last byte to the start
  editor.findNextValue(QStringLiteral("ab\x01"));
  EXPECT_EQ(editor.caret(), 5u);
  editor.findNext();
  EXPECT_EQ(editor.caret(), 0u);
  editor.findNextValue(QStringLiteral("yz"));
  EXPECT_EQ(editor.caret(), 0u);
  editor.findAddress(100);  // a go to never extends
  EXPECT_EQ(editor.caret(), 8u);
  EXPECT_EQ(editor.file().size(), 9u);

  struct Field {
    const char* text;
    bool hexadecimal;
    BinaryFindRequest::Kind kind;
    const char* found;  // the byte or text searched for, or the warning
  };
  using Kind = BinaryFindRequest::Kind;
  const Field fields[] = {
      {"", false, Kind::Nothing, ""},         {"x", false, Kind::Byte, "x"},
      {"xy", false, Kind::Text, "xy"},        {" 4 1 ", true, Kind::Byte, "A"},
      {"7", true, Kind::Byte, "\x07"},        {"414", true, Kind::Warning, "Please enter an even length argument."},
      {"41 42", true, Kind::Text, "AB"},      {"4g", true, Kind::Warning, "Invalid argument."},
      {"   ", true, Kind::Nothing, ""},
  };
  for (const Field& field : fields) {
    const BinaryFindRequest request = parseFindInput(field.text, field.hexadecimal);
    EXPECT_EQ(request.kind, field.kind) << field.text;
    const QString found = request.kind == Kind::Byte      ? QString(QChar(request.value))
                          : request.kind == Kind::Warning ? request.warning
                                                          : request.text;
    EXPECT_EQ(found, QString::fromLatin1(field.found)) << field.text;
  }

  BinaryEdit marked = editorWith(QByteArray(64, '\0'));
  for (uint32_t address : {16u, 40u, 8u}) {
    marked.findAddress(address);
    marked.bookmarkToggle();
  }
  marked.documentStart();
  marked.bookmarkNext();
  EXPECT_EQ(marked.caret(), 8u);
  marked.bookmarkNext();
  EXPECT_EQ(marked.caret(), 16u);
  marked.bookmarkPrev();
  marked.bookmarkPrev();
  EXPECT_EQ(marked.caret(), 40u);  // back to 8, then wrapped to the greatest
  marked.bookmarkToggle();
  marked.bookmarkLast();
  EXPECT_EQ(marked.caret(), 16u);
}

TEST(BinaryEdit, SavesKeepNumberedBackupsAndAskBeforeReplacing) {
  ScratchFolder folder;
  ScriptedQuestions questions;
  const QString path = QString::fromStdString(folder.write("image.bin", "v0"));
  setBackupCount(3);
  BinaryEdit editor(std::make_unique<FileBinaryEdit>(path, &questions), &questions);
  for (char version : {'1', '2', '3', '4'}) {
    editor.setData(QByteArray("v") + version);
    editor.type(QLatin1Char('a'));  // 'v' is 0x76: 0xA6, an undo record that the save clears
    ASSERT_TRUE(editor.save());
    EXPECT_EQ(editor.actionIndex(), -1);
  }
  EXPECT_EQ(folder.read("image.bin"), "\xa6" "4");
  EXPECT_EQ(folder.read("image.bin.bak"), "\xa6" "3");
  EXPECT_EQ(folder.read("image.bin.bak.2"), "\xa6" "2");
  EXPECT_EQ(folder.read("image.bin.bak.3"), "\xa6" "1");
  EXPECT_EQ(folder.entryCount(), 4u);

  // Replacing an existing file is asked; a refusal leaves it alone.
  const QString other = QString::fromStdString(folder.write("other.bin", "keep"));
  questions.answers = {false};
  EXPECT_FALSE(editor.saveAs(other));
  EXPECT_EQ(folder.read("other.bin"), "keep");
  EXPECT_EQ(questions.log, QStringList({"File 'other.bin' exists | The file '" + other +
                                            "' already exists.\n\nDo you want to replace it?",
                                        "Save Warning | Save | Can not save file!"}));
  // A missing folder is made when the user agrees, and the editor takes the new path.
  questions.log.clear();
  const QString nested = QString::fromStdString(folder.file("new/image.bin"));
  EXPECT_TRUE(editor.saveAs(nested));
  EXPECT_EQ(questions.log, QStringList({"Directory does not exist | The directory '" +
                                        QString::fromStdString(folder.file("new")) +
                                        "' does not exist.\n\nDo you want to create it?"}));
  EXPECT_EQ(editor.file().path(), nested);
  EXPECT_EQ(folder.read("new/image.bin"), "\xa6" "4");

  setBackupCount(0);
  ASSERT_TRUE(editor.save());
  EXPECT_FALSE(folder.exists("new/image.bin.bak"));
  setBackupCount(1);

  // A read-only file refuses edits and saving.
  editor.toggleReadOnly();
  EXPECT_FALSE(editor.type(QLatin1Char('1')));
  EXPECT_FALSE(editor.save());
  EXPECT_EQ(questions.log.last(), "Save Warning | Save | Can not save file!\nTry Save As.");
}

}  // namespace
}  // namespace regmill
