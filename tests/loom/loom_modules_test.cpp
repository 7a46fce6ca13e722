// The commands with heavy libraries run from modules loaded on demand: a script
// must start without the widget toolkit or the network stack, and a program
// without its modules says which one it misses.
#include <gtest/gtest.h>

#include <filesystem>

#include "tests/support/regmill_process.h"
#include "tests/support/scratch_folder.h"

namespace {

using regmill::testing::runLoom;
using regmill::testing::runProgram;
using regmill::testing::ScratchFolder;

// The shared objects the dynamic loader opened for a run, as it reports them.
std::string loadedLibraries(const ScratchFolder& folder, const std::vector<std::string>& arguments) {
  return runProgram(LOOM_BINARY, arguments, folder.path(), [] { setenv("LD_DEBUG", "files", 1); }).err;
}

TEST(LoomModules, AScriptStartsWithoutTheWidgetOrNetworkLibraries) {
  ScratchFolder folder;
  folder.write("a.js", "print(1)");
  folder.write("a.txt", "b\na\n");
  std::string script = loadedLibraries(folder, {"script", "a.js"});
  ASSERT_NE(script.find("libQt6Core"), std::string::npos) << "the loader reported nothing:\n" << script;
  for (const char* heavy : {"libQt6Widgets", "libQt6Gui", "libQt6Network", "loom-"})
    EXPECT_EQ(script.find(heavy), std::string::npos) << heavy;
  std::string edit = loadedLibraries(folder, {"edit", "a.txt", "--do", "sort-ascending"});
  EXPECT_NE(edit.find("loom-edit.so"), std::string::npos);
  EXPECT_EQ(folder.read("a.txt"), "a\nb\n");
}

TEST(LoomModules, AMissingModuleIsOneLineAndExitOne) {
  ScratchFolder folder;
  std::filesystem::copy_file(LOOM_BINARY, folder.path() / "loom");
  auto run = runProgram((folder.path() / "loom").string(), {"pkg", "list", "x.pkg"}, folder.path());
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.err, "loom: cannot load loom-pkg.so: not found beside the program\n");
}

}  // namespace
