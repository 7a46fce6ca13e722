#include <unistd.h>

#include <QString>
#include <cstdio>
#include <string>

#include "base/input_file.h"
#include "loom/command.h"
#include "script/es_console.h"

namespace loom {

namespace {

using regmill::script::ESConsoleContext;
using regmill::script::ESFatalError;

// A line longer than this is refused rather than gathered until memory runs out.
constexpr size_t kMaxLineLength = size_t{16} << 20;

enum class LineRead { Line, End, TooLong };

// One line of standard input without its line end.
LineRead readLine(std::string& line) {
  line.clear();
  char buffer[4096];
  while (std::fgets(buffer, sizeof buffer, stdin) != nullptr) {
    line += buffer;
    if (!line.empty() && line.back() == '\n') {
      line.pop_back();
      if (!line.empty() && line.back() == '\r') line.pop_back();
      return LineRead::Line;
    }
    if (line.size() > kMaxLineLength) return LineRead::TooLong;
  }
  return line.empty() ? LineRead::End : LineRead::Line;  // a last line without a line end counts
}

int engineFault(const ESFatalError& fault) {
  std::fflush(stdout);
  return fail("internal error of the script engine: " + fault.message.toStdString());
}

// The read-eval-print loop: each line is one program in the same context, its value
// or its error printed as the console prints them, and an error does not end the
// loop. The prompt is printed only when standard input is a terminal: piped input
// then gives just the results, one per line, which is what a script or a test that
// feeds the loop wants to read.
int runLoop(ESConsoleContext& context) {
  const bool interactive = isatty(fileno(stdin)) != 0;
  std::string line;
  for (;;) {
    if (interactive) {
      std::fputs("> ", stdout);
      std::fflush(stdout);
    }
    LineRead read = readLine(line);
    if (read == LineRead::End) break;
    if (read == LineRead::TooLong) return fail("input line longer than 16 MiB");
    try {
      context.evaluateLine(QString::fromUtf8(line));
    } catch (const ESFatalError& fault) {
      return engineFault(fault);
    }
    std::fflush(stdout);
  }
  if (interactive) std::fputc('\n', stdout);  // the shell's prompt starts on a line of its own
  return 0;
}

}  // namespace

// Runs the files in order in one context, so that each sees the globals of those
// before it; with no file, reads statements from standard input.
int runScript(Arguments arguments) {
  ESConsoleContext context(stdout);
  if (arguments.empty()) return runLoop(context);
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
    } catch (const ESFatalError& fault) {
      return engineFault(fault);
    }
  }
  return 0;
}

}  // namespace loom
