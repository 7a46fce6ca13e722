// The sections of a load file as text a person can read and compare: one line per
// section, "address: bytes" in hexadecimal, and the entry point if there is one.
#pragma once
#include <cstdio>
#include <string>

#include "loadfile/load_file.h"

namespace regmill::testing {

inline std::string dumpSections(StandardLoadFile& file) {
  std::string text;
  char piece[16];
  for (const auto& section : file.sections().sections) {
    std::snprintf(piece, sizeof piece, "%08X:", section->address());
    text += piece;
    for (uint32_t i = 0; i < section->size(); ++i) {
      std::snprintf(piece, sizeof piece, " %02X", section->data()[i]);
      text += piece;
    }
    text += "\n";
  }
  if (file.hasEntryPoint()) {
    std::snprintf(piece, sizeof piece, "entry %08X\n", file.entryPoint());
    text += piece;
  }
  return text;
}

}  // namespace regmill::testing
