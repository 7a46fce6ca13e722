// The subcommands of the loom front end. Each lives in a file of its own that only
// reads its arguments and calls the library; the table in commands.cpp lists them.
#pragma once
#include <cstddef>
#include <span>
#include <string>
#include <string_view>

// What a command module exports as `loom_run_command` (see module_loader.h).
extern "C" {
using LoomModuleEntry = int (*)(const std::string* words, std::size_t count);
}

namespace loom {

using Arguments = std::span<const std::string>;  // the words after the command's name

struct Command {
  std::string_view name;
  std::string_view usage;    // the arguments, e.g. "FILE [FILE...]"
  std::string_view summary;  // one line for `loom help`
  int (*run)(Arguments);     // the process's exit code
};

std::span<const Command> commands();
const Command* findCommand(std::string_view name);

// Prints "loom: " and the text on stderr and gives the exit code of a failure (1
// unless the command's convention names another).
int fail(std::string_view text, int exitCode = 1);

int runHelp(Arguments arguments);
int runHex(Arguments arguments);
int runPkg(Arguments arguments);   // in its module (module_loader.h)
int runScript(Arguments arguments);
int runForth(Arguments arguments);
int runDiff(Arguments arguments);
int runEdit(Arguments arguments);  // in its module
int runProject(Arguments arguments);

}  // namespace loom
