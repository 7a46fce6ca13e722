#include "script/forth/forth_source.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace regmill::forth {

StringSource::StringSource(std::string_view line) : length_(std::min(line.size(), kCapacity)) {
  std::memcpy(buffer_, line.data(), length_);
  buffer_[length_] = '\0';
}

TextSource::TextSource(std::string text, QString name) : text_(std::move(text)) {
  fileName = std::move(name);
  takeLineAt(0);
}

void TextSource::takeLineAt(size_t start) {
  position = start;
  size_t end = text_.find('\n', start);
  nextLine_ = end == std::string::npos ? text_.size() + 1 : end + 1;
  if (end == std::string::npos) end = text_.size();
  if (end > start && text_[end - 1] == '\r') --end;
  current_ = std::string_view(text_).substr(start, end - start);
}

bool TextSource::refill() {
  if (nextLine_ > text_.size()) return false;
  takeLineAt(nextLine_);
  ++line;
  return true;
}

}  // namespace regmill::forth
