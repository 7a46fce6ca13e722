#include "regmill_process.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>

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

void ScratchFolder::write(const std::string& name, const std::string& contents) const {
  std::ofstream(file(name), std::ios::binary) << contents;
}

std::string ScratchFolder::read(const std::string& name) const {
  std::ifstream stream(file(name), std::ios::binary);
  std::ostringstream contents;
  contents << stream.rdbuf();
  return contents.str();
}

bool ScratchFolder::exists(const std::string& name) const { return std::filesystem::exists(file(name)); }

namespace {

std::string slurp(const std::filesystem::path& path) {
  std::ifstream stream(path, std::ios::binary);
  std::ostringstream contents;
  contents << stream.rdbuf();
  return contents.str();
}

}  // namespace

ProcessResult runRegmill(const std::vector<std::string>& arguments, const std::filesystem::path& folder) {
  // Output goes to files beside the scratch folder, so that the run's own folder
  // holds only what regmill writes.
  ScratchFolder capture;
  std::string outPath = capture.file("stdout").string();
  std::string errPath = capture.file("stderr").string();
  std::vector<std::string> argv{REGMILL_BINARY};
  argv.insert(argv.end(), arguments.begin(), arguments.end());
  pid_t child = fork();
  if (child == 0) {
    if (chdir(folder.c_str()) != 0) _exit(127);
    int out = open(outPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    int err = open(errPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    if (out < 0 || err < 0) _exit(127);
    dup2(out, 1);
    dup2(err, 2);
    std::vector<char*> pointers;
    for (std::string& argument : argv) pointers.push_back(argument.data());
    pointers.push_back(nullptr);
    execv(pointers[0], pointers.data());
    _exit(127);
  }
  ProcessResult result;
  int status = 0;
  if (child > 0 && waitpid(child, &status, 0) == child && WIFEXITED(status)) result.exitCode = WEXITSTATUS(status);
  result.out = slurp(outPath);
  result.err = slurp(errPath);
  return result;
}

}  // namespace regmill::testing
