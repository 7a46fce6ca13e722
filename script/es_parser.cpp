#include "script/es_parser.h"

#include "script/es_context.h"

namespace regmill::script {

namespace {

// Deeper trees than this are refused: every walk of the tree recurses once per level.
constexpr int kMaxTreeDepth = 1000;
// Native stack the parser's recursion may use before a program counts as too deeply nested.
constexpr ptrdiff_t kParserStackBudget = ptrdiff_t(2) << 20;

// Binding strength of the binary operators, 1 the weakest; 0 for any other token.
int binaryLevel(int token) {
  switch (token) {
    case Token::OrOr: return 1;
    case Token::AndAnd: return 2;
    case '|': return 3;
    case '^': return 4;
    case '&': return 5;
    case Token::Eq: case Token::Ne: return 6;
    case '<': case '>': case Token::Le: case Token::Ge: return 7;
    case Token::Shl: case Token::Shr: case Token::Ushr: return 8;
    case '+': case '-': return 9;
    case '*': case '/': case '%': return 10;
    default: return 0;
  }
}
constexpr int kStrongestLevel = 10;

bool isAssignmentOperator(int token) {
  return token == '=' || (token >= Token::AndAssign && token <= Token::ModAssign);
}

}  // namespace

ESParser::ESParser(ESContext& context, const QString& source, ESCode& program)
    : context_(context), lexer_(context.engine(), source), program_(program) {
  char probe;
  stackBase_ = &probe;
}

void ESParser::declare(ESContext& context, ESCode& code, bool topLevel, ESAtom* name, uint32_t attributes,
                       bool replace) {
  auto found = code.variableIndex.find(name);
  if (found != code.variableIndex.end()) {
    if (!replace) return;
    ESProperty& older = code.variables[found->second];
    older.name = context.engine().freshName();
    code.variableIndex.emplace(older.name, found->second);
    found->second = uint32_t(code.variables.size());
  } else {
    code.variableIndex.emplace(name, uint32_t(code.variables.size()));
  }
  code.variables.push_back(ESProperty{name, attributes, ESValue()});
  if (attributes & ESAttribute::Parameter) ++code.paramCount;
  if (topLevel && context.global()->findOwn(name) < 0) context.global()->append(name, attributes, ESValue());
}

void ESParser::checkNativeStack() const {
  char probe;
  if (stackBase_ - &probe > kParserStackBudget) fail(QStringLiteral("program nested too deeply"));
}

std::unique_ptr<ESNode> ESParser::node(int kind, std::unique_ptr<ESNode> a, std::unique_ptr<ESNode> b,
                                       std::unique_ptr<ESNode> c, std::unique_ptr<ESNode> d) {
  auto made = std::make_unique<ESNode>();
  made->kind = kind;
  made->line = token_.line;
  std::unique_ptr<ESNode>* children[] = {&a, &b, &c, &d};
  for (int i = 0; i < 4; ++i) {
    if (!*children[i]) continue;
    made->depth = std::max(made->depth, (*children[i])->depth + 1);
    made->child[i] = std::move(*children[i]);
  }
  if (made->depth > kMaxTreeDepth) fail(QStringLiteral("program nested too deeply"));
  return made;
}

void ESParser::adopt(ESNode& parent, std::unique_ptr<ESNode> item) {
  parent.depth = std::max(parent.depth, item->depth + 1);
  if (parent.depth > kMaxTreeDepth) fail(QStringLiteral("program nested too deeply"));
  parent.list.push_back(std::move(item));
}

void ESParser::expect(int type) {
  if (token_.type != type)
    fail(QStringLiteral("expected %1 found %2").arg(tokenName(type), tokenName(token_.type)));
  advance();
}

ESAtom* ESParser::expectIdentifier() {
  ESAtom* name = token_.atom;
  expect(Token::Identifier);
  return name;
}

// A `;` is taken; a `}`, the end or a line end before the token ends the statement too.
void ESParser::endStatement() {
  if (token_.type == ';') {
    advance();
    return;
  }
  if (token_.type == '}' || token_.type == Token::End || token_.newlineBefore) return;
  expect(';');
}

std::unique_ptr<ESNode> ESParser::parseProgram() {
  advance();
  auto program = node(Token::StatementList);
  for (auto& statement : parseStatementList(Token::End)) adopt(*program, std::move(statement));
  return program;
}

void ESParser::parseFunctionText(const QString& parameters) {
  auto function = node(Token::Function);
  function->line = 1;
  auto owned = std::make_unique<ESCode>();
  function->code = owned.get();
  function_ = function.get();
  // The parameter text has its own lexer: it never joins the body's tokens, so it
  // cannot close the parameter list early.
  ESLexer lexer(context_.engine(), parameters);
  for (ESToken token = lexer.next(); token.type != Token::End;) {
    if (token.type != Token::Identifier)
      fail(QStringLiteral("expected %1 found %2").arg(tokenName(Token::Identifier), tokenName(token.type)));
    declare(token.atom, ESAttribute::DontDelete | ESAttribute::Parameter, true);
    token = lexer.next();
    if (token.type == Token::End) break;
    if (token.type != ',') fail(QStringLiteral("expected %1 found %2").arg(tokenName(','), tokenName(token.type)));
    token = lexer.next();
    if (token.type == Token::End)
      fail(QStringLiteral("expected %1 found %2").arg(tokenName(Token::Identifier), tokenName(token.type)));
  }
  advance();
  for (auto& statement : parseStatementList(Token::End)) adopt(*function, std::move(statement));
  function_ = nullptr;
  if (context_.functionCount() > 65535) fail(QStringLiteral("too many functions in one context"));
  function->functionIndex = context_.registerFunction(std::move(owned));
  functions_.push_back(function.get());
  textFunction_ = std::move(function);
}

std::vector<std::unique_ptr<ESNode>> ESParser::parseStatementList(int end1, int end2, int end3) {
  std::vector<std::unique_ptr<ESNode>> declarations;
  std::vector<std::unique_ptr<ESNode>> statements;
  while (token_.type != end1 && token_.type != end2 && token_.type != end3 && token_.type != Token::End) {
    if (token_.type == Token::Function)
      declarations.push_back(node(Token::ExpressionStatement, parseFunction(true)));
    else
      statements.push_back(parseStatement());
  }
  for (auto& statement : statements) declarations.push_back(std::move(statement));
  return declarations;
}

std::unique_ptr<ESNode> ESParser::parseStatement() {
  checkNativeStack();
  switch (token_.type) {
    case ';':
      advance();
      return node(Token::StatementList);
    case '{':
      return parseBlock();
    case Token::Var: {
      auto list = parseVarList();
      endStatement();
      return list;
    }
    case Token::If: return parseIf();
    case Token::While: return parseWhile();
    case Token::Do: return parseDo();
    case Token::For: return parseFor();
    case Token::Switch: return parseSwitch();
    case Token::With: return parseWith();
    case Token::Break:
    case Token::Continue: return parseJump();
    case Token::Return: return parseReturn();
    case Token::Try: return parseTry();
    case Token::Throw: return parseThrow();
    case Token::Identifier:
      if (lexer_.nextNonBlank() == ':') {
        auto label = node(Token::Label);
        label->name = token_.atom;
        advance();
        advance();  // the colon
        auto statement = parseStatement();
        label->depth = statement->depth + 1;
        label->child[0] = std::move(statement);
        return label;
      }
      break;
    default:
      break;
  }
  auto statement = node(Token::ExpressionStatement, parseSequence());
  endStatement();
  return statement;
}

std::unique_ptr<ESNode> ESParser::parseBlock() {
  auto block = node(Token::StatementList);
  expect('{');
  for (auto& statement : parseStatementList('}')) adopt(*block, std::move(statement));
  expect('}');
  return block;
}

// `var` and its names; each initialiser becomes an assignment.
std::unique_ptr<ESNode> ESParser::parseVarList() {
  auto list = node(Token::Var);
  advance();
  for (;;) {
    auto target = node(Token::Identifier);
    target->name = expectIdentifier();
    declare(target->name, ESAttribute::DontEnum | ESAttribute::DontDelete, false);
    if (token_.type == '=') {
      advance();
      adopt(*list, node(Token::Assign, std::move(target), parseAssignment()));
    } else {
      // A name alone still counts, for the for-in head.
      adopt(*list, std::move(target));
    }
    if (token_.type != ',') break;
    advance();
  }
  return list;
}

std::unique_ptr<ESNode> ESParser::parseIf() {
  advance();
  expect('(');
  auto test = parseSequence();
  expect(')');
  auto then = parseStatement();
  std::unique_ptr<ESNode> otherwise;
  if (token_.type == Token::Else) {
    advance();
    otherwise = parseStatement();
  }
  return node(Token::If, std::move(test), std::move(then), std::move(otherwise));
}

std::unique_ptr<ESNode> ESParser::parseWhile() {
  advance();
  expect('(');
  auto test = parseSequence();
  expect(')');
  return node(Token::While, std::move(test), parseStatement());
}

// The body of `do` must be a block, and nothing is taken after the closing `)`.
std::unique_ptr<ESNode> ESParser::parseDo() {
  advance();
  if (token_.type != '{') expect('{');
  auto body = parseBlock();
  expect(Token::While);
  expect('(');
  auto test = parseSequence();
  expect(')');
  return node(Token::Do, std::move(body), std::move(test));
}

std::unique_ptr<ESNode> ESParser::parseFor() {
  advance();
  expect('(');
  std::unique_ptr<ESNode> init;
  if (token_.type == Token::Var) {
    init = parseVarList();
    if (token_.type == Token::In) {
      if (init->list.size() > 1) fail(QStringLiteral("too many variables in for-in expression"));
      init = std::move(init->list.front());  // the name, or an assignment that the generator refuses
    }
  } else if (token_.type != ';') {
    init = parseSequence();
  }
  if (token_.type == Token::In) {
    advance();
    auto object = parseSequence();
    expect(')');
    return node(Token::ForIn, std::move(init), std::move(object), parseStatement());
  }
  expect(';');
  std::unique_ptr<ESNode> test, update;
  if (token_.type != ';') test = parseSequence();
  expect(';');
  if (token_.type != ')') update = parseSequence();
  expect(')');
  return node(Token::For, std::move(init), std::move(test), std::move(update), parseStatement());
}

std::unique_ptr<ESNode> ESParser::parseSwitch() {
  advance();
  expect('(');
  auto subject = parseSequence();
  expect(')');
  expect('{');
  auto statement = node(Token::Switch, std::move(subject));
  bool haveDefault = false;
  while (token_.type != '}') {
    std::unique_ptr<ESNode> clause;
    if (token_.type == Token::Case) {
      advance();
      clause = node(Token::Case, parseSequence());
    } else if (token_.type == Token::Default) {
      if (haveDefault) fail(QStringLiteral("default case already defined"));
      haveDefault = true;
      advance();
      clause = node(Token::Default);
    } else {
      fail(QStringLiteral("expected 'case' or 'default' but found '%1'").arg(tokenName(token_.type)));
    }
    expect(':');
    for (auto& item : parseStatementList('}', Token::Case, Token::Default)) adopt(*clause, std::move(item));
    adopt(*statement, std::move(clause));
  }
  advance();
  return statement;
}

std::unique_ptr<ESNode> ESParser::parseWith() {
  advance();
  expect('(');
  auto object = parseSequence();
  expect(')');
  return node(Token::With, std::move(object), parseStatement());
}

// `break` and `continue` take an identifier after them as the label, on any line.
std::unique_ptr<ESNode> ESParser::parseJump() {
  auto jump = node(token_.type);
  advance();
  if (token_.type == Token::Identifier) {
    jump->name = token_.atom;
    advance();
  }
  endStatement();
  return jump;
}

std::unique_ptr<ESNode> ESParser::parseReturn() {
  if (function_ == nullptr) fail(tokenName(Token::Return) + QStringLiteral(" not in a function"));
  auto statement = node(Token::Return);
  advance();
  // The end of the input also ends a bare `return`, as a `}` does.
  if (token_.type != ';' && token_.type != '}' && token_.type != Token::End && !token_.newlineBefore) {
    auto value = parseSequence();
    statement->depth = value->depth + 1;
    statement->child[0] = std::move(value);
  }
  endStatement();
  return statement;
}

// `try` is checked and its declarations stay, but it generates nothing.
std::unique_ptr<ESNode> ESParser::parseTry() {
  advance();
  dropped_.push_back(parseBlock());
  bool clause = false;
  if (token_.type == Token::Catch) {
    clause = true;
    advance();
    expect('(');
    expectIdentifier();
    expect(')');
    dropped_.push_back(parseBlock());
  }
  if (token_.type == Token::Finally) {
    clause = true;
    advance();
    dropped_.push_back(parseBlock());
  }
  if (!clause) fail(QStringLiteral("'catch' or 'finally' clause expected after 'try'"));
  return node(Token::StatementList);
}

// `throw` is checked and has no effect.
std::unique_ptr<ESNode> ESParser::parseThrow() {
  advance();
  dropped_.push_back(parseSequence());
  endStatement();
  return node(Token::StatementList);
}

std::unique_ptr<ESNode> ESParser::parseSequence() {
  auto left = parseAssignment();
  while (token_.type == ',') {
    advance();
    left = node(Token::Sequence, std::move(left), parseAssignment());
  }
  return left;
}

std::unique_ptr<ESNode> ESParser::parseAssignment() {
  checkNativeStack();
  auto left = parseConditional();
  if (!isAssignmentOperator(token_.type)) return left;
  int kind = token_.type;
  advance();
  return node(kind, std::move(left), parseAssignment());
}

std::unique_ptr<ESNode> ESParser::parseConditional() {
  auto test = parseBinary(1);
  if (token_.type != '?') return test;
  advance();
  auto then = parseAssignment();
  expect(':');
  return node(Token::Conditional, std::move(test), std::move(then), parseAssignment());
}

std::unique_ptr<ESNode> ESParser::parseBinary(int level) {
  if (level > kStrongestLevel) return parseUnary();
  auto left = parseBinary(level + 1);
  while (binaryLevel(token_.type) == level) {
    int kind = token_.type;
    advance();
    left = node(kind, std::move(left), parseBinary(level + 1));
  }
  return left;
}

std::unique_ptr<ESNode> ESParser::parseUnary() {
  checkNativeStack();
  int kind;
  switch (token_.type) {
    case Token::Delete: case Token::Void: case Token::Typeof: case Token::PlusPlus: case Token::MinusMinus:
    case '~': case '!':
      kind = token_.type;
      break;
    case '+': kind = Token::Plus; break;
    case '-': kind = Token::Negate; break;
    default:
      return parsePostfix();
  }
  advance();
  return node(kind, parseUnary());
}

std::unique_ptr<ESNode> ESParser::parsePostfix() {
  auto operand = parseLeftHandSide();
  if ((token_.type == Token::PlusPlus || token_.type == Token::MinusMinus) && !token_.newlineBefore) {
    int kind = token_.type == Token::PlusPlus ? Token::PostIncrement : Token::PostDecrement;
    advance();
    return node(kind, std::move(operand));
  }
  return operand;
}

std::unique_ptr<ESNode> ESParser::parseLeftHandSide() {
  checkNativeStack();
  if (token_.type == Token::New) {
    advance();
    // The whole following left-hand side is the operand; only its outermost call
    // supplies the constructor's arguments.
    auto operand = parseLeftHandSide();
    auto made = node(Token::New);
    if (operand->kind == Token::Call) {
      made->number = 1;
      made->depth = operand->depth;
      made->list = std::move(operand->list);
      made->child[0] = std::move(operand->child[0]);
    } else {
      made->depth = operand->depth + 1;
      made->child[0] = std::move(operand);
    }
    return made;
  }
  auto left = parsePrimary();
  for (;;) {
    if (token_.type == '(') {
      advance();
      auto call = node(Token::Call, std::move(left));
      while (token_.type != ')') {
        adopt(*call, parseAssignment());
        if (token_.type != ')') expect(',');
      }
      advance();
      left = std::move(call);
    } else if (token_.type == '[') {
      advance();
      auto key = parseSequence();
      expect(']');
      // A constant key becomes the member form.
      if (key->kind == Token::String || key->kind == Token::Number) {
        ESAtom* name = key->kind == Token::String ? key->name : context_.toKey(ESValue::fromNumber(key->number));
        left = node(Token::Member, std::move(left));
        left->name = name;
      } else {
        left = node(Token::Index, std::move(left), std::move(key));
      }
    } else if (token_.type == '.') {
      advance();
      ESAtom* name = token_.atom;
      expect(Token::Identifier);
      left = node(Token::Member, std::move(left));
      left->name = name;
    } else {
      return left;
    }
  }
}

std::unique_ptr<ESNode> ESParser::parsePrimary() {
  switch (token_.type) {
    case '(': {
      advance();
      auto inner = parseSequence();
      expect(')');
      return inner;
    }
    case '[': return parseArrayLiteral();
    case '{': return parseObjectLiteral();
    case Token::Function: return parseFunction(false);
    case Token::Number: {
      auto number = node(Token::Number);
      number->number = token_.number;
      advance();
      return number;
    }
    case Token::Identifier:
    case Token::String: {
      auto leaf = node(token_.type);
      leaf->name = token_.atom;
      advance();
      return leaf;
    }
    case Token::This: case Token::True: case Token::False: case Token::Null: {
      auto leaf = node(token_.type);
      advance();
      return leaf;
    }
    default:
      fail(QStringLiteral("expected an expression, found %1").arg(tokenName(token_.type)));
  }
}

// A comma with nothing before it, and a comma right before `]`, each add an elided element.
std::unique_ptr<ESNode> ESParser::parseArrayLiteral() {
  auto array = node(Token::ArrayLiteral);
  advance();
  bool elementBefore = false;
  while (token_.type != ']') {
    if (token_.type == ',') {
      if (!elementBefore) adopt(*array, node(Token::Elision));
      advance();
      elementBefore = false;
      if (token_.type == ']') adopt(*array, node(Token::Elision));
      continue;
    }
    if (elementBefore)
      fail(QStringLiteral("']' or ',' expected, found %1").arg(tokenName(token_.type)));
    adopt(*array, parseAssignment());
    elementBefore = true;
    if (token_.type != ',' && token_.type != ']')
      fail(QStringLiteral("']' or ',' expected, found %1").arg(tokenName(token_.type)));
  }
  advance();
  return array;
}

std::unique_ptr<ESNode> ESParser::parseObjectLiteral() {
  auto object = node(Token::ObjectLiteral);
  advance();
  while (token_.type != '}') {
    ESAtom* key;
    if (token_.type == Token::Number)
      key = context_.toKey(ESValue::fromNumber(token_.number));
    else if (token_.type == Token::String || token_.type == Token::Identifier)
      key = token_.atom;
    else
      fail(QStringLiteral("number, string, or identifier expected in object initialiser"));
    advance();
    expect(':');
    auto entry = node(Token::Entry, parseAssignment());
    entry->name = key;
    adopt(*object, std::move(entry));
    if (token_.type != ',') break;
    advance();
  }
  expect('}');
  return object;
}

// A named function is declared in the enclosing block and becomes an assignment to its name.
std::unique_ptr<ESNode> ESParser::parseFunction(bool declaration) {
  uint32_t line = token_.line;
  advance();
  ESAtom* name = nullptr;
  if (declaration || token_.type == Token::Identifier) name = expectIdentifier();
  auto function = node(Token::Function);
  function->line = line;
  function->enclosing = function_;
  auto owned = std::make_unique<ESCode>();
  function->code = owned.get();
  ESNode* outer = function_;
  function_ = function.get();
  expect('(');
  while (token_.type != ')') {
    declare(expectIdentifier(), ESAttribute::DontDelete | ESAttribute::Parameter, true);
    if (token_.type != ')') expect(',');
  }
  advance();
  expect('{');
  for (auto& statement : parseStatementList('}')) adopt(*function, std::move(statement));
  expect('}');
  function_ = outer;
  if (context_.functionCount() > 65535) fail(QStringLiteral("too many functions in one context"));
  function->functionIndex = context_.registerFunction(std::move(owned));
  functions_.push_back(function.get());
  if (name == nullptr) return function;
  declare(name, 0, true);
  auto target = node(Token::Identifier);
  target->name = name;
  return node(Token::Assign, std::move(target), std::move(function));
}

}  // namespace regmill::script
