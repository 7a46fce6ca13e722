// Byte classes, digit values, trimming and splitting shared by every reader of text.
// The classes are those of the C locale; bytes from 0x80 up belong to none of them.
#pragma once
#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace regmill {

constexpr bool isSpaceByte(unsigned char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
constexpr bool isDigitByte(unsigned char c) { return c >= '0' && c <= '9'; }
constexpr bool isAlphaByte(unsigned char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
constexpr bool isAlnumByte(unsigned char c) { return isAlphaByte(c) || isDigitByte(c); }
constexpr bool isHexDigitByte(unsigned char c) {
  return isDigitByte(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

// 0-9, then a-z and A-Z alike from 10 to 35; -1 for any other byte.
constexpr int digitValue(unsigned char c) {
  if (isDigitByte(c)) return c - '0';
  if (c >= 'a' && c <= 'z') return c - 'a' + 10;
  if (c >= 'A' && c <= 'Z') return c - 'A' + 10;
  return -1;
}

// Without white space (of the C locale) at either end.
std::string_view trimmed(std::string_view text);

// The parts between separators, in order; empty parts are left out.
std::vector<std::string_view> splitSkippingEmpty(std::string_view text, char separator);

// Hashes std::string keys and string_view look-ups alike, so that a look-up by a
// view makes no temporary string: use with std::equal_to<>.
struct TransparentStringHash {
  using is_transparent = void;
  size_t operator()(std::string_view text) const { return std::hash<std::string_view>{}(text); }
};

}  // namespace regmill
