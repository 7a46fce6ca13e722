// `loom forth` as a user meets it: a file runs as one text; standard input is a
// console session, line by line; failures have their message and exit code.
#include <gtest/gtest.h>

#include "tests/support/regmill_process.h"
#include "tests/support/scratch_folder.h"

namespace loom {
namespace {

using regmill::testing::runLoom;
using regmill::testing::ScratchFolder;

TEST(LoomForth, RunsAFileAndStopsAtItsFirstFailure) {
  ScratchFolder folder;
  folder.write("good.fs", ": SQUARE DUP * ;\n7 SQUARE . CR\n");
  auto good = runLoom({"forth", "good.fs"}, folder.path());
  EXPECT_EQ(good.exitCode, 0);
  EXPECT_EQ(good.out, "49 \n");
  EXPECT_EQ(good.err, "");

  folder.write("bad.fs", "1 . CR\n\n  2 FROB 3 .\n");
  auto bad = runLoom({"forth", "bad.fs"}, folder.path());
  EXPECT_EQ(bad.exitCode, 1);
  EXPECT_EQ(bad.out, "1 \n");
  EXPECT_EQ(bad.err, "loom: bad.fs : line 3: undefined word: FROB\n");
}

TEST(LoomForth, StandardInputIsAConsoleSession) {
  ScratchFolder folder;
  auto run = runLoom({"forth"}, folder.path(), ": CUBE\nDUP DUP * * ;\n3 CUBE .\n0 0 /\n.\" still here\"\n");
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.out, " \n  OK\n 27  OK\n divide by zero OK\n still here OK\n");
}

TEST(LoomForth, RefusesMissingFilesAndExtraArguments) {
  ScratchFolder folder;
  auto missing = runLoom({"forth", "absent.fs"}, folder.path());
  EXPECT_EQ(missing.exitCode, 1);
  EXPECT_NE(missing.err.find("absent.fs"), std::string::npos) << missing.err;
  auto extra = runLoom({"forth", "a.fs", "b.fs"}, folder.path());
  EXPECT_EQ(extra.exitCode, 1);
  EXPECT_EQ(extra.err, "loom: forth takes at most one FILE; see 'loom help forth'\n");
}

}  // namespace
}  // namespace loom
