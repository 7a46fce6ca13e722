// loom pkg as a user meets it: a tree packed and unpacked in each layout, the
// listing, one-line failures with exit code 1, and a fetch from a local server.
#include <gtest/gtest.h>

#include <filesystem>

#include "tests/packages/http_test_server.h"
#include "tests/support/regmill_process.h"
#include "tests/support/scratch_folder.h"

namespace loom {
namespace {

using regmill::testing::runLoom;
using regmill::testing::ScratchFolder;

void makeTree(const ScratchFolder& folder) {
  std::filesystem::create_directories(folder.path() / "tree" / "sub" / "deeper");
  folder.write("tree/top.txt", "top\n");
  folder.write("tree/sub/deeper/data.bin", std::string(3000, '\x7f'));
  folder.write("tree/sub/empty", "");
}

TEST(LoomPkg, CreatesListsAndExtractsATreeInEveryLayout) {
  ScratchFolder folder;
  makeTree(folder);
  for (std::vector<std::string> options : {std::vector<std::string>{}, {"--format", "2"},
                                           {"--format", "2", "--compression", "bzip2", "--level", "1"}}) {
    std::vector<std::string> create = {"pkg", "create", "a.lkArchive", "tree"};
    create.insert(create.end(), options.begin(), options.end());
    auto made = runLoom(create, folder.path());
    ASSERT_EQ(made.exitCode, 0) << made.err;
    auto list = runLoom({"pkg", "list", "a.lkArchive"}, folder.path());
    EXPECT_EQ(list.out, "      3000 sub/deeper/data.bin\n         0 sub/empty\n         4 top.txt\n");
    std::filesystem::remove_all(folder.path() / "out");
    auto all = runLoom({"pkg", "extract", "a.lkArchive", "out"}, folder.path());
    EXPECT_EQ(all.exitCode, 0) << all.err;
    EXPECT_EQ(folder.read("out/sub/deeper/data.bin"), folder.read("tree/sub/deeper/data.bin"));
    EXPECT_EQ(folder.read("out/top.txt"), "top\n");
    EXPECT_TRUE(folder.exists("out/sub/empty"));
  }
  auto chosen = runLoom({"pkg", "extract", "a.lkArchive", "one", "top.txt"}, folder.path());
  EXPECT_EQ(chosen.exitCode, 0);
  EXPECT_EQ(folder.read("one/top.txt"), "top\n");
  EXPECT_FALSE(folder.exists("one/sub"));
}

TEST(LoomPkg, FailuresAreOneLineWithExitCodeOne) {
  ScratchFolder folder;
  makeTree(folder);
  ASSERT_EQ(runLoom({"pkg", "create", "a", "tree"}, folder.path()).exitCode, 0);
  struct Case {
    std::vector<std::string> arguments;
    std::string err;
  };
  const Case cases[] = {
      {{"pkg", "create", "b", "tree", "--format", "1", "--compression", "bzip2"}, "format 1 holds zlib streams only"},
      {{"pkg", "create", "b", "tree", "--format", "3"}, "unknown option or value: --format 3"},
      {{"pkg", "create", "b", "tree", "--level"}, "--level needs a value"},
      {{"pkg", "create", "b", "tree", "--level", "x"}, "--level takes a number, not 'x'"},
      {{"pkg", "create", "b", "nowhere"}, "nowhere is not a folder"},
      {{"pkg", "list", "missing"}, "missing does not exist"},
      {{"pkg", "list", "tree/top.txt"}, "unsupported package file format"},
      {{"pkg", "extract", "a", "out", "absent"}, "no file absent in a"},
      {{"pkg", "extract", "a", "tree"}, "cannot overwrite file tree/sub/deeper/data.bin"},
      {{"pkg", "fetch", "ftp://host/file"}, "not an http or https URL: ftp://host/file"},
      {{"pkg", "frob"}, "unknown pkg action 'frob'; use list, extract, create or fetch"},
  };
  for (const Case& c : cases) {
    auto run = runLoom(c.arguments, folder.path());
    EXPECT_EQ(run.exitCode, 1) << c.err;
    EXPECT_EQ(run.err, "loom: " + c.err + "\n");
    EXPECT_EQ(run.out, "");
  }
  EXPECT_FALSE(folder.exists("b"));
}

TEST(LoomPkg, FetchSavesTheFileOrSaysWhyNot) {
  ScratchFolder folder;
  std::string source(200000, 's');
  regmill::testing::HttpTestServer server(folder.write("source", source));
  REGMILL_SKIP_WITHOUT_SERVER(server);
  auto fetched = runLoom({"pkg", "fetch", server.url("/drop/f.bin"), "downloads"}, folder.path());
  EXPECT_EQ(fetched.exitCode, 0) << fetched.err;
  EXPECT_EQ(fetched.out, "downloads/f.bin\n");
  EXPECT_EQ(folder.read("downloads/f.bin"), source);
  auto missing = runLoom({"pkg", "fetch", server.url("/missing/f.bin")}, folder.path());
  EXPECT_EQ(missing.exitCode, 1);
  EXPECT_EQ(missing.err, "loom: cannot fetch " + server.url("/missing/f.bin") + ": server replied 404 Not Found\n");
  EXPECT_FALSE(folder.exists("f.bin") || folder.exists("f.bin.part"));
}

}  // namespace
}  // namespace loom
