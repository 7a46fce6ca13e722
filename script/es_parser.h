// The recursive-descent parser of the compiler: tokens to a syntax tree, with
// variables declared as they are met. Function declarations of a statement list
// are hoisted to the start of that list.
#pragma once
#include <memory>
#include <vector>

#include "script/es_lexer.h"
#include "script/es_node.h"

namespace regmill::script {

class ESContext;

class ESParser {
 public:
  // `program` receives the top-level declarations.
  ESParser(ESContext& context, const QString& source, ESCode& program);

  // The program's statement list; throws CompileError.
  std::unique_ptr<ESNode> parseProgram();
  // A function made from texts: the source is its body, `parameters` holds
  // identifiers separated by commas. The function is registered and is the last of
  // functions(); throws CompileError.
  void parseFunctionText(const QString& parameters);
  // Function nodes in the order their parsing ended: inner before outer.
  const std::vector<ESNode*>& functions() const { return functions_; }
  uint32_t line() const { return lexer_.line(); }

  // Declares a name in a block's variables (and, for the program, on the global
  // object). With `replace`, an older entry of the name is renamed out of the way.
  static void declare(ESContext& context, ESCode& code, bool topLevel, ESAtom* name, uint32_t attributes,
                      bool replace);

 private:
  // Statements.
  std::vector<std::unique_ptr<ESNode>> parseStatementList(int end1, int end2 = -1, int end3 = -1);
  std::unique_ptr<ESNode> parseStatement();
  std::unique_ptr<ESNode> parseVarList();
  std::unique_ptr<ESNode> parseIf();
  std::unique_ptr<ESNode> parseWhile();
  std::unique_ptr<ESNode> parseDo();
  std::unique_ptr<ESNode> parseFor();
  std::unique_ptr<ESNode> parseSwitch();
  std::unique_ptr<ESNode> parseWith();
  std::unique_ptr<ESNode> parseJump();
  std::unique_ptr<ESNode> parseReturn();
  std::unique_ptr<ESNode> parseTry();
  std::unique_ptr<ESNode> parseThrow();
  std::unique_ptr<ESNode> parseBlock();
  void endStatement();

  // Expressions, weakest first.
  std::unique_ptr<ESNode> parseSequence();
  std::unique_ptr<ESNode> parseAssignment();
  std::unique_ptr<ESNode> parseConditional();
  std::unique_ptr<ESNode> parseBinary(int level);
  std::unique_ptr<ESNode> parseUnary();
  std::unique_ptr<ESNode> parsePostfix();
  std::unique_ptr<ESNode> parseLeftHandSide();
  std::unique_ptr<ESNode> parsePrimary();
  std::unique_ptr<ESNode> parseArrayLiteral();
  std::unique_ptr<ESNode> parseObjectLiteral();
  std::unique_ptr<ESNode> parseFunction(bool declaration);

  // Tokens.
  void advance() { token_ = lexer_.next(); }
  void expect(int type);
  ESAtom* expectIdentifier();
  [[noreturn]] void fail(const QString& message) const { throw CompileError{message, token_.line}; }

  std::unique_ptr<ESNode> node(int kind, std::unique_ptr<ESNode> a = nullptr, std::unique_ptr<ESNode> b = nullptr,
                               std::unique_ptr<ESNode> c = nullptr, std::unique_ptr<ESNode> d = nullptr);
  void adopt(ESNode& parent, std::unique_ptr<ESNode> item);  // appends to the list, keeping depth
  void checkNativeStack() const;
  ESCode& currentCode() { return function_ ? *function_->code : program_; }
  void declare(ESAtom* name, uint32_t attributes, bool replace) {
    declare(context_, currentCode(), function_ == nullptr, name, attributes, replace);
  }

  ESContext& context_;
  ESLexer lexer_;
  ESToken token_;
  ESCode& program_;
  ESNode* function_ = nullptr;  // the function being parsed
  std::vector<ESNode*> functions_;
  // Trees that `try` and `throw` drop; kept so that functions inside stay valid.
  std::vector<std::unique_ptr<ESNode>> dropped_;
  std::unique_ptr<ESNode> textFunction_;  // the tree of parseFunctionText
  const char* stackBase_;
};

}  // namespace regmill::script
