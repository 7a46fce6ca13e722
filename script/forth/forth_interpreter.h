// The outer interpreter: reads words from a Source, finds them in the search order
// and runs them, or compiles them into the open definition; text that names no word
// is taken as a number. It holds no words of its own: a word set fills the lists.
// Failures are ForthException objects, which `interpret` turns into their message.
#pragma once
#include <QHash>
#include <QString>
#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "script/forth/forth_cell.h"
#include "script/forth/forth_pcode.h"
#include "script/forth/forth_source.h"

namespace regmill::forth {

// Maps upper-case names to words; a new word of a name hides the old one.
using WordList = QHash<QString, pcode*>;

// Receives the text of every failure that `interpret` reports.
class ForthListener {
 public:
  virtual ~ForthListener() = default;
  virtual void error(const QString& text) = 0;
};

// A stack of a fixed number of cells: pushing onto a full one and popping an empty
// one raise the codes given.
class CellStack {
 public:
  static constexpr int kCells = 512;
  CellStack(int32_t overflowCode, int32_t underflowCode) : overflow_(overflowCode), underflow_(underflowCode) {}

  void push(Cell cell);
  Cell pop();
  Cell& fromTop(int index);  // 0 is the top; raises the underflow code when absent
  int count() const { return count_; }
  void clear() { count_ = 0; }

 private:
  std::array<Cell, kCells> cells_;
  int count_ = 0;
  int32_t overflow_;
  int32_t underflow_;
};

class ForthInterpreter {
 public:
  static constexpr int kSearchOrderSize = 20;
  static constexpr int kCallDepth = 1000;  // nested calls of definitions

  ForthInterpreter();
  ~ForthInterpreter();
  ForthInterpreter(const ForthInterpreter&) = delete;
  ForthInterpreter& operator=(const ForthInterpreter&) = delete;

  // Runs `source` to its end. Empty on success, else the failure's message, which the
  // listener gets too; a failure closes the open definition.
  QString interpret(Source& source);
  // What `interpret` does with a failure, for a host that finds one before it.
  QString report(const ForthException& failure);

  // Word lists live as long as the interpreter. The search order is searched from its
  // last list to its first, after the current (compilation) list.
  WordList* createWordList();
  void pushSearchOrder(WordList* list);  // THROW -49 beyond 20 lists
  void popSearchOrder();                 // THROW -50 when empty
  WordList* current = nullptr;
  pcode* findWord(const QString& name) const;

  // The next word of the source up to `delimiter`. With a blank, characters outside
  // "!" to "~" separate words, and a name is forced to upper case; with another
  // delimiter the blank behind the parsing word is stepped over and the text runs to
  // the delimiter or the line's end. Empty at the end of the line.
  QString parseWord(char delimiter = ' ', bool asName = true, bool recordLocation = false);
  void skipLine();

  // Takes ownership of a new pcode.
  template <typename Code, typename... Arguments>
  Code* make(Arguments&&... arguments) {
    auto code = std::make_unique<Code>(std::forward<Arguments>(arguments)...);
    Code* made = code.get();
    codes_.push_back(std::move(code));
    return made;
  }
  // Links `code` behind the last step of `definition`: THROW -256 without one, -270 when sealed.
  void append(pcode* code);

  // Runs the chain from `start` until `ip` is null; `ip` is restored afterwards.
  void runChain(pcode* start);

  // Integer cells only; a float raises -12.
  int64_t popInteger();
  void pushInteger(int64_t value) { data.push(Cell::ofInteger(value)); }
  double popFloating();

  // What the words print; beyond the output limit, if one is set, THROW -20.
  void write(std::string_view bytes);
  // Without a budget (0) a program may run for ever; with one, the step after the
  // last allowed in the interpreter's life raises -28. The output limit bounds the
  // bytes printed in the same way.
  void setStepBudget(uint64_t steps) { stepBudget_ = steps; }
  void setOutputLimit(uint64_t bytes) { outputLimit_ = bytes; }

  // The state that the words read and change. `state` and `definition` last from
  // one source to the next, so that a definition may span lines.
  PDefinition* definition = nullptr;
  pcode* ip = nullptr;
  int state = 0;
  size_t position = 0;
  Source* source = nullptr;
  int wordLine = 0;
  int wordColumn = 0;  // from 1
  QString wordFile;
  CellStack data{-4, -3};
  CellStack second{-5, -6};
  ForthListener* listener = nullptr;
  std::function<void(std::string_view)> output;
  int callDepth = 0;  // nested definitions now running

 private:
  void interpretWord(const QString& word);

  std::array<WordList*, kSearchOrderSize> searchOrder_{};
  int searchCount_ = 0;
  std::vector<std::unique_ptr<WordList>> wordLists_;
  std::vector<std::unique_ptr<pcode>> codes_;
  uint64_t stepBudget_ = 0;
  uint64_t steps_ = 0;
  uint64_t outputLimit_ = 0;
  uint64_t written_ = 0;
};

}  // namespace regmill::forth
