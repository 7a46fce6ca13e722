#include "expr/operator_expressions.h"

#include <algorithm>

#include "expr/expression_parser.h"

namespace regmill {

UnaryExpression::UnaryExpression(ExpressionParser& parser, std::unique_ptr<Expression> operand)
    : Expression(parser, operand->height() + 1), operand_(std::move(operand)) {}

QString UnaryExpression::toString() const { return QLatin1Char('(') + operand_->toString() + QLatin1Char(')'); }

void UnaryExpression::bindIdentifier(const QString& name, uint64_t value) { operand_->bindIdentifier(name, value); }

ExprValue NumericUnaryExpression::evaluate() const { return applyUnary(op_, dereferenced(operand().evaluate())); }

QString NumericUnaryExpression::toString() const { return QLatin1String(className_) + UnaryExpression::toString(); }

BinaryExpression::BinaryExpression(ExpressionParser& parser, std::unique_ptr<Expression> left,
                                   std::unique_ptr<Expression> right)
    : Expression(parser, std::max(left->height(), right->height()) + 1),
      left_(std::move(left)),
      right_(std::move(right)) {}

BinaryExpression::~BinaryExpression() = default;

QString BinaryExpression::toString() const {
  return QLatin1Char('(') + left_->toString() + operatorText() + right_->toString() + QLatin1Char(')');
}

void BinaryExpression::bindIdentifier(const QString& name, uint64_t value) {
  left_->bindIdentifier(name, value);
  right_->bindIdentifier(name, value);
}

ExprValue ArithmeticExpression::evaluate() const {
  ExprValue rightValue = right().evaluate();
  ExprValue leftValue = left().evaluate();
  return applyArithmetic(op_, dereferenced(leftValue), dereferenced(rightValue));
}

ExprValue PlusExpression::evaluate() const {
  ExprValue rightValue = dereferenced(right().evaluate());
  ExprValue leftValue = left().evaluate();
  bool integerRight = rightValue.kind == ExprKind::Signed || rightValue.kind == ExprKind::Unsigned;
  if (integerRight && isObject(leftValue)) {
    ExprObject& object = *leftValue.object;
    if (parser().isPointerObject(object) || parser().isArrayObject(object)) {
      return parser().offsetObject(object, rightValue.asSigned());
    }
  }
  return applyArithmetic(ArithmeticOperator::Plus, dereferenced(leftValue), rightValue);
}

ExprValue ComparisonExpression::evaluate() const {
  ExprValue rightValue = right().evaluate();
  ExprValue leftValue = left().evaluate();
  return applyComparison(op_, dereferenced(leftValue), dereferenced(rightValue));
}

ExprValue ShiftExpression::evaluate() const {
  ExprValue rightValue = right().evaluate();
  ExprValue leftValue = left().evaluate();
  return applyShift(op_, dereferenced(leftValue), dereferenced(rightValue));
}

}  // namespace regmill
