#include "expr/leaf_expressions.h"

#include "expr/expression_parser.h"

namespace regmill {

namespace {

QString hexText(uint64_t value) { return QStringLiteral("0x") + QString::number(value, 16); }

}  // namespace

QString ConstantExpression::toString() const { return hexText(value_.asUnsigned()); }

std::unique_ptr<Expression> ConstantExpression::clone() const {
  return std::make_unique<ConstantExpression>(parser(), value_);
}

std::unique_ptr<Expression> IntegerConstantExpression::clone() const {
  return std::make_unique<IntegerConstantExpression>(parser(), value().asSigned());
}

std::unique_ptr<Expression> FloatConstantExpression::clone() const {
  return std::make_unique<FloatConstantExpression>(parser(), value().floatValue());
}

std::unique_ptr<Expression> StringConstantExpression::clone() const {
  return std::make_unique<StringConstantExpression>(parser(), value().text);
}

ExprValue IdentifierExpression::evaluate() const {
  if (boundValue_ != 0) return ExprValue::makeUnsigned(boundValue_, 4);
  return ExprValue::makeObject(parser().lookupSymbol(name_));
}

QString IdentifierExpression::toString() const { return boundValue_ != 0 ? hexText(boundValue_) : name_; }

void IdentifierExpression::bindIdentifier(const QString& name, uint64_t value) {
  if (name == name_) boundValue_ = value;
}

// A copy stands for the symbol again: the bound number is not carried over.
std::unique_ptr<Expression> IdentifierExpression::clone() const {
  return std::make_unique<IdentifierExpression>(parser(), name_);
}

ExprValue ScopedIdentifierExpression::evaluate() const {
  return ExprValue::makeObject(parser().lookupScoped(names_));
}

QString ScopedIdentifierExpression::toString() const {
  return QStringLiteral("Identifier(") + names_.join(QStringLiteral("::")) + QLatin1Char(')');
}

std::unique_ptr<Expression> ScopedIdentifierExpression::clone() const {
  return std::make_unique<ScopedIdentifierExpression>(parser(), names_);
}

ExprValue RegisterExpression::evaluate() const { return ExprValue::makeObject(parser().lookupRegister(name_)); }

QString RegisterExpression::toString() const { return QStringLiteral("Identifier(") + name_ + QLatin1Char(')'); }

}  // namespace regmill
