#include "driver/converter_run.h"

#include <cstdio>
#include <new>
#include <optional>

#include <QString>
#include <QStringList>

#include "base/input_file.h"
#include "coregroups/ppb_groups.h"
#include "driver/header_scan.h"
#include "driver/vector_table.h"
#include "memorymap/svd_file.h"
#include "readers/ddf_reader.h"
#include "readers/rdt_reader.h"
#include "readers/svd/svd_reader.h"
#include "readers/tcf_reader.h"

namespace regmill {

namespace {

constexpr int kInterruptTableSize = 256;

QString fromBytes(const std::string& bytes) { return QString::fromLocal8Bit(bytes.data(), bytes.size()); }

// Splits at each ";", keeping empty parts; an empty text gives an empty list.
QStringList splitList(const std::string& text) {
  if (text.empty()) return {};
  return fromBytes(text).split(QLatin1Char(';'));
}

int fail(const std::string& line) {
  std::fputs(line.c_str(), stderr);
  return 1;
}

// Two outputs, or an output and an input, that name one file would overwrite each
// other: the run is refused before anything is read or written.
std::optional<std::string> nameClash(const RunOptions& options) {
  const std::string& input = options.positional[0];
  const std::string& output = options.positional[1];
  // A header is read only when no interrupt list overrides it.
  const std::string* header = options.headerFile && !options.interruptList ? &*options.headerFile : nullptr;
  if (namesSameFile(input, output)) return "error: the memory-map file " + output + " is also the input\n";
  if (header && namesSameFile(*header, output))
    return "error: the memory-map file " + output + " is also the header file\n";
  if (!options.vectorTableName) return std::nullopt;
  std::string vectorFile = vectorTableFileName(*options.vectorTableName);
  if (namesSameFile(vectorFile, output))
    return "error: the vector table " + vectorFile + " is also the memory-map file\n";
  if (namesSameFile(vectorFile, input)) return "error: the vector table " + vectorFile + " is also the input\n";
  if (header && namesSameFile(*header, vectorFile))
    return "error: the vector table " + vectorFile + " is also the header file\n";
  return std::nullopt;
}

// TCF and RDT inputs are XML files loaded into a plain document with text nodes off.
// Whether the tree has the format's shape is not looked at, only whether the read
// itself failed.
Status readXmlInput(const std::string& input, bool isTCF, SVDFile& file) {
  XMLDocument document(false, XMLStorage::Arena);
  if (Status loaded = document.load(input.c_str()); !loaded) return loaded;
  return (isTCF ? readTCF(document.root(), file) : readRDT(document.root(), file)).status();
}

// Reads the input with the first reader of TCF, DDF, RDT that the options name, else
// SVD.
Status readInput(const RunOptions& options, uint32_t readerFlags, SVDFile& file) {
  const std::string& input = options.positional[0];
  if (options.inputIsTCF) return readXmlInput(input, true, file);
  if (options.inputIsDDF) return readDDF(input.c_str(), file);
  if (options.inputIsRDT) return readXmlInput(input, false, file);
  const char* ignoredName = options.ignoredName ? options.ignoredName->c_str() : nullptr;
  return loadSVD(file, fromBytes(input), readerFlags, ignoredName);
}

// The file a read failure names: an instance file of an RDT input that could not be
// read, else the input itself.
std::string failedInputName(const RunOptions& options, const Status& failure) {
  if (options.inputIsRDT && !options.inputIsTCF && !options.inputIsDDF && !failure.file().empty())
    return failure.file();
  return options.positional[0];
}

bool needsRoot(const RunOptions& options) {
  return options.removalList || options.nvicPrioBits != 0 || options.addPPBGroups || options.includeFile;
}

void addIncludeElement(const RunOptions& options, SVDFile& file) {
  MemoryMapElement* include = file.newElement("include");
  file.root()->addChild(include);
  include->setAttributeCopy("filename", options.includeFile->c_str());
  if (options.includeMacros) include->setAttributeCopy("macros", options.includeMacros->c_str());
  include->setAttributeCopy("no_root", "1");
}

int runSteps(const RunOptions& options, SVDFile& file) {
  if (std::optional<std::string> clash = nameClash(options)) return fail(*clash);

  uint32_t readerFlags = options.readerFlags;
  if (options.vectorTableName || options.nvicPrioBits != 0 || options.addPPBGroups) {
    file.setInterruptTableSize(kInterruptTableSize);
    file.setCoreInfo(static_cast<int32_t>(options.coreNumber), true, options.nvicPrioBits, options.coreHasMPU,
                     options.coreHasFPU);
  }

  if (options.interruptList) {
    file.setInterruptNames(splitList(*options.interruptList));
  } else if (options.headerFile) {
    // The header's message has no line feed behind it.
    if (!applyCmsisHeader(options.headerFile->c_str(), file))
      return fail("couldn't read header file " + *options.headerFile);
    readerFlags |= flagBit(SVDReaderFlag::KeepCoreInfo) | flagBit(SVDReaderFlag::KeepInterrupts);
  }

  const std::string& input = options.positional[0];
  if (Status read = readInput(options, readerFlags, file); !read)
    return fail("error: read of " + failedInputName(options, read) + " failed\n");
  // An input that left no root element cannot take removals, groups or an include;
  // it fails as an unreadable input would.
  if (needsRoot(options) && file.root() == nullptr) return fail("error: read of " + input + " failed\n");

  if (options.removalList) file.removeGroups(splitList(*options.removalList));
  if (options.nvicPrioBits != 0) {
    file.removeGroups({QStringLiteral("NVIC")});
    addNVICGroup(file, static_cast<int32_t>(options.coreNumber), options.nvicPrioBits, options.firstVectorEntry,
                 !hasFlag(readerFlags, SVDReaderFlag::IgnoreDescription), false);
  }
  if (options.addPPBGroups) addPPBGroups(file);
  if (options.includeFile) addIncludeElement(options, file);

  // The map is finished first; a vector table that fails then leaves it in place.
  const std::string& output = options.positional[1];
  if (!file.save(fromBytes(output), 2, 0)) return fail("error: write of " + output + " failed\n");
  if (options.vectorTableName) {
    std::string vectorFile = vectorTableFileName(*options.vectorTableName);
    if (!writeVectorTable(file, vectorFile, options.firstVectorEntry))
      return fail("error: write of " + vectorFile + " failed\n");
  }
  return 0;
}

}  // namespace

int runConverter(const RunOptions& options, SVDFile& file) {
  try {
    return runSteps(options, file);
  } catch (const std::bad_alloc&) {
    std::fputs("error: out of memory\n", stderr);
    return 1;
  }
}

}  // namespace regmill
