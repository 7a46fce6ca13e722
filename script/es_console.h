// The minimal console host: a context whose global `print` writes its arguments,
// converted to strings and joined by a blank, as one line. It can stop a script
// after a number of instructions (a step budget), and it turns the outcome of a
// file into the console's diagnostic texts.
#pragma once
#include <QString>
#include <cstdint>
#include <cstdio>
#include <string>

#include "script/es_context.h"

namespace regmill::script {

class ESConsoleContext : public ESContext {
 public:
  // `output` receives what `print` writes, in UTF-8.
  explicit ESConsoleContext(std::FILE* output, std::shared_ptr<ESEngine> engine = nullptr);

  // After this many instructions every run stops quietly; 0 means no limit.
  void setStepBudget(uint64_t steps);
  bool poll() override { return stepBudget_ == 0 || ++steps_ < stepBudget_; }

  // Compiles and runs one file. On a script error gives false and sets `diagnostic`:
  // "FILE:LINE: MESSAGE" for a syntax error; "Uncaught exception: TYPE: MESSAGE" and
  // a second line "FILE:LINE" for an error at run time; "Uncaught exception: " and
  // the value's text for any other thrown value.
  bool runFile(const QString& fileName, const QString& source, std::string& diagnostic);

 private:
  std::string describeError(ESValue error, bool compiling);

  std::FILE* output_;
  std::unique_ptr<ESClass> printClass_;
  uint64_t stepBudget_ = 0;
  uint64_t steps_ = 0;
};

}  // namespace regmill::script
