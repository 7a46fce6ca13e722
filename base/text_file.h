// Reading files the way the C runtime's text mode does on the system the input
// formats come from: a carriage return right before a line feed is dropped, every
// other byte stays. The file is read whole, with the input size bound, when opened.
#pragma once
#include <cstddef>
#include <string>

#include "base/status.h"

namespace regmill {

class TextFileReader {
 public:
  // Fails when the file cannot be read or passes the input size bound.
  Status open(const std::string& path);
  void rewind() { position_ = 0; }

  // As fgets: reads up to size - 1 bytes, stopping behind a line feed; the buffer
  // is always zero-terminated. Returns false at the end of the file with nothing read.
  bool readLine(char* buffer, size_t size);

 private:
  std::string contents_;
  size_t position_ = 0;
};

}  // namespace regmill
