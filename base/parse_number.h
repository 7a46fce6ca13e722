// Every number reader of the converter, one per rule. Who reads by which rule:
//   parseNumber64, parseNumber: expressions and the sizes of memory-map elements;
//   parseUnsignedC: command-line values, header enumerators, TCF bit numbers, DDF
//     bit masks and register starts; in base 10 with an end: DDF bit ranges;
//   parseDecimalExactly: SVD interrupt numbers; decimalNumber (the same in 32 bits):
//     SVD decimal values such as bit ranges, dimIndex ranges and sizes;
//   prefixedNumber: SVD values that may carry a prefix, such as dim and bitOffset.
#pragma once
#include <cstdint>
#include <optional>
#include <string_view>

namespace regmill {

// Skips white space, takes one sign and a prefix (0x base 16, 0b base 2, another
// leading 0 base 8, else base 10), then adds up digits until the end or the first
// of L, U, l, u. A digit's value comes from 0-9, a-z, A-Z whatever the base; an
// empty rest gives 0. Overflow wraps, as the library's fixed-width arithmetic does.
int64_t parseNumber64(std::string_view text);
int32_t parseNumber(std::string_view text);

// strtoul(text, end, base) truncated to 32 bits; in base 0: leading white space, one
// sign, 0x and leading-0 prefixes. Anything that is no number gives 0, a null text too.
uint32_t parseUnsignedC(const char* text, char** end = nullptr, int base = 0);

// The whole text as a decimal number (base 10 exactly, as the readers' "convert as a
// decimal number"): an optional sign and digits only, with white space around them.
// Empty text, any other byte or an overflow of 64 bits give no value.
std::optional<int64_t> parseDecimalExactly(std::string_view text);

// The next two read the whole text as a signed 32-bit number, white space around it
// aside; anything else gives no value: "12abc", an empty text, a number beyond 32 bits.
// Base 10 exactly: "0x20" doesn't convert.
std::optional<int32_t> decimalNumber(std::string_view text);
// By prefix: "0x" or "0X" hexadecimal, another leading 0 octal, else decimal; a sign
// may stand in front of the prefix. "0b" is no prefix here, so "0b1" doesn't convert.
std::optional<int32_t> prefixedNumber(std::string_view text);

}  // namespace regmill
