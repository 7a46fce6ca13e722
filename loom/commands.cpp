#include "loom/command.h"

#include "loom/module_loader.h"

namespace loom {

// One row per subcommand, in the order `loom help` lists them.
constexpr Command kCommands[] = {
    {"help", "[COMMAND]", "List the commands, or show how to use one", runHelp},
    {"hex", "convert IN OUT | info IN [--from KIND] [--to KIND] [--fill BYTE] [--address ADDR]",
     "Convert a load file or list its sections (KIND: bin hex srec txt lst; by default the extension)", runHex},
    {"pkg", "list|extract|create|fetch ...",
     "List, extract or create a package archive, or fetch a file over HTTP",
     [](Arguments arguments) { return runInModule("pkg", arguments); }},
    {"script", "FILE [FILE...]", "Run script files in one context, with print(...) writing lines to stdout",
     runScript},
    {"diff", "LEFT RIGHT [--no-color]", "Compare two text files line by line; exit 0 when equal, 1 when not, 2 on error",
     runDiff},
    {"edit", "FILE [--encoding NAME] [--do COMMAND]... [--replace FIND WITH]... [--save-as OUT] [--batch]",
     "Edit a text file in a window, or run editing commands on it and save it",
     [](Arguments arguments) { return runInModule("edit", arguments); }},
    {"project", "show|get|set|expand|preprocess ARGUMENTS...",
     "Show, read, change or expand the settings of a solution, or preprocess an XML file", runProject},
    {"forth", "[FILE]",
     "Run a file of words, or read words line by line from stdin as at a console, answering \" OK\"",
     runForth},
};

std::span<const Command> commands() { return kCommands; }

const Command* findCommand(std::string_view name) {
  for (const Command& command : kCommands)
    if (command.name == name) return &command;
  return nullptr;
}

}  // namespace loom
