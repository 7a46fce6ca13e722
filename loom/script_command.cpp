#include <QString>
#include <cstdio>

#include "base/input_file.h"
#include "loom/command.h"
#include "script/es_console.h"

namespace loom {

// Runs the files in order in one context, so that each sees the globals of those before it.
int runScript(Arguments arguments) {
  if (arguments.empty()) return fail("script needs at least one FILE; see 'loom help script'");
  regmill::script::ESConsoleContext context(stdout);
  for (const std::string& path : arguments) {
    regmill::Expected<std::string> bytes = regmill::readInputFile(path);
    if (!bytes) return fail(bytes.status().message());
    std::string diagnostic;
    try {
      if (!context.runFile(QString::fromStdString(path), QString::fromUtf8(*bytes), diagnostic)) {
        std::fflush(stdout);
        std::fprintf(stderr, "%s\n", diagnostic.c_str());
        return 1;
      }
    } catch (const regmill::script::ESFatalError& fault) {
      std::fflush(stdout);
      return fail("internal error of the script engine: " + fault.message.toStdString());
    }
  }
  return 0;
}

}  // namespace loom
