#include "tests/support/regmill_process.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/support/scratch_folder.h"

#ifndef REGMILL_BINARY
#define REGMILL_BINARY "regmill"
#endif

namespace regmill::testing {

ProcessResult runRegmill(const std::vector<std::string>& arguments, const std::filesystem::path& folder,
                         const std::function<void()>& beforeExec) {
  // Output goes to files of another scratch folder, so that the run's own folder
  // holds only what regmill writes.
  ScratchFolder capture;
  std::string outPath = capture.file("stdout");
  std::string errPath = capture.file("stderr");
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

}  // namespace regmill::testing
