#include "expr/lexer.h"

#include "expr/parser_exception.h"

namespace regmill {

namespace {

// Expansions of one text, counted over all levels. A replacement that names
// itself, directly or through others, would otherwise read for ever.
constexpr int MaxExpansions = 65536;

}  // namespace

Lexer::~Lexer() = default;

bool Lexer::addRule(const QString& pattern, int token, int precedence) {
  std::optional<TokenPattern> compiled = TokenPattern::compile(pattern);
  if (!compiled) return false;
  rules_.push_back({std::move(*compiled), token, precedence});
  return true;
}

void Lexer::setText(const QString& text) {
  inputs_.clear();
  inputs_.push_back({text, 0});
  expansions_ = 0;
  token_ = EndToken;
  precedence_ = 10;
  text_.clear();
  next();
}

qsizetype Lexer::position() const { return inputs_.empty() ? 0 : inputs_.back().position; }

// A match of no characters counts as none, so that every token moves the read position.
const Lexer::Rule* Lexer::matchRule(const Input& input, qsizetype& length) const {
  for (const Rule& rule : rules_) {
    length = rule.pattern.matchAt(input.text, input.position);
    if (length > 0) return &rule;
  }
  return nullptr;
}

void Lexer::next() {
  for (;;) {
    if (inputs_.empty()) {
      token_ = EndToken;
      return;
    }
    Input& input = inputs_.back();
    if (input.position >= input.text.size()) {
      if (inputs_.size() == 1) {
        token_ = EndToken;
        return;
      }
      inputs_.pop_back();
      continue;
    }
    qsizetype length = 0;
    const Rule* rule = matchRule(input, length);
    if (rule == nullptr) throw ParserException(QStringLiteral("unrecognised token: ") + input.text.mid(input.position));
    token_ = rule->token;
    precedence_ = rule->precedence;
    text_ = input.text.mid(input.position, length);
    input.position += length;
    if (token_ == IdentifierToken) {
      QString replacement = expandIdentifier(text_);
      if (!replacement.isEmpty()) {
        if (++expansions_ > MaxExpansions) throw ParserException(QStringLiteral("identifier expansion too deep"));
        inputs_.push_back({std::move(replacement), 0});
        continue;
      }
    }
    if (token_ != SpaceToken) return;
  }
}

}  // namespace regmill
