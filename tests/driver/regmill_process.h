// Runs the built regmill binary as a user would, in a folder of its own, and
// collects exit code, stdout and stderr.
#pragma once
#include <filesystem>
#include <string>
#include <vector>

namespace regmill::testing {

struct ProcessResult {
  int exitCode = -1;
  std::string out;
  std::string err;
};

// A fresh temporary folder, removed with the object.
class ScratchFolder {
 public:
  ScratchFolder();
  ~ScratchFolder();
  const std::filesystem::path& path() const { return path_; }
  std::filesystem::path file(const std::string& name) const { return path_ / name; }
  void write(const std::string& name, const std::string& contents) const;
  std::string read(const std::string& name) const;
  bool exists(const std::string& name) const;

 private:
  std::filesystem::path path_;
};

// Runs regmill with the arguments, its working folder being `folder`.
ProcessResult runRegmill(const std::vector<std::string>& arguments, const std::filesystem::path& folder);

}  // namespace regmill::testing
