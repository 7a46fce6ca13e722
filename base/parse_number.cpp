#include "base/parse_number.h"

#include "base/text.h"

#include <cerrno>
#include <cstdlib>

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

uint32_t parseUnsignedC(const char* text) {
  if (text == nullptr) return 0;
  return static_cast<uint32_t>(std::strtoul(text, nullptr, 0));
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

}  // namespace regmill
