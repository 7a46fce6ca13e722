#include "expr/c_style_lexer.h"

namespace regmill {

namespace {

struct RuleText {
  const char* pattern;
  CToken token;
  int precedence;
};

// The order matters: the first rule that matches wins, so every operator comes
// after the longer operators it begins (">>>=" before ">>>" before ">>=" ...).
constexpr RuleText Rules[] = {
    {"[\\s]+", CToken::WhiteSpace, 10},
    {"\"[^\"]*\"", CToken::StringLiteral, 10},
    {"0x[0-9A-Fa-f]*U?L?L?u?l?l?", CToken::HexInteger, 10},
    {"0b[0-1]*", CToken::BinaryInteger, 10},
    {"\\d+\\.\\d+", CToken::FloatNumber, 10},
    {"\\d+U?L?L?u?l?l?", CToken::DecimalInteger, 10},
    {"[A-Za-z_$][A-Za-z_0-9$]*", CToken::Identifier, 10},
    {"@[A-Za-z_0-9]*", CToken::RegisterName, 10},
    {";", CToken::Semicolon, 10},
    {"::", CToken::ScopeSeparator, 10},
    {":", CToken::Colon, 10},
    {"\\(", CToken::LeftParenthesis, 10},
    {"\\)", CToken::RightParenthesis, 10},
    {"\\[", CToken::LeftBracket, 10},
    {"\\]", CToken::RightBracket, 10},
    {"\\{", CToken::LeftBrace, 10},
    {"\\}", CToken::RightBrace, 10},
    {"\\.", CToken::Period, 10},
    {"->", CToken::Arrow, 10},
    {"\\+\\+", CToken::Increment, 10},
    {"\\-\\-", CToken::Decrement, 10},
    {"!=", CToken::NotEqual, 5},
    {"!", CToken::Exclamation, 10},
    {"~", CToken::Tilde, 10},
    {"\\*=", CToken::StarAssign, -3},
    {"\\*", CToken::Star, 9},
    {"/=", CToken::SlashAssign, -3},
    {"/", CToken::Slash, 9},
    {"%=", CToken::PercentAssign, -3},
    {"%", CToken::Percent, 9},
    {"\\+=", CToken::PlusAssign, -3},
    {"\\+", CToken::PlusSign, 8},
    {"\\-=", CToken::MinusAssign, -3},
    {"-", CToken::MinusSign, 8},
    {"<<=", CToken::ShiftLeftAssign, -3},
    {"<<", CToken::ShiftLeft, 7},
    {">>>=", CToken::ShiftRightUnsignedAssign, -3},
    {">>>", CToken::ShiftRightUnsigned, 7},
    {">>=", CToken::ShiftRightAssign, -3},
    {">>", CToken::ShiftRight, 7},
    {"<=", CToken::LessEqual, 6},
    {"<", CToken::Less, 6},
    {">=", CToken::GreaterEqual, 6},
    {">", CToken::Greater, 6},
    {"==", CToken::EqualEqual, 5},
    {"\\^=", CToken::XorAssign, -3},
    {"\\^", CToken::Caret, 3},
    {"&=", CToken::AndAssign, -3},
    {"&&", CToken::AndAnd, 1},
    {"&", CToken::Ampersand, 4},
    {"\\|=", CToken::OrAssign, -3},
    {"\\|\\|", CToken::BarBar, 0},
    {"\\|", CToken::Bar, 2},
    {"?", CToken::Question, -1},
    {"=", CToken::Assign, -2},
    {",", CToken::Comma, -4},
};

}  // namespace

CStyleLexer::CStyleLexer() {
  for (const RuleText& rule : Rules) addRule(QString::fromLatin1(rule.pattern), static_cast<int>(rule.token), rule.precedence);
}

QString CStyleLexer::expandIdentifier(const QString&) { return QString(); }

}  // namespace regmill
