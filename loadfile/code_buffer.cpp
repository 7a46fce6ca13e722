#include "loadfile/code_buffer.h"

#include <algorithm>
#include <cstring>

#include "base/hexception.h"

namespace regmill {

namespace {

constexpr char kDigits[] = "0123456789ABCDEF";
// A count byte says at most 255; the path in a header keeps room for the count itself.
constexpr size_t kLongestHeaderText = 254;
// Records gather in memory and go to the file in blocks of about this size.
constexpr size_t kOutputBlock = size_t{1} << 16;

}  // namespace

CodeBuffer::CodeBuffer(const std::string& path) : path_(path), file_(path) {
  if (!file_.open()) throw HException("cannot open " + path);
  record_.reserve(kOutputBlock + 1024);
}

CodeBuffer::~CodeBuffer() {
  if (!finished_) file_.discard();
}

void CodeBuffer::setAddress(uint32_t address) {
  if (address == currentAddress_) return;
  flush();
  currentAddress_ = lineAddress_ = address;
}

void CodeBuffer::writeByte(uint8_t byte) {
  line_[lineLength_++] = byte;
  ++currentAddress_;
  if (lineLength_ == kLineSize) flush();
}

void CodeBuffer::writeBytes(uint32_t address, const uint8_t* bytes, size_t count) {
  setAddress(address);
  while (count != 0) {
    size_t room = roomBeforeBreak();
    size_t taken = std::min(count, room);
    std::memcpy(line_ + lineLength_, bytes, taken);
    lineLength_ += taken;
    currentAddress_ += static_cast<uint32_t>(taken);
    bytes += taken;
    count -= taken;
    if (taken == room) flush();
  }
}

void CodeBuffer::finish(uint32_t startAddress) {
  flush();
  writeEnd(startAddress);
  writeOut();
  if (!file_.commit()) throw HException("cannot write " + path_);
  finished_ = true;
}

void CodeBuffer::flush() {
  if (lineLength_ != 0) writeLine();
  lineLength_ = 0;
  lineAddress_ = currentAddress_;
}

void CodeBuffer::put(std::string_view text) { record_.append(text); }

void CodeBuffer::putByte(uint8_t byte) {
  char digits[2] = {kDigits[byte >> 4], kDigits[byte & 15]};
  record_.append(digits, 2);
}

void CodeBuffer::putAddress(uint32_t address) {
  for (int shift = 24; shift >= 0; shift -= 8) putByte(static_cast<uint8_t>(address >> shift));
}

void CodeBuffer::endRecord() {
  record_ += '\n';
  if (record_.size() >= kOutputBlock) writeOut();
}

void CodeBuffer::writeOut() {
  // A failed write shows in the stream's error state, which commit checks.
  std::fwrite(record_.data(), 1, record_.size(), file_.stream());
  record_.clear();
}

void IntelHexBuffer::writeByte(uint8_t byte) {
  CodeBuffer::writeByte(byte);
  if ((currentAddress_ & 0xFFFF) == 0) flush();
}

size_t IntelHexBuffer::roomBeforeBreak() const {
  return std::min<size_t>(kLineSize - lineLength_, 0x10000 - (currentAddress_ & 0xFFFF));
}

void IntelHexBuffer::writeLine() {
  uint32_t upper = lineAddress_ >> 16;
  if (upper != upperWritten_) {
    uint8_t record[] = {2, 0, 0, 4, static_cast<uint8_t>(upper >> 8), static_cast<uint8_t>(upper)};
    uint8_t sum = 0;
    put(":");
    for (uint8_t byte : record) {
      putByte(byte);
      sum = static_cast<uint8_t>(sum + byte);
    }
    putByte(static_cast<uint8_t>(-sum));
    endRecord();
    upperWritten_ = upper;
  }
  uint8_t header[] = {static_cast<uint8_t>(lineLength_), static_cast<uint8_t>(lineAddress_ >> 8),
                      static_cast<uint8_t>(lineAddress_), 0};
  uint8_t sum = 0;
  put(":");
  for (uint8_t byte : header) {
    putByte(byte);
    sum = static_cast<uint8_t>(sum + byte);
  }
  for (size_t i = 0; i < lineLength_; ++i) {
    putByte(line_[i]);
    sum = static_cast<uint8_t>(sum + line_[i]);
  }
  putByte(static_cast<uint8_t>(-sum));
  endRecord();
}

void IntelHexBuffer::writeEnd(uint32_t) {
  put(":00000001FF");
  endRecord();
}

SRecordBuffer::SRecordBuffer(const std::string& path) : CodeBuffer(path) {
  // The header holds the path and no address field.
  std::string_view text(path.data(), std::min(path.size(), kLongestHeaderText));
  startRecord('0', text.size() + 1);
  for (char c : text) putSummed(static_cast<uint8_t>(c));
  putByte(static_cast<uint8_t>(~sum_));
  endRecord();
}

void SRecordBuffer::startRecord(char type, size_t count) {
  char start[] = {'S', type};
  put(std::string_view(start, 2));
  sum_ = 0;
  putSummed(static_cast<uint8_t>(count));
}

void SRecordBuffer::putSummed(uint8_t byte) {
  putByte(byte);
  sum_ = static_cast<uint8_t>(sum_ + byte);
}

void SRecordBuffer::writeLine() {
  // The type follows the line's start address: a line that starts below a boundary
  // keeps the shorter address field even where its bytes run past it.
  int addressBytes = lineAddress_ <= 0xFFFF ? 2 : lineAddress_ < 0xFFFFFF ? 3 : 4;
  startRecord(static_cast<char>('0' + addressBytes - 1), lineLength_ + addressBytes + 1);
  for (int shift = 8 * (addressBytes - 1); shift >= 0; shift -= 8) putSummed(static_cast<uint8_t>(lineAddress_ >> shift));
  for (size_t i = 0; i < lineLength_; ++i) putSummed(line_[i]);
  putByte(static_cast<uint8_t>(~sum_));
  endRecord();
}

void SRecordBuffer::writeEnd(uint32_t startAddress) {
  startRecord('9', 3);
  putSummed(static_cast<uint8_t>(startAddress >> 8));
  putSummed(static_cast<uint8_t>(startAddress));
  putByte(static_cast<uint8_t>(~sum_));
  endRecord();
}

void TIHexBuffer::writeLine() {
  if (lineAddress_ != followingAddress_) {
    put("@");
    putAddress(lineAddress_);
    endRecord();
  }
  for (size_t i = 0; i < lineLength_; ++i) {
    if (i != 0) put(" ");
    putByte(line_[i]);
  }
  endRecord();
  followingAddress_ = uint64_t{lineAddress_} + lineLength_;
}

void TIHexBuffer::writeEnd(uint32_t) {
  put("q");
  endRecord();
}

void HexBuffer::writeLine() {
  putAddress(lineAddress_);
  for (size_t i = 0; i < lineLength_; ++i) {
    put(" ");
    putByte(line_[i]);
  }
  endRecord();
}

}  // namespace regmill
