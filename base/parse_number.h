// Number readers shared by the converter and the library: the library's own
// prefix rule (parseNumber) and the C runtime's strtoul rule in base 0.
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

// strtoul(text, nullptr, 0) truncated to 32 bits: leading white space, one sign,
// 0x and leading-0 prefixes; anything that is no number gives 0.
uint32_t parseUnsignedC(const char* text);

// The whole text as a decimal number (base 10 exactly, as the readers' "convert as a
// decimal number"): an optional sign and digits only, with white space around them.
// Empty text, any other byte or an overflow of 64 bits give no value.
std::optional<int64_t> parseDecimalExactly(std::string_view text);

}  // namespace regmill
