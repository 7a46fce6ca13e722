// The script host of the debugger's threads view. The project names a script file;
// each pass runs that whole file with a short call text appended ("init\n",
// "init()\n", "getregs(N)\n") in a fresh ThreadsWindowESContext that stops a
// looping script after a million steps. The script fills a ThreadsViewModel through
// the global `Threads` object; failures go to a ThreadsWindowReporter.
#pragma once
#include <QString>
#include <QStringList>
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "script/es_context.h"
#include "script/es_threads_view.h"

namespace regmill::script {

// A per-use context: from the 1,000,000th poll on it gives false, so a script that
// loops for ever simply ends with status 0.
class ThreadsWindowESContext : public ESContext {
 public:
  static constexpr uint32_t kStepLimit = 1000000;
  explicit ThreadsWindowESContext(std::shared_ptr<ESEngine> engine = nullptr);
  bool poll() override { return ++steps_ < kStepLimit; }
  uint32_t steps() const { return steps_; }

 private:
  uint32_t steps_ = 0;
};

// The class of the `Threads` object and its ten functions; it holds the view's
// state (the model, which the host owns) and remembers that the row limit was hit.
class ThreadsWindowScriptObjectClass : public ESClass {
 public:
  enum Function : int32_t {
    Clear, NewQueue, Add, SetColumns, SetSortByNumber, SetColor, SetColumns2, NewQueue2, Add2, Shown
  };
  explicit ThreadsWindowScriptObjectClass(ThreadsViewModel& model) : ESClass("Object"), model_(model) {}

  // Puts `Threads` on the context's global object with the ten functions.
  void bind(ESContext& context);
  void call(ESContext& context, ESObject* function, ESObject* thisObject, int32_t argumentCount,
            ESValue* arguments) override;

  bool rowLimitReached() const { return rowLimitReached_; }

 private:
  void addRow(ESContext& context, ThreadsView& view, const ESValue* first, int32_t count, bool lastMayBeId);

  ThreadsViewModel& model_;
  bool rowLimitReached_ = false;
};

// Where the threads view shows its texts: a line in the output pane, or a report
// with a title (a message box in the workbench).
class ThreadsWindowReporter {
 public:
  virtual ~ThreadsWindowReporter() = default;
  virtual void output(const QString& line) = 0;
  virtual void report(const QString& title, const QString& text) = 0;
};

class ThreadsWindowScript {
 public:
  // `loadDirectories` are searched by the script's `load` after its own path.
  ThreadsWindowScript(QString path, ThreadsViewModel& model, ThreadsWindowReporter& reporter,
                      QStringList loadDirectories = {});

  // Asks the script for `init` and calls it; without one the main view gets the
  // columns "Id", "Priority" and "State". A script error leaves the view empty and
  // gives false.
  bool refresh();
  // The register block that the script's getregs gives for a thread, when it gives an object.
  std::optional<std::vector<int32_t>> registers(uint32_t threadId);
  // A new run of the target program: the note on the row limit may show once more.
  void beginRun() { limitNoteShown_ = false; }

  // One pass: reads the file, binds `Threads`, evaluates the file with the call text
  // appended, hands a finished pass's value to `useValue` while its context lives,
  // and reports a failure. Gives the status (0 also when the file cannot be opened).
  using ValueUser = std::function<void(ESContext& context, ESValue value)>;
  int32_t evaluate(const QString& callText, const ValueUser& useValue = {});

 private:
  void reportScriptError(ESContext& context, ESValue thrown, bool rowLimitReached);

  QString path_;
  ThreadsViewModel& model_;
  ThreadsWindowReporter& reporter_;
  QStringList loadDirectories_;
  bool limitNoteShown_ = false;
};

}  // namespace regmill::script
