// CStyleLexer: the token rules of the expression language. Its token numbers
// are the ones the grammar reads; precedences -4 to 9 mark binary operators and
// 10 everything else.
#pragma once
#include "expr/lexer.h"

namespace regmill {

enum class CToken : int {
  EndOfInput = 0,
  WhiteSpace = 2,
  DecimalInteger = 3,
  HexInteger = 4,
  BinaryInteger = 5,
  FloatNumber = 6,
  StringLiteral = 7,
  Identifier = 8,
  RegisterName = 9,
  Semicolon = 10,
  Colon = 11,
  ScopeSeparator = 12,
  LeftParenthesis = 13,
  RightParenthesis = 14,
  LeftBracket = 15,
  RightBracket = 16,
  LeftBrace = 17,
  RightBrace = 18,
  Period = 19,
  Arrow = 20,
  Increment = 21,
  Decrement = 22,
  Tilde = 23,
  Exclamation = 24,
  Star = 25,
  Slash = 26,
  Percent = 27,
  PlusSign = 28,
  MinusSign = 29,
  ShiftLeft = 30,
  ShiftRight = 31,
  ShiftRightUnsigned = 32,
  Less = 33,
  LessEqual = 34,
  Greater = 35,
  GreaterEqual = 36,
  EqualEqual = 37,
  NotEqual = 38,
  Ampersand = 39,
  Caret = 40,
  Bar = 41,
  AndAnd = 42,
  BarBar = 43,
  Question = 44,
  Assign = 45,
  PlusAssign = 46,
  MinusAssign = 47,
  StarAssign = 48,
  SlashAssign = 49,
  PercentAssign = 50,
  ShiftRightAssign = 51,
  ShiftLeftAssign = 52,
  ShiftRightUnsignedAssign = 53,
  AndAssign = 54,
  XorAssign = 55,
  OrAssign = 56,
  Comma = 57,
};

// The precedence of tokens that are no binary operator.
constexpr int NoBinaryPrecedence = 10;

class CStyleLexer : public Lexer {
 public:
  CStyleLexer();

 protected:
  // Identifiers are never replaced.
  QString expandIdentifier(const QString& identifier) override;
};

}  // namespace regmill
