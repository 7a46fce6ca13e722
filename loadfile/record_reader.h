// What the four text readers share: a file read line by line through a line buffer
// of the format's size, the bytes of a record as pairs of hexadecimal digits with a
// running sum, and sections that grow while records continue each other.
#pragma once
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "loadfile/load_file.h"

namespace regmill {

// Reads lines as the C runtime's text mode does on the system the files come from:
// a carriage return right before a line feed is dropped. A line that doesn't fit
// the line buffer (its line feed included, one place kept for the terminating zero)
// is an error, never a line silently split in two.
class LineReader {
 public:
  // Throws "cannot open " and the path.
  LineReader(const std::string& path, size_t lineBufferSize);
  ~LineReader();
  LineReader(const LineReader&) = delete;
  LineReader& operator=(const LineReader&) = delete;

  // The next line with its line feed, if it has one; false at the end of the file.
  // The view lasts until the next call.
  bool next(std::string_view& line);
  void close();

 private:
  bool fill();

  std::string path_;
  std::FILE* file_ = nullptr;
  size_t longestLine_;
  std::unique_ptr<char[]> block_;  // kBlockSize bytes, filled as they are read
  size_t start_ = 0;
  size_t end_ = 0;
  bool atEnd_ = false;
};

// Calls `record` for each line until it returns false or the file ends, and then
// `atEnd`, if given, when the file ended first. An HException thrown while a line is
// read or handled gets " : line N" behind its text, with lines counted from 1; the
// end of the file counts as the line after the last.
void readRecords(const std::string& path, size_t lineBufferSize, const std::function<bool(std::string_view)>& record,
                 const std::function<void()>& atEnd = {});

// The bytes of one record: two hexadecimal digits of either case each. A byte that
// isn't there, because the line ends first, is as invalid as a bad digit.
class RecordBytes {
 public:
  RecordBytes(std::string_view line, size_t position) : line_(line), position_(position) {}

  // The next byte, added to the sum.
  uint8_t next() {
    uint8_t value = nextUnsummed();
    sum_ = static_cast<uint8_t>(sum_ + value);
    return value;
  }
  uint8_t nextUnsummed();
  // Two, three or four bytes as one number, most significant first, added to the sum.
  uint32_t nextNumber(int bytes);
  void skipCharacters(size_t count) { position_ += count; }
  size_t position() const { return position_; }
  uint8_t sum() const { return sum_; }

 private:
  std::string_view line_;
  size_t position_;
  uint8_t sum_ = 0;
};

// Appends records to the section list: a record that starts at the end of the
// current section (the last one made) extends it; any other starts a new one. The
// bytes held stay within kLoadFileSizeLimit, each section counted with its overhead.
class SectionBuilder {
 public:
  explicit SectionBuilder(LoadFileSections& sections) : sections_(sections) {}
  // Where `count` bytes at `address` go. A record without bytes changes nothing: an
  // empty section would tell a reader nothing.
  uint8_t* append(uint32_t address, size_t count);

 private:
  LoadFileSections& sections_;
  ExpandingLoadFileSection* current_ = nullptr;
  size_t bytesHeld_ = 0;
};

}  // namespace regmill
