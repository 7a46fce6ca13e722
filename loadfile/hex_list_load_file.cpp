#include "base/hexception.h"
#include "loadfile/hex_load_files.h"
#include "loadfile/record_reader.h"

namespace regmill {

namespace {

constexpr size_t kLineBufferSize = 64;
constexpr size_t kAddressDigits = 8;

}  // namespace

HexLoadFile::HexLoadFile(const std::string& path) {
  SectionBuilder builder(sections_);
  auto record = [&](std::string_view line) {
    if (line.size() < kAddressDigits) throw HException("invalid address");
    size_t count = (line.size() - kAddressDigits) / 3;
    RecordBytes bytes(line, 0);
    uint32_t address = bytes.nextNumber(4);
    uint8_t* place = builder.append(address, count);
    for (size_t i = 0; i < count; ++i) {
      if (line[bytes.position()] != ' ') throw HException("invalid seperator");
      bytes.skipCharacters(1);
      place[i] = bytes.next();
    }
    return true;
  };
  readRecords(path, kLineBufferSize, record);
}

}  // namespace regmill
