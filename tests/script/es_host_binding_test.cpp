// The two hosts as the workbench embeds them: the script console (line outcomes,
// poll and the events hook, print and console.log) and the threads view (its step
// limit, the `Threads` object filling the view's model, the passes of a refresh and
// the texts of its reports), without any widget.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "script/es_host_binding.h"
#include "script/es_host_console.h"
#include "script/es_threads_window.h"
#include "tests/support/scratch_folder.h"

namespace regmill::script {
namespace {

using regmill::testing::ScratchFolder;

// A console whose printed text a test reads, and which counts the machine's polls.
class TestConsole : public MyESContext2 {
 public:
  TestConsole() : MyESContext2([this](const QString& text) { printed += text.toStdString(); }) {}
  bool poll() override {
    ++polls;
    return MyESContext2::poll();
  }
  std::string printed;
  int polls = 0;
};

// A host function that throws its argument as it is, the way a host may throw a
// value that is no error object.
class Thrower : public ESClass {
 public:
  Thrower() : ESClass("Thrower") {}
  void call(ESContext&, ESObject*, ESObject*, int32_t, ESValue* arguments) override { throw ESException{arguments[0]}; }
};

TEST(ScriptConsole, PrintsTheOutcomeOfEachLineAndKeepsItsGlobals) {
  TestConsole console;
  Thrower thrower;
  console.defineFunction(console.global(), QStringLiteral("thrower"), &thrower, 1, 0);
  const std::pair<const char*, const char*> lines[] = {
      {"1 + 2", "3\n"},
      {"var total = 40", ""},  // undefined prints nothing
      {"var = ;", "expected an identifier found =\n:1\n"},
      {"total + 2", "42\n"},  // the syntax error left the globals alone
      {"missing()", "not a function object\n:1\n"},
      {"total", "40\n"},
      {"thrower('plain')", "Uncaught exception: plain\n"},
      {"thrower.toString = Object.prototype.toString; thrower.toString()", "[object Thrower]\n"},
      // A value that cannot be printed is reported like the error it raises.
      {"x = { toString: function() { return {}; }, valueOf: function() { return {}; } }",
       "type error: no default value\n:\n"},  // raised after the run: no line
      {"console.log('a', 1, 1/3); print == console.log", "a 1 0.333333\ntrue\n"},
      {"print()", "\n"},
  };
  for (const auto& [line, expected] : lines) {
    console.printed.clear();
    console.evaluateLine(QString::fromUtf8(line));
    EXPECT_EQ(console.printed, expected) << line;
    EXPECT_FALSE(console.running) << line;
  }
}

TEST(ScriptConsole, EventsRunOnEveryEleventhPollAndCanStopTheScript) {
  TestConsole console;
  std::vector<int> pollsAtEvents;
  console.setPendingEventsHook([&] {
    pollsAtEvents.push_back(console.polls);
    if (pollsAtEvents.size() == 3) console.running = false;
  });
  ESEvaluation result = console.evaluateLine(QStringLiteral("var i = 0; for (;;) i++;"));
  EXPECT_EQ(result.status, ESEvaluation::Finished);  // a stopped script ends quietly
  EXPECT_EQ(pollsAtEvents, (std::vector<int>{11, 22, 33}));
  EXPECT_EQ(console.polls, 33);  // the poll that ran the handler already gave false
  console.printed.clear();
  console.evaluateLine(QStringLiteral("i > 0 && i < 33"));
  EXPECT_EQ(console.printed, "true\n");
}

// Records what the threads view would show, one line per text.
class RecordingReporter : public ThreadsWindowReporter {
 public:
  void output(const QString& line) override { shown.push_back("output: " + line.toStdString()); }
  void report(const QString& title, const QString& text) override {
    shown.push_back(title.toStdString() + " | " + text.toStdString());
  }
  std::vector<std::string> shown;
};

class ThreadsWindowTest : public ::testing::Test {
 protected:
  std::string script(const std::string& text) { return folder.write("threads.js", text); }
  ThreadsWindowScript window(uint32_t rowLimit = 100, QStringList loadDirectories = {}) {
    model = std::make_unique<ThreadsViewModel>(rowLimit);
    return ThreadsWindowScript(QString::fromStdString(folder.file("threads.js")), *model, reporter,
                               std::move(loadDirectories));
  }
  std::string dump() const { return model->dump().toStdString(); }

  ScratchFolder folder;
  std::unique_ptr<ThreadsViewModel> model;
  RecordingReporter reporter;
};

TEST_F(ThreadsWindowTest, ALoopingScriptStopsAfterAMillionSteps) {
  ThreadsWindowESContext context;
  context.setUp();
  ESEvaluation result = context.evaluate(QStringLiteral("loop.js"), QStringLiteral("var n = 0; while (true) n++;"));
  EXPECT_EQ(result.status, ESEvaluation::Finished);
  EXPECT_EQ(context.steps(), ThreadsWindowESContext::kStepLimit);
}

TEST_F(ThreadsWindowTest, InitFillsTheViewsThroughTheThreadsObject) {
  script(
      "function init() {\n"
      "  Threads.clear();\n"
      "  Threads.setColumns('Name', 'Priority');\n"
      "  Threads.setSortByNumber('Priority');\n"
      "  Threads.setColor('Name', 'red', 'green', 'blue');\n"
      "  Threads.add('idle', 0, 7);\n"
      "  Threads.newqueue('Ready');\n"
      "  Threads.add('main', 3, [16, -1, 2.9]);\n"
      "  Threads.add('tick', 'x');\n"
      "  Threads.setColumns2('Timers', 'Timer');\n"
      "  Threads.add2('Timers', 'early', 5);\n"
      "  Threads.newqueue2('Timers', 'Pending');\n"
      "  Threads.add2('Timers', 'late');\n"
      "  if (Threads.shown('Timers')) Threads.add2('Timers', 'seen');\n"
      "  if (Threads.shown('Other')) Threads.add('never');\n"
      "}\n");
  ThreadsWindowScript threads = window();
  model->setShown(QStringLiteral("Timers"), true);
  EXPECT_TRUE(threads.refresh());
  EXPECT_EQ(dump(),
            "columns Name|Priority\n"
            "sort by number Priority\n"
            "color Name red green blue\n"
            "row idle|0 id=7\n"
            "queue Ready\n"
            "  row main|3 registers=16,-1,2\n"
            "  row tick|x\n"
            "view Timers (shown)\n"
            "  columns Timer\n"
            "  row early|5\n"
            "  queue Pending\n"
            "    row late\n"
            "    row seen\n");
  EXPECT_TRUE(reporter.shown.empty());
  // Sorting by the number column: "x" counts as 0, and 3 comes before 10.
  model->mainView().queues[0].rows.push_back({{"late", "10"}, {}, {}});
  model->mainView().sortRows(1);
  QStringList sorted;
  for (const ThreadsRow& row : model->mainView().queues[0].rows) sorted.append(row.texts[0]);
  EXPECT_EQ(sorted.join(' ').toStdString(), "tick main late");
  // A second refresh runs init again from an empty view: clear leaves the titles.
  EXPECT_TRUE(threads.refresh());
  EXPECT_EQ(model->rowCount(), 6u);
  EXPECT_EQ(model->mainView().queues.size(), 1u);
}

TEST_F(ThreadsWindowTest, WithoutInitOrWithoutTheFileTheViewGetsTheDefaultColumns) {
  ThreadsWindowScript threads = window();
  EXPECT_TRUE(threads.refresh());
  EXPECT_EQ(reporter.shown, std::vector<std::string>{"output: Cannot open: " + folder.file("threads.js")});
  EXPECT_EQ(dump(), "columns Id|Priority|State\n");
  script("var unrelated = 1;\n");
  ThreadsWindowScript withoutInit = window();
  EXPECT_TRUE(withoutInit.refresh());
  EXPECT_EQ(dump(), "columns Id|Priority|State\n");
  EXPECT_EQ(reporter.shown.size(), 1u);
}

TEST_F(ThreadsWindowTest, LoadFindsFilesInTheDirectoriesOfTheInstallation) {
  std::filesystem::create_directory(folder.file("lib"));
  folder.write("lib/threads_helper.js", "function init() { Threads.add('from the library', 1); }\n");
  script("load('threads_helper.js');\n");
  ThreadsWindowScript threads = window(100, {QString::fromStdString(folder.file("lib"))});
  EXPECT_TRUE(threads.refresh());
  EXPECT_EQ(dump(), "row from the library id=1\n");
}

TEST_F(ThreadsWindowTest, ScriptErrorsAreReportedWithLineAndSource) {
  const std::string path = folder.file("threads.js");
  script("function init() {\n  Threads.add('a');\n  missing();\n}\n");
  ThreadsWindowScript failing = window();
  EXPECT_FALSE(failing.refresh());
  EXPECT_EQ(reporter.shown, std::vector<std::string>{"Script runtime error - not a function object | At line 3 of " +
                                                     path + "\n\nSource line in error:   missing();"});
  // A syntax error fails the first pass already, which leaves the view empty.
  script("Threads.add('early');\nfunction init() {\n  var = 1;\n}\n");
  reporter.shown.clear();
  ThreadsWindowScript threads = window();
  EXPECT_FALSE(threads.refresh());
  EXPECT_EQ(dump(), "");
  EXPECT_EQ(reporter.shown, std::vector<std::string>{"Script runtime error - expected an identifier found = | At line 3 of " +
                                                     path + "\n\nSource line in error:   var = 1;"});
}

TEST_F(ThreadsWindowTest, TheRowLimitShowsANoteOncePerRun) {
  script("function init() { Threads.clear(); for (var i = 0; i < 5; i++) Threads.add('t' + i, i); }\n");
  ThreadsWindowScript threads = window(3);
  const std::string note =
      "Threads Window | Maximum thread number 3 to display has been reached. The project property Thread "
      "Maximum sets this value";
  EXPECT_FALSE(threads.refresh());
  EXPECT_EQ(dump(), "row t0 id=0\nrow t1 id=1\nrow t2 id=2\n");  // the rows before the limit stay
  threads.refresh();
  EXPECT_EQ(reporter.shown, std::vector<std::string>{note});
  threads.beginRun();
  threads.refresh();
  EXPECT_EQ(reporter.shown, (std::vector<std::string>{note, note}));
}

TEST_F(ThreadsWindowTest, GetregsGivesTheRegisterBlockOfAThread) {
  script(
      "function getregs(id) {\n"
      "  if (id == 1) return [id, 2.5, -3, '4', undefined];\n"
      "  if (id == 2) return { length: 1 };\n"
      "  if (id == 3) { var a = []; a.length = 4000000; return a; }\n"
      "}\n");
  ThreadsWindowScript threads = window();
  EXPECT_EQ(threads.registers(1), (std::vector<int32_t>{1, 2, -3, 4, 0}));
  EXPECT_EQ(threads.registers(4), std::nullopt);  // undefined is no block
  EXPECT_EQ(threads.registers(2), std::nullopt);
  EXPECT_EQ(threads.registers(3), std::nullopt);
  EXPECT_EQ(reporter.shown, (std::vector<std::string>{"Script runtime error - array argument expected | ",
                                                      "Script runtime error - array argument too long | "}));
}

}  // namespace
}  // namespace regmill::script
