#include "expr/access_expressions.h"

#include <algorithm>

#include "expr/expression_parser.h"
#include "expr/leaf_expressions.h"
#include "expr/parser_exception.h"

namespace regmill {

namespace {

ExprObject& requireObject(const ExprValue& value, const char* message) {
  if (!isObject(value)) throw ParserException(QString::fromLatin1(message));
  return *value.object;
}

// A value that names an object stands for what the parser loads from it.
ExprValue loaded(ExpressionParser& parser, ExprValue value) {
  if (isObject(value)) return parser.load(*value.object);
  return value;
}

}  // namespace

ExprValue DotExpression::evaluate() const {
  ExprValue leftValue = left().evaluate();
  ExprObject& object = requireObject(leftValue, "bad expression type");
  if (auto* name = dynamic_cast<const IdentifierExpression*>(&right())) {
    return parser().memberByName(object, name->name());
  }
  if (auto* path = dynamic_cast<const ScopedIdentifierExpression*>(&right())) {
    return parser().memberByPath(object, path->names());
  }
  return ExprValue();
}

std::unique_ptr<Expression> DotExpression::clone() const {
  return std::make_unique<DotExpression>(parser(), left().clone(), right().clone());
}

ExprValue LeftSquareBracketExpression::evaluate() const {
  ExprValue leftValue = left().evaluate();
  ExprObject& object = requireObject(leftValue, "bad expression type");
  ExprValue index = loaded(parser(), right().evaluate());
  if (index.kind == ExprKind::None) throw ParserException(QStringLiteral("bad index type"));
  return parser().elementAt(object, index.asSigned());
}

QString LeftSquareBracketExpression::toString() const {
  return left().toString() + QLatin1Char('[') + right().toString() + QLatin1Char(']');
}

std::unique_ptr<Expression> LeftSquareBracketExpression::clone() const {
  return std::make_unique<LeftSquareBracketExpression>(parser(), left().clone(), right().clone());
}

ExprValue AssignExpression::evaluate() const {
  ExprValue leftValue = left().evaluate();
  ExprObject& object = requireObject(leftValue, "bad expression type");
  ExprValue value = loaded(parser(), right().evaluate());
  return parser().store(object, value);
}

ExprValue AddressofExpression::evaluate() const {
  ExprValue value = operand_->evaluate();
  return parser().addressOf(requireObject(value, "cannot take address of a constant"));
}

CastExpression::CastExpression(ExpressionParser& parser, std::unique_ptr<BaseType> type,
                               std::unique_ptr<Expression> operand)
    : Expression(parser, std::max(type->height(), operand->height()) + 1),
      type_(std::move(type)),
      operand_(std::move(operand)) {}

ExprValue CastExpression::evaluate() const { return parser().cast(*type_, operand_->evaluate()); }

QString CastExpression::toString() const {
  return QStringLiteral("((") + type_->toString() + QLatin1Char(')') + operand_->toString() + QLatin1Char(')');
}

namespace {

int callHeight(const Expression& callee, const std::vector<std::unique_ptr<Expression>>& arguments) {
  int height = callee.height();
  for (const auto& argument : arguments) height = std::max(height, argument->height());
  return height + 1;
}

}  // namespace

CallExpression::CallExpression(ExpressionParser& parser, std::unique_ptr<Expression> callee,
                               std::vector<std::unique_ptr<Expression>> arguments)
    : Expression(parser, callHeight(*callee, arguments)), callee_(std::move(callee)), arguments_(std::move(arguments)) {}

ExprValue CallExpression::evaluate() const {
  ExprValue calleeValue = callee_->evaluate();
  // Only an object of the parser can be a function.
  ExprObject& function = requireObject(calleeValue, "cannot call a constant");
  std::vector<ExprValue> values;
  values.reserve(arguments_.size());
  for (const auto& argument : arguments_) values.push_back(argument->evaluate());
  return parser().call(function, values);
}

QString CallExpression::toString() const {
  QString text = callee_->toString() + QLatin1Char('(');
  for (const auto& argument : arguments_) text += argument->toString();
  return text + QLatin1Char(')');
}

ExprValue SizeofExpression::evaluate() const {
  if (type_) return parser().sizeofType(*type_);
  ExprValue value = operand_->evaluate();
  return parser().sizeofObject(requireObject(value, "cannot determine sizeof of a constant"));
}

QString SizeofExpression::toString() const {
  if (type_) return QStringLiteral("sizeof(") + type_->toString() + QLatin1Char(')');
  return QStringLiteral("sizeof ") + operand_->toString();
}

void SizeofExpression::bindIdentifier(const QString& name, uint64_t value) {
  if (operand_) operand_->bindIdentifier(name, value);
}

ExprValue AddressofLineExpression::evaluate() const { return parser().addressOfLine(file_, line_); }

QString AddressofLineExpression::toString() const {
  return QStringLiteral("addressof(\"") + file_ + QStringLiteral("\", ") + QString::number(line_) + QLatin1Char(')');
}

}  // namespace regmill
