#include "base/hexception.h"
#include "base/text.h"
#include "loadfile/hex_load_files.h"
#include "loadfile/record_reader.h"

namespace regmill {

namespace {

constexpr size_t kLineBufferSize = 64;

// The address of an "@" line: hexadecimal digits up to the first character at or
// below the blank. A character that is no digit is taken as a digit of value 0
// rather than refused.
uint32_t addressLine(std::string_view line) {
  uint32_t address = 0;
  for (size_t i = 1; i < line.size() && static_cast<unsigned char>(line[i]) > ' '; ++i) {
    unsigned char c = static_cast<unsigned char>(line[i]);
    address = address << 4 | (isHexDigitByte(c) ? digitValue(c) : 0);
  }
  return address;
}

}  // namespace

TIHexLoadFile::TIHexLoadFile(const std::string& path) {
  SectionBuilder builder(sections_);
  uint32_t address = 0;
  auto record = [&](std::string_view line) {
    if (line[0] == '@') {
      address = addressLine(line);
      return true;
    }
    if (line[0] == 'q') return false;
    // Each byte is two digits and one separator; the last one's separator may be the
    // line feed or nothing at all.
    size_t count = (line.size() + 1) / 3;
    RecordBytes bytes(line, 0);
    uint8_t* place = builder.append(address, count);
    for (size_t i = 0; i < count; ++i) {
      place[i] = bytes.next();
      bytes.skipCharacters(1);
    }
    address += static_cast<uint32_t>(count);
    return true;
  };
  readRecords(path, kLineBufferSize, record, [] { throw HException("unexpected end of file"); });
}

}  // namespace regmill
