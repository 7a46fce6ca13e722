#include <cstdio>
#include <new>
#include <string>
#include <vector>

#include "loom/command.h"

int main(int argc, char** argv) {
  std::vector<std::string> words(argv + 1, argv + argc);
  if (words.empty()) {
    loom::runHelp({});
    return 1;
  }
  std::string name = words.front() == "--help" || words.front() == "-h" ? "help" : words.front();
  const loom::Command* command = loom::findCommand(name);
  if (command == nullptr) return loom::fail("unknown command '" + name + "'; run 'loom help' for the list");
  try {
    int code = command->run(loom::Arguments(words).subspan(1));
    if (std::fflush(stdout) != 0) return loom::fail("could not write the output");
    return code;
  } catch (const std::bad_alloc&) {
    return loom::fail("out of memory");
  }
}
