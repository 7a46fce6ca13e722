// Commands whose libraries are heavy (the widget toolkit for the editor window, the
// network stack for downloads) live in modules that are loaded only when such a
// command runs, so that every other command, a script above all, starts without
// mapping those libraries. A module is a shared object named "loom-COMMAND.so",
// found beside the program or, once installed, in "../lib/loom" from it; it exports
// `loom_run_command` (a LoomModuleEntry), which runs the command on the words after
// its name.
#pragma once
#include <string_view>

#include "loom/command.h"

namespace loom {

// Loads the module of the command and runs it; a module that cannot be found or
// loaded is one line on stderr and exit 1.
int runInModule(std::string_view command, Arguments arguments);

}  // namespace loom
