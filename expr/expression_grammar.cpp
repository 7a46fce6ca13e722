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
std::unique_ptr<Expression> makeOperator(ExpressionParser& parser, int token, std::unique_ptr<Expression> left,
                                         std::unique_ptr<Expression> right) {
  switch (token) {
    case Star: return makeBinary<MultiplyExpression>(parser, std::move(left), std::move(right));
    case Slash: return makeBinary<DivideExpression>(parser, std::move(left), std::move(right));
    case Percent: return makeBinary<ModExpression>(parser, std::move(left), std::move(right));
    case PlusSign: return makeBinary<PlusExpression>(parser, std::move(left), std::move(right));
    case MinusSign: return makeBinary<MinusExpression>(parser, std::move(left), std::move(right));
    case ShiftLeft: return makeBinary<LshiftExpression>(parser, std::move(left), std::move(right));
    case ShiftRight: return makeBinary<RshiftExpression>(parser, std::move(left), std::move(right));
    case Less: return makeBinary<LtExpression>(parser, std::move(left), std::move(right));
    case LessEqual: return makeBinary<LeExpression>(parser, std::move(left), std::move(right));
    case Greater: return makeBinary<GtExpression>(parser, std::move(left), std::move(right));
    case GreaterEqual: return makeBinary<GeExpression>(parser, std::move(left), std::move(right));
    case EqualEqual: return makeBinary<EqExpression>(parser, std::move(left), std::move(right));
    case NotEqual: return makeBinary<NeExpression>(parser, std::move(left), std::move(right));
    case Ampersand: return makeBinary<BitAndExpression>(parser, std::move(left), std::move(right));
    case Caret: return makeBinary<BitXorExpression>(parser, std::move(left), std::move(right));
    case Bar: return makeBinary<BitOrExpression>(parser, std::move(left), std::move(right));
    case AndAnd: return makeBinary<LogicalAndExpression>(parser, std::move(left), std::move(right));
    case BarBar: return makeBinary<LogicalOrExpression>(parser, std::move(left), std::move(right));
    case Assign: return makeBinary<AssignExpression>(parser, std::move(left), std::move(right));
    default: return nullptr;
  }
}

// The operator inside a compound assignment token, or 0.
int compoundOperator(int token) {
  switch (token) {
    case StarAssign: return Star;
    case SlashAssign: return Slash;
    case PercentAssign: return Percent;
    case PlusAssign: return PlusSign;
    case MinusAssign: return MinusSign;
    case ShiftLeftAssign: return ShiftLeft;
    case ShiftRightAssign: return ShiftRight;
    case AndAssign: return Ampersand;
    case XorAssign: return Caret;
    case OrAssign: return Bar;
    default: return 0;
  }
}

QString withoutQuotes(const QString& text) { return text.mid(1, text.size() - 2); }

}  // namespace

void ExpressionGrammar::fail(const char* message) { throw ParserException(QString::fromLatin1(message)); }

void ExpressionGrammar::expect(int token, const char* message) {
  if (lexer_.token() != token) fail(message);
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
    int token = lexer_.token();
    lexer_.next();
    Node right = parseBinary(level + 1);
    left = bounded(combine(token, std::move(left), std::move(right)));
  }
  return left;
}

// A compound assignment a op= b is a = a op b with a copy of a as its target.
// Operators without a node ("?", ",", ">>>" and ">>>=") are refused once their
// right operand has been read.
ExpressionGrammar::Node ExpressionGrammar::combine(int token, Node left, Node right) {
  if (int op = compoundOperator(token)) {
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
  switch (lexer_.token()) {
    case DecimalInteger:
    case HexInteger:
    case BinaryInteger:
    case FloatNumber:
      return parseConstant();
    case StringLiteral: {
      QString text = withoutQuotes(lexer_.text());
      lexer_.next();
      return std::make_unique<StringConstantExpression>(parser_, text);
    }
    case RegisterName: {
      QString name = lexer_.text().mid(1);
      lexer_.next();
      return std::make_unique<RegisterExpression>(parser_, name);
    }
    case Identifier:
      if (lexer_.text() == QLatin1String("sizeof")) return parseSizeof();
      if (lexer_.text() == QLatin1String("addressof")) return parseAddressofLine();
      return pathNode(parseIdentifierPath());
    case ScopeSeparator:
      lexer_.next();
      return std::make_unique<ScopedIdentifierExpression>(parser_, parseIdentifierPath());
    case LeftParenthesis:
      return parseParenthesized();
    case Increment:
    case Decrement: {
      bool increment = lexer_.token() == Increment;
      lexer_.next();
      return makeIncrement(parseUnary(), increment);
    }
    case Tilde:
      lexer_.next();
      return std::make_unique<BitNotExpression>(parser_, parseUnary());
    case Exclamation:
      lexer_.next();
      return std::make_unique<LogicalNotExpression>(parser_, parseUnary());
    case Star: {
      // *p reads element 0 of p.
      lexer_.next();
      Node operand = parseUnary();
      Node index = std::make_unique<ConstantExpression>(parser_, ExprValue::makeUnsigned(0, 2));
      return std::make_unique<LeftSquareBracketExpression>(parser_, std::move(operand), std::move(index));
    }
    case PlusSign:
      lexer_.next();
      return parseUnary();
    case MinusSign:
      lexer_.next();
      return std::make_unique<NegateExpression>(parser_, parseUnary());
    case Ampersand:
      lexer_.next();
      return std::make_unique<AddressofExpression>(parser_, parseUnary());
    default:
      fail("expression expected");
  }
}

ExpressionGrammar::Node ExpressionGrammar::parseConstant() {
  QString text = lexer_.text();
  bool isFloat = lexer_.token() == FloatNumber;
  lexer_.next();
  if (isFloat) return std::make_unique<FloatConstantExpression>(parser_, text.toDouble());
  return std::make_unique<IntegerConstantExpression>(parser_, integerValue(text));
}

// After "(": a type makes a cast of the unary expression behind ")"; anything
// else is an expression in parentheses.
ExpressionGrammar::Node ExpressionGrammar::parseParenthesized() {
  lexer_.next();
  if (lexer_.token() == Identifier) {
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
      expect(RightParenthesis, "')' expected");
      Node operand = parseUnary();
      return std::make_unique<CastExpression>(parser_, std::move(type), std::move(operand));
    }
  }
  Node inner = parseBinary(-4);
  expect(RightParenthesis, "')' expected");
  return inner;
}

// A type in sizeof(...) takes no "*" or "[...]" after it.
ExpressionGrammar::Node ExpressionGrammar::parseSizeof() {
  lexer_.next();
  if (lexer_.token() != LeftParenthesis) return std::make_unique<SizeofExpression>(parser_, parseBinary(-4));
  lexer_.next();
  if (Type type = parseType()) {
    expect(RightParenthesis, "')' expected");
    return std::make_unique<SizeofExpression>(parser_, std::move(type));
  }
  Node operand = parseBinary(-4);
  expect(RightParenthesis, "')' expected");
  return std::make_unique<SizeofExpression>(parser_, std::move(operand));
}

// addressof("file", line)
ExpressionGrammar::Node ExpressionGrammar::parseAddressofLine() {
  lexer_.next();
  expect(LeftParenthesis, "'(' expected");
  if (lexer_.token() != StringLiteral) fail("string expected");
  QString file = withoutQuotes(lexer_.text());
  lexer_.next();
  expect(Comma, "',' expected");
  if (lexer_.token() != DecimalInteger) fail("int expected");
  QByteArray line = lexer_.text().toLatin1();
  lexer_.next();
  expect(RightParenthesis, "')' expected");
  return std::make_unique<AddressofLineExpression>(parser_, file,
                                                   parseNumber(std::string_view(line.constData(), line.size())));
}

// name, or name::name::...
QStringList ExpressionGrammar::parseIdentifierPath() {
  if (lexer_.token() != Identifier) fail("identifier expected");
  QStringList names{lexer_.text()};
  lexer_.next();
  while (lexer_.token() == ScopeSeparator) {
    lexer_.next();
    if (lexer_.token() != Identifier) fail("identifier expected after '::'");
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
    switch (lexer_.token()) {
      case LeftBracket: {
        lexer_.next();
        Node index = parseBinary(-4);
        expect(RightBracket, "expected ']'");
        tree = std::make_unique<LeftSquareBracketExpression>(parser_, std::move(tree), std::move(index));
        break;
      }
      case Period:
      case Arrow:
        lexer_.next();
        tree = std::make_unique<DotExpression>(parser_, std::move(tree), pathNode(parseIdentifierPath()));
        break;
      case Increment:
      case Decrement: {
        bool increment = lexer_.token() == Increment;
        lexer_.next();
        tree = makeIncrement(std::move(tree), increment);
        break;
      }
      case LeftParenthesis:
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
  while (lexer_.token() != RightParenthesis) {
    arguments.push_back(parseUnary());
    if (lexer_.token() == Comma) lexer_.next();
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
