#include <cstdio>
#include <iostream>
#include <string>

#include "base/input_file.h"
#include "loom/command.h"
#include "script/forth/forth_console.h"

namespace loom {

namespace {
void writeToStdout(std::string_view bytes) { std::fwrite(bytes.data(), 1, bytes.size(), stdout); }
}  // namespace

// With a FILE the whole file runs as one text; without one, standard input is read
// line by line as at a console, and the session goes on after a failing line.
int runForth(Arguments arguments) {
  if (arguments.size() > 1) return fail("forth takes at most one FILE; see 'loom help forth'");
  regmill::forth::ForthConsole console(writeToStdout);
  if (arguments.empty()) {
    for (std::string line; std::getline(std::cin, line);) {
      console.typeLine(line);
      std::fflush(stdout);
    }
    return 0;
  }
  regmill::Expected<std::string> bytes = regmill::readInputFile(arguments[0]);
  if (!bytes) return fail(bytes.status().message());
  const regmill::Status status = console.runText(std::move(*bytes), QString::fromStdString(arguments[0]));
  std::fflush(stdout);
  if (!status) return fail(status.message());
  return 0;
}

}  // namespace loom
