// The word set that users of the interpreter get: definitions, integer and float
// arithmetic, comparison, stack words, control structures, output, variables and
// comments. It fills a word list of its own, puts it in the search order and makes
// it the list that new definitions go to.
//
// The second stack holds what control words need while a definition runs: DO puts
// the loop's limit and index there (I, J, LEAVE and LOOP read them), and >R R> R@
// share it. While compiling, the control words keep their open structures (IF
// waiting for THEN, BEGIN for UNTIL, DO for LOOP) on a control stack of their own,
// so that a mismatch is found at once.
#pragma once
#include <cstdint>
#include <vector>

#include "script/forth/forth_interpreter.h"

namespace regmill::forth {

class CoreWords {
 public:
  // Addresses are byte addresses of 8-byte cells; the first cell is never handed
  // out, so that 0 is no variable's address.
  static constexpr int64_t kCellBytes = 8;
  static constexpr int64_t kDataCells = int64_t{1} << 16;

  explicit CoreWords(ForthInterpreter& interpreter);

  // The data space: THROW -9 outside what is allotted, -23 off a cell's start.
  Cell& cellAt(int64_t address);
  int64_t here() const { return here_; }
  // Reserves whole cells for `bytes` (rounded up) and gives the first address; a
  // negative count gives space back. THROW -24 beyond the data space.
  int64_t allot(int64_t bytes);

  // An open control structure while a definition is compiled.
  struct Control {
    enum class Kind { Orig, Dest, While, Do };
    Kind kind;
    pcode* code;                    // the branch to resolve, or the label to go back to
    std::vector<pcode**> leaves{};  // of a DO: where its LEAVEs (and ?DO) keep the code past its LOOP
    int innermostDo = -1;           // the index of the DO this structure is in or is, -1 for none
  };
  std::vector<Control> controls;
  void pushControl(Control::Kind kind, pcode* code);
  pcode* lastDefined = nullptr;  // for IMMEDIATE

  ForthInterpreter& interpreter;

 private:
  void installPrimitives(WordList& list);
  void installCompilerWords(WordList& list);

  std::vector<Cell> space_;
  int64_t here_ = kCellBytes;
};

}  // namespace regmill::forth
