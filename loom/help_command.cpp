#include <cstdio>
#include <string>

#include "loom/command.h"

namespace loom {

namespace {

std::string usageOf(const Command& command) {
  std::string usage = "loom " + std::string(command.name);
  if (!command.usage.empty()) usage += " " + std::string(command.usage);
  return usage;
}

}  // namespace

int runHelp(Arguments arguments) {
  if (arguments.size() > 1) return fail("help takes at most one command name");
  if (arguments.size() == 1) {
    const Command* command = findCommand(arguments[0]);
    if (command == nullptr) return fail("unknown command '" + arguments[0] + "'; run 'loom help' for the list");
    std::printf("Usage: %s\n\n%.*s\n", usageOf(*command).c_str(), int(command->summary.size()),
                command->summary.data());
    return 0;
  }
  // Usages are long, so each summary goes on a line of its own below its usage.
  std::printf("Usage: loom COMMAND [ARGUMENTS...]\n\nCommands:\n");
  for (const Command& command : commands())
    std::printf("  %s\n      %.*s\n", usageOf(command).c_str(), int(command.summary.size()), command.summary.data());
  return 0;
}

}  // namespace loom
