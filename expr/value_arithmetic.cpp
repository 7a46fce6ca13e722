#include "expr/value_arithmetic.h"

#include <limits>

#include "expr/parser_exception.h"

namespace regmill {

namespace {

[[noreturn]] void throwUnsupported() { throw ParserException(QStringLiteral("unsupported binary numeric operation")); }
[[noreturn]] void throwDivideByZero() { throw ParserException(QStringLiteral("divide by zero")); }

bool isInteger(ExprKind kind) { return kind == ExprKind::Signed || kind == ExprKind::Unsigned; }

// A right operand taken as a truth value for a Bool left: floats by their number,
// everything else by its integer value.
bool truthOf(const ExprValue& value) {
  if (value.kind == ExprKind::Bool) return value.boolValue();
  if (value.kind == ExprKind::Float) return value.floatValue() != 0.0;
  return value.asUnsigned() != 0;
}

// A divisor is looked at before either operand's kind decides anything.
void checkDivisor(const ExprValue& right) {
  switch (right.kind) {
    case ExprKind::Bool:
      if (!right.boolValue()) throwDivideByZero();
      return;
    case ExprKind::Signed:
    case ExprKind::Unsigned:
      if (right.payload == 0) throwDivideByZero();
      return;
    case ExprKind::Float:
      if (right.floatValue() == 0.0) throwDivideByZero();
      return;
    default:
      throwUnsupported();
  }
}

ExprValue boolArithmetic(ArithmeticOperator op, const ExprValue& left, const ExprValue& right) {
  bool a = left.boolValue();
  bool b = truthOf(right);
  bool result = false;
  switch (op) {
    case ArithmeticOperator::Plus: result = a || b; break;
    case ArithmeticOperator::Minus: result = a != b; break;
    case ArithmeticOperator::Multiply: result = a && b; break;
    case ArithmeticOperator::Divide:
      if (!b) throwDivideByZero();
      result = a;  // a divided by one
      break;
    case ArithmeticOperator::Mod:
      if (!b) throwDivideByZero();
      result = false;  // the remainder of a division by one
      break;
    case ArithmeticOperator::BitAnd: result = a && b; break;
    case ArithmeticOperator::BitOr: result = a || b; break;
    case ArithmeticOperator::BitXor: result = a != b; break;
    case ArithmeticOperator::LogicalAnd: result = a && b; break;
    case ArithmeticOperator::LogicalOr: result = a || b; break;
  }
  ExprValue value = ExprValue::makeBool(result);
  value.size = left.size;
  return value;
}

// Integer arithmetic wraps at 64 bits, so it is done on the unsigned bits.
uint64_t wrappingArithmetic(ArithmeticOperator op, uint64_t a, uint64_t b) {
  switch (op) {
    case ArithmeticOperator::Plus: return a + b;
    case ArithmeticOperator::Minus: return a - b;
    case ArithmeticOperator::Multiply: return a * b;
    case ArithmeticOperator::BitAnd: return a & b;
    case ArithmeticOperator::BitOr: return a | b;
    case ArithmeticOperator::BitXor: return a ^ b;
    case ArithmeticOperator::LogicalAnd: return (a != 0 && b != 0) ? 1 : 0;
    case ArithmeticOperator::LogicalOr: return (a != 0 || b != 0) ? 1 : 0;
    default: return 0;
  }
}

ExprValue signedArithmetic(ArithmeticOperator op, const ExprValue& left, const ExprValue& right) {
  int64_t a = left.asSigned();
  int64_t b = right.asSigned();
  int64_t result;
  if (op == ArithmeticOperator::Divide || op == ArithmeticOperator::Mod) {
    // The divisor may still be 0 after its conversion (a float below 1, an
    // integer whose size masks its bits away).
    if (b == 0) throwDivideByZero();
    // The most negative value divided by -1 wraps to itself, with remainder 0.
    if (b == -1) {
      result = op == ArithmeticOperator::Divide ? static_cast<int64_t>(0 - static_cast<uint64_t>(a)) : 0;
    } else {
      result = op == ArithmeticOperator::Divide ? a / b : a % b;
    }
  } else {
    result = static_cast<int64_t>(wrappingArithmetic(op, static_cast<uint64_t>(a), static_cast<uint64_t>(b)));
  }
  return ExprValue::makeSigned(result, left.size);
}

ExprValue unsignedArithmetic(ArithmeticOperator op, const ExprValue& left, const ExprValue& right) {
  uint64_t a = left.asUnsigned();
  uint64_t b = right.asUnsigned();
  uint64_t result;
  if (op == ArithmeticOperator::Divide || op == ArithmeticOperator::Mod) {
    if (b == 0) throwDivideByZero();
    result = op == ArithmeticOperator::Divide ? a / b : a % b;
  } else {
    result = wrappingArithmetic(op, a, b);
  }
  return ExprValue::makeUnsigned(result, left.size);
}

ExprValue floatArithmetic(ArithmeticOperator op, const ExprValue& left, const ExprValue& right) {
  double a = left.floatValue();
  double b = right.asFloat();
  double result;
  switch (op) {
    case ArithmeticOperator::Plus: result = a + b; break;
    case ArithmeticOperator::Minus: result = a - b; break;
    case ArithmeticOperator::Multiply: result = a * b; break;
    case ArithmeticOperator::Divide:
      if (b == 0.0) throwDivideByZero();
      result = a / b;
      break;
    default: throwUnsupported();
  }
  return ExprValue::makeFloat(result, left.size);
}

bool promotesToFloat(ArithmeticOperator op) {
  return op == ArithmeticOperator::Plus || op == ArithmeticOperator::Minus ||
         op == ArithmeticOperator::Multiply || op == ArithmeticOperator::Divide;
}

bool holds(ComparisonOperator op, int order) {
  switch (op) {
    case ComparisonOperator::Eq: return order == 0;
    case ComparisonOperator::Ne: return order != 0;
    case ComparisonOperator::Lt: return order < 0;
    case ComparisonOperator::Le: return order <= 0;
    case ComparisonOperator::Gt: return order > 0;
    case ComparisonOperator::Ge: return order >= 0;
  }
  return false;
}

template <typename T>
int orderOf(T a, T b) {
  return a < b ? -1 : (b < a ? 1 : 0);
}

}  // namespace

ExprValue applyArithmetic(ArithmeticOperator op, const ExprValue& left, const ExprValue& right) {
  if (op == ArithmeticOperator::Divide) checkDivisor(right);
  // A float on the right makes the arithmetic float; only a numeric left is
  // converted, so a text or an object on the left stays unsupported.
  if (promotesToFloat(op) && right.kind == ExprKind::Float &&
      (left.kind == ExprKind::Bool || isInteger(left.kind))) {
    return floatArithmetic(op, ExprValue::makeFloat(left.asFloat(), left.size), right);
  }
  switch (left.kind) {
    case ExprKind::Bool: return boolArithmetic(op, left, right);
    case ExprKind::Signed: return signedArithmetic(op, left, right);
    case ExprKind::Unsigned: return unsignedArithmetic(op, left, right);
    case ExprKind::Float: return floatArithmetic(op, left, right);
    default: throwUnsupported();
  }
}

ExprValue applyComparison(ComparisonOperator op, const ExprValue& left, const ExprValue& right) {
  int order;
  switch (left.kind) {
    case ExprKind::Bool:
      // A Bool compares its byte with the first byte of the right payload.
      order = orderOf<uint8_t>(left.payload & 0xFF, right.payload & 0xFF);
      break;
    case ExprKind::Signed: order = orderOf(left.asSigned(), right.asSigned()); break;
    case ExprKind::Unsigned: order = orderOf(left.asUnsigned(), right.asUnsigned()); break;
    case ExprKind::String: order = QString::compare(left.text, right.text); break;
    default: throw ParserException(QStringLiteral("unsupported comparison operation"));
  }
  return ExprValue::makeBool(holds(op, order));
}

ExprValue applyShift(ShiftOperator op, const ExprValue& left, const ExprValue& right) {
  if (right.kind != ExprKind::Signed) throw ParserException(QStringLiteral("integer shift value expected"));
  if (!isInteger(left.kind)) throw ParserException(QStringLiteral("can only shift numeric values"));
  // The count is taken modulo 64 (a negative count from its two's complement bits).
  unsigned count = static_cast<unsigned>(static_cast<uint64_t>(right.asSigned()) & 63u);
  if (left.kind == ExprKind::Signed) {
    int64_t a = left.asSigned();
    int64_t result = op == ShiftOperator::Left ? static_cast<int64_t>(static_cast<uint64_t>(a) << count) : a >> count;
    return ExprValue::makeSigned(result, left.size);
  }
  uint64_t a = left.asUnsigned();
  return ExprValue::makeUnsigned(op == ShiftOperator::Left ? a << count : a >> count, left.size);
}

ExprValue applyUnary(UnaryOperator op, const ExprValue& operand) {
  const ExprKind kind = operand.kind;
  switch (op) {
    case UnaryOperator::BitNot:
      if (kind == ExprKind::Signed) return ExprValue::makeSigned(~operand.asSigned(), operand.size);
      if (kind == ExprKind::Unsigned) return ExprValue::makeUnsigned(~operand.asUnsigned(), operand.size);
      break;
    case UnaryOperator::Negate:
      if (kind == ExprKind::Bool || kind == ExprKind::Signed) {
        uint64_t negated = 0 - static_cast<uint64_t>(operand.asSigned());
        return ExprValue::makeSigned(static_cast<int64_t>(negated), operand.size);
      }
      if (kind == ExprKind::Unsigned) return ExprValue::makeUnsigned(0 - operand.asUnsigned(), operand.size);
      if (kind == ExprKind::Float) return ExprValue::makeFloat(-operand.floatValue(), operand.size);
      break;
    case UnaryOperator::LogicalNot:
      if (kind == ExprKind::Bool) return ExprValue::makeBool(!operand.boolValue());
      if (kind == ExprKind::Signed) return ExprValue::makeBool(operand.asSigned() == 0);
      if (kind == ExprKind::Unsigned) return ExprValue::makeBool(operand.asUnsigned() == 0);
      if (kind == ExprKind::Float) return ExprValue::makeBool(operand.floatValue() == 0.0);
      break;
  }
  throw ParserException(QStringLiteral("unsupported unary num operation"));
}

}  // namespace regmill
