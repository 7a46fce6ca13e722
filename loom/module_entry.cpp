// The entry point of a command module (see module_loader.h); LOOM_MODULE_COMMAND
// names the command's run function, which the module's own source file defines.
#include "loom/command.h"

namespace loom {
int LOOM_MODULE_COMMAND(Arguments arguments);
}

extern "C" __attribute__((visibility("default"))) int loom_run_command(const std::string* words,
                                                                        std::size_t count) {
  return loom::LOOM_MODULE_COMMAND(loom::Arguments(words, count));
}
