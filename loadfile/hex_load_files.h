// The readers of the four text formats. Each parses the whole file in its
// constructor and throws HException on the first fault, with " : line N" behind the
// text ("cannot open " and the path alone has none). Sections made by the readers
// have empty names.
#pragma once
#include <string>

#include "loadfile/load_file.h"

namespace regmill {

// Intel HEX: records of ":", length, address, type, data and a checksum; an end
// record must come. Segment and linear extended addresses add up.
class IntelHexLoadFile : public StandardLoadFile {
 public:
  explicit IntelHexLoadFile(const std::string& path);
};

// Motorola S-records: S1, S2 and S3 data records, S5 counts, S7 to S9 entry points;
// the file may end without an end record.
class SRecordLoadFile : public StandardLoadFile {
 public:
  explicit SRecordLoadFile(const std::string& path);
};

// TI text: "@" and an address, lines of bytes separated by blanks, and "q" at the end.
class TIHexLoadFile : public StandardLoadFile {
 public:
  explicit TIHexLoadFile(const std::string& path);
};

// A listing: each line an address in eight digits and bytes, each behind a blank.
class HexLoadFile : public StandardLoadFile {
 public:
  explicit HexLoadFile(const std::string& path);
};

}  // namespace regmill
