#include "loadfile/record_reader.h"

#include <sys/stat.h>

#include <array>
#include <cstring>
#include <memory>

#include "base/hexception.h"
#include "base/text.h"

namespace regmill {

namespace {

constexpr size_t kBlockSize = size_t{1} << 16;
// What a section costs beside its bytes, counted against the size bound so that a
// file of one-byte records at scattered addresses is bounded too.
constexpr size_t kSectionOverhead = 128;

// Value of a hexadecimal digit, 0xFF for any other byte.
constexpr std::array<uint8_t, 256> kHexValue = [] {
  std::array<uint8_t, 256> table{};
  for (int c = 0; c < 256; ++c) table[c] = isHexDigitByte(c) ? static_cast<uint8_t>(digitValue(c)) : 0xFF;
  return table;
}();

}  // namespace

LineReader::LineReader(const std::string& path, size_t lineBufferSize)
    : path_(path), longestLine_(lineBufferSize - 1), block_(std::make_unique_for_overwrite<char[]>(kBlockSize)) {
  file_ = std::fopen(path.c_str(), "rb");
  struct stat info;
  // A folder opens on some systems but holds no lines.
  if (file_ != nullptr && fstat(fileno(file_), &info) == 0 && S_ISDIR(info.st_mode)) close();
  if (file_ == nullptr) throw HException("cannot open " + path);
}

LineReader::~LineReader() { close(); }

void LineReader::close() {
  if (file_ != nullptr) std::fclose(file_);
  file_ = nullptr;
}

bool LineReader::fill() {
  if (atEnd_ || file_ == nullptr) return false;
  if (start_ != 0) {
    std::memmove(block_.get(), block_.get() + start_, end_ - start_);
    end_ -= start_;
    start_ = 0;
  }
  size_t got = std::fread(block_.get() + end_, 1, kBlockSize - end_, file_);
  if (got == 0) {
    if (std::ferror(file_)) throw HException("cannot read " + path_);
    atEnd_ = true;
    return false;
  }
  end_ += got;
  return true;
}

bool LineReader::next(std::string_view& line) {
  size_t searched = 0;  // bytes behind start_ already known to hold no line feed
  for (;;) {
    char* begin = block_.get() + start_;
    size_t available = end_ - start_;
    auto* feed = static_cast<char*>(std::memchr(begin + searched, '\n', available - searched));
    if (feed != nullptr) {
      size_t length = static_cast<size_t>(feed - begin) + 1;
      start_ += length;
      if (length >= 2 && feed[-1] == '\r') {
        feed[-1] = '\n';
        --length;
      }
      if (length > longestLine_) throw HException("line too long");
      line = std::string_view(begin, length);
      return true;
    }
    searched = available;
    // Even with a carriage return at its end, what is there can't fit any more.
    if (available > longestLine_ + 1) throw HException("line too long");
    if (!fill()) {
      if (available == 0) return false;
      if (available > longestLine_) throw HException("line too long");
      line = std::string_view(block_.get() + start_, available);
      start_ = end_;
      return true;
    }
  }
}

void readRecords(const std::string& path, size_t lineBufferSize, const std::function<bool(std::string_view)>& record,
                 const std::function<void()>& atEnd) {
  LineReader reader(path, lineBufferSize);
  uint32_t lineNumber = 0;
  try {
    std::string_view line;
    for (;;) {
      ++lineNumber;
      if (!reader.next(line)) {
        if (atEnd) atEnd();
        return;
      }
      if (!record(line)) return;
    }
  } catch (const HException& failure) {
    reader.close();
    throw HException(failure.text() + " : line " + std::to_string(lineNumber));
  }
}

uint8_t RecordBytes::nextUnsummed() {
  if (position_ + 2 > line_.size()) throw HException("invalid ASCII encoded byte");
  uint8_t high = kHexValue[static_cast<unsigned char>(line_[position_])];
  uint8_t low = kHexValue[static_cast<unsigned char>(line_[position_ + 1])];
  if ((high | low) == 0xFF) throw HException("invalid ASCII encoded byte");
  position_ += 2;
  return static_cast<uint8_t>(high << 4 | low);
}

uint32_t RecordBytes::nextNumber(int bytes) {
  uint32_t value = 0;
  for (int i = 0; i < bytes; ++i) value = value << 8 | next();
  return value;
}

uint8_t* SectionBuilder::append(uint32_t address, size_t count) {
  if (count == 0) return nullptr;
  bool continues = current_ != nullptr && uint64_t{current_->address()} + current_->size() == address;
  size_t cost = count + (continues ? 0 : kSectionOverhead);
  if (bytesHeld_ + cost > kLoadFileSizeLimit) throw HException("load file holds more than 256 MiB");
  bytesHeld_ += cost;
  if (!continues) {
    auto section = std::make_unique<ExpandingLoadFileSection>(address);
    current_ = section.get();
    sections_.sections.push_back(std::move(section));
  }
  return current_->append(count);
}

}  // namespace regmill
