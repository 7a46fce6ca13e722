// Shared by the reader tests: a scratch folder for input files and the text that
// the memory-map writer makes of a document (indentation 2, no line-length limit).
#pragma once
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include <gtest/gtest.h>
#include <unistd.h>

#include "xml/xml_document.h"

namespace regmill {

class ScratchFolder {
 public:
  ScratchFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "regmill-readers-XXXXXX").string();
    if (mkdtemp(pattern.data()) != nullptr) path_ = pattern;
  }
  ~ScratchFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;

  const std::filesystem::path& path() const { return path_; }

  // Writes the bytes as they are (binary) and returns the file's full path.
  std::string write(const std::string& name, const std::string& contents) const {
    std::filesystem::path file = path_ / name;
    std::ofstream(file, std::ios::binary) << contents;
    return file.string();
  }

 private:
  std::filesystem::path path_;
};

inline std::string writtenText(XMLDocument& document) {
  std::FILE* stream = std::tmpfile();
  if (stream == nullptr) return "(no temporary file)";
  document.write(stream, 2, 0);
  std::string text;
  std::rewind(stream);
  char block[4096];
  size_t got;
  while ((got = std::fread(block, 1, sizeof block, stream)) > 0) text.append(block, got);
  std::fclose(stream);
  return text;
}

}  // namespace regmill
