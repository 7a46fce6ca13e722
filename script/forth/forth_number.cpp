#include "script/forth/forth_number.h"

#include <charconv>
#include <string>

#include "base/text.h"

namespace regmill::forth {
namespace {

bool hasFloatShape(QStringView text) {
  bool exponent = false;
  for (QChar c : text) {
    const char16_t u = c.unicode();
    if (u == 'E' || u == 'e') {
      exponent = true;
    } else if (!(u == '+' || u == '-' || u == '.' || (u >= '0' && u <= '9'))) {
      return false;
    }
  }
  return exponent;
}

// A trailing exponent letter stands for exponent 0. The whole text must be the
// number: "E" or "+-1E" has the letters of one but says nothing, and is no number.
Number convertFloating(QStringView text) {
  std::string digits = text.toLatin1().toStdString();
  const char last = digits.back();
  if (last == 'E' || last == 'e') digits += '0';
  size_t start = 0;
  if (digits[0] == '+' && digits.size() > 1 && digits[1] != '-' && digits[1] != '+') start = 1;
  double value = 0;
  const char* end = digits.data() + digits.size();
  auto [stop, error] = std::from_chars(digits.data() + start, end, value);
  if (error != std::errc() || stop != end) return {};
  return {Number::Kind::Floating, 0, value};
}

Number convertInteger(QStringView text) {
  qsizetype at = 0;
  bool negative = false;
  if (at < text.size() && (text[at] == u'-' || text[at] == u'+')) negative = text[at++] == u'-';
  int base = 10;
  if (at < text.size()) {
    switch (text[at].unicode()) {
      case '$': base = 16, ++at; break;
      case '%': base = 2, ++at; break;
      case '#': base = 10, ++at; break;
      default: break;
    }
  }
  uint64_t value = 0;  // wraps like the cell arithmetic
  int digits = 0;
  int points = 0;
  for (; at < text.size(); ++at) {
    const char16_t c = text[at].unicode();
    if (c == '.') {
      ++points;
      continue;
    }
    const int digit = c < 0x80 ? digitValue(static_cast<unsigned char>(c)) : -1;
    if (digit < 0 || digit >= base) return {};
    value = value * static_cast<uint64_t>(base) + static_cast<uint64_t>(digit);
    ++digits;
  }
  if (digits == 0 || points > 1) return {};
  if (points == 1) return {Number::Kind::DoubleCell};
  if (negative) value = 0 - value;
  return {Number::Kind::Integer, static_cast<int64_t>(value)};
}

}  // namespace

Number convertNumber(QStringView text) {
  if (text.isEmpty()) return {};
  if (hasFloatShape(text)) return convertFloating(text);
  return convertInteger(text);
}

}  // namespace regmill::forth
