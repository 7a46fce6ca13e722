// A binary file: its bytes are the image, and the caller tells where they load.
#pragma once
#include <cstdint>
#include <string>

#include "loadfile/load_file.h"

namespace regmill {

class BinaryLoadFile : public StandardLoadFile {
 public:
  // Reads the file whole; throws HException when it cannot be opened or read.
  explicit BinaryLoadFile(const std::string& path);

  bool hasAddresses() const override { return false; }
  // A new address makes the next call of sections build the section anew.
  void setLoadAddress(uint32_t address) override;
  // One section named "data" over the file's bytes, at the load address.
  bool readSections() override;

 private:
  std::string bytes_;
  uint32_t loadAddress_ = 0;
};

}  // namespace regmill
