// The console host as the `loom script` command uses it: the interactive
// console's context, writing what `print` and `console.log` print to a stream,
// able to stop a script after a number of instructions (a step budget), and
// turning the outcome of a whole file into the console's diagnostic texts.
#pragma once
#include <QString>
#include <cstdint>
#include <cstdio>
#include <string>

#include "script/es_host_console.h"

namespace regmill::script {

class ESConsoleContext : public MyESContext2 {
 public:
  // `output` receives what is printed, in UTF-8. The context starts out running,
  // so a plain evaluate runs to its end.
  explicit ESConsoleContext(std::FILE* output, std::shared_ptr<ESEngine> engine = nullptr);

  // After this many instructions every run stops quietly; 0 means no limit.
  void setStepBudget(uint64_t steps);
  bool poll() override {
    return MyESContext2::poll() && (stepBudget_ == 0 || ++steps_ < stepBudget_);
  }

  // Compiles and runs one file. On a script error gives false and sets `diagnostic`:
  // "FILE:LINE: MESSAGE" for a syntax error; "Uncaught exception: TYPE: MESSAGE" and
  // a second line "FILE:LINE" for an error at run time; "Uncaught exception: " and
  // the value's text for any other thrown value.
  bool runFile(const QString& fileName, const QString& source, std::string& diagnostic);

 private:
  std::string describeError(ESValue error, bool compiling);

  uint64_t stepBudget_ = 0;
  uint64_t steps_ = 0;
};

}  // namespace regmill::script
