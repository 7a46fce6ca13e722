#include "base/hexception.h"
#include "loadfile/hex_load_files.h"
#include "loadfile/record_reader.h"

namespace regmill {

namespace {

constexpr size_t kLineBufferSize = 530;

enum class IntelRecord : uint8_t {
  Data = 0,
  EndOfFile = 1,
  ExtendedSegmentAddress = 2,
  StartSegmentAddress = 3,
  ExtendedLinearAddress = 4,
  StartLinearAddress = 5,
};

}  // namespace

IntelHexLoadFile::IntelHexLoadFile(const std::string& path) {
  SectionBuilder builder(sections_);
  uint32_t upperLinear = 0;
  uint32_t segment = 0;
  auto record = [&](std::string_view line) {
    if (line[0] != ':') throw HException("missing record mark in hex file");
    RecordBytes bytes(line, 1);
    uint8_t length = bytes.next();
    uint32_t offset = bytes.nextNumber(2);
    auto type = static_cast<IntelRecord>(bytes.next());
    switch (type) {
      case IntelRecord::Data: {
        // Both extended addresses apply at once: the linear one as the upper half,
        // the segment one added on top.
        uint32_t address = (upperLinear << 16 | offset) + (segment << 4);
        uint8_t* place = builder.append(address, length);
        for (int i = 0; i < length; ++i) place[i] = bytes.next();
        break;
      }
      case IntelRecord::ExtendedSegmentAddress: segment = bytes.nextNumber(2); break;
      case IntelRecord::ExtendedLinearAddress: upperLinear = bytes.nextNumber(2); break;
      case IntelRecord::StartSegmentAddress:
      case IntelRecord::StartLinearAddress: setEntryPoint(bytes.nextNumber(4)); break;
      case IntelRecord::EndOfFile: break;
      default: break;  // a record of another type carries nothing read
    }
    uint8_t expected = static_cast<uint8_t>(-bytes.sum());
    if (bytes.nextUnsummed() != expected) throw HException("invalid checksum");
    return type != IntelRecord::EndOfFile;
  };
  readRecords(path, kLineBufferSize, record, [] { throw HException("invalid end of file in hex file"); });
}

}  // namespace regmill
