// loom pkg as a user meets it: a tree packed with the layout options, listed and
// unpacked, one-line failures with exit code 1, and a fetch from a local server.
#include <gtest/gtest.h>

#include <filesystem>

#include "tests/packages/http_test_server.h"
#include "tests/support/regmill_process.h"
#include "tests/support/scratch_folder.h"

namespace loom {
namespace {

using regmill::testing::runLoom;
using regmill::testing::ScratchFolder;

TEST(LoomPkg, CreatesListsAndExtractsATreeOrFailsInOneLine) {
  ScratchFolder folder;
  std::filesystem::create_directories(folder.path() / "tree" / "sub" / "deeper");
  folder.write("tree/top.txt", "top\n");
  folder.write("tree/sub/deeper/data.bin", std::string(3000, '\x7f'));
  folder.write("tree/sub/empty", "");
  ASSERT_EQ(runLoom({"pkg", "create", "a", "tree"}, folder.path()).exitCode, 0);
  auto made = runLoom({"pkg", "create", "b", "tree", "--format", "2", "--compression", "bzip2", "--level", "1"}, folder.path());
  ASSERT_EQ(made.exitCode, 0) << made.err;
  EXPECT_EQ(folder.read("b").substr(4, 2) + folder.read("b").substr(8, 4), "\x02\x10" "BZh1");  // layout 2, bzip2 level 1
  EXPECT_EQ(runLoom({"pkg", "list", "b"}, folder.path()).out,
            "      3000 sub/deeper/data.bin\n         0 sub/empty\n         4 top.txt\n");
  EXPECT_EQ(runLoom({"pkg", "extract", "b", "out"}, folder.path()).exitCode, 0);
  EXPECT_EQ(folder.read("out/sub/deeper/data.bin"), folder.read("tree/sub/deeper/data.bin"));
  EXPECT_EQ(folder.read("out/top.txt"), "top\n");
  EXPECT_TRUE(folder.exists("out/sub/empty"));
  EXPECT_EQ(runLoom({"pkg", "extract", "a", "one", "top.txt"}, folder.path()).exitCode, 0);
  EXPECT_EQ(folder.read("one/top.txt"), "top\n");
  EXPECT_FALSE(folder.exists("one/sub"));

  const std::pair<std::vector<std::string>, std::string> failures[] = {
      {{"pkg", "create", "c", "tree", "--format", "1", "--compression", "bzip2"}, "format 1 holds zlib streams only"},
      {{"pkg", "create", "c", "tree", "--format", "3"}, "unknown option or value: --format 3"},
      {{"pkg", "create", "c", "tree", "--level"}, "--level needs a value"},
      {{"pkg", "create", "c", "tree", "--level", "x"}, "--level takes a number, not 'x'"},
      {{"pkg", "create", "c", "nowhere"}, "nowhere is not a folder"},
      {{"pkg", "list", "missing"}, "missing does not exist"},
      {{"pkg", "extract", "a", "out", "absent"}, "no file absent in a"},
      {{"pkg", "fetch", "ftp://host/file"}, "not an http or https URL: ftp://host/file"},
      {{"pkg", "frob"}, "unknown pkg action 'frob'; use list, extract, create or fetch"},
  };
  for (const auto& [arguments, message] : failures) {
    auto run = runLoom(arguments, folder.path());
    EXPECT_EQ(run.exitCode, 1) << message;
    EXPECT_EQ(run.out + run.err, "loom: " + message + "\n");
  }
  EXPECT_FALSE(folder.exists("c"));
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
