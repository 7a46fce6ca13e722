#include "script/forth/forth_words.h"

#include <QByteArray>
#include <algorithm>
#include <cmath>
#include <string>

namespace regmill::forth {
namespace {

// The words that work on the stacks and the data space, one class for the family
// with a switch on the word's number.
enum class Op {
  Plus, Minus, Star, Slash, Mod, SlashMod, StarSlash, Negate, Abs, Min, Max,
  OnePlus, OneMinus, TwoStar, TwoSlash, And, Or, Xor, Invert, LShift, RShift,
  Equal, NotEqual, Less, Greater, ULess, ZeroEqual, ZeroLess, ZeroGreater, ZeroNotEqual, True, False,
  Dup, Drop, Swap, Over, Rot, MinusRot, Nip, Tuck, TwoDup, TwoDrop, TwoSwap, TwoOver, QuestionDup, Depth, Pick,
  ToR, RFrom, RFetch, I, J, Unloop,
  Dot, UDot, DotR, DotS, Cr, Emit, Space, Spaces,
  FPlus, FMinus, FStar, FSlash, FDot, SToF, FToS,
  Fetch, Store, PlusStore, Cells, CellPlus, Here, Allot, Comma,
  Throw, Abort,
};

struct PrimitiveEntry {
  const char* name;
  Op op;
  uint32_t flags = 0;
};

constexpr uint32_t kCompileOnly = pcode::kCompileOnly;

constexpr PrimitiveEntry kPrimitives[] = {
    {"+", Op::Plus}, {"-", Op::Minus}, {"*", Op::Star}, {"/", Op::Slash}, {"MOD", Op::Mod},
    {"/MOD", Op::SlashMod}, {"*/", Op::StarSlash}, {"NEGATE", Op::Negate}, {"ABS", Op::Abs},
    {"MIN", Op::Min}, {"MAX", Op::Max}, {"1+", Op::OnePlus}, {"1-", Op::OneMinus}, {"2*", Op::TwoStar},
    {"2/", Op::TwoSlash}, {"AND", Op::And}, {"OR", Op::Or}, {"XOR", Op::Xor}, {"INVERT", Op::Invert},
    {"LSHIFT", Op::LShift}, {"RSHIFT", Op::RShift},
    {"=", Op::Equal}, {"<>", Op::NotEqual}, {"<", Op::Less}, {">", Op::Greater}, {"U<", Op::ULess},
    {"0=", Op::ZeroEqual}, {"0<", Op::ZeroLess}, {"0>", Op::ZeroGreater}, {"0<>", Op::ZeroNotEqual},
    {"TRUE", Op::True}, {"FALSE", Op::False},
    {"DUP", Op::Dup}, {"DROP", Op::Drop}, {"SWAP", Op::Swap}, {"OVER", Op::Over}, {"ROT", Op::Rot},
    {"-ROT", Op::MinusRot}, {"NIP", Op::Nip}, {"TUCK", Op::Tuck}, {"2DUP", Op::TwoDup}, {"2DROP", Op::TwoDrop},
    {"2SWAP", Op::TwoSwap}, {"2OVER", Op::TwoOver}, {"?DUP", Op::QuestionDup}, {"DEPTH", Op::Depth},
    {"PICK", Op::Pick},
    {">R", Op::ToR, kCompileOnly}, {"R>", Op::RFrom, kCompileOnly}, {"R@", Op::RFetch, kCompileOnly},
    {"I", Op::I, kCompileOnly}, {"J", Op::J, kCompileOnly}, {"UNLOOP", Op::Unloop, kCompileOnly},
    {".", Op::Dot}, {"U.", Op::UDot}, {".R", Op::DotR}, {".S", Op::DotS}, {"CR", Op::Cr}, {"EMIT", Op::Emit},
    {"SPACE", Op::Space}, {"SPACES", Op::Spaces},
    {"F+", Op::FPlus}, {"F-", Op::FMinus}, {"F*", Op::FStar}, {"F/", Op::FSlash}, {"F.", Op::FDot},
    {"S>F", Op::SToF}, {"F>S", Op::FToS},
    {"@", Op::Fetch}, {"!", Op::Store}, {"+!", Op::PlusStore}, {"CELLS", Op::Cells}, {"CELL+", Op::CellPlus},
    {"HERE", Op::Here}, {"ALLOT", Op::Allot}, {",", Op::Comma},
    {"THROW", Op::Throw}, {"ABORT", Op::Abort},
};

// Cell arithmetic wraps around in 64 bits, as the machine's would.
int64_t wrap(uint64_t value) { return static_cast<int64_t>(value); }
uint64_t bits(int64_t value) { return static_cast<uint64_t>(value); }
int64_t flag(bool value) { return value ? -1 : 0; }

struct Division {
  int64_t quotient;
  int64_t remainder;
};

// Division rounds toward minus infinity, so the remainder takes the divisor's sign.
Division floored(__int128 dividend, int64_t divisor) {
  if (divisor == 0) throw ForthException{-10};
  __int128 quotient = dividend / divisor;
  __int128 remainder = dividend % divisor;
  if (remainder != 0 && ((remainder < 0) != (divisor < 0))) {
    quotient -= 1;
    remainder += divisor;
  }
  return {wrap(static_cast<uint64_t>(quotient)), static_cast<int64_t>(remainder)};
}

std::string floatText(double value) {
  QByteArray text = QByteArray::number(value, 'g', 15);
  bool plain = true;  // only digits and a sign: mark it as a float with a trailing point
  for (char c : text) plain = plain && (c == '-' || (c >= '0' && c <= '9'));
  if (plain) text += '.';
  return text.toStdString();
}

std::string cellText(const Cell& cell) {
  return cell.type == Cell::kFloating ? floatText(cell.floating) : std::to_string(cell.integer);
}

// In pieces, so that a large count costs no large buffer; none for a count below 1.
void writeSpaces(ForthInterpreter& in, int64_t count) {
  static const std::string kBlanks(256, ' ');
  for (; count > 0; count -= static_cast<int64_t>(kBlanks.size()))
    in.write(std::string_view(kBlanks).substr(0, static_cast<size_t>(std::min<int64_t>(count, kBlanks.size()))));
}

class PPrimitive : public pcode {
 public:
  PPrimitive(const PrimitiveEntry& entry, CoreWords& words)
      : pcode(QString::fromLatin1(entry.name), entry.flags), op_(entry.op), words_(words) {}
  void execute(ForthInterpreter& interpreter) override;

 private:
  void binary(ForthInterpreter& in);
  void compare(ForthInterpreter& in);
  void stack(ForthInterpreter& in);
  void secondStack(ForthInterpreter& in);
  void print(ForthInterpreter& in);
  void floating(ForthInterpreter& in);
  void memory(ForthInterpreter& in);

  Op op_;
  CoreWords& words_;
};

void PPrimitive::execute(ForthInterpreter& in) {
  if (op_ <= Op::RShift) return binary(in);
  if (op_ <= Op::False) return compare(in);
  if (op_ <= Op::Pick) return stack(in);
  if (op_ <= Op::Unloop) return secondStack(in);
  if (op_ <= Op::Spaces) return print(in);
  if (op_ <= Op::FToS) return floating(in);
  if (op_ <= Op::Comma) return memory(in);
  const int64_t code = op_ == Op::Throw ? in.popInteger() : -1;
  if (code != 0) throw ForthException{static_cast<int32_t>(code)};
}

void PPrimitive::binary(ForthInterpreter& in) {
  // The one-operand words first; the others take two.
  switch (op_) {
    case Op::Negate: return in.pushInteger(wrap(0 - bits(in.popInteger())));
    case Op::Abs: {
      const int64_t value = in.popInteger();
      return in.pushInteger(value < 0 ? wrap(0 - bits(value)) : value);
    }
    case Op::OnePlus: return in.pushInteger(wrap(bits(in.popInteger()) + 1));
    case Op::OneMinus: return in.pushInteger(wrap(bits(in.popInteger()) - 1));
    case Op::TwoStar: return in.pushInteger(wrap(bits(in.popInteger()) << 1));
    case Op::TwoSlash: return in.pushInteger(in.popInteger() >> 1);
    case Op::Invert: return in.pushInteger(~in.popInteger());
    case Op::StarSlash: {
      const int64_t divisor = in.popInteger();
      const int64_t second = in.popInteger();
      const int64_t first = in.popInteger();
      return in.pushInteger(floored(static_cast<__int128>(first) * second, divisor).quotient);
    }
    default: break;
  }
  const int64_t right = in.popInteger();
  const int64_t left = in.popInteger();
  switch (op_) {
    case Op::Plus: return in.pushInteger(wrap(bits(left) + bits(right)));
    case Op::Minus: return in.pushInteger(wrap(bits(left) - bits(right)));
    case Op::Star: return in.pushInteger(wrap(bits(left) * bits(right)));
    case Op::Slash: return in.pushInteger(floored(left, right).quotient);
    case Op::Mod: return in.pushInteger(floored(left, right).remainder);
    case Op::SlashMod: {
      const Division division = floored(left, right);
      in.pushInteger(division.remainder);
      return in.pushInteger(division.quotient);
    }
    case Op::Min: return in.pushInteger(left < right ? left : right);
    case Op::Max: return in.pushInteger(left > right ? left : right);
    case Op::And: return in.pushInteger(left & right);
    case Op::Or: return in.pushInteger(left | right);
    case Op::Xor: return in.pushInteger(left ^ right);
    case Op::LShift: return in.pushInteger(bits(right) >= 64 ? 0 : wrap(bits(left) << bits(right)));
    case Op::RShift: return in.pushInteger(bits(right) >= 64 ? 0 : wrap(bits(left) >> bits(right)));
    default: return;
  }
}

void PPrimitive::compare(ForthInterpreter& in) {
  switch (op_) {
    case Op::True: return in.pushInteger(-1);
    case Op::False: return in.pushInteger(0);
    case Op::ZeroEqual: return in.pushInteger(flag(in.popInteger() == 0));
    case Op::ZeroLess: return in.pushInteger(flag(in.popInteger() < 0));
    case Op::ZeroGreater: return in.pushInteger(flag(in.popInteger() > 0));
    case Op::ZeroNotEqual: return in.pushInteger(flag(in.popInteger() != 0));
    default: break;
  }
  const int64_t right = in.popInteger();
  const int64_t left = in.popInteger();
  switch (op_) {
    case Op::Equal: return in.pushInteger(flag(left == right));
    case Op::NotEqual: return in.pushInteger(flag(left != right));
    case Op::Less: return in.pushInteger(flag(left < right));
    case Op::Greater: return in.pushInteger(flag(left > right));
    case Op::ULess: return in.pushInteger(flag(bits(left) < bits(right)));
    default: return;
  }
}

// Stack words move whole cells, floats as well as integers.
void PPrimitive::stack(ForthInterpreter& in) {
  CellStack& data = in.data;
  switch (op_) {
    case Op::Dup: return data.push(data.fromTop(0));
    case Op::Drop: data.pop(); return;
    case Op::Swap: return std::swap(data.fromTop(0), data.fromTop(1));
    case Op::Over: return data.push(data.fromTop(1));
    case Op::Rot:  // a b c -- b c a
    case Op::MinusRot: {  // a b c -- c a b
      Cell* const third = &data.fromTop(2);
      if (op_ == Op::Rot)
        std::rotate(third, third + 1, third + 3);
      else
        std::rotate(third, third + 2, third + 3);
      return;
    }
    case Op::Nip: {
      Cell top = data.pop();
      data.fromTop(0) = std::move(top);
      return;
    }
    case Op::Tuck: {  // a b -- b a b
      Cell top = data.fromTop(0);
      std::swap(data.fromTop(0), data.fromTop(1));
      return data.push(std::move(top));
    }
    case Op::TwoDup: {
      Cell below = data.fromTop(1);
      Cell top = data.fromTop(0);
      data.push(std::move(below));
      return data.push(std::move(top));
    }
    case Op::TwoDrop:
      data.fromTop(1);
      data.pop();
      data.pop();
      return;
    case Op::TwoSwap:
      std::swap(data.fromTop(0), data.fromTop(2));
      return std::swap(data.fromTop(1), data.fromTop(3));
    case Op::TwoOver: {
      Cell below = data.fromTop(3);
      Cell top = data.fromTop(2);
      data.push(std::move(below));
      return data.push(std::move(top));
    }
    case Op::QuestionDup: {
      const Cell& top = data.fromTop(0);
      if (top.type != Cell::kInteger || top.integer != 0) data.push(top);
      return;
    }
    case Op::Depth: return in.pushInteger(data.count());
    case Op::Pick: {
      const int64_t index = in.popInteger();
      if (index < 0 || index >= data.count()) throw ForthException{-3};
      return data.push(data.fromTop(static_cast<int>(index)));
    }
    default: return;
  }
}

void PPrimitive::secondStack(ForthInterpreter& in) {
  switch (op_) {
    case Op::ToR: return in.second.push(in.data.pop());
    case Op::RFrom: return in.data.push(in.second.pop());
    case Op::RFetch: return in.data.push(in.second.fromTop(0));
    // A loop keeps its limit under its index; J is the index of the loop around.
    case Op::I:
    case Op::J: {
      const int depth = op_ == Op::I ? 0 : 2;
      if (in.second.count() < depth + 2) throw ForthException{-26};
      return in.data.push(in.second.fromTop(depth));
    }
    case Op::Unloop:
      in.second.fromTop(1);
      in.second.pop();
      in.second.pop();
      return;
    default: return;
  }
}

void PPrimitive::print(ForthInterpreter& in) {
  switch (op_) {
    case Op::Dot: return in.write(std::to_string(in.popInteger()) + ' ');
    case Op::UDot: return in.write(std::to_string(bits(in.popInteger())) + ' ');
    case Op::DotR: {  // ( n width -- ) right-aligned, no blank behind
      const int64_t width = in.popInteger();
      const std::string text = std::to_string(in.popInteger());
      writeSpaces(in, width - static_cast<int64_t>(text.size()));
      return in.write(text);
    }
    case Op::DotS: {
      std::string text = '<' + std::to_string(in.data.count()) + "> ";
      for (int index = in.data.count() - 1; index >= 0; --index) text += cellText(in.data.fromTop(index)) + ' ';
      return in.write(text);
    }
    case Op::Cr: return in.write("\n");
    case Op::Emit: {
      const char byte = static_cast<char>(in.popInteger() & 0xFF);
      return in.write(std::string_view(&byte, 1));
    }
    case Op::Space: return in.write(" ");
    case Op::Spaces: return writeSpaces(in, in.popInteger());
    default: return;
  }
}

void PPrimitive::floating(ForthInterpreter& in) {
  switch (op_) {
    case Op::FDot: return in.write(floatText(in.popFloating()) + ' ');
    case Op::SToF: return in.data.push(Cell::ofFloating(static_cast<double>(in.popInteger())));
    case Op::FToS: {
      const double value = in.popFloating();
      // Beyond the integer range the conversion has no value to give.
      const double bound = std::ldexp(1.0, 63);
      if (!(value >= -bound && value < bound)) throw ForthException{-24};
      return in.pushInteger(static_cast<int64_t>(value));
    }
    default: break;
  }
  const double right = in.popFloating();
  const double left = in.popFloating();
  switch (op_) {
    case Op::FPlus: return in.data.push(Cell::ofFloating(left + right));
    case Op::FMinus: return in.data.push(Cell::ofFloating(left - right));
    case Op::FStar: return in.data.push(Cell::ofFloating(left * right));
    case Op::FSlash: return in.data.push(Cell::ofFloating(left / right));
    default: return;
  }
}

void PPrimitive::memory(ForthInterpreter& in) {
  switch (op_) {
    case Op::Fetch: return in.data.push(words_.cellAt(in.popInteger()));
    case Op::Store: {
      Cell& target = words_.cellAt(in.popInteger());
      target = in.data.pop();
      return;
    }
    case Op::PlusStore: {
      Cell& target = words_.cellAt(in.popInteger());
      const int64_t amount = in.popInteger();
      if (target.type != Cell::kInteger) throw ForthException{-12};
      target.integer = wrap(bits(target.integer) + bits(amount));
      return;
    }
    case Op::Cells: return in.pushInteger(wrap(bits(in.popInteger()) * CoreWords::kCellBytes));
    case Op::CellPlus: return in.pushInteger(wrap(bits(in.popInteger()) + CoreWords::kCellBytes));
    case Op::Here: return in.pushInteger(words_.here());
    case Op::Allot: words_.allot(in.popInteger()); return;
    case Op::Comma: {
      Cell value = in.data.pop();
      words_.cellAt(words_.allot(CoreWords::kCellBytes)) = std::move(value);
      return;
    }
    default: return;
  }
}

}  // namespace

CoreWords::CoreWords(ForthInterpreter& owner) : interpreter(owner) {
  WordList* list = interpreter.createWordList();
  installPrimitives(*list);
  installCompilerWords(*list);
  interpreter.pushSearchOrder(list);
  interpreter.current = list;
}

void CoreWords::installPrimitives(WordList& list) {
  for (const PrimitiveEntry& entry : kPrimitives) {
    pcode* word = interpreter.make<PPrimitive>(entry, *this);
    list.insert(word->name, word);
  }
}

Cell& CoreWords::cellAt(int64_t address) {
  if (address < kCellBytes || address >= here_) throw ForthException{-9};
  if (address % kCellBytes != 0) throw ForthException{-23};
  return space_[static_cast<size_t>(address / kCellBytes)];
}

int64_t CoreWords::allot(int64_t bytes) {
  const int64_t start = here_;
  const int64_t limit = kDataCells * kCellBytes;
  if (bytes > limit || bytes < -limit) throw ForthException{-24};
  const int64_t cells = bytes >= 0 ? (bytes + kCellBytes - 1) / kCellBytes : -(-bytes / kCellBytes);
  const int64_t end = here_ + cells * kCellBytes;
  if (end < kCellBytes || end > limit) throw ForthException{-24};
  here_ = end;
  space_.resize(static_cast<size_t>(here_ / kCellBytes));
  return start;
}

}  // namespace regmill::forth
