#include "script/es_generator.h"

#include <cmath>
#include <cstring>

#include "script/es_context.h"
#include "script/es_lexer.h"
#include "script/es_parser.h"

namespace regmill::script {

namespace {

constexpr uint32_t kChainEnd = 65535;
constexpr ptrdiff_t kGeneratorStackBudget = ptrdiff_t(2) << 20;

// Nodes with a side effect are generated even when their value is not wanted.
bool hasSideEffect(const ESNode* node) {
  if (node == nullptr) return false;
  switch (node->kind) {
    case Token::Assign: case Token::PlusPlus: case Token::MinusMinus: case Token::PostIncrement:
    case Token::PostDecrement: case Token::Delete: case Token::Call:
      return true;
    case Token::New:
      if (node->number != 0) return true;
      break;
    case Token::Function:
      return false;  // its body is not part of this expression
    default:
      if (node->kind >= Token::AndAssign && node->kind <= Token::ModAssign) return true;
  }
  for (const auto& child : node->child)
    if (hasSideEffect(child.get())) return true;
  for (const auto& item : node->list)
    if (hasSideEffect(item.get())) return true;
  return false;
}

Op binaryOp(int kind) {
  switch (kind) {
    case '+': case Token::AddAssign: return Op::ADD;
    case '-': case Token::SubAssign: return Op::SUB;
    case '*': case Token::MulAssign: return Op::MUL;
    case '/': case Token::DivAssign: return Op::DIV;
    case '%': case Token::ModAssign: return Op::MOD;
    case '&': case Token::AndAssign: return Op::BITAND;
    case '|': case Token::OrAssign: return Op::BITOR;
    case '^': case Token::XorAssign: return Op::BITXOR;
    case Token::Shl: case Token::ShlAssign: return Op::SHL;
    case Token::Shr: case Token::ShrAssign: return Op::SHR;
    case Token::Ushr: case Token::UshrAssign: return Op::USHR;
    case '<': case '>': return Op::LT;
    case Token::Le: case Token::Ge: return Op::LE;
    case Token::Eq: return Op::EQ;
    case Token::Ne: return Op::NE;
    default: return Op::Count_;
  }
}

bool isLoop(int kind) {
  return kind == Token::While || kind == Token::For || kind == Token::ForIn || kind == Token::Do;
}

}  // namespace

void ESGenerator::fail(const QString& message) const { throw CompileError{message, lastLine_}; }

void ESGenerator::checkNativeStack() const {
  char probe;
  if (stackBase_ != nullptr && stackBase_ - &probe > kGeneratorStackBudget)
    fail(QStringLiteral("program nested too deeply"));
}

void ESGenerator::generateFunction(ESNode& function) {
  char probe;
  stackBase_ = &probe;
  function_ = &function;
  code_ = function.code;
  for (pass_ = 1; pass_ <= 2; ++pass_) {
    code_->bytes.clear();
    code_->lines.clear();
    for (const auto& item : function.list) statement(*item, false);
    write(Op::RETU);
    // Pass 2 regenerates with the final knowledge: the variable instructions take
    // their activation forms. The store of `arguments` that eval asks for at entry
    // is left out: no object for `arguments` is ever built, so it stays undefined.
    if (!code_->needsActivation && !code_->usesEval) break;
  }
  code_->localCount = int32_t(code_->variables.size()) - code_->paramCount;
}

void ESGenerator::generateProgram(ESNode& program, ESCode& code) {
  char probe;
  stackBase_ = &probe;
  function_ = nullptr;
  code_ = &code;
  pass_ = 1;
  if (program.list.empty()) {
    write(Op::RETU);
    return;
  }
  for (size_t i = 0; i < program.list.size(); ++i) statement(*program.list[i], i + 1 == program.list.size());
  write(Op::RET);
}

// ---- Names ----

void ESGenerator::markNeedsActivation(ESNode* from) {
  for (ESNode* f = from; f != nullptr; f = f->enclosing) f->code->needsActivation = true;
}

ESGenerator::Resolved ESGenerator::resolve(ESAtom* name) {
  const ESEngine::Names& names = context_.engine().names();
  if (function_ != nullptr && pass_ == 1) {
    if (name == names.arguments) {
      markNeedsActivation(function_);
      ESParser::declare(context_, *code_, false, names.arguments, ESAttribute::DontEnum, true);
    } else if (name == names.eval) {
      if (function_->enclosing != nullptr) function_->enclosing->code->usesEval = true;
      ESParser::declare(context_, *code_, false, names.arguments, ESAttribute::DontEnum, true);
    }
  }
  if (withDepth_ > 0) {
    markNeedsActivation(function_);
    return {Place::ByName, 0};
  }
  if (function_ != nullptr) {
    auto found = code_->variableIndex.find(name);
    if (found != code_->variableIndex.end()) {
      uint32_t i = found->second;
      if (code_->variables[i].attributes & ESAttribute::Parameter) return {Place::Argument, i};
      return {Place::Local, i - uint32_t(code_->paramCount)};
    }
    for (ESNode* outer = function_->enclosing; outer != nullptr; outer = outer->enclosing)
      if (outer->code->variableIndex.count(name) != 0) {
        markNeedsActivation(function_);
        return {Place::ByName, 0};
      }
  }
  // Every free name becomes a global slot at compile time.
  ESObject* global = context_.global();
  int32_t slot = global->findOwn(name);
  if (slot < 0) slot = global->append(name, 0, ESValue());
  return {Place::Global, uint32_t(slot)};
}

// The instruction that reads (or writes) a variable at its place; the activation
// forms when the block keeps its variables in an activation object.
void ESGenerator::variable(ESAtom* name, bool write) {
  Resolved where = resolve(name);
  bool inActivation = code_->needsActivation;
  switch (where.place) {
    case Place::Argument:
      this->write(write ? (inActivation ? Op::PUTAM : Op::PUTA) : (inActivation ? Op::GETAM : Op::GETA));
      break;
    case Place::Local:
      this->write(write ? (inActivation ? Op::PUTLM : Op::PUTL) : (inActivation ? Op::GETLM : Op::GETL));
      break;
    case Place::Global: this->write(write ? Op::PUTG : Op::GETG); break;
    case Place::ByName:
      this->write(write ? Op::PUTW : Op::GETW);
      emitOperand(name->index, "names");
      return;
  }
  emitOperand(where.number, where.place == Place::Global ? "global variables" : "variables");
}

// ---- Emission ----

void ESGenerator::write(Op op) {
  code_->bytes.push_back(uint8_t(op));
  code_->lines.push_back(line_);
}

// Operands are 16 bits: a program that needs more fails instead of being cut short.
void ESGenerator::emitOperand(uint32_t value, const char* what) {
  if (value > 65535) fail(QStringLiteral("too many %1 for one program").arg(QLatin1String(what)));
  code_->bytes.push_back(uint8_t(value >> 8));
  code_->bytes.push_back(uint8_t(value));
  code_->lines.push_back(line_);
  code_->lines.push_back(line_);
}

// A forward jump joins a chain: its operand holds the previous link until patched.
void ESGenerator::emitJump(Op op, int& chain) {
  write(op);
  int at = position();
  if (at >= int(kChainEnd)) throw ESFatalError{QStringLiteral("compiler error: patch constant too large")};
  emitOperand(chain < 0 ? kChainEnd : uint32_t(chain), "jumps");
  chain = at;
}

void ESGenerator::emitJumpTo(Op op, int target) {
  write(op);
  if (target >= int(kChainEnd)) throw ESFatalError{QStringLiteral("compiler error: patch constant too large")};
  emitOperand(uint32_t(target), "jumps");
}

void ESGenerator::patch(int chain, int target) {
  if (chain >= 0 && target >= int(kChainEnd))
    throw ESFatalError{QStringLiteral("compiler error: patch constant too large")};
  while (chain >= 0) {
    uint8_t* operand = code_->bytes.data() + chain;
    uint32_t next = (uint32_t(operand[0]) << 8) | operand[1];
    operand[0] = uint8_t(target >> 8);
    operand[1] = uint8_t(target);
    chain = next == kChainEnd ? -1 : int(next);
  }
}

void ESGenerator::number(double value) {
  if (value == 0 && !std::signbit(value)) return write(Op::NUM_0);
  if (value == 1) return write(Op::NUM_1);
  if (value == 2) return write(Op::NUM_2);
  if (value == 3) return write(Op::NUM_3);
  if (value == 4) return write(Op::NUM_4);
  if (value == -1) return write(Op::NUM_M1);
  // Equal constants share an entry; 0 and -0 are told apart by their bits.
  uint64_t bits;
  std::memcpy(&bits, &value, sizeof bits);
  auto [entry, added] = code_->numberIndex.emplace(bits, uint32_t(code_->numbers.size()));
  if (added) code_->numbers.push_back(value);
  write(Op::NUM);
  emitOperand(entry->second, "number constants");
}

// ---- Statements ----

void ESGenerator::statementList(const ESNode& node, bool wanted) {
  for (size_t i = 0; i < node.list.size(); ++i) statement(*node.list[i], wanted && i + 1 == node.list.size());
}

void ESGenerator::statement(const ESNode& node, bool wanted) {
  checkNativeStack();
  line_ = node.line;
  if (node.kind == Token::ExpressionStatement) {
    expression(*node.child[0], wanted);
    return;
  }
  if (node.kind == Token::StatementList) {
    // A block is a statement of its own, so that a labelled block can be left by `break`.
    Statement entry{&node};
    statements_.push_back(&entry);
    statementList(node, false);
    statements_.pop_back();
    patch(entry.breakChain, position());
    if (wanted) write(Op::UNDEFINED);
    return;
  }
  Statement entry{&node};
  statements_.push_back(&entry);
  switch (node.kind) {
    case Token::Var:
      for (const auto& item : node.list)
        if (item->kind != Token::Identifier) expression(*item, false);
      break;
    case Token::If: {
      expression(*node.child[0], true);
      int otherwise = -1;
      emitJump(Op::JF, otherwise);
      statement(*node.child[1], false);
      if (node.child[2]) {
        int end = -1;
        emitJump(Op::J, end);
        patch(otherwise, position());
        statement(*node.child[2], false);
        patch(end, position());
      } else {
        patch(otherwise, position());
      }
      break;
    }
    case Token::While:
    case Token::Do:
    case Token::For:
      loopStatement(node, entry);
      break;
    case Token::ForIn: forIn(node, entry); break;
    case Token::Switch: switchStatement(node, entry); break;
    case Token::With:
      expression(*node.child[0], true);
      write(Op::WITH);
      ++withDepth_;
      statement(*node.child[1], false);
      --withDepth_;
      line_ = node.line;
      write(Op::ENDWITH);
      break;
    case Token::Return:
      if (node.child[0]) {
        expression(*node.child[0], true);
        write(Op::RET);
      } else {
        write(Op::RETU);
      }
      break;
    case Token::Label: statement(*node.child[0], false); break;
    case Token::Break:
    case Token::Continue: jump(node); break;
    default: fail(QStringLiteral("??"));
  }
  statements_.pop_back();
  patch(entry.breakChain, position());
  if (wanted) write(Op::UNDEFINED);
}

void ESGenerator::loopStatement(const ESNode& node, Statement& entry) {
  if (node.kind == Token::While) {
    int top = position();
    expression(*node.child[0], true);
    emitJump(Op::JF, entry.breakChain);
    statement(*node.child[1], false);
    emitJumpTo(Op::J, top);
    patch(entry.continueChain, top);
    return;
  }
  if (node.kind == Token::Do) {
    int top = position();
    statement(*node.child[0], false);
    patch(entry.continueChain, position());
    expression(*node.child[1], true);
    emitJumpTo(Op::JT, top);
    return;
  }
  // for: init; J test; body; update; test: the condition jumps back to the body.
  if (node.child[0]) {
    if (node.child[0]->kind == Token::Var)
      statement(*node.child[0], false);
    else
      expression(*node.child[0], false);
  }
  int toTest = -1;
  emitJump(Op::J, toTest);
  int bodyStart = position();
  statement(*node.child[3], false);
  patch(entry.continueChain, position());
  if (node.child[2]) expression(*node.child[2], false);
  patch(toTest, position());
  const ESNode* test = node.child[1].get();
  if (test == nullptr) {
    emitJumpTo(Op::J, bodyStart);
  } else if (test->kind == '<') {
    expression(*test->child[0], true);
    expression(*test->child[1], true);
    emitJumpTo(Op::JLT, bodyStart);
  } else {
    expression(*test, true);
    emitJumpTo(Op::JT, bodyStart);
  }
}

// The enumerator lives in a hidden variable, so `break` needs no clean-up.
void ESGenerator::forIn(const ESNode& node, Statement& entry) {
  ESAtom* hidden = context_.engine().freshName();
  ESParser::declare(context_, *code_, function_ == nullptr, hidden, ESAttribute::DontEnum | ESAttribute::DontDelete,
                    false);
  expression(*node.child[1], true);
  write(Op::ENUM);
  variable(hidden, true);
  int toTest = -1;
  emitJump(Op::J, toTest);
  int bodyStart = position();
  storeTarget(*node.child[0]);
  statement(*node.child[2], false);
  patch(entry.continueChain, position());
  patch(toTest, position());
  variable(hidden, false);
  emitJumpTo(Op::NEXT, bodyStart);
}

// Each case is compared by identity in source order; `default` is taken last.
void ESGenerator::switchStatement(const ESNode& node, Statement& entry) {
  expression(*node.child[0], true);
  std::vector<int> clauseChains(node.list.size(), -1);
  for (size_t i = 0; i < node.list.size(); ++i) {
    const ESNode& clause = *node.list[i];
    if (clause.kind != Token::Case) continue;
    write(Op::DUP);
    expression(*clause.child[0], true);
    write(Op::IDENTITY);
    emitJump(Op::JT_DROP, clauseChains[i]);
  }
  write(Op::DROP);
  for (size_t i = 0; i < node.list.size(); ++i)
    if (node.list[i]->kind == Token::Default) emitJump(Op::J, clauseChains[i]);
  bool haveDefault = false;
  for (const auto& clause : node.list) haveDefault |= clause->kind == Token::Default;
  if (!haveDefault) emitJump(Op::J, entry.breakChain);
  for (size_t i = 0; i < node.list.size(); ++i) {
    patch(clauseChains[i], position());
    const ESNode& clause = *node.list[i];
    for (const auto& item : clause.list) statement(*item, false);
  }
}

void ESGenerator::jump(const ESNode& node) {
  bool isBreak = node.kind == Token::Break;
  Statement* target = nullptr;
  if (node.name == nullptr) {
    for (auto it = statements_.rbegin(); it != statements_.rend() && target == nullptr; ++it) {
      int kind = (*it)->node->kind;
      if (isLoop(kind) || (isBreak && kind == Token::Switch)) target = *it;
    }
    if (target == nullptr) {
      if (isBreak) fail(QStringLiteral("'break' not in a 'for' or 'while' loop"));
      return;  // `continue` outside a loop generates nothing
    }
  } else {
    for (size_t i = statements_.size(); i-- > 0 && target == nullptr;) {
      if (statements_[i]->node->kind != Token::Label || statements_[i]->node->name != node.name) continue;
      // The first statement under the label that is no label itself.
      for (size_t j = i + 1; j < statements_.size() && target == nullptr; ++j)
        if (statements_[j]->node->kind != Token::Label) target = statements_[j];
    }
    if (target == nullptr) fail(QStringLiteral("can't find label ") + node.name->text);
    if (!isBreak && !isLoop(target->node->kind)) fail(QStringLiteral("labeled 'continue' doesn't mark a loop"));
  }
  // Leaving a `with` this way keeps its scope link: only the jump is emitted.
  emitJump(Op::J, isBreak ? target->breakChain : target->continueChain);
}

// ---- Expressions ----

void ESGenerator::expression(const ESNode& node, bool wanted) {
  if (!wanted && !hasSideEffect(&node)) return;
  checkNativeStack();
  line_ = node.line;
  switch (node.kind) {
    case Token::Number: number(node.number); break;
    case Token::String:
      write(Op::STR);
      emitOperand(node.name->index, "names");
      break;
    case Token::Identifier: variable(node.name, false); break;
    case Token::This: write(Op::THIS); break;
    case Token::True: write(Op::TRUE_); break;
    case Token::False: write(Op::FALSE_); break;
    case Token::Null: write(Op::NULL_); break;
    case Token::Function:
      write(Op::CLOSURE);
      emitOperand(node.functionIndex, "functions");
      break;
    case Token::ArrayLiteral:
      for (const auto& element : node.list) {
        if (element->kind == Token::Elision)
          write(Op::UNDEFINED);
        else
          expression(*element, true);
      }
      line_ = node.line;
      write(Op::MKARRAY);
      emitOperand(uint32_t(node.list.size()), "array elements");
      break;
    case Token::ObjectLiteral:
      write(Op::NEWOBJ);
      for (const auto& entry : node.list) {
        expression(*entry->child[0], true);
        line_ = entry->line;
        write(Op::INITF);
        emitOperand(entry->name->index, "names");
      }
      break;
    case Token::Member:
      expression(*node.child[0], true);
      write(Op::GETF);
      emitOperand(node.name->index, "names");
      break;
    case Token::Index:
      expression(*node.child[0], true);
      expression(*node.child[1], true);
      write(Op::GETX);
      break;
    case Token::Call:
      call(node, wanted);
      return;
    case Token::New:
      for (const auto& argument : node.list) expression(*argument, true);
      expression(*node.child[0], true);
      line_ = node.line;
      if (node.number != 0) {
        write(Op::NEWA);
        emitOperand(uint32_t(node.list.size()), "arguments");
      } else {
        write(Op::NEW);
      }
      break;
    case Token::Assign:
      assignment(*node.child[0], *node.child[1], wanted);
      return;
    case Token::Conditional: {
      expression(*node.child[0], true);
      int otherwise = -1, end = -1;
      emitJump(Op::JF, otherwise);
      expression(*node.child[1], true);
      emitJump(Op::J, end);
      patch(otherwise, position());
      expression(*node.child[2], true);
      patch(end, position());
      break;
    }
    case Token::OrOr:
    case Token::AndAnd: {
      expression(*node.child[0], true);
      int end = -1;
      emitJump(node.kind == Token::OrOr ? Op::LOGOR : Op::LOGAND, end);
      expression(*node.child[1], true);
      patch(end, position());
      break;
    }
    case Token::Sequence:
      expression(*node.child[0], false);
      expression(*node.child[1], wanted);
      return;
    case Token::Typeof:
      expression(*node.child[0], true);
      write(Op::TYPEOF);
      break;
    case Token::Void:
      if (!hasSideEffect(node.child[0].get())) {
        write(Op::UNDEFINED);
      } else {
        expression(*node.child[0], true);
        write(Op::VOID);
      }
      break;
    case Token::Delete:
      remove(*node.child[0], wanted);
      return;
    case '!': expression(*node.child[0], true); write(Op::LOGNOT); break;
    case '~': expression(*node.child[0], true); write(Op::BITNOT); break;
    case Token::Plus: expression(*node.child[0], true); write(Op::POS); break;
    case Token::Negate:
      if (node.child[0]->kind == Token::Number && node.child[0]->number == 1) {
        write(Op::NUM_M1);
      } else {
        expression(*node.child[0], true);
        write(Op::NEG);
      }
      break;
    case Token::PlusPlus:
    case Token::MinusMinus:
      increment(*node.child[0], node.kind == Token::PlusPlus, true, wanted);
      return;
    case Token::PostIncrement:
    case Token::PostDecrement:
      increment(*node.child[0], node.kind == Token::PostIncrement, false, wanted);
      return;
    default:
      if (node.kind >= Token::AndAssign && node.kind <= Token::ModAssign) {
        compoundAssignment(node.kind, *node.child[0], *node.child[1], wanted);
        return;
      }
      if (binaryOp(node.kind) == Op::Count_) fail(QStringLiteral("??"));
      // `>` and `>=` evaluate their right operand first and compare swapped.
      if (node.kind == '>' || node.kind == Token::Ge) {
        expression(*node.child[1], true);
        expression(*node.child[0], true);
      } else {
        expression(*node.child[0], true);
        expression(*node.child[1], true);
      }
      line_ = node.line;
      write(binaryOp(node.kind));
  }
  if (!wanted) write(Op::DROP);
}

// The right side comes before the target's object and key.
void ESGenerator::assignment(const ESNode& target, const ESNode& value, bool wanted) {
  switch (target.kind) {
    case Token::Identifier:
      expression(value, true);
      if (wanted) write(Op::DUP);
      line_ = target.line;
      variable(target.name, true);
      return;
    case Token::Member:
      expression(value, true);
      if (wanted) write(Op::DUP);
      expression(*target.child[0], true);
      write(Op::PUTF);
      emitOperand(target.name->index, "names");
      return;
    case Token::Index:
      expression(value, true);
      if (wanted) write(Op::DUP);
      expression(*target.child[0], true);
      expression(*target.child[1], true);
      write(Op::PUTX);
      return;
    default:
      fail(QStringLiteral("not lsh?"));
  }
}

void ESGenerator::compoundAssignment(int kind, const ESNode& target, const ESNode& value, bool wanted) {
  Op op = binaryOp(kind);
  if (target.kind == Token::Identifier) {
    variable(target.name, false);
    expression(value, true);
    write(op);
    if (wanted) write(Op::DUP);
    variable(target.name, true);
    return;
  }
  if (target.kind != Token::Member && target.kind != Token::Index) fail(QStringLiteral("not lsh?"));
  expression(value, true);
  objectAndKey(target);
  write(Op(uint8_t(op) + 1));  // the operator's member form
  if (!wanted) write(Op::DROP);
}

void ESGenerator::increment(const ESNode& target, bool up, bool prefix, bool wanted) {
  if (target.kind == Token::Member || target.kind == Token::Index) {
    objectAndKey(target);
    write(up ? (prefix ? Op::PREINCP : Op::POSTINCP) : (prefix ? Op::PREDECP : Op::POSTDECP));
    if (!wanted) write(Op::DROP);
    return;
  }
  if (target.kind != Token::Identifier) fail(QStringLiteral("not lsh?"));
  Resolved where = resolve(target.name);
  if (where.place == Place::ByName) {
    write(Op::STR);
    emitOperand(target.name->index, "names");
    write(up ? (prefix ? Op::PREINCX : Op::POSTINCX) : (prefix ? Op::PREDECX : Op::POSTDECX));
    // The value would stay on the stack for ever when no one wants it.
    if (!wanted) write(Op::DROP);
    return;
  }
  if (wanted && !prefix) variable(target.name, false);
  bool inActivation = code_->needsActivation;
  switch (where.place) {
    case Place::Argument:
      write(up ? (inActivation ? Op::INCM : Op::INCA) : (inActivation ? Op::DECAM : Op::DECA));
      break;
    case Place::Local:
      write(up ? (inActivation ? Op::INCLM : Op::INCL) : (inActivation ? Op::DECLM : Op::DECL));
      break;
    default:
      write(up ? Op::INCG : Op::DECG);
  }
  emitOperand(where.number, "variables");
  if (wanted && prefix) variable(target.name, false);
}

// Arguments first, then the callee and its object.
void ESGenerator::call(const ESNode& node, bool wanted) {
  for (const auto& argument : node.list) expression(*argument, true);
  const ESNode& callee = *node.child[0];
  uint32_t count = uint32_t(node.list.size());
  line_ = node.line;
  switch (callee.kind) {
    case Token::Identifier: {
      Resolved where = resolve(callee.name);
      bool inActivation = code_->needsActivation;
      switch (where.place) {
        case Place::Argument: write(inActivation ? Op::CALLAM : Op::CALLA); break;
        case Place::Local: write(inActivation ? Op::CALLLM : Op::CALLL); break;
        case Place::Global: write(Op::CALLG); break;
        case Place::ByName: write(Op::CALLW); where.number = callee.name->index; break;
      }
      emitOperand(where.number, "variables");
      emitOperand(count, "arguments");
      break;
    }
    case Token::Member:
      expression(*callee.child[0], true);
      write(Op::CALLF);
      emitOperand(callee.name->index, "names");
      emitOperand(count, "arguments");
      break;
    case Token::Index:
      expression(*callee.child[0], true);
      expression(*callee.child[1], true);
      write(Op::CALLX);
      emitOperand(count, "arguments");
      break;
    default:
      // Any other callee is a value: `(function(){})()`, `f()()`.
      expression(callee, true);
      write(Op::CALLV);
      emitOperand(count, "arguments");
  }
  if (!wanted) write(Op::DROP);
}

void ESGenerator::remove(const ESNode& target, bool wanted) {
  if (target.kind == Token::Identifier) {
    Resolved where = resolve(target.name);
    if (where.place == Place::ByName) {
      write(Op::DELETEW);
      emitOperand(target.name->index, "names");
    } else {
      write(Op::FALSE_);  // a variable at a fixed place is never deleted
    }
  } else if (target.kind == Token::Member || target.kind == Token::Index) {
    objectAndKey(target);
    write(Op::DELETEX);
  } else {
    fail(QStringLiteral("not lsh?"));
  }
  if (!wanted) write(Op::DROP);
}

// A member's object, then its key as a value: the name as a string, or the computed key.
void ESGenerator::objectAndKey(const ESNode& target) {
  expression(*target.child[0], true);
  if (target.kind == Token::Member) {
    write(Op::STR);
    emitOperand(target.name->index, "names");
  } else {
    expression(*target.child[1], true);
  }
}

void ESGenerator::storeTarget(const ESNode& target) {
  switch (target.kind) {
    case Token::Identifier: variable(target.name, true); return;
    case Token::Member:
      expression(*target.child[0], true);
      write(Op::PUTF);
      emitOperand(target.name->index, "names");
      return;
    case Token::Index:
      expression(*target.child[0], true);
      expression(*target.child[1], true);
      write(Op::PUTX);
      return;
    default: fail(QStringLiteral("not lsh?"));
  }
}

}  // namespace regmill::script
