// The front end as a user meets it: the command list, one command's usage, and the
// failures for a name it does not know.
#include <gtest/gtest.h>

#include "loom/command.h"
#include "tests/support/regmill_process.h"
#include "tests/support/scratch_folder.h"

namespace loom {
namespace {

using regmill::testing::runLoom;
using regmill::testing::ScratchFolder;

TEST(LoomHelp, ListsEveryCommandWithItsSummaryAndShowsOnesUsage) {
  ScratchFolder folder;
  auto list = runLoom({"help"}, folder.path());
  EXPECT_EQ(list.exitCode, 0);
  for (const Command& command : commands()) {
    EXPECT_NE(list.out.find("  loom " + std::string(command.name)), std::string::npos) << command.name;
    EXPECT_NE(list.out.find(std::string(command.summary) + "\n"), std::string::npos) << command.name;
  }
  auto one = runLoom({"help", "help"}, folder.path());
  EXPECT_EQ(one.exitCode, 0);
  EXPECT_EQ(one.out, "Usage: loom help [COMMAND]\n\nList the commands, or show how to use one\n");
}

TEST(LoomHelp, UnknownNamesAndAMissingCommandFail) {
  ScratchFolder folder;
  const std::string unknown = "loom: unknown command 'frob'; run 'loom help' for the list\n";
  for (auto arguments : {std::vector<std::string>{"frob"}, {"help", "frob"}}) {
    auto run = runLoom(arguments, folder.path());
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.err, unknown);
  }
  auto bare = runLoom({}, folder.path());
  EXPECT_EQ(bare.exitCode, 1);
  EXPECT_EQ(bare.out, runLoom({"help"}, folder.path()).out);
}

}  // namespace
}  // namespace loom
