#include "loom/command.h"

#include <cstdio>

namespace loom {

// One row per subcommand, in the order `loom help` lists them.
constexpr Command kCommands[] = {
    {"help", "[COMMAND]", "List the commands, or show how to use one", runHelp},
    {"edit", "FILE [--encoding NAME] [--do COMMAND]... [--replace FIND WITH]... [--save-as OUT] [--batch]",
     "Edit a text file in a window, or run editing commands on it and save it", runEdit},
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
