#include "loadfile/binary_load_file.h"

#include <cstdio>
#include <memory>

#include "base/hexception.h"
#include "base/input_file.h"

namespace regmill {

namespace {

struct FileCloser {
  void operator()(std::FILE* file) const { std::fclose(file); }
};

}  // namespace

BinaryLoadFile::BinaryLoadFile(const std::string& path) {
  std::unique_ptr<std::FILE, FileCloser> file(std::fopen(path.c_str(), "rb"));
  if (!file) throw HException("cannot open " + path);
  // A folder, a failed read and a file beyond the size bound all read short.
  Expected<std::string> contents = readInputStream(file.get(), path, kLoadFileSizeLimit);
  if (!contents) throw HException("cannot read " + path);
  bytes_ = std::move(*contents);
}

void BinaryLoadFile::setLoadAddress(uint32_t address) {
  if (address == loadAddress_) return;
  dropSections();
  loadAddress_ = address;
}

bool BinaryLoadFile::readSections() {
  sections_.sections.push_back(std::make_unique<StandardLoadFileSection>(
      "data", loadAddress_, static_cast<uint32_t>(bytes_.size()), reinterpret_cast<const uint8_t*>(bytes_.data())));
  return true;
}

}  // namespace regmill
