// Executable code of the word interpreter. Every word in a word list and every step
// of a compiled definition is a pcode; a definition's steps are chained by `next`.
// The interpreter owns all pcodes until it is destroyed.
#pragma once
#include <QString>
#include <cstdint>

#include "script/forth/forth_cell.h"

namespace regmill::forth {

class ForthInterpreter;

class pcode {
 public:
  static constexpr uint32_t kHasPfa = 1;       // the word has a data field (variables, CREATE)
  static constexpr uint32_t kImmediate = 4;    // runs even while compiling
  static constexpr uint32_t kCompileOnly = 8;  // refused while interpreting

  explicit pcode(QString wordName = {}, uint32_t wordFlags = 0) : name(std::move(wordName)), flags(wordFlags) {}
  virtual ~pcode() = default;
  pcode(const pcode&) = delete;
  pcode& operator=(const pcode&) = delete;

  virtual void execute(ForthInterpreter& interpreter);  // THROW -265 with the name
  virtual int64_t getPfa();                             // `pfa`, or THROW -1 without a data field
  virtual pcode* getCfa();                              // THROW -1
  virtual void store(ForthInterpreter& interpreter);    // THROW -268 with the name

  bool immediate() const { return (flags & kImmediate) != 0; }

  int64_t pfa = 0;
  QString name;
  pcode* next = nullptr;
  QString more;
  uint32_t flags = 0;
};

// A call of another word, as a definition compiles it: runs the chain that starts at
// the target, with the caller's `ip` kept aside.
class PCall : public pcode {
 public:
  explicit PCall(pcode* callee) : target(callee) {}
  void execute(ForthInterpreter& interpreter) override;
  pcode* target;
};

// A literal of a definition: pushes a copy of its cell.
class PLiteralChild : public pcode {
 public:
  explicit PLiteralChild(Cell value) : cell(std::move(value)) {}
  void execute(ForthInterpreter& interpreter) override;
  Cell cell;
};

// A word defined with ':' and its chain of steps. `sealed` is set by ';', after
// which nothing more may be appended.
class PDefinition : public pcode {
 public:
  explicit PDefinition(QString wordName) : pcode(std::move(wordName)) {}
  void execute(ForthInterpreter& interpreter) override;
  void append(pcode* code);

  pcode* first = nullptr;
  pcode* last = nullptr;
  bool sealed = false;
};

}  // namespace regmill::forth
