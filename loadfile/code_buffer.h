// Writers of the text formats. A CodeBuffer takes addresses and bytes one at a time,
// gathers them in a line of 16 bytes and writes each full line as one record.
// The file appears only when finish succeeds: until then the bytes go to a temporary
// file, so a failure leaves an existing file as it was. Failures throw HException.
#pragma once
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "base/atomic_file.h"

namespace regmill {

class CodeBuffer {
 public:
  // Throws "cannot open " and the path.
  explicit CodeBuffer(const std::string& path);
  // Without a successful finish, nothing is written.
  virtual ~CodeBuffer();
  CodeBuffer(const CodeBuffer&) = delete;
  CodeBuffer& operator=(const CodeBuffer&) = delete;

  // A new address ends the line; the next byte goes there.
  virtual void setAddress(uint32_t address);
  virtual void writeByte(uint8_t byte);
  // Writes what remains, the format's end and puts the file in place; `startAddress`
  // is the entry point, which only S-records carry. Throws "cannot write " and the path.
  virtual void finish(uint32_t startAddress);

  // Writes `count` bytes from `address` on, as writeByte would one by one, a line
  // at a time.
  void writeBytes(uint32_t address, const uint8_t* bytes, size_t count);

 protected:
  static constexpr size_t kLineSize = 16;

  // Writes the line as one record, when it isn't empty, and empties it.
  void flush();
  virtual void writeLine() = 0;
  virtual void writeEnd(uint32_t startAddress) = 0;
  // How many bytes the line may take, at most, before it must end.
  virtual size_t roomBeforeBreak() const { return kLineSize - lineLength_; }

  // Output helpers: text, a byte as two upper-case digits, a number in eight.
  void put(std::string_view text);
  void putByte(uint8_t byte);
  void putAddress(uint32_t address);
  // Ends the record being built with a line feed; full blocks go to the file.
  void endRecord();

  uint32_t currentAddress_ = 0;
  uint32_t lineAddress_ = 0;
  uint8_t line_[kLineSize];
  size_t lineLength_ = 0;
  std::string path_;

 private:
  void writeOut();

  AtomicFileWriter file_;
  std::string record_;  // the records not yet handed to the file
  bool finished_ = false;
};

// Intel HEX; a line also ends where the low 16 bits of the address roll over, so that
// no record crosses an extended linear address.
class IntelHexBuffer : public CodeBuffer {
 public:
  using CodeBuffer::CodeBuffer;
  void writeByte(uint8_t byte) override;

 private:
  void writeLine() override;
  void writeEnd(uint32_t startAddress) override;
  size_t roomBeforeBreak() const override;
  uint32_t upperWritten_ = 0;  // no extended address record is needed below 0x10000
};

// Motorola S-records, starting with a header record that holds the path.
class SRecordBuffer : public CodeBuffer {
 public:
  explicit SRecordBuffer(const std::string& path);

 private:
  void writeLine() override;
  void writeEnd(uint32_t startAddress) override;
  // Starts "S", the type digit and the count, summing the count.
  void startRecord(char type, size_t count);
  void putSummed(uint8_t byte);
  uint8_t sum_ = 0;
};

// TI text: "@" and an address where the bytes don't continue the last line, "q" at the end.
class TIHexBuffer : public CodeBuffer {
 public:
  using CodeBuffer::CodeBuffer;

 private:
  void writeLine() override;
  void writeEnd(uint32_t startAddress) override;
  uint64_t followingAddress_ = uint64_t{1} << 32;  // no line address is equal to it
};

// A listing: the address in eight digits and each byte behind a blank.
class HexBuffer : public CodeBuffer {
 public:
  using CodeBuffer::CodeBuffer;

 private:
  void writeLine() override;
  void writeEnd(uint32_t) override {}
};

}  // namespace regmill
