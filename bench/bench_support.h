// What the benchmarks share: the largest vendor file as input, reading a file whole,
// and running a peer program to its end with its peak memory.
#pragma once
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <system_error>
#include <vector>

namespace regmill::bench {

inline std::string readFile(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream contents;
  contents << in.rdbuf();
  return contents.str();
}

// The largest .svd below `where` (or `where` itself if it is a file); empty if none.
inline std::filesystem::path largestSvd(const std::filesystem::path& where) {
  namespace fs = std::filesystem;
  if (fs::is_regular_file(where)) return where;
  fs::path best;
  uintmax_t bestSize = 0;
  std::error_code error;
  if (!fs::is_directory(where, error)) return best;
  for (const auto& entry : fs::recursive_directory_iterator(where, error)) {
    if (!entry.is_regular_file() || entry.path().extension() != ".svd") continue;
    if (entry.file_size() > bestSize) {
      bestSize = entry.file_size();
      best = entry.path();
    }
  }
  return best;
}

// Runs a program to its end with its stdout sent to /dev/null; gives its exit status
// (-1 when it could not run or didn't exit) and fills its peak resident size in KB.
inline int runChild(const std::vector<std::string>& arguments, long& peakKilobytes) {
  std::fflush(stdout);  // the child must not inherit unwritten output
  pid_t child = fork();
  if (child < 0) return -1;
  if (child == 0) {
    if (std::freopen("/dev/null", "w", stdout) == nullptr) _exit(127);
    std::vector<char*> argv;
    for (const std::string& argument : arguments) argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);
    execvp(argv[0], argv.data());
    _exit(127);
  }
  int status = 0;
  rusage usage{};
  if (wait4(child, &status, 0, &usage) < 0) return -1;
  peakKilobytes = usage.ru_maxrss;
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace regmill::bench
