#include "base/text_file.h"

#include "base/input_file.h"

namespace regmill {

Status TextFileReader::open(const std::string& path) {
  Expected<std::string> contents = readInputFile(path);
  if (!contents) return contents.status();
  contents_ = std::move(*contents);
  position_ = 0;
  return Status();
}

bool TextFileReader::readLine(char* buffer, size_t size) {
  if (size == 0) return false;
  size_t length = 0;
  const size_t end = contents_.size();
  while (length + 1 < size && position_ < end) {
    char c = contents_[position_++];
    // A carriage return pairs with a line feed behind it, also across a piece boundary.
    if (c == '\r' && position_ < end && contents_[position_] == '\n') c = contents_[position_++];
    buffer[length++] = c;
    if (c == '\n') break;
  }
  buffer[length] = '\0';
  return length > 0;
}

}  // namespace regmill
