// Compiles and runs arbitrary text with a step budget: every program ends (by
// itself, by an error or by the budget) without a crash and within bounded memory.
#include <cstddef>
#include <cstdint>
#include <cstdio>

#include "script/es_console.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size > 16384) return 0;
  static std::FILE* sink = std::fopen("/dev/null", "w");
  regmill::script::ESConsoleContext context(sink);
  context.setStepBudget(200000);
  const QString source = QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
  std::string diagnostic;
  try {
    context.runFile(QStringLiteral("fuzz.js"), source, diagnostic);
  } catch (const regmill::script::ESFatalError&) {
    // A script can reach the machine's internal checks (a hidden enumerator
    // overwritten by name): reported, never a crash.
  }
  return 0;
}
