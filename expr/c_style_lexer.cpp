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
    {"[\\s]+", WhiteSpace, 10},
    {"\"[^\"]*\"", StringLiteral, 10},
    {"0x[0-9A-Fa-f]*U?L?L?u?l?l?", HexInteger, 10},
    {"0b[0-1]*", BinaryInteger, 10},
    {"\\d+\\.\\d+", FloatNumber, 10},
    {"\\d+U?L?L?u?l?l?", DecimalInteger, 10},
    {"[A-Za-z_$][A-Za-z_0-9$]*", Identifier, 10},
    {"@[A-Za-z_0-9]*", RegisterName, 10},
    {";", Semicolon, 10},
    {"::", ScopeSeparator, 10},
    {":", Colon, 10},
    {"\\(", LeftParenthesis, 10},
    {"\\)", RightParenthesis, 10},
    {"\\[", LeftBracket, 10},
    {"\\]", RightBracket, 10},
    {"\\{", LeftBrace, 10},
    {"\\}", RightBrace, 10},
    {"\\.", Period, 10},
    {"->", Arrow, 10},
    {"\\+\\+", Increment, 10},
    {"\\-\\-", Decrement, 10},
    {"!=", NotEqual, 5},
    {"!", Exclamation, 10},
    {"~", Tilde, 10},
    {"\\*=", StarAssign, -3},
    {"\\*", Star, 9},
    {"/=", SlashAssign, -3},
    {"/", Slash, 9},
    {"%=", PercentAssign, -3},
    {"%", Percent, 9},
    {"\\+=", PlusAssign, -3},
    {"\\+", PlusSign, 8},
    {"\\-=", MinusAssign, -3},
    {"-", MinusSign, 8},
    {"<<=", ShiftLeftAssign, -3},
    {"<<", ShiftLeft, 7},
    {">>>=", ShiftRightUnsignedAssign, -3},
    {">>>", ShiftRightUnsigned, 7},
    {">>=", ShiftRightAssign, -3},
    {">>", ShiftRight, 7},
    {"<=", LessEqual, 6},
    {"<", Less, 6},
    {">=", GreaterEqual, 6},
    {">", Greater, 6},
    {"==", EqualEqual, 5},
    {"\\^=", XorAssign, -3},
    {"\\^", Caret, 3},
    {"&=", AndAssign, -3},
    {"&&", AndAnd, 1},
    {"&", Ampersand, 4},
    {"\\|=", OrAssign, -3},
    {"\\|\\|", BarBar, 0},
    {"\\|", Bar, 2},
    {"?", Question, -1},
    {"=", Assign, -2},
    {",", Comma, -4},
};

}  // namespace

CStyleLexer::CStyleLexer() {
  for (const RuleText& rule : Rules) addRule(QString::fromLatin1(rule.pattern), rule.token, rule.precedence);
}

QString CStyleLexer::expandIdentifier(const QString&) { return QString(); }

}  // namespace regmill
