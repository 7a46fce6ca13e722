#include "base/hexception.h"
#include "loadfile/hex_load_files.h"
#include "loadfile/record_reader.h"

namespace regmill {

namespace {

constexpr size_t kLineBufferSize = 530;

}  // namespace

SRecordLoadFile::SRecordLoadFile(const std::string& path) {
  SectionBuilder builder(sections_);
  uint32_t dataRecords = 0;
  auto record = [&](std::string_view line) {
    if (line[0] != 'S') throw HException("no leading 'S' character");
    char type = line.size() > 1 ? line[1] : '\0';
    RecordBytes bytes(line, 2);
    int count = bytes.next();
    auto readData = [&](int addressBytes) {
      uint32_t address = bytes.nextNumber(addressBytes);
      // A count too small for its address field leaves no data.
      int length = count - addressBytes - 1;
      if (length > 0) {
        uint8_t* place = builder.append(address, static_cast<size_t>(length));
        for (int i = 0; i < length; ++i) place[i] = bytes.next();
      }
      ++dataRecords;
    };
    switch (type) {
      case '0':
        for (int i = 0; i < count - 1; ++i) bytes.next();
        break;
      case '1': readData(2); break;
      case '2': readData(3); break;
      case '3': readData(4); break;
      case '5':
        if (bytes.nextNumber(2) != (dataRecords & 0xFFFF)) throw HException("incorrect data record count");
        break;
      case '7': setEntryPoint(bytes.nextNumber(4)); break;
      case '8': setEntryPoint(bytes.nextNumber(3)); break;
      case '9': setEntryPoint(bytes.nextNumber(2)); break;
      // S4, S6 and anything else carry nothing that is read: the checksum is taken
      // from right behind the count.
      default: break;
    }
    uint8_t expected = static_cast<uint8_t>(~bytes.sum());
    if (bytes.nextUnsummed() != expected) throw HException("invalid checksum");
    return true;
  };
  readRecords(path, kLineBufferSize, record);
}

}  // namespace regmill
