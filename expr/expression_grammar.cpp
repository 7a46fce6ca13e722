#include "expr/expression_grammar.h"

#include "base/parse_number.h"
#include "expr/access_expressions.h"
#include "expr/c_style_lexer.h"
#include "expr/leaf_expressions.h"
#include "expr/operator_expressions.h"
#include "expr/parser_exception.h"

namespace regmill {

// Counts one level of grammar recursion for as long as it lives.
class ExpressionGrammar::DepthGuard {
 public:
  explicit DepthGuard(ExpressionGrammar& grammar) : grammar_(grammar) {
    if (grammar_.depth_ >= MaxDepth) grammar_.fail("expression too deeply nested");
    ++grammar_.depth_;
  }
  ~DepthGuard() { --grammar_.depth_; }
  DepthGuard(const DepthGuard&) = delete;
  DepthGuard& operator=(const DepthGuard&) = delete;

 private:
  ExpressionGrammar& grammar_;
};

namespace {

bool isBinaryLevel(int precedence) { return precedence >= -4 && precedence < NoBinaryPrecedence; }

// The digit rules also take digits beyond ASCII; the number readers give them no
// value, so such a number reads as far as its ASCII digits go.
int64_t integerValue(const QString& text) {
  QByteArray bytes = text.toLatin1();
  return parseNumber64(std::string_view(bytes.constData(), bytes.size()));
}

template <typename NodeClass>
std::unique_ptr<Expression> makeBinary(ExpressionParser& parser, std::unique_ptr<Expression> left,
                                       std::unique_ptr<Expression> right) {
  return std::make_unique<NodeClass>(parser, std::move(left), std::move(right));
}

// The node of a plain binary operator token, or null for a token that has none.
std::unique_ptr<Expression> makeOperator(ExpressionParser& parser, CToken token, std::unique_ptr<Expression> left,
                                         std::unique_ptr<Expression> right) {
  switch (token) {
    case CToken::Star: return makeBinary<MultiplyExpression>(parser, std::move(left), std::move(right));
    case CToken::Slash: return makeBinary<DivideExpression>(parser, std::move(left), std::move(right));
    case CToken::Percent: return makeBinary<ModExpression>(parser, std::move(left), std::move(right));
    case CToken::PlusSign: return makeBinary<PlusExpression>(parser, std::move(left), std::move(right));
    case CToken::MinusSign: return makeBinary<MinusExpression>(parser, std::move(left), std::move(right));
    case CToken::ShiftLeft: return makeBinary<LshiftExpression>(parser, std::move(left), std::move(right));
    case CToken::ShiftRight: return makeBinary<RshiftExpression>(parser, std::move(left), std::move(right));
    case CToken::Less: return makeBinary<LtExpression>(parser, std::move(left), std::move(right));
    case CToken::LessEqual: return makeBinary<LeExpression>(parser, std::move(left), std::move(right));
    case CToken::Greater: return makeBinary<GtExpression>(parser, std::move(left), std::move(right));
    case CToken::GreaterEqual: return makeBinary<GeExpression>(parser, std::move(left), std::move(right));
    case CToken::EqualEqual: return makeBinary<EqExpression>(parser, std::move(left), std::move(right));
    case CToken::NotEqual: return makeBinary<NeExpression>(parser, std::move(left), std::move(right));
    case CToken::Ampersand: return makeBinary<BitAndExpression>(parser, std::move(left), std::move(right));
    case CToken::Caret: return makeBinary<BitXorExpression>(parser, std::move(left), std::move(right));
    case CToken::Bar: return makeBinary<BitOrExpression>(parser, std::move(left), std::move(right));
    case CToken::AndAnd: return makeBinary<LogicalAndExpression>(parser, std::move(left), std::move(right));
    case CToken::BarBar: return makeBinary<LogicalOrExpression>(parser, std::move(left), std::move(right));
    case CToken::Assign: return makeBinary<AssignExpression>(parser, std::move(left), std::move(right));
    default: return nullptr;
  }
}

// The operator inside a compound assignment token, or EndOfInput.
CToken compoundOperator(CToken token) {
  switch (token) {
    case CToken::StarAssign: return CToken::Star;
    case CToken::SlashAssign: return CToken::Slash;
    case CToken::PercentAssign: return CToken::Percent;
    case CToken::PlusAssign: return CToken::PlusSign;
    case CToken::MinusAssign: return CToken::MinusSign;
    case CToken::ShiftLeftAssign: return CToken::ShiftLeft;
    case CToken::ShiftRightAssign: return CToken::ShiftRight;
    case CToken::AndAssign: return CToken::Ampersand;
    case CToken::XorAssign: return CToken::Caret;
    case CToken::OrAssign: return CToken::Bar;
    default: return CToken::EndOfInput;
  }
}

QString withoutQuotes(const QString& text) { return text.mid(1, text.size() - 2); }

}  // namespace

void ExpressionGrammar::fail(const char* message) { throw ParserException(QString::fromLatin1(message)); }

void ExpressionGrammar::expect(CToken token, const char* message) {
  if (current() != token) fail(message);
  lexer_.next();
}

ExpressionGrammar::Node ExpressionGrammar::bounded(Node node) {
  if (node->height() > MaxDepth) fail("expression too deeply nested");
  return node;
}

ExpressionGrammar::Type ExpressionGrammar::bounded(Type type) {
  if (type->height() > MaxDepth) fail("expression too deeply nested");
  return type;
}

// Operator precedence climbing. Every level is left-associative, the assignment
// levels too, so a = b = c is (a = b) = c.
ExpressionGrammar::Node ExpressionGrammar::parseBinary(int minimumLevel) {
  DepthGuard guard(*this);
  Node left = parseUnary();
  while (isBinaryLevel(lexer_.precedence()) && lexer_.precedence() >= minimumLevel) {
    int level = lexer_.precedence();
    CToken token = current();
    lexer_.next();
    Node right = parseBinary(level + 1);
    left = bounded(combine(token, std::move(left), std::move(right)));
  }
  return left;
}

// A compound assignment a op= b is a = a op b with a copy of a as its target.
// Operators without a node ("?", ",", ">>>" and ">>>=") are refused once their
// right operand has been read.
ExpressionGrammar::Node ExpressionGrammar::combine(CToken token, Node left, Node right) {
  if (CToken op = compoundOperator(token); op != CToken::EndOfInput) {
    Node target = left->clone();
    Node value = makeOperator(parser_, op, std::move(left), std::move(right));
    return std::make_unique<AssignExpression>(parser_, std::move(target), std::move(value));
  }
  Node node = makeOperator(parser_, token, std::move(left), std::move(right));
  if (!node) fail("operator not supported");
  return node;
}

ExpressionGrammar::Node ExpressionGrammar::parseUnary() {
  DepthGuard guard(*this);
  return parsePostfix(bounded(parsePrefixed()));
}

ExpressionGrammar::Node ExpressionGrammar::parsePrefixed() {
  switch (current()) {
    case CToken::DecimalInteger:
    case CToken::HexInteger:
    case CToken::BinaryInteger:
    case CToken::FloatNumber:
      return parseConstant();
    case CToken::StringLiteral: {
      QString text = withoutQuotes(lexer_.text());
      lexer_.next();
      return std::make_unique<StringConstantExpression>(parser_, text);
    }
    case CToken::RegisterName: {
      QString name = lexer_.text().mid(1);
      lexer_.next();
      return std::make_unique<RegisterExpression>(parser_, name);
    }
    case CToken::Identifier:
      if (lexer_.text() == QLatin1String("sizeof")) return parseSizeof();
      if (lexer_.text() == QLatin1String("addressof")) return parseAddressofLine();
      return pathNode(parseIdentifierPath());
    case CToken::ScopeSeparator:
      lexer_.next();
      return std::make_unique<ScopedIdentifierExpression>(parser_, parseIdentifierPath());
    case CToken::LeftParenthesis:
      return parseParenthesized();
    case CToken::Increment:
    case CToken::Decrement: {
      bool increment = current() == CToken::Increment;
      lexer_.next();
      return makeIncrement(parseUnary(), increment);
    }
    case CToken::Tilde:
      lexer_.next();
      return std::make_unique<BitNotExpression>(parser_, parseUnary());
    case CToken::Exclamation:
      lexer_.next();
      return std::make_unique<LogicalNotExpression>(parser_, parseUnary());
    case CToken::Star: {
      // *p reads element 0 of p.
      lexer_.next();
      Node operand = parseUnary();
      Node index = std::make_unique<ConstantExpression>(parser_, ExprValue::makeUnsigned(0, 2));
      return std::make_unique<LeftSquareBracketExpression>(parser_, std::move(operand), std::move(index));
    }
    case CToken::PlusSign:
      lexer_.next();
      return parseUnary();
    case CToken::MinusSign:
      lexer_.next();
      return std::make_unique<NegateExpression>(parser_, parseUnary());
    case CToken::Ampersand:
      lexer_.next();
      return std::make_unique<AddressofExpression>(parser_, parseUnary());
    default:
      fail("expression expected");
  }
}

ExpressionGrammar::Node ExpressionGrammar::parseConstant() {
  QString text = lexer_.text();
  bool isFloat = current() == CToken::FloatNumber;
  lexer_.next();
  if (isFloat) return std::make_unique<FloatConstantExpression>(parser_, text.toDouble());
  return std::make_unique<IntegerConstantExpression>(parser_, integerValue(text));
}

// After "(": a type makes a cast of the unary expression behind ")"; anything
// else is an expression in parentheses.
ExpressionGrammar::Node ExpressionGrammar::parseParenthesized() {
  lexer_.next();
  if (current() == CToken::Identifier) {
    Type type;
    if (lexer_.text() == QLatin1String("struct")) {
      lexer_.next();
      type = parseStruct();
    } else if (lexer_.text() == QLatin1String("register")) {
      lexer_.next();
      type = parseRegisterType();
    } else {
      type = parseType();
    }
    if (type) {
      type = parseTypeSuffix(std::move(type));
      expect(CToken::RightParenthesis, "')' expected");
      Node operand = parseUnary();
      return std::make_unique<CastExpression>(parser_, std::move(type), std::move(operand));
    }
  }
  Node inner = parseBinary(-4);
  expect(CToken::RightParenthesis, "')' expected");
  return inner;
}

// A type in sizeof(...) takes no "*" or "[...]" after it.
ExpressionGrammar::Node ExpressionGrammar::parseSizeof() {
  lexer_.next();
  if (current() != CToken::LeftParenthesis) return std::make_unique<SizeofExpression>(parser_, parseBinary(-4));
  lexer_.next();
  if (Type type = parseType()) {
    expect(CToken::RightParenthesis, "')' expected");
    return std::make_unique<SizeofExpression>(parser_, std::move(type));
  }
  Node operand = parseBinary(-4);
  expect(CToken::RightParenthesis, "')' expected");
  return std::make_unique<SizeofExpression>(parser_, std::move(operand));
}

// addressof("file", line)
ExpressionGrammar::Node ExpressionGrammar::parseAddressofLine() {
  lexer_.next();
  expect(CToken::LeftParenthesis, "'(' expected");
  if (current() != CToken::StringLiteral) fail("string expected");
  QString file = withoutQuotes(lexer_.text());
  lexer_.next();
  expect(CToken::Comma, "',' expected");
  if (current() != CToken::DecimalInteger) fail("int expected");
  QByteArray line = lexer_.text().toLatin1();
  lexer_.next();
  expect(CToken::RightParenthesis, "')' expected");
  return std::make_unique<AddressofLineExpression>(parser_, file,
                                                   parseNumber(std::string_view(line.constData(), line.size())));
}

// name, or name::name::...
QStringList ExpressionGrammar::parseIdentifierPath() {
  if (current() != CToken::Identifier) fail("identifier expected");
  QStringList names{lexer_.text()};
  lexer_.next();
  while (current() == CToken::ScopeSeparator) {
    lexer_.next();
    if (current() != CToken::Identifier) fail("identifier expected after '::'");
    names.append(lexer_.text());
    lexer_.next();
  }
  return names;
}

ExpressionGrammar::Node ExpressionGrammar::pathNode(QStringList names) {
  if (names.size() == 1) return std::make_unique<IdentifierExpression>(parser_, names.front());
  return std::make_unique<ScopedIdentifierExpression>(parser_, std::move(names));
}

ExpressionGrammar::Node ExpressionGrammar::parsePostfix(Node tree) {
  for (;;) {
    switch (current()) {
      case CToken::LeftBracket: {
        lexer_.next();
        Node index = parseBinary(-4);
        expect(CToken::RightBracket, "expected ']'");
        tree = std::make_unique<LeftSquareBracketExpression>(parser_, std::move(tree), std::move(index));
        break;
      }
      case CToken::Period:
      case CToken::Arrow:
        lexer_.next();
        tree = std::make_unique<DotExpression>(parser_, std::move(tree), pathNode(parseIdentifierPath()));
        break;
      case CToken::Increment:
      case CToken::Decrement: {
        bool increment = current() == CToken::Increment;
        lexer_.next();
        tree = makeIncrement(std::move(tree), increment);
        break;
      }
      case CToken::LeftParenthesis:
        tree = parseCall(std::move(tree));
        break;
      default:
        return tree;
    }
    tree = bounded(std::move(tree));
  }
}

// Each argument is a unary expression and a comma after it is optional, so
// f(a + b) has the two arguments a and +b.
ExpressionGrammar::Node ExpressionGrammar::parseCall(Node callee) {
  lexer_.next();
  std::vector<Node> arguments;
  while (current() != CToken::RightParenthesis) {
    arguments.push_back(parseUnary());
    if (current() == CToken::Comma) lexer_.next();
  }
  lexer_.next();
  return std::make_unique<CallExpression>(parser_, std::move(callee), std::move(arguments));
}

// ++x and x++ alike assign x + 1 to a copy of x; the value is the new one.
ExpressionGrammar::Node ExpressionGrammar::makeIncrement(Node operand, bool increment) {
  Node target = operand->clone();
  Node one = std::make_unique<IntegerConstantExpression>(parser_, 1);
  Node value = increment ? makeBinary<PlusExpression>(parser_, std::move(operand), std::move(one))
                         : makeBinary<MinusExpression>(parser_, std::move(operand), std::move(one));
  return std::make_unique<AssignExpression>(parser_, std::move(target), std::move(value));
}

}  // namespace regmill
