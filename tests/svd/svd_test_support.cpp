#include "tests/svd/svd_test_support.h"

#include <cstdio>

#include "readers/svd/svd_reader.h"

namespace regmill::testing {

std::string deviceWith(std::string_view body) {
  return "<device><name>D</name>" + std::string(body) + "</device>";
}

std::string deviceWithPeripherals(std::string_view peripherals) {
  return deviceWith("<peripherals>" + std::string(peripherals) + "</peripherals>");
}

std::string writtenMap(SVDFile& file) {
  std::FILE* stream = std::tmpfile();
  if (stream == nullptr) return "no temporary file";
  file.write(stream, 2, 0);
  std::rewind(stream);
  std::string bytes;
  char block[4096];
  size_t got;
  while ((got = std::fread(block, 1, sizeof block, stream)) > 0) bytes.append(block, got);
  std::fclose(stream);
  return bytes;
}

std::string convertSVD(std::string_view svdText, uint32_t flags, const char* ignoreName) {
  SVDFile file;
  std::string text(svdText);
  if (!loadSVDFromText(file, text.c_str(), flags, ignoreName)) return "load failed";
  return writtenMap(file);
}

}  // namespace regmill::testing
