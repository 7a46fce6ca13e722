// The compiler's lexer: source text in UTF-16 to tokens, one at a time. Token
// numbers below 128 are the character itself; the others are named in `Token`
// and double as the kinds of syntax tree nodes.
#pragma once
#include <QString>
#include <cstdint>

#include "script/es_value.h"

namespace regmill::script {

class ESEngine;

namespace Token {
constexpr int End = 128;
constexpr int AndAssign = 129, OrAssign = 130, XorAssign = 131, ShlAssign = 132, ShrAssign = 133,
              UshrAssign = 134, AddAssign = 135, SubAssign = 136, MulAssign = 137, DivAssign = 138,
              ModAssign = 139;
constexpr int OrOr = 140, AndAnd = 141, StrictEq = 142, StrictNe = 143, Eq = 144, Ne = 145, Le = 146, Ge = 147,
              Shl = 148, Shr = 149, Ushr = 150, PlusPlus = 151, MinusMinus = 152;
constexpr int Number = 153, Identifier = 159, String = 161;
constexpr int This = 162, Typeof = 163, Delete = 164, Void = 165, While = 166, For = 167, Break = 168,
              Continue = 169, With = 170, Return = 171, Function = 172, Var = 173, If = 174, Else = 175, In = 176,
              New = 177, Case = 178, Default = 179, Switch = 180, True = 181, False = 182, Null = 183;
// Node kinds that no lexer produces.
constexpr int PostIncrement = 186, PostDecrement = 187, Negate = 188, Plus = 189, Call = 190, ForIn = 192,
              ArrayLiteral = 195, ObjectLiteral = 196, Elision = 197, Label = 198;
constexpr int Catch = 199, Class = 200, Const = 201, Debugger = 202, Do = 203, Enum = 204, Export = 205,
              Extends = 206, Finally = 207, Import = 208, Super = 209, Throw = 210, Try = 211;
// Node kinds named by a character.
constexpr int Sequence = ',', Member = '.', Entry = ':', StatementList = ';', Assign = '=', Conditional = '?',
              Index = '[';
constexpr int ExpressionStatement = 1;  // a statement made of an expression
}  // namespace Token

// "expected X found Y" names tokens this way.
QString tokenName(int token);

// A failure of compilation: the message and the line it belongs to.
struct CompileError {
  QString message;
  uint32_t line;
};

struct ESToken {
  int type = Token::End;
  double number = 0;          // Token::Number
  ESAtom* atom = nullptr;     // Token::Identifier, Token::String
  uint32_t line = 1;
  bool newlineBefore = false;  // a line end stood between this token and the one before
};

class ESLexer {
 public:
  ESLexer(ESEngine& engine, const QString& source);

  // The next token; throws CompileError on a bad character, string or number.
  ESToken next();
  // The next character that is not white space or a line end, from where the
  // last token ended; 0 at the end. Tells a label from an expression.
  char16_t nextNonBlank() const;
  uint32_t line() const { return line_; }

 private:
  void skipBlanks();
  ESToken scanNumber(ESToken token);
  ESToken scanString(ESToken token, char16_t quote);
  int scanOperator();
  [[noreturn]] void fail(const QString& message) const { throw CompileError{message, line_}; }

  ESEngine& engine_;
  const char16_t* text_;
  qsizetype length_;
  qsizetype position_ = 0;
  uint32_t line_ = 1;
  bool newline_ = false;
};

}  // namespace regmill::script
