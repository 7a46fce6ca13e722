// Runs a built program (regmill, loom) as a user would, in a folder of its own, and
// collects exit code, stdout and stderr.
#pragma once
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace regmill::testing {

struct ProcessResult {
  int exitCode = -1;
  std::string out;
  std::string err;
  bool killedBySignal = false;
  long peakKilobytes = 0;  // the child's largest resident size
};

// `beforeExec` runs in the child, e.g. to set resource limits; `input` is its stdin.
ProcessResult runProgram(const std::string& binary, const std::vector<std::string>& arguments,
                         const std::filesystem::path& folder, const std::function<void()>& beforeExec = {},
                         const std::string& input = {});

ProcessResult runRegmill(const std::vector<std::string>& arguments, const std::filesystem::path& folder,
                         const std::function<void()>& beforeExec = {});
ProcessResult runLoom(const std::vector<std::string>& arguments, const std::filesystem::path& folder,
                      const std::string& input = {});

// What a shell command prints on stdout, or nothing when it fails: for peers such as
// iconv and sort that a test compares with.
std::optional<std::string> shellOutput(const std::string& command);

// The peer's path on PATH, or "" when it is not installed.
std::string programPath(const std::string& name);
#define REGMILL_SKIP_WITHOUT_PROGRAM(name)                        \
  if (regmill::testing::programPath(name).empty())                \
  GTEST_SKIP() << (name) << " is not installed; tools/install-deps.sh lists it"

}  // namespace regmill::testing
