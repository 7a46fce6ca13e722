// Helpers of the SVD reader tests: SVD text in memory read into an SVDFile, and what
// the file then writes or holds.
#pragma once
#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

#include "readers/svd/svd_reader.h"
#include "tests/readers/reader_test_support.h"

namespace regmill {

using Values = std::vector<std::string>;

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

// For every element of the tag, in document order, the values of the attributes
// joined by blanks, "-" for one that is absent.
inline Values attributeValues(const std::string& svd, const char* tag, std::initializer_list<const char*> attributes,
                              uint32_t flags = 0, const char* ignoreName = nullptr) {
  SVDFile file;
  EXPECT_TRUE(loadSVDFromText(file, svd.c_str(), flags, ignoreName));
  Values values;
  for (XMLElement* element : collectElements(file.root(), tag, true)) {
    std::string joined;
    for (const char* attribute : attributes) {
      const char* value = element->getAttribute(attribute);
      joined.append(" ").append(value == nullptr ? "-" : value);
    }
    values.push_back(joined.substr(1));
  }
  return values;
}

}  // namespace regmill
