// The library's exception with a text: load files and package archives throw it, and
// the entry operation that catches it shows the text as it is.
#pragma once
#include <exception>
#include <string>
#include <utility>

namespace regmill {

class HException : public std::exception {
 public:
  explicit HException(std::string text) : text_(std::move(text)) {}
  const char* what() const noexcept override { return text_.c_str(); }
  const std::string& text() const { return text_; }

 private:
  std::string text_;
};

}  // namespace regmill
