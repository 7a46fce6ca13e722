#include "tests/support/scratch_folder.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include <gtest/gtest.h>
#include <unistd.h>

#include "xml/xml_document.h"

namespace regmill::testing {

ScratchFolder::ScratchFolder() {
  std::string pattern = (std::filesystem::temp_directory_path() / "regmill-test-XXXXXX").string();
  if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("cannot make a temporary folder");
  path_ = pattern;
}

ScratchFolder::~ScratchFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

std::string ScratchFolder::write(const std::string& name, const std::string& contents) const {
  std::ofstream(file(name), std::ios::binary) << contents;
  return file(name);
}

std::string ScratchFolder::read(const std::string& name) const { return readFile(file(name)); }

bool ScratchFolder::exists(const std::string& name) const { return std::filesystem::exists(file(name)); }

size_t ScratchFolder::entryCount() const {
  size_t count = 0;
  for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(path_)) ++count;
  return count;
}

void ScratchFolder::touchLater(const std::string& name) const {
  std::filesystem::last_write_time(file(name), std::filesystem::last_write_time(file(name)) + std::chrono::seconds(5));
}

std::string readFile(const std::filesystem::path& path) {
  std::ostringstream contents;
  contents << std::ifstream(path, std::ios::binary).rdbuf();
  return contents.str();
}

std::string repeated(const std::string& text, size_t count) {
  std::string all;
  all.reserve(text.size() * count);
  while (count-- > 0) all += text;
  return all;
}

std::string writtenText(XMLDocument& document, unsigned indentation, unsigned maxLineLength) {
  char* bytes = nullptr;
  size_t size = 0;
  std::FILE* stream = open_memstream(&bytes, &size);
  if (stream == nullptr) throw std::runtime_error("cannot open a memory stream");
  EXPECT_TRUE(document.write(stream, indentation, maxLineLength));
  std::fclose(stream);
  std::string text(bytes, size);
  std::free(bytes);
  return text;
}

std::filesystem::path corpusFolder(const std::string& name) {
  return std::filesystem::path(REGMILL_SHARED_DIR) / "corpus" / name;
}

std::vector<std::filesystem::path> filesUnder(const std::filesystem::path& folder, const std::string& extension) {
  std::vector<std::filesystem::path> files;
  std::error_code error;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder, error))
    if (entry.is_regular_file() && entry.path().extension() == extension) files.push_back(entry.path());
  std::sort(files.begin(), files.end());
  return files;
}

}  // namespace regmill::testing
