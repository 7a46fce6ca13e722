// Feeds arbitrary text to the script compiler in a fresh context: any source must
// end in a compiled program or a syntax error, never a crash or a hang.
#include <cstddef>
#include <cstdint>

#include "script/es_context.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size > 65536) return 0;
  regmill::script::ESContext context;
  context.setUp();
  const QString source = QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
  try {
    context.compileProgram(QStringLiteral("fuzz.js"), source);
  } catch (const regmill::script::ESException&) {
  } catch (const regmill::script::ESFatalError&) {
    // Code beyond 16-bit positions: a reported fault, not a crash.
  }
  return 0;
}
