#include "driver/header_scan.h"

#include <cstring>
#include <map>

#include "base/parse_number.h"
#include "base/text.h"
#include "base/text_file.h"
#include "memorymap/cores.h"
#include "memorymap/svd_file.h"

namespace regmill {

namespace {

constexpr size_t kLineBuffer = 1024;

struct EnumeratedName {
  std::string name;
  uint64_t number;
};

// The enumerators behind "SysTick_IRQn": lines with "_IRQn" and an "=" behind it.
std::vector<EnumeratedName> scanEnumerators(TextFileReader& reader) {
  char line[kLineBuffer];
  while (reader.readLine(line, sizeof line))
    if (std::strstr(line, "SysTick_IRQn") != nullptr) break;
  std::vector<EnumeratedName> pairs;
  while (reader.readLine(line, sizeof line)) {
    const char* start = line;
    while (*start == ' ') ++start;  // blanks only: a tab stays part of the name
    const char* match = std::strstr(start, "_IRQn");
    if (match == nullptr) continue;
    const char* equals = std::strchr(match + 5, '=');
    if (equals == nullptr) continue;
    uint32_t number = parseUnsignedC(equals + 1);
    pairs.push_back({std::string(start, static_cast<size_t>(match - start)), number});
  }
  return pairs;
}

// The first decimal digit on the line, starting one byte behind the macro's name;
// a name that ends the piece has nothing behind it and gives 0.
uint32_t digitBehind(const char* match, size_t nameLength) {
  const char* cursor = match + nameLength;
  if (*cursor == '\0') return 0;
  for (++cursor; *cursor != '\0'; ++cursor)
    if (isDigitByte(static_cast<unsigned char>(*cursor))) return static_cast<uint32_t>(*cursor - '0');
  return 0;
}

void scanMacro(const char* line, const char* name, uint32_t& value) {
  if (const char* match = std::strstr(line, name)) value = digitBehind(match, std::strlen(name));
}

// The revision macro of a core 0 tells only whether it has the vector table offset
// register; that of another core tells only its number.
void scanCoreRevision(const char* line, HeaderScanResult& result) {
  for (const CoreName& known : kCoreNames) {
    if (known.revisionMacro == nullptr || std::strstr(line, known.revisionMacro) == nullptr) continue;
    if (known.vtor >= 0)
      result.hasVTOR = known.vtor == 1;
    else
      result.coreNumber = known.core;
    return;
  }
}

void scanCoreMacros(TextFileReader& reader, HeaderScanResult& result) {
  char line[kLineBuffer];
  while (reader.readLine(line, sizeof line)) {
    scanMacro(line, "__MPU_PRESENT", result.mpuPresentDigit);
    scanMacro(line, "__NVIC_PRIO_BITS", result.nvicPrioBits);
    scanMacro(line, "__FPU_PRESENT", result.fpuPresentDigit);
    scanCoreRevision(line, result);
  }
}

// Names by position: a number ahead of the running index leaves empty entries in
// between; a number behind it (out of order or repeated) takes the next position.
// Positions are counted without making the empty entries, so a number such as
// 0xFFFFFFFF costs nothing.
QStringList namesByPosition(const std::vector<EnumeratedName>& pairs, size_t tableSize) {
  std::map<uint64_t, const std::string*> kept;
  uint64_t index = 0;
  for (const EnumeratedName& pair : pairs) {
    if (index < pair.number) index = pair.number;
    if (index < tableSize) kept[index] = &pair.name;
    ++index;
  }
  QStringList names;
  for (const auto& [position, name] : kept) {
    while (static_cast<uint64_t>(names.size()) < position) names.append(QString());
    names.append(QString::fromLatin1(name->data(), static_cast<qsizetype>(name->size())));
  }
  return names;
}

}  // namespace

Status scanCmsisHeader(const char* path, size_t tableSize, HeaderScanResult& result) {
  TextFileReader reader;
  if (Status opened = reader.open(path); !opened) return opened;
  std::vector<EnumeratedName> pairs = scanEnumerators(reader);
  reader.rewind();
  scanCoreMacros(reader, result);
  result.interruptNames = namesByPosition(pairs, tableSize);
  return Status();
}

Status applyCmsisHeader(const char* path, SVDFile& file) {
  HeaderScanResult result;
  Status scanned = scanCmsisHeader(path, static_cast<size_t>(file.interruptTableSize), result);
  if (!scanned) return scanned;
  file.setInterruptNames(result.interruptNames);
  file.setCoreInfo(result.coreNumber, result.hasVTOR, result.nvicPrioBits, result.mpuPresentDigit != 0,
                   result.fpuPresentDigit != 0);
  return Status();
}

}  // namespace regmill
