#include <gtest/gtest.h>

#include <vector>

#include "expr/c_style_lexer.h"
#include "expr/parser_exception.h"

namespace regmill {
namespace {

struct Token {
  int number;
  QString text;
  bool operator==(const Token&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Token& token) {
  return out << token.number << " '" << token.text.toStdString() << "'";
}

std::vector<Token> tokensOf(Lexer& lexer, const QString& text) {
  std::vector<Token> tokens;
  for (lexer.setText(text); lexer.token() != EndOfInput; lexer.next()) tokens.push_back({lexer.token(), lexer.text()});
  return tokens;
}

struct LexCase {
  const char* text;
  std::vector<Token> tokens;
};

// The first rule that matches wins, however long a later rule's match would be.
TEST(CStyleLexer, FirstMatchingRuleWins) {
  const LexCase cases[] = {
      {"0X10", {{DecimalInteger, "0"}, {Identifier, "X10"}}},
      {"0x", {{HexInteger, "0x"}}},
      {"0x1fULL+7ul", {{HexInteger, "0x1fULL"}, {PlusSign, "+"}, {DecimalInteger, "7ul"}}},
      {"0b1021", {{BinaryInteger, "0b10"}, {DecimalInteger, "21"}}},
      {"1.5 1. .5", {{FloatNumber, "1.5"}, {DecimalInteger, "1"}, {Period, "."}, {Period, "."}, {DecimalInteger, "5"}}},
      {"\"a b\"c", {{StringLiteral, "\"a b\""}, {Identifier, "c"}}},
      {"$x_1@r0@", {{Identifier, "$x_1"}, {RegisterName, "@r0"}, {RegisterName, "@"}}},
      {"a::b:c", {{Identifier, "a"}, {ScopeSeparator, "::"}, {Identifier, "b"}, {Colon, ":"}, {Identifier, "c"}}},
      {">>>=>>>>>=>>", {{ShiftRightUnsignedAssign, ">>>="}, {ShiftRightUnsigned, ">>>"}, {ShiftRightAssign, ">>="},
                        {ShiftRight, ">>"}}},
      {"<<=<<<=<", {{ShiftLeftAssign, "<<="}, {ShiftLeft, "<<"}, {LessEqual, "<="}, {Less, "<"}}},
      {"&&&=&", {{AndAnd, "&&"}, {AndAssign, "&="}, {Ampersand, "&"}}},
      {"|||=|", {{BarBar, "||"}, {OrAssign, "|="}, {Bar, "|"}}},
      {"!=!==", {{NotEqual, "!="}, {NotEqual, "!="}, {Assign, "="}}},
      {"->--+++", {{Arrow, "->"}, {Decrement, "--"}, {Increment, "++"}, {PlusSign, "+"}}},
      {"?,;~^=^", {{Question, "?"}, {Comma, ","}, {Semicolon, ";"}, {Tilde, "~"}, {XorAssign, "^="}, {Caret, "^"}}},
      {"*=/%=", {{StarAssign, "*="}, {Slash, "/"}, {PercentAssign, "%="}}},
  };
  for (const LexCase& c : cases) {
    CStyleLexer lexer;
    EXPECT_EQ(tokensOf(lexer, QString::fromUtf8(c.text)), c.tokens) << c.text;
  }
}

TEST(CStyleLexer, SkipsUnicodeWhiteSpace) {
  CStyleLexer lexer;
  std::vector<Token> expected = {{DecimalInteger, "1"}, {PlusSign, "+"}, {DecimalInteger, "2"}};
  EXPECT_EQ(tokensOf(lexer, QStringLiteral("\t1\u00a0+\n2  ")), expected);
}

TEST(CStyleLexer, EndOfInputKeepsThePrecedenceOfTheTokenBefore) {
  CStyleLexer lexer;
  lexer.setText(QStringLiteral("1 +"));
  lexer.next();
  lexer.next();
  EXPECT_EQ(lexer.token(), EndOfInput);
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

TEST(Lexer, ReadsAnExpansionInPlaceOfItsIdentifier) {
  ExpandingLexer lexer;
  std::vector<Token> expected = {{DecimalInteger, "1"}, {PlusSign, "+"}, {DecimalInteger, "1"},
                                 {Star, "*"},           {Identifier, "x"}};
  EXPECT_EQ(tokensOf(lexer, QStringLiteral("TWO*x")), expected);
}

TEST(Lexer, StopsAnExpansionThatNamesItself) {
  ExpandingLexer lexer;
  EXPECT_THROW(lexer.setText(QStringLiteral("LOOP")), ParserException);
}

TEST(TokenPattern, GreedyRepetitionGivesWayForTheRest) {
  auto pattern = TokenPattern::compile(u"\\d+\\.\\d+");
  ASSERT_TRUE(pattern);
  EXPECT_EQ(pattern->matchAt(u"x12.5y", 1), 4);
  EXPECT_EQ(pattern->matchAt(u"12.", 0), -1);
  EXPECT_EQ(pattern->matchAt(u"a12.5", 0), -1);  // a match must start at the position
  auto negated = TokenPattern::compile(u"\"[^\"]*\"");
  ASSERT_TRUE(negated);
  EXPECT_EQ(negated->matchAt(u"\"a\nb\"\"", 0), 5);
}

TEST(TokenPattern, RefusesSyntaxItDoesNotRead) {
  for (const char16_t* text : {u"(a)", u"a|b", u"a{2}", u"[ab", u"a\\", u"^a"}) {
    EXPECT_FALSE(TokenPattern::compile(text)) << QString::fromUtf16(text).toStdString();
  }
  EXPECT_TRUE(TokenPattern::compile(u"?"));  // nothing to repeat: a literal "?"
}

}  // namespace
}  // namespace regmill
