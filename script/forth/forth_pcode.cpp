#include "script/forth/forth_pcode.h"

#include "script/forth/forth_interpreter.h"

namespace regmill::forth {

void pcode::execute(ForthInterpreter&) { throw ForthException{-265, name}; }

int64_t pcode::getPfa() {
  if (flags & kHasPfa) return pfa;
  // The text is joined to the name as it stands, without a blank.
  throw ForthException{-1, name + QStringLiteral("does not have a PFA")};
}

pcode* pcode::getCfa() { throw ForthException{-1, QStringLiteral("no CFA")}; }

void pcode::store(ForthInterpreter&) { throw ForthException{-268, name}; }

void PCall::execute(ForthInterpreter& interpreter) { interpreter.runChain(target); }

void PLiteralChild::execute(ForthInterpreter& interpreter) { interpreter.data.push(cell); }

void PDefinition::append(pcode* code) {
  if (sealed) throw ForthException{-270, name};
  if (last)
    last->next = code;
  else
    first = code;
  last = code;
}

namespace {

// Counts the nesting of definitions, so that endless recursion ends with a THROW
// instead of exhausting the machine's stack; undone on the way out of a failure too.
class CallFrame {
 public:
  explicit CallFrame(ForthInterpreter& interpreter) : interpreter_(interpreter) {
    if (interpreter_.callDepth >= ForthInterpreter::kCallDepth) throw ForthException{-5};
    ++interpreter_.callDepth;
  }
  ~CallFrame() { --interpreter_.callDepth; }
  CallFrame(const CallFrame&) = delete;
  CallFrame& operator=(const CallFrame&) = delete;

 private:
  ForthInterpreter& interpreter_;
};

}  // namespace

// A definition must leave the second stack as it found it: loop parameters and
// values put there with >R belong to the definition that put them.
void PDefinition::execute(ForthInterpreter& interpreter) {
  CallFrame frame(interpreter);
  const int secondDepth = interpreter.second.count();
  interpreter.runChain(first);
  if (interpreter.second.count() != secondDepth) throw ForthException{-25, name};
}

}  // namespace regmill::forth
