// Catches what the library writes to its diagnostic channel during a test.
#pragma once
#include <string>

#include "base/log.h"
#include "tests/support/scratch_folder.h"

namespace regmill::testing {

class CapturedLog {
 public:
  CapturedLog() {
    setLogTarget(folder_.file("log.txt").c_str());
    setLogMask(kLogErrors | kLogWarnings);
  }
  ~CapturedLog() {
    setLogMask(0);
    setLogTarget("");
  }
  // Everything written so far; the next call gives only what came after.
  std::string take() {
    std::string text = folder_.exists("log.txt") ? folder_.read("log.txt") : "";
    std::string fresh = text.substr(consumed_);
    consumed_ = text.size();
    return fresh;
  }

 private:
  ScratchFolder folder_;
  size_t consumed_ = 0;
};

}  // namespace regmill::testing
