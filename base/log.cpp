#include "base/log.h"

#include <chrono>
#include <cstdarg>
#include <cstdio>
#include <string>

namespace regmill {

namespace {

struct LogState {
  uint32_t mask = 0;
  std::string targetName;
  std::FILE* target = nullptr;
  bool timing = false;
  std::chrono::steady_clock::time_point start = std::chrono::steady_clock::now();
  std::chrono::steady_clock::time_point last = start;
};

LogState& state() {
  static LogState log;
  return log;
}

std::FILE* openTarget(LogState& log) {
  if (log.target != nullptr) return log.target;
  const std::string& name = log.targetName;
  if (name.empty() || name == "-" || name == "stdout")
    log.target = stdout;
  else if (name == "stderr")
    log.target = stderr;
  else
    log.target = std::fopen(name.c_str(), "w");
  return log.target;
}

}  // namespace

uint32_t logMask() { return state().mask; }
void setLogMask(uint32_t mask) { state().mask = mask; }
void setLogTiming(bool on) { state().timing = on; }

void setLogTarget(const char* name) {
  LogState& log = state();
  if (log.target != nullptr && log.target != stdout && log.target != stderr) std::fclose(log.target);
  log.target = nullptr;
  log.targetName = name == nullptr ? "" : name;
}

void logMessage(const char* category, uint32_t flags, const char* format, ...) {
  LogState& log = state();
  std::FILE* target = openTarget(log);
  if (target == nullptr) return;
  char buffer[65536];
  va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(buffer, sizeof buffer, format, arguments);
  va_end(arguments);
  if (log.timing) {
    using std::chrono::duration_cast;
    using std::chrono::milliseconds;
    auto now = std::chrono::steady_clock::now();
    std::fprintf(target, "[%dms %5dms] ", static_cast<int>(duration_cast<milliseconds>(now - log.start).count()),
                 static_cast<int>(duration_cast<milliseconds>(now - log.last).count()));
    log.last = now;
  }
  std::fprintf(target, "%s: %s", category, buffer);
  if (flags & kLogLineFeed) std::fputc('\n', target);
  std::fflush(target);
}

}  // namespace regmill
