#include "readers/svd/svd_numbers.h"

#include <limits>

#include "base/parse_number.h"

namespace regmill {

namespace {

bool isSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

std::string_view trimmed(std::string_view text) {
  while (!text.empty() && isSpace(text.front())) text.remove_prefix(1);
  while (!text.empty() && isSpace(text.back())) text.remove_suffix(1);
  return text;
}

int digitValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return 16;
}

std::optional<int32_t> toInt32(bool negative, uint64_t magnitude) {
  int64_t value = negative ? -static_cast<int64_t>(magnitude) : static_cast<int64_t>(magnitude);
  if (value < std::numeric_limits<int32_t>::min() || value > std::numeric_limits<int32_t>::max())
    return std::nullopt;
  return static_cast<int32_t>(value);
}

}  // namespace

std::optional<int32_t> decimalNumber(std::string_view text) {
  std::optional<int64_t> value = parseDecimalExactly(text);
  if (!value || *value < std::numeric_limits<int32_t>::min() || *value > std::numeric_limits<int32_t>::max())
    return std::nullopt;
  return static_cast<int32_t>(*value);
}

std::optional<int32_t> prefixedNumber(std::string_view text) {
  text = trimmed(text);
  bool negative = false;
  if (!text.empty() && (text.front() == '+' || text.front() == '-')) {
    negative = text.front() == '-';
    text.remove_prefix(1);
  }
  unsigned base = 10;
  if (text.size() >= 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X')) {
    base = 16;
    text.remove_prefix(2);
  } else if (text.size() >= 2 && text[0] == '0') {
    base = 8;
    text.remove_prefix(1);
  }
  if (text.empty()) return std::nullopt;
  uint64_t magnitude = 0;
  for (char c : text) {
    int digit = digitValue(c);
    if (digit >= static_cast<int>(base)) return std::nullopt;
    magnitude = magnitude * base + static_cast<uint64_t>(digit);
    // Past 2^31 the value can only fail the range check; stopping here keeps it from wrapping.
    if (magnitude > (uint64_t{1} << 32)) return std::nullopt;
  }
  return toInt32(negative, magnitude);
}

}  // namespace regmill
