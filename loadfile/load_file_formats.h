// The formats by keyword, as callers choose a class to load or save: "bin", "hex",
// "srec", "txt" and "lst". Failures throw HException.
#pragma once
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "loadfile/code_buffer.h"
#include "loadfile/load_file.h"

namespace regmill {

enum class LoadFileFormat { Binary, IntelHex, SRecord, TIHex, HexList };

std::optional<LoadFileFormat> formatFromKeyword(std::string_view keyword);
// By the file's extension, in either case: .bin, .hex, .srec .s19 .s28 .s37 .mot,
// .txt and .lst.
std::optional<LoadFileFormat> formatFromExtension(std::string_view path);

// The file read by the format's class; a binary file is placed at `loadAddress`.
std::unique_ptr<StandardLoadFile> loadLoadFile(LoadFileFormat format, const std::string& path,
                                               uint32_t loadAddress = 0);

// The writer of a text format; none for "bin", which is written whole by saveLoadFile.
std::unique_ptr<CodeBuffer> makeCodeBuffer(LoadFileFormat format, const std::string& path);

// Writes the sections of `file` to `path` in `format`, in list order, and the entry
// point where the format has room for one. A binary file holds the bytes of one
// section from its first address on; more than one section must be made contiguous
// first, or this throws "a binary file holds one section".
void saveLoadFile(StandardLoadFile& file, LoadFileFormat format, const std::string& path);

// One line per section: its name ("-" when it has none), its start, the address
// behind its last byte and its size, all in hexadecimal; then the entry point, if any.
std::string describeLoadFile(StandardLoadFile& file);

}  // namespace regmill
