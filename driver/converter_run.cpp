#include "driver/converter_run.h"

#include <cstdio>

#include <QString>
#include <QStringList>

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

int failReading(const std::string& name) {
  std::fprintf(stderr, "error: read of %s failed\n", name.c_str());
  return 1;
}

int failWriting(const std::string& name) {
  std::fprintf(stderr, "error: write of %s failed\n", name.c_str());
  return 1;
}

// TCF and RDT inputs are XML files loaded into a plain document with text nodes off.
bool readXmlInput(const std::string& input, bool isTCF, SVDFile& file, std::string& failedName) {
  XMLDocument document(false, XMLStorage::Arena);
  if (!document.load(input.c_str()).ok()) return false;
  if (isTCF) {
    readTCF(document.root(), file);  // the result is not looked at
    return true;
  }
  RDTReadResult result = readRDT(document.root(), file);
  if (result.unreadableFile) {
    failedName = *result.unreadableFile;
    return false;
  }
  return true;
}

// Reads the input with the first reader of TCF, DDF, RDT that the options name, else
// SVD; false after a read failure, whose message names `failedName`.
bool readInput(const RunOptions& options, uint32_t readerFlags, SVDFile& file, std::string& failedName) {
  const std::string& input = options.positional[0];
  failedName = input;
  if (options.inputIsTCF) return readXmlInput(input, true, file, failedName);
  if (options.inputIsDDF) return readDDF(input.c_str(), file);
  if (options.inputIsRDT) return readXmlInput(input, false, file, failedName);
  const char* ignoredName = options.ignoredName ? options.ignoredName->c_str() : nullptr;
  return loadSVD(file, fromBytes(input), readerFlags, ignoredName);
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

}  // namespace

int runConverter(const RunOptions& options, SVDFile& file) {
  uint32_t readerFlags = options.readerFlags;
  if (options.vectorTableName || options.nvicPrioBits != 0 || options.addPPBGroups) {
    file.setInterruptTableSize(kInterruptTableSize);
    file.setCoreInfo(static_cast<int32_t>(options.coreNumber), true, options.nvicPrioBits, options.coreHasMPU,
                     options.coreHasFPU);
  }

  if (options.interruptList) {
    file.setInterruptNames(splitList(*options.interruptList));
  } else if (options.headerFile) {
    if (!applyCmsisHeader(options.headerFile->c_str(), file)) {
      std::fprintf(stderr, "couldn't read header file %s", options.headerFile->c_str());
      return 1;
    }
    readerFlags |= KeepCoreInfo | KeepInterrupts;
  }

  std::string failedName;
  if (!readInput(options, readerFlags, file, failedName)) return failReading(failedName);
  // An input that left no root element cannot take removals, groups or an include;
  // it fails as an unreadable input would.
  if (needsRoot(options) && file.root() == nullptr) return failReading(options.positional[0]);

  if (options.removalList) file.removeGroups(splitList(*options.removalList));
  if (options.nvicPrioBits != 0) {
    file.removeGroups({QStringLiteral("NVIC")});
    addNVICGroup(file, static_cast<int32_t>(options.coreNumber), options.nvicPrioBits, options.firstVectorEntry,
                 (readerFlags & IgnoreDescription) == 0, false);
  }
  if (options.addPPBGroups) addPPBGroups(file);
  if (options.includeFile) addIncludeElement(options, file);

  const std::string& output = options.positional[1];
  if (!file.save(fromBytes(output), 2, 0).ok()) return failWriting(output);

  if (options.vectorTableName) {
    std::string vectorFile;
    if (!writeVectorTable(file, *options.vectorTableName, options.firstVectorEntry, vectorFile))
      return failWriting(vectorFile);
  }
  return 0;
}

}  // namespace regmill
