// The compiler's code generator: walks a syntax tree and writes byte code into a
// block, resolving every name to the place it lives (an argument or local slot, a
// slot of the activation object, a global slot, or by name at run time).
#pragma once
#include <cstdint>
#include <vector>

#include "script/es_node.h"

namespace regmill::script {

class ESContext;

class ESGenerator {
 public:
  // `lastLine` is the line errors of generation report: the lexer has reached the end by then.
  ESGenerator(ESContext& context, uint32_t lastLine) : context_(context), lastLine_(lastLine) {}

  // A function body: pass 1, and pass 2 when activations or `eval` turned up.
  void generateFunction(ESNode& function);
  // The program: every statement, the last one with its value, then RET.
  void generateProgram(ESNode& program, ESCode& code);

 private:
  enum class Place { Argument, Local, Global, ByName };
  struct Resolved {
    Place place;
    uint32_t number;
  };
  struct Statement {
    const ESNode* node;
    int breakChain = -1;
    int continueChain = -1;
  };

  Resolved resolve(ESAtom* name);
  void markNeedsActivation(ESNode* from);

  void statement(const ESNode& node, bool wanted);
  void statementList(const ESNode& node, bool wanted);
  void loopStatement(const ESNode& node, Statement& entry);
  void forIn(const ESNode& node, Statement& entry);
  void switchStatement(const ESNode& node, Statement& entry);
  void jump(const ESNode& node);

  void expression(const ESNode& node, bool wanted);
  void assignment(const ESNode& target, const ESNode& value, bool wanted);
  void compoundAssignment(int kind, const ESNode& target, const ESNode& value, bool wanted);
  void increment(const ESNode& target, bool increment, bool prefix, bool wanted);
  void call(const ESNode& node, bool wanted);
  void remove(const ESNode& target, bool wanted);
  void variable(ESAtom* name, bool write);  // read, or write what the stack holds
  void storeTarget(const ESNode& target);  // the value is on the stack
  void objectAndKey(const ESNode& target);  // a member target: object, then key
  void number(double value);

  void write(Op op);
  void emitOperand(uint32_t value, const char* what);
  void emitJump(Op op, int& chain);
  void emitJumpTo(Op op, int target);
  void patch(int chain, int target);
  int position() const { return int(code_->bytes.size()); }
  void checkNativeStack() const;
  [[noreturn]] void fail(const QString& message) const;

  ESContext& context_;
  uint32_t lastLine_;
  ESCode* code_ = nullptr;
  ESNode* function_ = nullptr;  // null for the program
  int pass_ = 1;
  int withDepth_ = 0;
  uint32_t line_ = 0;
  std::vector<Statement*> statements_;
  const char* stackBase_ = nullptr;
};

}  // namespace regmill::script
