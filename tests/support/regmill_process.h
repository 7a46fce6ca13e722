// Runs the built regmill binary as a user would, in a folder of its own, and collects
// exit code, stdout and stderr.
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

ProcessResult runRegmill(const std::vector<std::string>& arguments, const std::filesystem::path& folder);

}  // namespace regmill::testing
