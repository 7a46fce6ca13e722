// Runs arbitrary text as the threads view's script, through a whole refresh and a
// register fetch, against a small row limit: every pass ends (by itself, by an
// error or by the step limit) with its report, never with a crash.
#include <unistd.h>

#include <QString>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>

#include "script/es_threads_window.h"

namespace {

class SilentReporter : public regmill::script::ThreadsWindowReporter {
 public:
  void output(const QString& line) override { sink += line.size(); }
  void report(const QString& title, const QString& text) override { sink += title.size() + text.size(); }
  qsizetype sink = 0;
};

// The file the view reads, one per process, removed when the process ends.
struct ScriptFile {
  std::string path = "/tmp/threads_script_fuzz_" + std::to_string(getpid()) + ".js";
  ~ScriptFile() { std::remove(path.c_str()); }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size > 16384) return 0;
  static const ScriptFile scriptFile;
  const std::string& path = scriptFile.path;
  std::FILE* file = std::fopen(path.c_str(), "wb");
  if (file == nullptr) return 0;
  std::fwrite(data, 1, size, file);
  std::fclose(file);
  regmill::script::ThreadsViewModel model(16);
  SilentReporter reporter;
  regmill::script::ThreadsWindowScript script(QString::fromStdString(path), model, reporter);
  script.refresh();
  script.registers(1);
  (void)model.dump();
  return 0;
}
