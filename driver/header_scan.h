// Takes interrupt names and core data from a device header in the CMSIS layout: a
// line-by-line text scan, not a parser of the language. It relies on the enumeration
// of interrupt numbers behind "SysTick_IRQn" and on the configuration macros.
#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include <QStringList>

#include "base/status.h"

namespace regmill {

class SVDFile;

struct HeaderScanResult {
  // Interrupt names by position, as many as the table can take.
  QStringList interruptNames;
  uint32_t mpuPresentDigit = 0;
  uint32_t nvicPrioBits = 0;
  uint32_t fpuPresentDigit = 0;
  int32_t coreNumber = 0;
  bool hasVTOR = false;
};

// Fails when the header cannot be read. Lines are read in pieces of at most 1023
// bytes, so a longer line is seen as several lines. Names at positions of
// `tableSize` and above are not kept: they could never reach the table.
Status scanCmsisHeader(const char* path, size_t tableSize, HeaderScanResult& result);

// The scan applied to the document: names through setInterruptNames, then the core
// data through setCoreInfo. Fails when the header cannot be read.
Status applyCmsisHeader(const char* path, SVDFile& file);

}  // namespace regmill
