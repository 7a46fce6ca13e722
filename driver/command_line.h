// The converter's command line: the option table, read once into RunOptions.
// Options are compared whole and case-sensitively; anything else is a positional
// argument, so no option is ever refused as unknown.
#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace regmill {

struct RunOptions {
  uint32_t readerFlags = 0;
  std::optional<std::string> vectorTableName;
  uint32_t firstVectorEntry = 16;
  std::optional<std::string> ignoredName;
  bool inputIsTCF = false;
  bool inputIsDDF = false;
  bool inputIsRDT = false;
  uint32_t nvicPrioBits = 0;  // 0 means no NVIC step
  std::optional<std::string> includeFile;
  std::optional<std::string> includeMacros;
  bool addPPBGroups = false;
  std::optional<std::string> interruptList;
  std::optional<std::string> headerFile;
  std::optional<std::string> removalList;
  uint32_t coreNumber = 0;
  bool coreHasMPU = false;
  bool coreHasFPU = false;
  std::vector<std::string> positional;
};

struct CommandLine {
  RunOptions options;
  // The message of an option whose value is missing; the run stops with it.
  const char* missingValueMessage = nullptr;
};

// Reads the arguments from argv[1] on.
CommandLine readCommandLine(int argc, const char* const* argv);

// The usage text, written to stdout when the positional arguments are not two.
extern const char kUsageText[];

}  // namespace regmill
