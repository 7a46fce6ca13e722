// Files for a test: a fresh temporary folder removed with everything in it, the text
// a document writes, and the shared real-world corpus.
#pragma once
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

namespace regmill {
class XMLDocument;
}

namespace regmill::testing {

class ScratchFolder {
 public:
  ScratchFolder();
  ~ScratchFolder();
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;

  const std::filesystem::path& path() const { return path_; }
  std::string file(const std::string& name) const { return (path_ / name).string(); }
  std::string write(const std::string& name, const std::string& contents) const;  // gives the file's path
  std::string read(const std::string& name) const;
  bool exists(const std::string& name) const;
  size_t entryCount() const;  // files and folders in it
  // Moves the file's modification time 5 s on, as another process's later write would.
  void touchLater(const std::string& name) const;

 private:
  std::filesystem::path path_;
};

std::string readFile(const std::filesystem::path& path);
std::string repeated(const std::string& text, size_t count);  // the text `count` times over

// The document as the writer prints it; indentation 2 and no line limit by default.
std::string writtenText(XMLDocument& document, unsigned indentation = 2, unsigned maxLineLength = 0);

// The corpus folder of that name, and its files with the extension in sorted order;
// a test that needs them skips when the folder is not there.
std::filesystem::path corpusFolder(const std::string& name);
std::vector<std::filesystem::path> filesUnder(const std::filesystem::path& folder, const std::string& extension);
#define REGMILL_SKIP_WITHOUT(folder) \
  if (!std::filesystem::is_directory(folder)) GTEST_SKIP() << "no corpus at " << (folder) << "; the real-world files are not here"

}  // namespace regmill::testing
