#include "driver/command_line.h"

#include <cstring>

#include "base/parse_number.h"
#include "memorymap/svd_file.h"

namespace regmill {

const char kUsageText[] =
    "Usage:\n"
    "  regmill [options] svd_file memory_map_file\n"
    "\n"
    "Options:\n"
    "  -reg-size-bytes          SVD register size definitions are in bytes\n"
    "  -ignore-description      Ignore description fields in SVD file\n"
    "  -irq-table name          Create an assembly code vector table in 'name'.vec\n"
    "  -irq-start number        The vector entry number to start from default is 16\n"
    "  -irqs irq0;irq1;..       Specify the list of interrupt names\n"
    "  -irqs2 filename          Get the interrupt names and CPU info from a CMSIS header 'filename'\n"
    "  -ignore-name name        Ignore all entries with 'name'\n"
    "  -tcf                     Input file is a tcf file not an SVD file\n"
    "  -ddf                     Input file is a ddf file not an SVD file\n"
    "  -rdt                     Input file is a rdt file not an SVD file\n"
    "  -nvic p                  Create an NVIC registergroup with 'p' priority bits\n"
    "  -pp                      Create PPB register groups e.g. nvic, scb, systick, mpu\n"
    "  -remove name;name;..     Remove the list of register groups\n"
    "  -include f               Add an <include file_name='f'\n"
    "  -include-macros m        Add an <include file_name='f' macros='m'\n"
    "  -core n                  Core type is Cortex-M'n'\n"
    "  -mpu                     Core has an mpu\n"
    "  -fpu                     Core has an fpu\n";

namespace {

// How an option stores what it is given: a switch sets a flag, the others take
// the next argument as text or as a number read like strtoul in base 0.
struct OptionRule {
  const char* name;
  const char* missingValueMessage;  // null for an option without a value
  void (*apply)(RunOptions& options, const char* value);
};

constexpr OptionRule kOptions[] = {
    {"-reg-size-bytes", nullptr, [](RunOptions& o, const char*) { o.readerFlags |= flagBit(SVDReaderFlag::RegSizeInBytes); }},
    {"-ignore-description", nullptr, [](RunOptions& o, const char*) { o.readerFlags |= flagBit(SVDReaderFlag::IgnoreDescription); }},
    {"-irq-table", "Filename required for -irq-table option\n",
     [](RunOptions& o, const char* v) { o.vectorTableName = v; }},
    {"-irq-start", "Size required for -irq-start option\n",
     [](RunOptions& o, const char* v) { o.firstVectorEntry = parseUnsignedC(v); }},
    {"-ignore-name", "Name required for -ignore-name option\n",
     [](RunOptions& o, const char* v) { o.ignoredName = v; }},
    {"-tcf", nullptr, [](RunOptions& o, const char*) { o.inputIsTCF = true; }},
    {"-ddf", nullptr, [](RunOptions& o, const char*) { o.inputIsDDF = true; }},
    {"-rdt", nullptr, [](RunOptions& o, const char*) { o.inputIsRDT = true; }},
    {"-nvic", "Num prioirty bits required for -nvic option\n",
     [](RunOptions& o, const char* v) { o.nvicPrioBits = parseUnsignedC(v); }},
    {"-include", "Argument required for -include option\n",
     [](RunOptions& o, const char* v) { o.includeFile = v; }},
    {"-include-macros", "Argument required for -include-macros option\n",
     [](RunOptions& o, const char* v) { o.includeMacros = v; }},
    {"-pp", nullptr, [](RunOptions& o, const char*) { o.addPPBGroups = true; }},
    {"-irqs", "Argument required for -irqs option\n", [](RunOptions& o, const char* v) { o.interruptList = v; }},
    {"-irqs2", "Argument required for -irqs2 option\n", [](RunOptions& o, const char* v) { o.headerFile = v; }},
    {"-remove", "Argument required for -remove option\n", [](RunOptions& o, const char* v) { o.removalList = v; }},
    {"-core", "Core number required for -core option\n",
     [](RunOptions& o, const char* v) { o.coreNumber = parseUnsignedC(v); }},
    {"-mpu", nullptr, [](RunOptions& o, const char*) { o.coreHasMPU = true; }},
    {"-fpu", nullptr, [](RunOptions& o, const char*) { o.coreHasFPU = true; }},
};

const OptionRule* findOption(const char* argument) {
  for (const OptionRule& rule : kOptions)
    if (std::strcmp(argument, rule.name) == 0) return &rule;
  return nullptr;
}

}  // namespace

CommandLine readCommandLine(int argc, const char* const* argv) {
  CommandLine line;
  for (int i = 1; i < argc; ++i) {
    const OptionRule* rule = findOption(argv[i]);
    if (rule == nullptr) {
      line.options.positional.emplace_back(argv[i]);
      continue;
    }
    const char* value = nullptr;
    if (rule->missingValueMessage != nullptr) {
      // The next argument is the value, whatever it looks like.
      if (i + 1 >= argc) {
        line.missingValueMessage = rule->missingValueMessage;
        return line;
      }
      value = argv[++i];
    }
    rule->apply(line.options, value);
  }
  return line;
}

}  // namespace regmill
