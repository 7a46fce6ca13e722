// ExpressionGrammar: the recursive-descent reader of one expression. It reads
// tokens from the parser's lexer and builds the tree, asking the parser only
// whether a word names a type. It lives for one parse.
//
// Nesting is bounded: more than MaxDepth levels of grammar recursion, or a tree or
// type more than MaxDepth levels high, throws "expression too deeply nested". So
// neither reading a text nor any later walk over its tree (evaluate, toString,
// clone, destruction) can run out of stack, whatever the text.
#pragma once
#include <QString>
#include <memory>

#include "expr/base_type.h"
#include "expr/c_style_lexer.h"
#include "expr/expression.h"

namespace regmill {

class ExpressionParser;
class Lexer;

class ExpressionGrammar {
 public:
  static constexpr int MaxDepth = 256;

  ExpressionGrammar(ExpressionParser& parser, Lexer& lexer) : parser_(parser), lexer_(lexer) {}

  // The expression at the lexer's current token; what follows it is left unread.
  std::unique_ptr<Expression> parseExpression() { return parseBinary(-4); }

 private:
  using Node = std::unique_ptr<Expression>;
  using Type = std::unique_ptr<BaseType>;
  class DepthGuard;

  Node parseBinary(int minimumLevel);
  Node combine(CToken token, Node left, Node right);
  Node parseUnary();
  Node parsePrefixed();
  Node parseConstant();
  Node parseParenthesized();
  Node parseSizeof();
  Node parseAddressofLine();
  QStringList parseIdentifierPath();
  Node pathNode(QStringList names);
  Node parsePostfix(Node tree);
  Node parseCall(Node callee);
  Node makeIncrement(Node operand, bool increment);

  Type parseType();
  bool parseTemplateName(QString& name);
  Type parseTypeSuffix(Type type);
  Type parseStruct();
  Type parseRegisterType();

  // Passes over the current token if it is token, else throws message.
  void expect(CToken token, const char* message);
  [[noreturn]] void fail(const char* message);
  Node bounded(Node node);
  Type bounded(Type type);

  ExpressionParser& parser_;
  Lexer& lexer_;

  // The lexer's current token, as the token rules of the language number it.
  CToken current() const { return static_cast<CToken>(lexer_.token()); }
  int depth_ = 0;
};

}  // namespace regmill
