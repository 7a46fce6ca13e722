#include "loom/command.h"

#include <cstdio>

namespace loom {

// One row per subcommand, in the order `loom help` lists them.
constexpr Command kCommands[] = {
    {"help", "[COMMAND]", "List the commands, or show how to use one", runHelp},
    {"project", "show|get|set|expand|preprocess ARGUMENTS...",
     "Show, read, change or expand the settings of a solution, or preprocess an XML file", runProject},
};

std::span<const Command> commands() { return kCommands; }

const Command* findCommand(std::string_view name) {
  for (const Command& command : kCommands)
    if (command.name == name) return &command;
  return nullptr;
}

int fail(std::string_view text) {
  std::fprintf(stderr, "loom: %.*s\n", int(text.size()), text.data());
  return 1;
}

}  // namespace loom
