// loom diff as a user meets it: the plain rows and summary, the exit codes of the
// comparison tools' convention, and files compared by their bytes.
#include <gtest/gtest.h>

#include "tests/support/regmill_process.h"
#include "tests/support/scratch_folder.h"

namespace loom {
namespace {

using regmill::testing::runLoom;
using regmill::testing::ScratchFolder;

TEST(LoomDiff, PrintsBothViewsAndTheSummaryWithDiffsExitCodes) {
  ScratchFolder folder;
  folder.write("left", "a\nb\nc\n");
  folder.write("right", "a\nB\nc\nd\n");
  auto differ = runLoom({"diff", "left", "right"}, folder.path());
  EXPECT_EQ(differ.exitCode, 1);
  EXPECT_EQ(differ.out,
            "   1 a\n   2 b\n   3 c\n\n   4 \n"
            "   1 a\n   2 B\n   3 c\n   4 d\n   5 \n"
            "Files have 2 differences\n");
  EXPECT_EQ(differ.err, "");
  EXPECT_EQ(runLoom({"diff", "--no-color", "left", "right"}, folder.path()).out, differ.out);
  auto same = runLoom({"diff", "left", "left"}, folder.path());
  EXPECT_EQ(same.exitCode, 0);
  EXPECT_EQ(same.out, "   1 a\n   2 b\n   3 c\n   4 \n   1 a\n   2 b\n   3 c\n   4 \nFiles are identical\n");

  // Files that are no valid UTF-8 are compared by their bytes and come back unchanged;
  // a byte order mark is part of the first line.
  folder.write("latin", "caf\xe9\n");
  folder.write("utf8", "caf\xc3\xa9\n");
  folder.write("marked", "\xef\xbb\xbf" "caf\xc3\xa9\n");
  auto bytes = runLoom({"diff", "latin", "utf8"}, folder.path());
  EXPECT_EQ(bytes.exitCode, 1);
  EXPECT_EQ(bytes.out, "   1 caf\xe9\n   2 \n   1 caf\xc3\xa9\n   2 \nFiles have 1 difference\n");
  EXPECT_EQ(runLoom({"diff", "utf8", "marked"}, folder.path()).exitCode, 1);
}

TEST(LoomDiff, WrongUseAndUnreadableFilesExitWith2) {
  ScratchFolder folder;
  folder.write("left", "a\n");
  for (auto arguments : {std::vector<std::string>{"diff", "left"}, {"diff", "left", "left", "left"}}) {
    auto run = runLoom(arguments, folder.path());
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_EQ(run.err, "loom: diff takes two files: loom diff LEFT RIGHT [--no-color]\n");
  }
  auto missing = runLoom({"diff", "left", "missing"}, folder.path());
  EXPECT_EQ(missing.exitCode, 2);
  EXPECT_EQ(missing.out, "");
  EXPECT_NE(missing.err.find("missing"), std::string::npos);
}

}  // namespace
}  // namespace loom
