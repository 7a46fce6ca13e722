// Arbitrary bytes loaded as a text file, in a codec the first byte picks or with the
// encoding detected: the mark, the UTF-8 check and the line ends must not crash, and
// a file that decoded without loss and had consistent line ends must save back to
// the same bytes.
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "editor/code_edit.h"
#include "editor/code_file.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0 || size > 65536) return 0;
  static const char* const kEncodings[] = {"", "UTF-8", "UTF-16LE", "UTF-16BE", "windows-1252",
                                           "ISO-8859-1", "Shift_JIS", "GB18030", "KOI8-R"};
  const QString encoding = QString::fromLatin1(kEncodings[data[0] % std::size(kEncodings)]);
  const QByteArray bytes(reinterpret_cast<const char*>(data + 1), qsizetype(size - 1));
  regmill::CodeEditSettings settings;
  regmill::DecodedFile file = regmill::decodeFile(bytes, encoding, settings);
  regmill::CodeBuffer buffer;
  buffer.assign(file.lines);
  const QByteArray saved = regmill::encodeFile(buffer, file.encoding, file.byteOrderMark, file.lineEnding, settings);
  // Only codecs that map bytes to characters one to one promise the same bytes back.
  const bool roundTrips = file.encoding == QLatin1String("ISO-8859-1") || file.encoding == QLatin1String("UTF-8");
  if (roundTrips && !file.lossy && !file.inconsistentLineEndings && saved != bytes) {
    // A UTF-8 file may hold a character the encoder writes differently (none known);
    // the unpaired surrogate forms are the only candidates, and those are lossy.
    std::abort();
  }
  return 0;
}
