#include "base/parse_number.h"

#include "base/text.h"

#include <cerrno>
#include <cstdlib>
#include <limits>

namespace regmill {

int64_t parseNumber64(std::string_view text) {
  size_t i = 0;
  while (i < text.size() && isSpaceByte(static_cast<unsigned char>(text[i]))) ++i;
  bool negative = false;
  if (i < text.size() && (text[i] == '-' || text[i] == '+')) negative = text[i++] == '-';
  uint64_t base = 10;
  if (i < text.size() && text[i] == '0') {
    if (i + 1 < text.size() && (text[i + 1] == 'x' || text[i + 1] == 'X')) {
      base = 16;
      i += 2;
    } else if (i + 1 < text.size() && (text[i + 1] == 'b' || text[i + 1] == 'B')) {
      base = 2;
      i += 2;
    } else {
      base = 8;
      ++i;
    }
  }
  uint64_t value = 0;
  for (; i < text.size(); ++i) {
    char c = text[i];
    if (c == 'L' || c == 'U' || c == 'l' || c == 'u') break;
    int digit = digitValue(static_cast<unsigned char>(c));
    // Any letter adds its value whatever the base; a byte that is neither digit nor
    // letter has no digit value, and we let it end the number.
    if (digit < 0) break;
    value = value * base + static_cast<uint64_t>(digit);
  }
  return static_cast<int64_t>(negative ? 0 - value : value);
}

int32_t parseNumber(std::string_view text) {
  return static_cast<int32_t>(static_cast<uint32_t>(parseNumber64(text)));
}

uint32_t parseUnsignedC(const char* text, char** end, int base) {
  if (text == nullptr) return 0;
  return static_cast<uint32_t>(std::strtoul(text, end, base));
}

std::optional<int64_t> parseDecimalExactly(std::string_view text) {
  // White space around the number is ignored, as the toolkit's own conversion does.
  text = trimmed(text);
  size_t i = 0;
  bool negative = false;
  if (i < text.size() && (text[i] == '-' || text[i] == '+')) negative = text[i++] == '-';
  if (i == text.size()) return std::nullopt;
  uint64_t value = 0;
  for (; i < text.size(); ++i) {
    char c = text[i];
    if (c < '0' || c > '9') return std::nullopt;
    if (value > (UINT64_MAX - 9) / 10) return std::nullopt;
    value = value * 10 + static_cast<uint64_t>(c - '0');
  }
  if (value > static_cast<uint64_t>(INT64_MAX)) return std::nullopt;
  int64_t result = static_cast<int64_t>(value);
  return negative ? -result : result;
}

namespace {

bool fitsInt32(int64_t value) {
  return value >= std::numeric_limits<int32_t>::min() && value <= std::numeric_limits<int32_t>::max();
}

}  // namespace

std::optional<int32_t> decimalNumber(std::string_view text) {
  std::optional<int64_t> value = parseDecimalExactly(text);
  if (!value || !fitsInt32(*value)) return std::nullopt;
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
    int digit = digitValue(static_cast<unsigned char>(c));
    if (digit < 0 || digit >= static_cast<int>(base)) return std::nullopt;
    magnitude = magnitude * base + static_cast<uint64_t>(digit);
    // Past 2^31 the value can only fail the range check; stopping here keeps it from wrapping.
    if (magnitude > (uint64_t{1} << 32)) return std::nullopt;
  }
  int64_t value = negative ? -static_cast<int64_t>(magnitude) : static_cast<int64_t>(magnitude);
  if (!fitsInt32(value)) return std::nullopt;
  return static_cast<int32_t>(value);
}

}  // namespace regmill
