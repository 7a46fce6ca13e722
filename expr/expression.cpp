#include "expr/expression.h"

#include "expr/parser_exception.h"

namespace regmill {

Expression::~Expression() = default;

void Expression::bindIdentifier(const QString&, uint64_t) {}

std::unique_ptr<Expression> Expression::clone() const {
  throw ParserException(QStringLiteral("cannot duplicate expression"));
}

}  // namespace regmill
