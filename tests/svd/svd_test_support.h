// Helpers of the SVD reader tests: run the reader on SVD text in memory and give
// the memory-map file it writes (indentation 2, no line-length limit) as bytes.
#pragma once
#include <cstdint>
#include <string>
#include <string_view>

#include "memorymap/svd_file.h"

namespace regmill::testing {

// `<device><name>D</name>` + body + `</device>`.
std::string deviceWith(std::string_view body);

// The same with the body inside `<peripherals>`.
std::string deviceWithPeripherals(std::string_view peripherals);

// The written memory map.
std::string writtenMap(SVDFile& file);

// Reads the SVD text into a fresh SVDFile and gives the written map; a failed read
// gives the text "load failed".
std::string convertSVD(std::string_view svdText, uint32_t flags = 0, const char* ignoreName = nullptr);

}  // namespace regmill::testing
