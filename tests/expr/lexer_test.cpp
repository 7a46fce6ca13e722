#include <gtest/gtest.h>

#include <vector>

#include "expr/c_style_lexer.h"
#include "expr/parser_exception.h"

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

}  // namespace
}  // namespace regmill
