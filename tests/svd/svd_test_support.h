// SVD text in memory read into an SVDFile, and what the file then writes or holds.
#pragma once
#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "readers/svd/svd_reader.h"
#include "tests/support/scratch_folder.h"
#include "tests/support/tree_dump.h"

namespace regmill {

using Values = std::vector<std::string>;
using testing::writtenText;

// `<device><name>D</name>` + body + `</device>`; the second with a body of peripherals.
inline std::string deviceWith(const std::string& body) { return "<device><name>D</name>" + body + "</device>"; }
inline std::string deviceWithPeripherals(const std::string& peripherals) {
  return deviceWith("<peripherals>" + peripherals + "</peripherals>");
}

// The written map of the SVD text read into a fresh SVDFile, or "load failed".
inline std::string convertSVD(const std::string& svd, uint32_t flags = 0, const char* ignoreName = nullptr) {
  SVDFile file;
  return loadSVDFromText(file, svd.c_str(), flags, ignoreName) ? writtenText(file) : "load failed";
}

// The attribute values of every element of the tag (see testing::attributeValues).
inline Values attributeValues(const std::string& svd, const char* tag, std::initializer_list<const char*> attributes,
                              uint32_t flags = 0, const char* ignoreName = nullptr) {
  SVDFile file;
  EXPECT_TRUE(loadSVDFromText(file, svd.c_str(), flags, ignoreName));
  return testing::attributeValues(file.root(), tag, attributes);
}

}  // namespace regmill
