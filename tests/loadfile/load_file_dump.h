// What the load-file tests compare: the sections of a file as text, one line per
// section, "address: bytes" in hexadecimal, then the entry point; and the text of
// the HException that some work throws.
#pragma once
#include <cstdio>
#include <string>

#include "base/hexception.h"
#include "loadfile/load_file.h"

namespace regmill::testing {

inline std::string dumpSections(StandardLoadFile& file) {
  std::string text;
  char piece[24];
  for (const auto& section : file.sections().sections) {
    text += std::string(piece, std::snprintf(piece, sizeof piece, "%08X:", section->address()));
    for (uint32_t i = 0; i < section->size(); ++i)
      text += std::string(piece, std::snprintf(piece, sizeof piece, " %02X", section->data()[i]));
    text += "\n";
  }
  if (file.hasEntryPoint()) text += std::string(piece, std::snprintf(piece, sizeof piece, "entry %08X\n", file.entryPoint()));
  return text;
}

// The failure's text, or "no exception".
template <typename Work>
std::string thrownText(Work work) try {
  work();
  return "no exception";
} catch (const HException& failure) {
  return failure.text();
}

}  // namespace regmill::testing
