#include "expr/expression_parser.h"

#include "expr/expression_grammar.h"
#include "expr/parser_exception.h"

namespace regmill {

ExpressionParser::ExpressionParser(std::unique_ptr<Lexer> lexer) : lexer_(std::move(lexer)) {}

ExpressionParser::~ExpressionParser() = default;

std::unique_ptr<Expression> ExpressionParser::parseTree(const QString& text, qsizetype* endPosition) {
  if (text.isEmpty()) {
    if (endPosition != nullptr) *endPosition = 0;
    return nullptr;
  }
  lexer_->setText(text);
  // Every node is held by its owner from the moment it is made, so a failure
  // part-way frees the part of the tree that was built.
  std::unique_ptr<Expression> tree = ExpressionGrammar(*this, *lexer_).parseExpression();
  if (endPosition != nullptr) *endPosition = lexer_->position();
  return tree;
}

ExprValue ExpressionParser::parse(const QString& text, qsizetype* endPosition) {
  std::unique_ptr<Expression> tree = parseTree(text, endPosition);
  return tree ? tree->evaluate() : ExprValue();
}

std::optional<ExprValue> ExpressionParser::tryParse(const QString& text) {
  try {
    return parse(text);
  } catch (const ParserException&) {
    return std::nullopt;
  }
}

namespace {

bool isNumber(const ExprValue& value) {
  return value.kind == ExprKind::Signed || value.kind == ExprKind::Unsigned || value.kind == ExprKind::Float;
}

template <typename T>
T report(bool* ok, bool success, T value) {
  if (ok != nullptr) *ok = success;
  return success ? value : T{};
}

}  // namespace

bool ExpressionParser::evaluateBool(const QString& text, bool* ok) {
  std::optional<ExprValue> value = tryParse(text);
  bool success = value && value->kind == ExprKind::Bool;
  return report(ok, success, success && value->boolValue());
}

int64_t ExpressionParser::evaluateSigned(const QString& text, bool* ok) {
  std::optional<ExprValue> value = tryParse(text);
  bool success = value && isNumber(*value);
  return report<int64_t>(ok, success, success ? value->asSigned() : 0);
}

uint64_t ExpressionParser::evaluateUnsigned(const QString& text, bool* ok) {
  std::optional<ExprValue> value = tryParse(text);
  bool success = value && isNumber(*value);
  return report<uint64_t>(ok, success, success ? value->asUnsigned() : 0);
}

}  // namespace regmill
