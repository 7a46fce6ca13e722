// Shared by the reader tests, the SVD ones among them: scratch input files, and the
// text that the memory-map writer makes of a document (indentation 2, no line-length
// limit).
#pragma once
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include <gtest/gtest.h>
#include <unistd.h>

#include "memorymap/svd_file.h"

namespace regmill {

// A new file under the temporary folder holding the bytes as given, removed at the
// end of its scope.
struct ScratchFile {
  explicit ScratchFile(const std::string& contents) {
    close(mkstemp(path.data()));
    std::ofstream(path, std::ios::binary) << contents;
  }
  ~ScratchFile() { std::remove(path.c_str()); }
  std::string path = (std::filesystem::temp_directory_path() / "regmill-test-XXXXXX").string();
};

// The written text of the document, its root and everything under it.
inline std::string writtenText(XMLDocument& document) {
  char* bytes = nullptr;
  size_t size = 0;
  std::FILE* stream = open_memstream(&bytes, &size);
  document.write(stream, 2, 0).ignore();
  std::fclose(stream);
  std::string text(bytes, size);
  std::free(bytes);
  return text;
}

}  // namespace regmill
