#include "base/text_file.h"

namespace regmill {

TextFileReader::~TextFileReader() { close(); }

bool TextFileReader::open(const char* path) {
  close();
  file_ = std::fopen(path, "rb");
  return file_ != nullptr;
}

void TextFileReader::close() {
  if (file_ != nullptr) std::fclose(file_);
  file_ = nullptr;
}

void TextFileReader::rewind() {
  if (file_ != nullptr) std::rewind(file_);
}

int TextFileReader::nextByte() {
  int c = std::getc(file_);
  if (c != '\r') return c;
  int following = std::getc(file_);
  if (following == '\n') return '\n';
  if (following != EOF) std::ungetc(following, file_);
  return c;
}

bool TextFileReader::readLine(char* buffer, size_t size) {
  if (file_ == nullptr || size == 0) return false;
  size_t length = 0;
  while (length + 1 < size) {
    int c = nextByte();
    if (c == EOF) break;
    buffer[length++] = static_cast<char>(c);
    if (c == '\n') break;
  }
  buffer[length] = '\0';
  return length > 0;
}

bool readTextFile(const char* path, std::string& contents) {
  TextFileReader reader;
  if (!reader.open(path)) return false;
  contents.clear();
  char buffer[65536];
  while (reader.readLine(buffer, sizeof buffer)) contents += buffer;
  return true;
}

}  // namespace regmill
