#include "script/es_lexer.h"

#include <QHash>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "base/text.h"
#include "script/es_engine.h"

namespace regmill::script {

namespace {

// Character classes of the first 256 characters; above them a character is in none.
enum CharClass : uint8_t {
  Lower = 1, Upper = 2, DollarUnderscore = 4, Digit = 8, Sign = 16, ExponentLetter = 32, HexDigit = 64,
  OctalDigit = 128
};

struct ClassTable {
  uint8_t classes[256] = {};
  constexpr ClassTable() {
    for (int c = 'a'; c <= 'z'; ++c) classes[c] |= Lower;
    for (int c = 'A'; c <= 'Z'; ++c) classes[c] |= Upper;
    classes[int('$')] |= DollarUnderscore;
    classes[int('_')] |= DollarUnderscore;
    for (int c = '0'; c <= '9'; ++c) classes[c] |= Digit | HexDigit;
    for (int c = '0'; c <= '7'; ++c) classes[c] |= OctalDigit;
    for (int c = 'a'; c <= 'f'; ++c) classes[c] |= HexDigit;
    for (int c = 'A'; c <= 'F'; ++c) classes[c] |= HexDigit;
    classes[int('+')] |= Sign;
    classes[int('-')] |= Sign;
    classes[int('e')] |= ExponentLetter;
    classes[int('E')] |= ExponentLetter;
  }
};
constexpr ClassTable kClasses;

inline bool is(char16_t c, uint8_t classes) { return c < 256 && (kClasses.classes[c] & classes); }

struct Keyword {
  const char* word;
  int token;
};
constexpr Keyword kKeywords[] = {
    {"break", Token::Break},       {"case", Token::Case},       {"catch", Token::Catch},
    {"class", Token::Class},       {"const", Token::Const},     {"continue", Token::Continue},
    {"debugger", Token::Debugger}, {"default", Token::Default}, {"delete", Token::Delete},
    {"do", Token::Do},             {"else", Token::Else},       {"enum", Token::Enum},
    {"export", Token::Export},     {"extends", Token::Extends}, {"finally", Token::Finally},
    {"for", Token::For},           {"function", Token::Function}, {"if", Token::If},
    {"import", Token::Import},     {"in", Token::In},           {"new", Token::New},
    {"return", Token::Return},     {"super", Token::Super},     {"switch", Token::Switch},
    {"this", Token::This},         {"throw", Token::Throw},     {"try", Token::Try},
    {"typeof", Token::Typeof},     {"var", Token::Var},         {"void", Token::Void},
    {"while", Token::While},       {"with", Token::With},       {"true", Token::True},
    {"false", Token::False},       {"null", Token::Null},
};

const QHash<QString, int>& keywordTable() {
  static const QHash<QString, int> table = [] {
    QHash<QString, int> words;
    for (const Keyword& keyword : kKeywords) words.insert(QString::fromLatin1(keyword.word), keyword.token);
    return words;
  }();
  return table;
}

struct Operator {
  const char* text;
  int token;
};
// Longest first, so that the first match is the longest.
constexpr Operator kOperators[] = {
    {">>>=", Token::UshrAssign}, {"===", Token::StrictEq}, {"!==", Token::StrictNe}, {"<<=", Token::ShlAssign},
    {">>=", Token::ShrAssign},   {">>>", Token::Ushr},     {"&=", Token::AndAssign}, {"|=", Token::OrAssign},
    {"^=", Token::XorAssign},    {"+=", Token::AddAssign}, {"-=", Token::SubAssign}, {"*=", Token::MulAssign},
    {"/=", Token::DivAssign},    {"%=", Token::ModAssign}, {"||", Token::OrOr},      {"&&", Token::AndAnd},
    {"==", Token::Eq},           {"!=", Token::Ne},        {"<=", Token::Le},        {">=", Token::Ge},
    {"<<", Token::Shl},          {">>", Token::Shr},       {"++", Token::PlusPlus},  {"--", Token::MinusMinus},
};
constexpr char kSingleCharacterTokens[] = "()[]{},;:?~!=+-*/%&|^<>.";

// The digit's value up to 35; -1 for anything else.
int digitOf(char16_t c) { return c < 128 ? regmill::digitValue((unsigned char)c) : -1; }

}  // namespace

QString tokenName(int token) {
  if (token < 128) return QString(QChar(char16_t(token)));
  if (token == Token::End) return QStringLiteral("end of input");
  for (const Operator& op : kOperators)
    if (op.token == token) return QString::fromLatin1(op.text);
  if (token == Token::Number) return QStringLiteral("a number");
  if (token == Token::Identifier) return QStringLiteral("an identifier");
  if (token == Token::String) return QStringLiteral("a string");
  for (const Keyword& keyword : kKeywords)
    if (keyword.token == token) return QString::fromLatin1(keyword.word);
  return QStringLiteral("token<%1>").arg(token);
}

ESLexer::ESLexer(ESEngine& engine, const QString& source)
    : engine_(engine), text_(reinterpret_cast<const char16_t*>(source.utf16())), length_(source.size()) {}

void ESLexer::skipBlanks() {
  while (position_ < length_) {
    char16_t c = text_[position_];
    if (c == 9 || c == 11 || c == 12 || c == 26 || c == 32) {
      ++position_;
    } else if (c == 10) {
      ++line_;
      newline_ = true;
      ++position_;
    } else if (c == 13) {
      newline_ = true;
      ++position_;
    } else if (c == '/' && position_ + 1 < length_ && text_[position_ + 1] == '/') {
      while (position_ < length_ && text_[position_] != 10 && text_[position_] != 13) ++position_;
    } else if (c == '/' && position_ + 1 < length_ && text_[position_ + 1] == '*') {
      // Counts lines but sets no line-end flag; an unterminated comment ends the input.
      position_ += 2;
      while (position_ < length_ && !(text_[position_] == '*' && position_ + 1 < length_ && text_[position_ + 1] == '/')) {
        if (text_[position_] == 10) ++line_;
        ++position_;
      }
      position_ = std::min(position_ + 2, length_);
    } else {
      break;
    }
  }
}

char16_t ESLexer::nextNonBlank() const {
  for (qsizetype i = position_; i < length_; ++i) {
    char16_t c = text_[i];
    if (c != 9 && c != 10 && c != 11 && c != 12 && c != 13 && c != 26 && c != 32) return c;
  }
  return 0;
}

ESToken ESLexer::next() {
  newline_ = false;
  skipBlanks();
  ESToken token;
  token.line = line_;
  token.newlineBefore = newline_;
  if (position_ >= length_) {
    token.type = Token::End;
    return token;
  }
  char16_t c = text_[position_];
  if (is(c, Digit) || (c == '.' && position_ + 1 < length_ && is(text_[position_ + 1], Digit)))
    return scanNumber(token);
  if (is(c, Lower | Upper | DollarUnderscore)) {
    qsizetype start = position_;
    while (position_ < length_ && is(text_[position_], Lower | Upper | DollarUnderscore | Digit)) ++position_;
    QString word(reinterpret_cast<const QChar*>(text_ + start), position_ - start);
    auto keyword = keywordTable().constFind(word);
    if (keyword != keywordTable().constEnd()) {
      token.type = keyword.value();
    } else {
      token.type = Token::Identifier;
      token.atom = engine_.intern(word);
    }
    return token;
  }
  if (c == '"' || c == '\'') return scanString(token, c);
  token.type = scanOperator();
  return token;
}

int ESLexer::scanOperator() {
  for (const Operator& op : kOperators) {
    qsizetype n = qsizetype(std::strlen(op.text));
    if (position_ + n > length_) continue;
    bool match = true;
    for (qsizetype i = 0; i < n && match; ++i) match = text_[position_ + i] == char16_t(op.text[i]);
    if (match) {
      position_ += n;
      return op.token;
    }
  }
  char16_t c = text_[position_];
  if (c < 128 && std::strchr(kSingleCharacterTokens, char(c)) != nullptr && c != 0) {
    ++position_;
    return c;
  }
  fail(QStringLiteral("unknown character '%1'").arg(QChar(c)));
}

ESToken ESLexer::scanNumber(ESToken token) {
  const qsizetype start = position_;
  auto at = [&](qsizetype i) -> char16_t { return i < length_ ? text_[i] : 0; };
  int state;
  if (at(position_) == '.') {
    state = 3;
    ++position_;
  } else if (at(position_) == '0') {
    ++position_;
    char16_t after = at(position_);
    if (after == '.') {
      state = 4;
      ++position_;
    } else if (after == 'x' || after == 'X') {
      state = 2;
      ++position_;
    } else {
      state = 1;
    }
  } else {
    state = 0;
  }
  qsizetype lastGood = position_;  // where the number ends if it ends in state 5 or 6
  for (bool going = true; going;) {
    char16_t c = at(position_);
    int nextState = -1;
    switch (state) {
      case 0: nextState = is(c, Digit) ? 0 : is(c, ExponentLetter) ? 5 : c == '.' ? 4 : -1; break;
      case 1: nextState = is(c, OctalDigit) ? 1 : -1; break;
      case 2: nextState = is(c, HexDigit) ? 2 : -1; break;
      case 3:
      case 4: nextState = is(c, Digit) ? 4 : is(c, ExponentLetter) ? 5 : -1; break;
      case 5: nextState = is(c, Sign) ? 6 : is(c, Digit) ? 7 : -1; break;
      case 6: nextState = is(c, Digit) ? 7 : -1; break;
      case 7: nextState = is(c, Digit) ? 7 : -1; break;
    }
    if (nextState < 0) {
      going = false;
    } else {
      if (nextState == 5) lastGood = position_;
      state = nextState;
      ++position_;
      if (state != 5 && state != 6) lastGood = position_;
    }
  }
  // A dangling exponent letter and sign are given back.
  if (state == 5 || state == 6) position_ = lastGood;
  QString text(reinterpret_cast<const QChar*>(text_ + start), position_ - start);
  token.type = Token::Number;
  if (state == 1 || state == 2) {
    int radix = state == 1 ? 8 : 16;
    double value = 0;
    for (qsizetype i = state == 1 ? 0 : 2; i < text.size(); ++i) {
      int digit = digitOf(text[i].unicode());
      if (digit < 0 || digit >= radix) fail(QStringLiteral("digit '%1' is not radix %2").arg(text[i]).arg(radix));
      value = value * radix + digit;
    }
    token.number = value;
    return token;
  }
  QByteArray latin = text.toLatin1();
  double value = 0;
  auto [end, error] = std::from_chars(latin.constData(), latin.constData() + latin.size(), value);
  if (error == std::errc::result_out_of_range)
    value = std::strtod(latin.constData(), nullptr);  // an infinity or a zero, as a C scan gives
  else if (error != std::errc() || end != latin.constData() + latin.size())
    fail(QStringLiteral("bad parse of numerical constant '%1'").arg(text));
  token.number = value;
  return token;
}

ESToken ESLexer::scanString(ESToken token, char16_t quote) {
  ++position_;
  QString text;
  for (;;) {
    if (position_ >= length_) fail(QStringLiteral("end of file in string constant"));
    char16_t c = text_[position_++];
    if (c == quote) break;
    if (c == 10 || c == 13) fail(QStringLiteral("newline in string constant"));
    if (c != '\\') {
      text += QChar(c);
      continue;
    }
    if (position_ >= length_) fail(QStringLiteral("end of file in string constant"));
    char16_t e = text_[position_++];
    switch (e) {
      case 'b': text += QChar(8); break;
      case 'f': text += QChar(12); break;
      case 'n': text += QChar(10); break;
      case 'r': text += QChar(13); break;
      case 't': text += QChar(9); break;
      case 'u':
      case 'x': {
        int digits = e == 'u' ? 4 : 2;
        int value = 0;
        for (int i = 0; i < digits; ++i) {
          int digit = position_ < length_ ? digitOf(text_[position_]) : -1;
          if (digit < 0 || digit > 15) fail(QStringLiteral("malformed hex escape sequence"));
          value = value * 16 + digit;
          ++position_;
        }
        text += QChar(char16_t(value));
        break;
      }
      default:
        if (is(e, OctalDigit)) {
          // Up to three octal digits, the third only while the value is at most 31.
          int value = e - '0';
          if (position_ < length_ && is(text_[position_], OctalDigit)) {
            value = value * 8 + (text_[position_++] - '0');
            if (value <= 31 && position_ < length_ && is(text_[position_], OctalDigit))
              value = value * 8 + (text_[position_++] - '0');
          }
          text += QChar(char16_t(value));
        } else {
          if (e == 10) ++line_;
          text += QChar(e);  // any other character stands for itself, a line end included
        }
    }
  }
  token.type = Token::String;
  token.atom = engine_.intern(text);
  return token;
}

}  // namespace regmill::script
