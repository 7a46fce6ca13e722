// Where the interpreter reads its words: one line at a time. A source starts on its
// first line; `refill` moves to the next one and gives false at the end.
#pragma once
#include <QString>
#include <cstddef>
#include <string>
#include <string_view>

namespace regmill::forth {

class Source {
 public:
  virtual ~Source() = default;
  virtual bool refill() = 0;
  // The bytes of the current line, without its line end.
  virtual std::string_view text() const = 0;

  size_t position = 0;  // where the current line starts in the whole input
  int line = 1;         // of the current line, counted from 1
  QString fileName;
};

// One line as typed at the console, held in a buffer of its own. A longer line does
// not fit: `fits` tells beforehand, and the constructor keeps only what fits.
class StringSource : public Source {
 public:
  static constexpr size_t kCapacity = 255;
  static bool fits(std::string_view line) { return line.size() <= kCapacity; }

  explicit StringSource(std::string_view line);
  bool refill() override { return false; }
  std::string_view text() const override { return {buffer_, length_}; }

 private:
  char buffer_[kCapacity + 1];
  size_t length_;
};

// A whole text, a file's, split at line feeds (a carriage return before one is
// dropped). Lines have no length bound.
class TextSource : public Source {
 public:
  TextSource(std::string text, QString name);
  bool refill() override;
  std::string_view text() const override { return current_; }

 private:
  void takeLineAt(size_t start);

  std::string text_;
  std::string_view current_;
  size_t nextLine_ = 0;  // where the line after the current one starts; past the end when none
};

}  // namespace regmill::forth
