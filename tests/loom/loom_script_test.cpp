// `loom script` as a user meets it: files run in order in one context, print and
// console.log write lines, each kind of failure has its text and exit code 1, and
// without a file the statements of stdin run one by one.
#include <gtest/gtest.h>

#include "tests/support/regmill_process.h"
#include "tests/support/scratch_folder.h"

namespace loom {
namespace {

using regmill::testing::runLoom;
using regmill::testing::ScratchFolder;

TEST(LoomScript, RunsFilesInOneContextAndPrints) {
  ScratchFolder folder;
  folder.write("a.js", "var greeting = 'hello';\nfunction twice(x) { return x * 2; }\n");
  folder.write("b.js", "print(greeting, twice(21), 1/3);\nprint('caf\xc3\xa9');\n");
  auto run = runLoom({"script", "a.js", "b.js"}, folder.path());
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.out, "hello 42 0.333333\ncaf\xc3\xa9\n");
  EXPECT_EQ(run.err, "");
}

TEST(LoomScript, ReportsSyntaxErrorsWithFileAndLine) {
  ScratchFolder folder;
  folder.write("ok.js", "print('first');\n");
  folder.write("bad.js", "print('never');\nvar x = 1 === 2;\n");
  auto run = runLoom({"script", "ok.js", "bad.js"}, folder.path());
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.out, "first\n");  // the file before ran; nothing of the bad one did
  EXPECT_EQ(run.err, "bad.js:2: expected ; found ===\n");
}

TEST(LoomScript, ReportsUncaughtErrorsAndStops) {
  ScratchFolder folder;
  folder.write("run.js", "print('before');\nvar o;\no.field = 1;\nprint('after');\n");
  folder.write("next.js", "print('next');\n");
  auto run = runLoom({"script", "run.js", "next.js"}, folder.path());
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.out, "before\n");
  EXPECT_EQ(run.err, "Uncaught exception: TypeError: can't convert undefined to an object\nrun.js:3\n");
}

TEST(LoomScript, ReportsAnErrorWhoseNameCannotBeConverted) {
  ScratchFolder folder;
  folder.write("odd.js", "TypeError.prototype.name = {toString: 1, valueOf: 1};\nundefinedFunction();\n");
  auto run = runLoom({"script", "odd.js"}, folder.path());
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.err, "Uncaught exception: object: not a function object\nodd.js:2\n");
}

TEST(LoomScript, RefusesMissingFiles) {
  ScratchFolder folder;
  auto missing = runLoom({"script", "absent.js"}, folder.path());
  EXPECT_EQ(missing.exitCode, 1);
  EXPECT_NE(missing.err.find("absent.js"), std::string::npos) << missing.err;
}

TEST(LoomScript, ConsoleLogIsPrint) {
  ScratchFolder folder;
  folder.write("log.js", "console.log('sum', 1 + 2);\nif (console.log != print) print('two functions');\n");
  auto run = runLoom({"script", "log.js"}, folder.path());
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.out, "sum 3\n");
}

// Without a file the statements come from stdin, one a line, in one context; a
// piped stdin gets no prompt.
TEST(LoomScript, ReadsStatementsFromStdinUntilItsEnd) {
  ScratchFolder folder;
  auto run = runLoom({"script"}, folder.path(),
                     "var n = 6\n"
                     "n * 7\n"
                     "\n"
                     "n(\n"
                     "nothing.here\n"
                     "print('still', n)\r\n"
                     "'last line without an end'");
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.out,
            "42\n"
            "expected an expression, found end of input\n:1\n"
            "can't convert undefined to an object\n:1\n"
            "still 6\n"
            "last line without an end\n");
  EXPECT_EQ(run.err, "");
  EXPECT_EQ(runLoom({"script"}, folder.path()).exitCode, 0);  // an empty stdin ends at once
}

}  // namespace
}  // namespace loom
