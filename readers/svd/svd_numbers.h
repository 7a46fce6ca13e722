// The two number conversions of the SVD reader. Both read the whole text as a signed
// 32-bit number, white space around it aside, and give no value for anything else:
// "12abc", an empty text and a number beyond 32 bits don't convert.
#pragma once
#include <cstdint>
#include <optional>
#include <string_view>

namespace regmill {

// Base 10 exactly: "0x20" doesn't convert.
std::optional<int32_t> decimalNumber(std::string_view text);

// By prefix: "0x" or "0X" hexadecimal, another leading 0 octal, else decimal; a sign
// may stand in front of the prefix. "0b" is no prefix here, so "0b1" doesn't convert.
std::optional<int32_t> prefixedNumber(std::string_view text);

}  // namespace regmill
