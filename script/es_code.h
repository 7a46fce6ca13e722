// A compiled code block and the instruction set of the machine. An instruction is
// one opcode byte and 16-bit big-endian operands. A block is immutable once
// generated: every closure of a function shares its block.
#pragma once
#include <QString>
#include <cstdint>
#include <unordered_map>
#include <vector>

#include "script/es_value.h"

namespace regmill::script {

class ESEngine;
class ESObject;

enum class Op : uint8_t {
  NUM, NUM_0, NUM_1, NUM_2, NUM_3, NUM_4, NUM_M1, NULL_, TRUE_, FALSE_, UNDEFINED, THIS, STR, NEW, NEWA, DROP,
  DUP, VOID, TYPEOF, ENUM, NEXT, CLOSURE, MKARRAY, NEWOBJ, WITH, ENDWITH, INITF, CALLW, CALLF, CALLG, CALLA, CALLAM,
  CALLL, CALLLM, CALLX, GETW, GETF, GETG, GETA, GETL, GETAM, GETLM, GETX, PUTW, PUTF, PUTG, PUTA, PUTL, PUTAM,
  PUTLM, PUTX, ADD, ADDX, SUB, SUBX, MUL, MULX, DIV, DIVX, MOD, MODX, BITAND, BITANDX, BITOR, BITORX, BITXOR,
  BITXORX, SHL, SHLX, SHR, SHRX, USHR, USHRX, INC, INCG, INCA, INCL, INCM, INCLM, DEC, DECG, DECA, DECL, DECAM,
  DECLM, PREINCX, POSTINCX, PREDECX, POSTDECX, DELETEW, DELETEX, LT, LE, EQ, NE, IDENTITY, NIDENTITY, LOGNOT,
  BITNOT, POS, NEG, LOGAND, LOGOR, J, JT, JF, JT_DROP, JLT, RET, RETU,
  // Beyond the classic set: a call of a value that is neither a name nor a member,
  // and `++`/`--` on a member with object and key on the stack.
  CALLV, PREINCP, POSTINCP, PREDECP, POSTDECP,
  Count_
};

enum class OperandKind : uint8_t { Const, Atom, GlobalSlot, Slot, Count, Target, Function };

struct OpInfo {
  const char* mnemonic;
  uint8_t operandCount;
  OperandKind first;  // kind of the first operand; a second one is always a count
};
const OpInfo& opInfo(Op op);

struct ESCode {
  std::vector<uint8_t> bytes;
  std::vector<uint32_t> lines;  // source line of every byte, operands included
  std::vector<double> numbers;  // constants, without duplicates
  int32_t paramCount = 0;
  int32_t localCount = 0;
  bool usesEval = false;
  bool needsActivation = false;
  // Names and attributes: formal parameters first, then locals, in order of declaration.
  std::vector<ESProperty> variables;

  // Compile time only: where each name and each number stands in the tables
  // above, so that a large block compiles in linear time.
  std::unordered_map<const ESAtom*, uint32_t> variableIndex;
  std::unordered_map<uint64_t, uint32_t> numberIndex;  // by the double's bit pattern
};

// The listing of a block: "%04x:  " and the mnemonic, a tab and the operands. The
// global object resolves the names of global slots.
QString disassemble(const ESCode& code, const ESEngine& engine, const ESObject* global);

}  // namespace regmill::script
