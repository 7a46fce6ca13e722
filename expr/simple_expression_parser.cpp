#include "expr/simple_expression_parser.h"

#include "expr/c_style_lexer.h"
#include "expr/parser_exception.h"

namespace regmill {

namespace {

[[noreturn]] void refuse(const QString& message) { throw ParserException(message); }

}  // namespace

SimpleExpressionParser::SimpleExpressionParser() : ExpressionParser(std::make_unique<CStyleLexer>()) {}

ExprObject* SimpleExpressionParser::lookupScoped(const QStringList& names) {
  refuse(names.join(QStringLiteral("::")) + QStringLiteral(" symbol not found"));
}

ExprObject* SimpleExpressionParser::lookupSymbol(const QString& name) {
  refuse(name + QStringLiteral(" symbol not found"));
}

ExprObject* SimpleExpressionParser::lookupRegister(const QString& name) {
  refuse(name + QStringLiteral("unknown register"));
}

bool SimpleExpressionParser::isTypeName(const QString&) { return false; }

bool SimpleExpressionParser::isTemplateName(const QString&) { return false; }

ExprValue SimpleExpressionParser::cast(const BaseType&, const ExprValue&) {
  refuse(QStringLiteral("cannot cast"));
}

bool SimpleExpressionParser::isPointerObject(ExprObject&) { return false; }

bool SimpleExpressionParser::isArrayObject(ExprObject&) { return false; }

ExprValue SimpleExpressionParser::memberByPath(ExprObject&, const QStringList&) {
  refuse(QStringLiteral("cannot dereference"));
}

ExprValue SimpleExpressionParser::memberByName(ExprObject&, const QString&) {
  refuse(QStringLiteral("cannot dereference"));
}

ExprValue SimpleExpressionParser::elementAt(ExprObject&, int64_t) { refuse(QStringLiteral("cannot dereference")); }

ExprValue SimpleExpressionParser::offsetObject(ExprObject&, int64_t) {
  refuse(QStringLiteral("addressof not implemented"));
}

ExprValue SimpleExpressionParser::addressOf(ExprObject&) { refuse(QStringLiteral("addressof not implemented")); }

ExprValue SimpleExpressionParser::sizeofType(const BaseType&) {
  refuse(QStringLiteral("sizeof(typename) not implemented"));
}

ExprValue SimpleExpressionParser::sizeofObject(ExprObject&) {
  refuse(QStringLiteral("sizeof expression not implemented"));
}

ExprValue SimpleExpressionParser::addressOfLine(const QString&, int) {
  refuse(QStringLiteral("addressof not implemented"));
}

ExprValue SimpleExpressionParser::store(ExprObject&, const ExprValue&) {
  refuse(QStringLiteral("this symbol not found"));
}

ExprValue SimpleExpressionParser::load(ExprObject&) { refuse(QStringLiteral("this symbol not found")); }

ExprValue SimpleExpressionParser::call(ExprObject&, const std::vector<ExprValue>&) {
  refuse(QStringLiteral("function calling not implemented"));
}

SimpleExpressionParser& sharedExpressionParser() {
  static SimpleExpressionParser parser;
  return parser;
}

}  // namespace regmill
