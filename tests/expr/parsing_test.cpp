// The lexer's tokens, and the trees and syntax errors of the grammar.
#include <gtest/gtest.h>

#include <vector>

#include "expr/c_style_lexer.h"
#include "expr/parser_exception.h"
#include "expr/simple_expression_parser.h"
#include "tests/support/tree_dump.h"

namespace regmill {
namespace {

struct Token {
  CToken number;
  QString text;
  bool operator==(const Token&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Token& token) {
  return out << static_cast<int>(token.number) << " '" << token.text.toStdString() << "'";
}

std::vector<Token> tokensOf(Lexer& lexer, const QString& text) {
  std::vector<Token> tokens;
  for (lexer.setText(text); lexer.token() != static_cast<int>(CToken::EndOfInput); lexer.next())
    tokens.push_back({static_cast<CToken>(lexer.token()), lexer.text()});
  return tokens;
}

struct LexCase { const char* text; std::vector<Token> tokens; };

// The first rule that matches wins, however long a later rule's match would be;
// Unicode white space between tokens is skipped.
TEST(CStyleLexer, FirstMatchingRuleWinsAndWhiteSpaceIsSkipped) {
  const LexCase cases[] = {
      {"0X10", {{CToken::DecimalInteger, "0"}, {CToken::Identifier, "X10"}}},
      {"0x", {{CToken::HexInteger, "0x"}}},
      {"0x1fULL+7ul", {{CToken::HexInteger, "0x1fULL"}, {CToken::PlusSign, "+"}, {CToken::DecimalInteger, "7ul"}}},
      {"0b1021", {{CToken::BinaryInteger, "0b10"}, {CToken::DecimalInteger, "21"}}},
      {"\"a b\"c", {{CToken::StringLiteral, "\"a b\""}, {CToken::Identifier, "c"}}},
      {"$x_1@r0@", {{CToken::Identifier, "$x_1"}, {CToken::RegisterName, "@r0"}, {CToken::RegisterName, "@"}}},
      {">>>=>>>>>=>>", {{CToken::ShiftRightUnsignedAssign, ">>>="}, {CToken::ShiftRightUnsigned, ">>>"}, {CToken::ShiftRightAssign, ">>="},
                        {CToken::ShiftRight, ">>"}}},
      {"&&&=&", {{CToken::AndAnd, "&&"}, {CToken::AndAssign, "&="}, {CToken::Ampersand, "&"}}},
      {"|||=|", {{CToken::BarBar, "||"}, {CToken::OrAssign, "|="}, {CToken::Bar, "|"}}},
      {"?,;~^=^", {{CToken::Question, "?"}, {CToken::Comma, ","}, {CToken::Semicolon, ";"}, {CToken::Tilde, "~"}, {CToken::XorAssign, "^="}, {CToken::Caret, "^"}}},
      {"*=/%=", {{CToken::StarAssign, "*="}, {CToken::Slash, "/"}, {CToken::PercentAssign, "%="}}},
      {"\t1\u00a0+\n2  ", {{CToken::DecimalInteger, "1"}, {CToken::PlusSign, "+"}, {CToken::DecimalInteger, "2"}}},
  };
  for (const LexCase& c : cases) {
    CStyleLexer lexer;
    EXPECT_EQ(tokensOf(lexer, QString::fromUtf8(c.text)), c.tokens) << c.text;
  }
}

TEST(CStyleLexer, EndOfInputKeepsThePrecedenceOfTheTokenBefore) {
  CStyleLexer lexer;
  lexer.setText(QStringLiteral("1 +"));
  lexer.next();
  lexer.next();
  EXPECT_EQ(lexer.token(), static_cast<int>(CToken::EndOfInput));
  EXPECT_EQ(lexer.precedence(), 8);
  EXPECT_EQ(lexer.position(), 3);
}

// A lexer that replaces some identifiers, the way a macro-aware subclass would.
class ExpandingLexer : public CStyleLexer {
 protected:
  QString expandIdentifier(const QString& identifier) override {
    if (identifier == QLatin1String("TWO")) return QStringLiteral("1 + 1");
    if (identifier == QLatin1String("LOOP")) return QStringLiteral("LOOP");
    return QString();
  }
};

TEST(Lexer, ReadsAnExpansionInPlaceOfItsIdentifierButNotOneThatNamesItself) {
  ExpandingLexer lexer;
  std::vector<Token> expected = {{CToken::DecimalInteger, "1"}, {CToken::PlusSign, "+"}, {CToken::DecimalInteger, "1"},
                                 {CToken::Star, "*"},           {CToken::Identifier, "x"}};
  EXPECT_EQ(tokensOf(lexer, QStringLiteral("TWO*x")), expected);
  EXPECT_THROW(lexer.setText(QStringLiteral("LOOP")), ParserException);
}

TEST(TokenPattern, RefusesSyntaxItDoesNotReadAndBacktracks) {
  for (const char16_t* text : {u"(a)", u"a|b", u"a{2}", u"[ab", u"a\\", u"^a"}) {
    EXPECT_FALSE(TokenPattern::compile(text)) << QString::fromUtf16(text).toStdString();
  }
  EXPECT_TRUE(TokenPattern::compile(u"?"));  // nothing to repeat: a literal "?"
  // A greedy repetition gives way for the rest; a match starts at the position.
  EXPECT_EQ(TokenPattern::compile(u"a*\\d?ab")->matchAt(u"xaaab", 1), 4);
  EXPECT_EQ(TokenPattern::compile(u"ab")->matchAt(u"xab", 0), -1);
}

QString treeOf(const char* text) {
  SimpleExpressionParser parser;
  std::unique_ptr<Expression> tree = parser.parseTree(QString::fromUtf8(text));
  return tree ? tree->toString() : QStringLiteral("<none>");
}

QString syntaxError(const QString& text) {
  SimpleExpressionParser parser;
  return QString::fromStdString(testing::failureMessage<ParserException>([&] { parser.parseTree(text); }));
}

// Operator levels and left associativity, unary, postfix and access forms, the types
// of casts and sizeof.
TEST(ExpressionGrammar, Trees) {
  const std::pair<const char*, const char*> cases[] = {
      {"2 + 3 * 4", "(0x2+(0x3MultiplyExpression0x4))"},
      {"10 - 3 - 2", "((0xaMinusExpression0x3)MinusExpression0x2)"}, {"a = b = c", "((a=b)=c)"},
      {"1 << 2 + 3 < 4", "((0x1LshiftExpression(0x2+0x3))LtExpression0x4)"},
      {"a == b != c >= d", "((aEqExpressionb)NeExpression(cGeExpressiond))"},
      {"a | b ^ c & d", "(aBitOrExpression(bBitXorExpression(cBitAndExpressiond)))"},
      {"a || b && c | d", "(aLogicalOrExpression(bLogicalAndExpression(cBitOrExpressiond)))"},
      {"a = b || c", "(a=(bLogicalOrExpressionc))"},
      {"a % b / c >> d <= e > f", "(((((aModExpressionb)DivideExpressionc)RshiftExpressiond)LeExpressione)GtExpressionf)"},
      {"(1 + 2) * 3", "((0x1+0x2)MultiplyExpression0x3)"}, {"1 2", "0x1"}, {"", "<none>"},
      {"-~!x", "NegateExpression(BitNotExpression(LogicalNotExpression(x)))"}, {"+x", "x"}, {"*p", "p[0x0]"},
      {"&a[1]", "&a[0x1]"}, {"a.b->c::d", "((a.b).Identifier(c::d))"}, {"::a", "Identifier(a)"},
      {"ns::a", "Identifier(ns::a)"}, {"@r0", "Identifier(r0)"}, {"\"text\"", "0x0"}, {"1.5", "0x3ff8000000000000"},
      {"f(a + b, c)", "f(abc)"}, {"f()()", "f()()"}, {"x++", "(x=(x+0x1))"}, {"--x", "(x=(xMinusExpression0x1))"},
      {"a[i] += 2", "(a[i]=(a[i]+0x2))"}, {"a.b <<= 1", "((a.b)=((a.b)LshiftExpression0x1))"},
      {"addressof(\"f.c\", 12)", "addressof(\"f.c\", 12)"},
      {"(int)x", "((int)x)"}, {"(long int)x", "((int)x)"}, {"(unsigned long)x", "((unsigned long)x)"},
      {"(long unsigned long)x", "((unsigned long long)x)"}, {"(const volatile)x", "((int)x)"},
      {"(signed char)x", "((char)x)"}, {"(short**[2][n])x", "((short**[0x2][n])x)"},
      {"(struct {int a; char b:3; long;})x", "((int a;char b:3;long ;)x)"},
      {"(register 4 EN 0 1 \"M D\" 1 2;)x", "((4 EN 0 1 \"M D\" 1 2)x)"}, {"(x)", "x"},
      {"sizeof(unsigned)", "sizeof(unsigned int)"}, {"sizeof x + 1", "sizeof (x+0x1)"},
      {"sizeof(x)[1]", "sizeof x[0x1]"},
  };
  for (const auto& [text, tree] : cases) EXPECT_EQ(treeOf(text), QString::fromUtf8(tree)) << text;
}

TEST(ExpressionGrammar, SyntaxErrorMessages) {
  const std::pair<const char*, const char*> cases[] = {
      {"(1", "')' expected"}, {"sizeof(int*)", "')' expected"}, {"(int", "')' expected"}, {"a[1", "expected ']'"},
      {"(int[2)x", "']' expected"}, {"(int[2 x)y", "']' expected"}, {"*", "expression expected"},
      {".5", "expression expected"}, {"1 +", "expression expected"}, {"f(1", "expression expected"},
      {"1.", "identifier expected"}, {"::1", "identifier expected"}, {"a::", "identifier expected after '::'"},
      {"addressof 1", "'(' expected"}, {"addressof(1", "string expected"}, {"addressof(\"f\" 1", "',' expected"},
      {"addressof(\"f\", 0x1)", "int expected"}, {"addressof(\"f\", 1", "')' expected"},
      {"1 ? 2 : 3", "operator not supported"}, {"a >>> b", "operator not supported"},
      {"a >>>= b", "operator not supported"}, {"1, 2", "operator not supported"},
      {"a >>> )", "expression expected"},  // the right operand is read first
      {"(struct s)x", "struct type not found"}, {"(struct 1)x", "'{' expected"},
      {"(struct {1})x", "struct parse error"}, {"(struct {int a:b;})x", "integer must follow ':'"},
      {"(struct {int a})x", "';' expected"}, {"(register x)y", "size expected"},
      {"(register 4 1)y", "fieldname expected"}, {"(register 4 a b)y", "bitoffset expected"},
      {"(register 4 a 1 b)y", "bitsize expected"}, {"(a + b) += 1", "cannot duplicate expression"},
      {"f()++", "cannot duplicate expression"}, {"1 + #x", "unrecognised token: #x"},
  };
  for (const auto& [text, message] : cases) {
    EXPECT_EQ(syntaxError(QString::fromUtf8(text)), QString::fromUtf8(message)) << text;
  }
}

// Texts nested far beyond any real formula are refused, not read into a stack overflow.
TEST(ExpressionGrammar, RefusesRunawayNesting) {
  const int n = 100000;
  const QString runaway[] = {
      QString(n, QLatin1Char('(')) + QLatin1Char('1'),
      QString(n, QLatin1Char('-')) + QLatin1Char('1'),
      QStringLiteral("1") + QStringLiteral("+1").repeated(n),
      QStringLiteral("a") + QStringLiteral("[0]").repeated(n),
      QStringLiteral("(int") + QString(n, QLatin1Char('*')) + QStringLiteral(")x"),
      QStringLiteral("1") + QStringLiteral("+(1").repeated(n),
  };
  for (const QString& text : runaway) {
    EXPECT_EQ(syntaxError(text), QStringLiteral("expression too deeply nested")) << text.left(12).toStdString();
  }
  SimpleExpressionParser parser;
  bool ok = false;
  QString deepButFine = QString(100, QLatin1Char('(')) + QLatin1Char('7') + QString(100, QLatin1Char(')'));
  EXPECT_EQ(parser.evaluateSigned(deepButFine + QStringLiteral("+1").repeated(200), &ok), 207);
  EXPECT_TRUE(ok);
}

TEST(ExpressionGrammar, BoundIdentifierReadsAsAnUnsignedNumber) {
  SimpleExpressionParser parser;
  std::unique_ptr<Expression> tree = parser.parseTree(QStringLiteral("-(i * 3) + (long)i - j"));
  tree->bindIdentifier(QStringLiteral("i"), 0x1000);
  EXPECT_EQ(tree->toString(),
            QStringLiteral("((NegateExpression((0x1000MultiplyExpression0x3))+((long)0x1000))MinusExpressionj)"));
  tree = parser.parseTree(QStringLiteral("i * 3 - 1"));
  tree->bindIdentifier(QStringLiteral("i"), 0x80000000);
  ExprValue value = tree->evaluate();
  EXPECT_EQ(value.kind, ExprKind::Unsigned);
  EXPECT_EQ(value.size, 4u);
  EXPECT_EQ(value.asUnsigned(), 0x7FFFFFFFu);  // 0x180000000 - 1 cut to four bytes
}

}  // namespace
}  // namespace regmill
