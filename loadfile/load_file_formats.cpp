#include "loadfile/load_file_formats.h"

#include <cctype>
#include <cinttypes>
#include <cstdio>

#include "base/atomic_file.h"
#include "base/hexception.h"
#include "loadfile/binary_load_file.h"
#include "loadfile/hex_load_files.h"

namespace regmill {

namespace {

struct NamedFormat {
  std::string_view name;
  LoadFileFormat format;
};

constexpr NamedFormat kKeywords[] = {
    {"bin", LoadFileFormat::Binary}, {"hex", LoadFileFormat::IntelHex}, {"srec", LoadFileFormat::SRecord},
    {"txt", LoadFileFormat::TIHex},  {"lst", LoadFileFormat::HexList},
};

constexpr NamedFormat kExtensions[] = {
    {".bin", LoadFileFormat::Binary}, {".hex", LoadFileFormat::IntelHex}, {".srec", LoadFileFormat::SRecord},
    {".s19", LoadFileFormat::SRecord}, {".s28", LoadFileFormat::SRecord}, {".s37", LoadFileFormat::SRecord},
    {".mot", LoadFileFormat::SRecord}, {".txt", LoadFileFormat::TIHex},   {".lst", LoadFileFormat::HexList},
};

void saveBinary(StandardLoadFile& file, const std::string& path) {
  const SectionList& list = file.sections().sections;
  if (list.size() > 1) throw HException("a binary file holds one section");
  AtomicFileWriter writer(path);
  if (!writer.open()) throw HException("cannot open " + path);
  if (!list.empty() && list.front()->size() != 0)
    std::fwrite(list.front()->data(), 1, list.front()->size(), writer.stream());
  if (!writer.commit()) throw HException("cannot write " + path);
}

}  // namespace

std::unique_ptr<CodeBuffer> makeCodeBuffer(LoadFileFormat format, const std::string& path) {
  switch (format) {
    case LoadFileFormat::IntelHex: return std::make_unique<IntelHexBuffer>(path);
    case LoadFileFormat::SRecord: return std::make_unique<SRecordBuffer>(path);
    case LoadFileFormat::TIHex: return std::make_unique<TIHexBuffer>(path);
    case LoadFileFormat::HexList: return std::make_unique<HexBuffer>(path);
    case LoadFileFormat::Binary: break;
  }
  return nullptr;
}

std::optional<LoadFileFormat> formatFromKeyword(std::string_view keyword) {
  for (const NamedFormat& named : kKeywords)
    if (named.name == keyword) return named.format;
  return std::nullopt;
}

std::optional<LoadFileFormat> formatFromExtension(std::string_view path) {
  size_t dot = path.rfind('.');
  if (dot == std::string_view::npos || path.find('/', dot) != std::string_view::npos) return std::nullopt;
  std::string extension(path.substr(dot));
  for (char& c : extension) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  for (const NamedFormat& named : kExtensions)
    if (named.name == extension) return named.format;
  return std::nullopt;
}

std::unique_ptr<StandardLoadFile> loadLoadFile(LoadFileFormat format, const std::string& path,
                                               uint32_t loadAddress) {
  switch (format) {
    case LoadFileFormat::Binary: {
      auto file = std::make_unique<BinaryLoadFile>(path);
      file->setLoadAddress(loadAddress);
      return file;
    }
    case LoadFileFormat::IntelHex: return std::make_unique<IntelHexLoadFile>(path);
    case LoadFileFormat::SRecord: return std::make_unique<SRecordLoadFile>(path);
    case LoadFileFormat::TIHex: return std::make_unique<TIHexLoadFile>(path);
    case LoadFileFormat::HexList: return std::make_unique<HexLoadFile>(path);
  }
  return nullptr;
}

void saveLoadFile(StandardLoadFile& file, LoadFileFormat format, const std::string& path) {
  if (format == LoadFileFormat::Binary) return saveBinary(file, path);
  std::unique_ptr<CodeBuffer> buffer = makeCodeBuffer(format, path);
  for (const auto& section : file.sections().sections)
    buffer->writeBytes(section->address(), section->data(), section->size());
  buffer->finish(file.entryPoint());
}

std::string describeLoadFile(StandardLoadFile& file) {
  std::string text;
  char line[128];
  for (const auto& section : file.sections().sections) {
    const char* name = *section->name() != '\0' ? section->name() : "-";
    uint64_t end = uint64_t{section->address()} + section->size();
    std::snprintf(line, sizeof line, " start 0x%08" PRIX32 " end 0x%08" PRIX64 " size 0x%" PRIX32 "\n",
                  section->address(), end, section->size());
    text += name;
    text += line;
  }
  if (file.hasEntryPoint()) {
    std::snprintf(line, sizeof line, "entry point 0x%08" PRIX32 "\n", file.entryPoint());
    text += line;
  }
  return text;
}

}  // namespace regmill
