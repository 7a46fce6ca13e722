// Lexer: cuts a text into tokens by an ordered list of rules. The first rule that
// matches at the read position wins, however long another match would be. An
// identifier may be replaced by a text of the subclass's choosing, which is then
// read before the rest of the input.
#pragma once
#include <QString>
#include <vector>

#include "expr/token_pattern.h"

namespace regmill {

class Lexer {
 public:
  // Token 0 is the end of the input; 2 is white space, which next() passes over;
  // 8 is an identifier, offered to expandIdentifier.
  static constexpr int EndToken = 0;
  static constexpr int SpaceToken = 2;
  static constexpr int IdentifierToken = 8;

  virtual ~Lexer();

  // Appends a rule; false when the pattern is outside what TokenPattern reads.
  bool addRule(const QString& pattern, int token, int precedence);
  // Starts reading text and reads its first token.
  void setText(const QString& text);
  // Reads the next token. Throws ParserException when no rule matches.
  void next();

  int token() const { return token_; }
  // At the end of the input the precedence and text stay those of the token before.
  int precedence() const { return precedence_; }
  const QString& text() const { return text_; }
  // The read position in the text being read (an expansion's own text while one is read).
  qsizetype position() const;

 protected:
  Lexer() = default;
  // The text that replaces an identifier; an empty text keeps the identifier.
  virtual QString expandIdentifier(const QString& identifier) = 0;

 private:
  struct Rule {
    TokenPattern pattern;
    int token;
    int precedence;
  };
  struct Input {
    QString text;
    qsizetype position;
  };

  const Rule* matchRule(const Input& input, qsizetype& length) const;

  std::vector<Rule> rules_;
  std::vector<Input> inputs_;
  int expansions_ = 0;
  int token_ = EndToken;
  int precedence_ = 10;
  QString text_;
};

}  // namespace regmill
