#include "script/es_code.h"

#include "script/es_engine.h"
#include "script/es_object.h"

namespace regmill::script {

namespace {

using K = OperandKind;

constexpr OpInfo kOps[] = {
    {"NUM", 1, K::Const}, {"NUM_0", 0, K::Const}, {"NUM_1", 0, K::Const}, {"NUM_2", 0, K::Const},
    {"NUM_3", 0, K::Const}, {"NUM_4", 0, K::Const}, {"NUM_M1", 0, K::Const}, {"NULL", 0, K::Const},
    {"TRUE", 0, K::Const}, {"FALSE", 0, K::Const}, {"UNDEFINED", 0, K::Const}, {"THIS", 0, K::Const},
    {"STR", 1, K::Atom}, {"NEW", 0, K::Const}, {"NEWA", 1, K::Count}, {"DROP", 0, K::Const},
    {"DUP", 0, K::Const}, {"VOID", 0, K::Const}, {"TYPEOF", 0, K::Const}, {"ENUM", 0, K::Const},
    {"NEXT", 1, K::Target}, {"CLOSURE", 1, K::Function}, {"MKARRAY", 1, K::Count}, {"NEWOBJ", 0, K::Const},
    {"WITH", 0, K::Const}, {"ENDWITH", 0, K::Const}, {"INITF", 1, K::Atom}, {"CALLW", 2, K::Atom},
    {"CALLF", 2, K::Atom}, {"CALLG", 2, K::GlobalSlot}, {"CALLA", 2, K::Slot}, {"CALLAM", 2, K::Slot},
    {"CALLL", 2, K::Slot}, {"CALLLM", 2, K::Slot}, {"CALLX", 1, K::Count}, {"GETW", 1, K::Atom},
    {"GETF", 1, K::Atom}, {"GETG", 1, K::GlobalSlot}, {"GETA", 1, K::Slot}, {"GETL", 1, K::Slot},
    {"GETAM", 1, K::Slot}, {"GETLM", 1, K::Slot}, {"GETX", 0, K::Const}, {"PUTW", 1, K::Atom},
    {"PUTF", 1, K::Atom}, {"PUTG", 1, K::GlobalSlot}, {"PUTA", 1, K::Slot}, {"PUTL", 1, K::Slot},
    {"PUTAM", 1, K::Slot}, {"PUTLM", 1, K::Slot}, {"PUTX", 0, K::Const}, {"ADD", 0, K::Const},
    {"ADDX", 0, K::Const}, {"SUB", 0, K::Const}, {"SUBX", 0, K::Const}, {"MUL", 0, K::Const},
    {"MULX", 0, K::Const}, {"DIV", 0, K::Const}, {"DIVX", 0, K::Const}, {"MOD", 0, K::Const},
    {"MODX", 0, K::Const}, {"BITAND", 0, K::Const}, {"BITANDX", 0, K::Const}, {"BITOR", 0, K::Const},
    {"BITORX", 0, K::Const}, {"BITXOR", 0, K::Const}, {"BITXORX", 0, K::Const}, {"SHL", 0, K::Const},
    {"SHLX", 0, K::Const}, {"SHR", 0, K::Const}, {"SHRX", 0, K::Const}, {"USHR", 0, K::Const},
    {"USHRX", 0, K::Const}, {"INC", 0, K::Const}, {"INCG", 1, K::GlobalSlot}, {"INCA", 1, K::Slot},
    {"INCL", 1, K::Slot}, {"INCM", 1, K::Slot}, {"INCLM", 1, K::Slot}, {"DEC", 0, K::Const},
    {"DECG", 1, K::GlobalSlot}, {"DECA", 1, K::Slot}, {"DECL", 1, K::Slot}, {"DECAM", 1, K::Slot},
    {"DECLM", 1, K::Slot}, {"PREINCX", 0, K::Const}, {"POSTINCX", 0, K::Const}, {"PREDECX", 0, K::Const},
    {"POSTDECX", 0, K::Const}, {"DELETEW", 1, K::Atom}, {"DELETEX", 0, K::Const}, {"LT", 0, K::Const},
    {"LE", 0, K::Const}, {"EQ", 0, K::Const}, {"NE", 0, K::Const}, {"IDENTITY", 0, K::Const},
    {"NIDENTITY", 0, K::Const}, {"LOGNOT", 0, K::Const}, {"BITNOT", 0, K::Const}, {"POS", 0, K::Const},
    {"NEG", 0, K::Const}, {"LOGAND", 1, K::Target}, {"LOGOR", 1, K::Target}, {"J", 1, K::Target},
    {"JT", 1, K::Target}, {"JF", 1, K::Target}, {"JT_DROP", 1, K::Target}, {"JLT", 1, K::Target},
    {"RET", 0, K::Const}, {"RETU", 0, K::Const}, {"CALLV", 1, K::Count}, {"PREINCP", 0, K::Const},
    {"POSTINCP", 0, K::Const}, {"PREDECP", 0, K::Const}, {"POSTDECP", 0, K::Const},
};
static_assert(std::size(kOps) == size_t(Op::Count_));

QString operandText(OperandKind kind, uint32_t operand, const ESCode& code, const ESEngine& engine,
                    const ESObject* global) {
  switch (kind) {
    case K::Const:
      return operand < code.numbers.size() ? QString::asprintf("%g", code.numbers[operand]) : QStringLiteral("?");
    case K::Atom:
      return operand < engine.atomCount() ? engine.atomAt(operand)->text : QStringLiteral("?");
    case K::GlobalSlot: {
      const ESAtom* name = operand < global->slotCount() ? global->properties()[operand].name : nullptr;
      return QStringLiteral("%1 [idx=%2]").arg(name ? name->text : QString(), QString::number(operand));
    }
    case K::Target:
      return QString::asprintf("%04x", operand);
    default:
      return QString::number(operand);
  }
}

}  // namespace

const OpInfo& opInfo(Op op) { return kOps[size_t(op)]; }

QString disassemble(const ESCode& code, const ESEngine& engine, const ESObject* global) {
  QString out;
  size_t pc = 0;
  while (pc < code.bytes.size()) {
    out += QString::asprintf("%04x:  ", unsigned(pc));
    uint8_t byte = code.bytes[pc];
    if (byte >= uint8_t(Op::Count_)) {
      out += QStringLiteral("??\n");
      ++pc;
      continue;
    }
    const OpInfo& info = kOps[byte];
    out += QString::fromLatin1(info.mnemonic);
    ++pc;
    for (int i = 0; i < info.operandCount && pc + 2 <= code.bytes.size(); ++i) {
      uint32_t operand = (uint32_t(code.bytes[pc]) << 8) | code.bytes[pc + 1];
      pc += 2;
      if (i == 0 && info.first != K::Count)
        out += QLatin1Char('\t') + operandText(info.first, operand, code, engine, global);
      else
        out += QStringLiteral(", #%1").arg(operand);
    }
    out += QLatin1Char('\n');
  }
  return out;
}

}  // namespace regmill::script
