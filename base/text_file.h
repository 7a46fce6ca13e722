// Reading files the way the C runtime's text mode does on the system the input
// formats come from: a carriage return right before a line feed is dropped, every
// other byte stays. Binary reads elsewhere stay byte-exact, and files written in
// text mode get plain line feeds.
#pragma once
#include <cstddef>
#include <cstdio>
#include <string>

namespace regmill {

class TextFileReader {
 public:
  TextFileReader() = default;
  ~TextFileReader();
  TextFileReader(const TextFileReader&) = delete;
  TextFileReader& operator=(const TextFileReader&) = delete;

  bool open(const char* path);
  void close();
  void rewind();

  // As fgets: reads up to size - 1 bytes, stopping behind a line feed; the buffer
  // is always zero-terminated. Returns false at the end of the file with nothing read.
  bool readLine(char* buffer, size_t size);

 private:
  int nextByte();
  std::FILE* file_ = nullptr;
};

// The whole file in text mode; false when it cannot be opened.
bool readTextFile(const char* path, std::string& contents);

}  // namespace regmill
