#include "tests/support/regmill_process.h"

#include <fcntl.h>
#include <cstdio>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>

#include "base/text.h"
#include "tests/support/scratch_folder.h"

#ifndef REGMILL_BINARY
#define REGMILL_BINARY "regmill"
#endif
#ifndef LOOM_BINARY
#define LOOM_BINARY "loom"
#endif

namespace regmill::testing {

ProcessResult runProgram(const std::string& binary, const std::vector<std::string>& arguments,
                         const std::filesystem::path& folder, const std::function<void()>& beforeExec,
                         const std::string& input) {
  // Input and output go through files of another scratch folder, so that the run's
  // own folder holds only what the program writes.
  ScratchFolder capture;
  std::string inPath = capture.write("stdin", input);
  std::string outPath = capture.file("stdout");
  std::string errPath = capture.file("stderr");
  std::vector<std::string> argv{binary};
  argv.insert(argv.end(), arguments.begin(), arguments.end());
  pid_t child = fork();
  if (child == 0) {
    if (chdir(folder.c_str()) != 0) _exit(127);
    int in = open(inPath.c_str(), O_RDONLY);
    int out = open(outPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    int err = open(errPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    if (in < 0 || out < 0 || err < 0) _exit(127);
    dup2(in, 0);
    dup2(out, 1);
    dup2(err, 2);
    if (beforeExec) beforeExec();
    std::vector<char*> pointers;
    for (std::string& argument : argv) pointers.push_back(argument.data());
    pointers.push_back(nullptr);
    execv(pointers[0], pointers.data());
    _exit(127);
  }
  ProcessResult result;
  int status = 0;
  rusage usage{};
  if (child > 0 && wait4(child, &status, 0, &usage) == child) {
    if (WIFEXITED(status)) result.exitCode = WEXITSTATUS(status);
    result.killedBySignal = WIFSIGNALED(status);
    result.peakKilobytes = usage.ru_maxrss;
  }
  result.out = readFile(outPath);
  result.err = readFile(errPath);
  return result;
}

ProcessResult runRegmill(const std::vector<std::string>& arguments, const std::filesystem::path& folder,
                         const std::function<void()>& beforeExec) {
  return runProgram(REGMILL_BINARY, arguments, folder, beforeExec);
}

ProcessResult runLoom(const std::vector<std::string>& arguments, const std::filesystem::path& folder,
                      const std::string& input) {
  return runProgram(LOOM_BINARY, arguments, folder, {}, input);
}

std::optional<std::string> shellOutput(const std::string& command) {
  std::FILE* pipe = ::popen(command.c_str(), "r");
  if (pipe == nullptr) return std::nullopt;
  std::string out;
  char chunk[4096];
  for (size_t got; (got = std::fread(chunk, 1, sizeof chunk, pipe)) > 0;) out.append(chunk, got);
  return ::pclose(pipe) == 0 ? std::optional(out) : std::nullopt;
}

std::string programPath(const std::string& name) {
  const char* path = std::getenv("PATH");
  for (std::string_view folder : splitSkippingEmpty(path == nullptr ? "" : path, ':')) {
    std::string candidate = std::string(folder) + "/" + name;
    if (::access(candidate.c_str(), X_OK) == 0) return candidate;
  }
  return "";
}

}  // namespace regmill::testing
