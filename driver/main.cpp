#include <cstdio>
#include <cstdlib>

#include "driver/command_line.h"
#include "driver/converter_run.h"
#include "memorymap/svd_file.h"

int main(int argc, char** argv) {
  regmill::CommandLine line = regmill::readCommandLine(argc, argv);
  if (line.missingValueMessage != nullptr) {
    std::fputs(line.missingValueMessage, stderr);
    return 1;
  }
  if (line.options.positional.size() != 2) {
    std::fputs(regmill::kUsageText, stdout);
    return 1;
  }
  // The document lives until the process ends; the run ends by exit, without
  // tearing the tree down.
  static regmill::SVDFile* file = new regmill::SVDFile;
  std::fflush(stdout);
  std::exit(regmill::runConverter(line.options, *file));
}
