#include <cstdio>

#include "loom/command.h"

namespace loom {

int fail(std::string_view text, int exitCode) {
  std::fprintf(stderr, "loom: %.*s\n", int(text.size()), text.data());
  return exitCode;
}

}  // namespace loom
