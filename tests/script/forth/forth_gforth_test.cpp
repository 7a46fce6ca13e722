// The same programs through `loom forth` and through gforth print the same text.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "tests/support/regmill_process.h"
#include "tests/support/scratch_folder.h"

namespace regmill::forth {
namespace {

namespace fs = std::filesystem;

std::vector<fs::path> programs() {
  std::vector<fs::path> found;
  for (const auto& entry : fs::directory_iterator(FORTH_PROGRAMS_DIR))
    if (entry.path().extension() == ".fs") found.push_back(entry.path());
  std::sort(found.begin(), found.end());
  return found;
}

TEST(ForthPeer, ProgramsPrintWhatGforthPrints) {
  REGMILL_SKIP_WITHOUT_PROGRAM("gforth");
  testing::ScratchFolder folder;
  const std::vector<fs::path> files = programs();
  ASSERT_GE(files.size(), 4u) << "no programs in " << FORTH_PROGRAMS_DIR;
  for (const fs::path& file : files) {
    const testing::ProcessResult ours = testing::runLoom({"forth", file.string()}, folder.path());
    const testing::ProcessResult peer =
        testing::runProgram(testing::programPath("gforth"), {file.string(), "-e", "bye"}, folder.path());
    EXPECT_EQ(ours.exitCode, 0) << file << ": " << ours.err;
    EXPECT_EQ(peer.exitCode, 0) << file << ": " << peer.err;
    EXPECT_FALSE(ours.out.empty()) << file;
    EXPECT_EQ(ours.out, peer.out) << file;
  }
}

}  // namespace
}  // namespace regmill::forth
