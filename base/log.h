// The library's diagnostic channel. Call sites test logMask() first; in the
// converter the mask stays 0 and nothing is ever logged.
#pragma once
#include <cstdint>

namespace regmill {

constexpr uint32_t kLogErrors = 1;
constexpr uint32_t kLogWarnings = 2;
constexpr uint32_t kLogVerbose = 0x80;
constexpr uint32_t kLogLineFeed = 2;  // message flag: a line feed follows the text

uint32_t logMask();
void setLogMask(uint32_t mask);
// "-", "stdout" or an empty name: stdout; "stderr": stderr; any other name a file in
// text mode. Takes effect at the next message.
void setLogTarget(const char* name);
void setLogTiming(bool on);

// Formats into a buffer of 65536 bytes (longer messages are cut), puts the time field
// (when timing is on) and "category: " in front, and flushes after each message.
void logMessage(const char* category, uint32_t flags, const char* format, ...)
    __attribute__((format(printf, 3, 4)));

}  // namespace regmill
