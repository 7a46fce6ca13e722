// What the load-file tests compare: the sections of a file as text a person can
// read, one line per section, "address: bytes" in hexadecimal, then the entry
// point; and the text of the HException that some work throws.
#pragma once
#include <cstdio>
#include <string>

#include "base/hexception.h"
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

// The failure's text, or "no exception".
template <typename Work>
std::string thrownText(Work work) {
  try {
    work();
  } catch (const HException& failure) {
    return failure.text();
  }
  return "no exception";
}

}  // namespace regmill::testing
