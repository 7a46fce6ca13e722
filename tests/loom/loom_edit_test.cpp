// `loom edit` without a window, against the tools a user would otherwise reach for.
#include <gtest/gtest.h>

#include <cstdio>
#include <random>

#include "tests/support/regmill_process.h"
#include "tests/support/scratch_folder.h"

namespace loom {
namespace {

using regmill::testing::runLoom;
using regmill::testing::ScratchFolder;
using regmill::testing::shellOutput;

// ASCII words, blanks and tabs, some lines with white space at their ends.
std::string randomText(unsigned seed) {
  std::mt19937 random(seed);
  const char* pieces[] = {"alpha", "Beta", "_x1", "Zed", "0x1f", "b", "B", " ", "  ", "\t", " \t ", "\n", "end\n"};
  std::string text;
  for (int piece = 0; piece < 1500; ++piece) text += pieces[random() % std::size(pieces)];
  return text + "\n";
}

TEST(LoomEdit, CommandsMatchTheUsualTools) {
  ScratchFolder folder;
  struct Row {
    const char* command;
    const char* tool;
  } rows[] = {{"sort-ascending", "LC_ALL=C sort"},
              {"uppercase", "tr a-z A-Z"},
              {"delete-trailing-whitespace", "sed 's/[ \\t]*$//'"}};
  for (unsigned seed = 1; seed <= 5; ++seed) {
    const std::string input = folder.write("input.txt", randomText(seed));
    for (const Row& row : rows) {
      auto expected = shellOutput(std::string(row.tool) + " < " + input);
      if (!expected) GTEST_SKIP() << row.tool << " is not available";
      auto result = runLoom({"edit", input, "--do", row.command, "--save-as", "out.txt"}, folder.path());
      ASSERT_EQ(result.exitCode, 0) << result.err;
      EXPECT_EQ(result.err, "");
      EXPECT_EQ(folder.read("out.txt"), *expected) << row.command << " seed " << seed;
    }
  }
}

TEST(LoomEdit, StepsRunInOrderAndMixedLineEndsAreReported) {
  ScratchFolder folder;
  folder.write("f.txt", "b foo\r\na Foo\r\n");
  auto result = runLoom({"edit", "f.txt", "--replace", "foo", "bar", "--do", "sort-ascending", "--do", "uppercase"},
                        folder.path());
  ASSERT_EQ(result.exitCode, 0) << result.err;
  EXPECT_EQ(folder.read("f.txt"), "A BAR\r\nB BAR\r\n");  // written back over the file, in its line ends
  EXPECT_EQ(folder.entryCount(), 1u);

  folder.write("m.txt", "a\r\nb\n");
  result = runLoom({"edit", "m.txt", "--batch"}, folder.path());
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.err,
            "loom: This file m.txt has inconsistent line endings; all line endings have been changed to native line "
            "endings\n");
  EXPECT_EQ(folder.read("m.txt"), "a\nb\n");
}

// The codecs themselves are checked against iconv with the editor's files; here the
// front end only has to hand the file and the named encoding through.
TEST(LoomEdit, UnchangedSavesAreByteIdentical) {
  ScratchFolder folder;
  const struct {
    std::string bytes;
    const char* encoding;  // null: detected from the bytes
  } samples[] = {{std::string("\xFF\xFE" "a\0\r\0\n\0\xE9\0\r\0\n\0", 14), nullptr},
                 {"caf\xE9\rna\xEFve\r", "windows-1252"},
                 {"Gr\xC3\xBC\xC3\x9F" "e\nx", nullptr}};
  for (const auto& sample : samples) {
    folder.write("file.txt", sample.bytes);
    for (std::vector<std::string> arguments : {std::vector<std::string>{"edit", "file.txt", "--save-as", "copy.txt"},
                                               std::vector<std::string>{"edit", "file.txt", "--batch"}}) {
      if (sample.encoding) arguments.insert(arguments.end(), {"--encoding", sample.encoding});
      auto result = runLoom(arguments, folder.path());
      ASSERT_EQ(result.exitCode, 0) << result.err;
    }
    EXPECT_EQ(folder.read("copy.txt"), sample.bytes);
    EXPECT_EQ(folder.read("file.txt"), sample.bytes);
  }
}

TEST(LoomEdit, FailuresSayWhyAndWriteNothing) {
  ScratchFolder folder;
  folder.write("f.txt", "keep\n");
  folder.write("latin.txt", "caf\xE9\n");
  struct Row {
    std::vector<std::string> arguments;
    std::string err;
  } rows[] = {
      {{"edit", "f.txt", "--do", "frobnicate", "--save-as", "out.txt"}, "loom: unknown command 'frobnicate'\n"},
      {{"edit", "f.txt", "--encoding", "no-such-codec", "--batch"}, "loom: unknown encoding 'no-such-codec'\n"},
      {{"edit", "f.txt", "--do"}, "loom: edit: unknown or incomplete option '--do'\n"},
      {{"edit", "latin.txt", "--batch"}, "loom: latin.txt is not valid UTF-8; name its encoding with --encoding\n"},
      {{"edit", "--batch"}, "loom: edit needs a file\n"},
  };
  for (const Row& row : rows) {
    auto result = runLoom(row.arguments, folder.path());
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.err, row.err);
    EXPECT_EQ(result.out, "");
  }
  EXPECT_EQ(folder.read("f.txt"), "keep\n");
  EXPECT_EQ(folder.read("latin.txt"), "caf\xE9\n");
  EXPECT_FALSE(folder.exists("out.txt"));
}

}  // namespace
}  // namespace loom
