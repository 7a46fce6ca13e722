// `loom script` as a user meets it: files run in order in one context, print
// writes lines, and each kind of failure has its text and exit code 1.
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

TEST(LoomScript, RefusesMissingArgumentsAndFiles) {
  ScratchFolder folder;
  auto bare = runLoom({"script"}, folder.path());
  EXPECT_EQ(bare.exitCode, 1);
  EXPECT_EQ(bare.err, "loom: script needs at least one FILE; see 'loom help script'\n");
  auto missing = runLoom({"script", "absent.js"}, folder.path());
  EXPECT_EQ(missing.exitCode, 1);
  EXPECT_NE(missing.err.find("absent.js"), std::string::npos) << missing.err;
}

}  // namespace
}  // namespace loom
