// The cores the converter knows, by number: 0 (Armv6-M), 3, 4 and 7 (Armv7-M), 23 and
// 33 (Armv8-M). A device description names a core "CM4"; a device header defines the
// revision macro "__CM4_REV".
#pragma once
#include <cstdint>
#include <string_view>

namespace regmill {

struct CoreName {
  std::string_view name;
  const char* revisionMacro;  // null when no header spells the name this way
  int32_t core;
  // What the name says about the vector table offset register: 0 absent, 1 present,
  // -1 nothing (the core number alone decides).
  int vtor;
};

// In the order in which a header line is tested: the first macro found decides.
constexpr CoreName kCoreNames[] = {
    {"CM0", "__CM0_REV", 0, 0},    {"CM0PLUS", "__CM0PLUS_REV", 0, 1}, {"CM0+", nullptr, 0, 1},
    {"CM3", "__CM3_REV", 3, -1},   {"CM4", "__CM4_REV", 4, -1},        {"CM7", "__CM7_REV", 7, -1},
    {"CM23", "__CM23_REV", 23, -1}, {"CM33", "__CM33_REV", 33, -1}};

// Cores 23 and 33 have the Armv8-M security extension: each of their core register
// groups has a non-secure alias.
constexpr bool hasSecurityExtension(int32_t core) { return core == 23 || core == 33; }

}  // namespace regmill
