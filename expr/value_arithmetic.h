// The arithmetic of values: what each operator does with the kinds of its operands.
// Operands come in already dereferenced; the left operand's kind chooses the
// operation and the right one is converted to it. Failures throw ParserException.
#pragma once
#include "expr/expr_value.h"

namespace regmill {

enum class ArithmeticOperator { Plus, Minus, Multiply, Divide, Mod, BitAnd, BitOr, BitXor, LogicalAnd, LogicalOr };
enum class ComparisonOperator { Eq, Ne, Lt, Le, Gt, Ge };
enum class ShiftOperator { Left, Right };
enum class UnaryOperator { LogicalNot, BitNot, Negate };

ExprValue applyArithmetic(ArithmeticOperator op, const ExprValue& left, const ExprValue& right);
ExprValue applyComparison(ComparisonOperator op, const ExprValue& left, const ExprValue& right);
ExprValue applyShift(ShiftOperator op, const ExprValue& left, const ExprValue& right);
ExprValue applyUnary(UnaryOperator op, const ExprValue& operand);

}  // namespace regmill
