// `loom edit` without a window, against the tools a user would otherwise reach for.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <optional>
#include <random>

#include "tests/support/regmill_process.h"
#include "tests/support/scratch_folder.h"

namespace loom {
namespace {

using regmill::testing::runLoom;
using regmill::testing::ScratchFolder;
using regmill::testing::shellOutput;


// Lines of ASCII words, blanks and tabs, some with white space at their ends.
std::string randomText(unsigned seed, int lines) {
  std::mt19937 random(seed);
  const char* words[] = {"alpha", "Beta", "gamma", "_x1", "Zed", "delta", "0x1f", "b", "B", ""};
  const char* gaps[] = {" ", "  ", "\t", " \t "};
  std::string text;
  for (int line = 0; line < lines; ++line) {
    for (int word = int(random() % 5); word > 0; --word) text += std::string(words[random() % 10]) + gaps[random() % 4];
    text += random() % 3 == 0 ? "end" : "";
    text += "\n";
  }
  return text;
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
    const std::string input = folder.write("input.txt", randomText(seed, 200));
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

TEST(LoomEdit, StepsRunInOrderAndReplaceAllTakesTheDefaultOptions) {
  ScratchFolder folder;
  folder.write("f.txt", "b foo\r\na Foo\r\n");
  auto result = runLoom({"edit", "f.txt", "--replace", "foo", "bar", "--do", "sort-ascending", "--do", "uppercase"},
                        folder.path());
  ASSERT_EQ(result.exitCode, 0) << result.err;
  EXPECT_EQ(folder.read("f.txt"), "A BAR\r\nB BAR\r\n");  // written back over the file, in its line ends
  EXPECT_EQ(folder.entryCount(), 1u);
}

TEST(LoomEdit, UnchangedSavesAreByteIdenticalInEveryEncodingAndLineEnd) {
  if (!shellOutput("command -v iconv")) GTEST_SKIP() << "iconv is not installed";
  ScratchFolder folder;
  const struct {
    const char* encoding;
    const char* mark;
    const char* text;
    bool named;  // detection can't tell it: the codec is given
  } samples[] = {
      {"UTF-8", "", "Grüße\nκόσμε\n", false},     {"UTF-8", "\xEF\xBB\xBF", "Grüße\n日本", false},
      {"UTF-16LE", "\xFF\xFE", "Grüße\n😀\n", false}, {"UTF-16BE", "\xFE\xFF", "Grüße\n😀", false},
      {"windows-1252", "", "café €\nx\n", true},  {"ISO-8859-1", "", "naïve\n© 1\n", true},
      {"Shift_JIS", "", "日本語\nｶﾅ\n", true},     {"GB18030", "", "中文\n汉字\n", true},
      {"KOI8-R", "", "Привет\nмир\n", true},
  };
  for (const auto& sample : samples) {
    for (const char* ending : {"\n", "\r\n", "\r"}) {
      std::string text = sample.text;
      for (size_t at = 0; (at = text.find('\n', at)) != std::string::npos; at += std::strlen(ending))
        text.replace(at, 1, ending);
      folder.write("utf8.txt", text);
      auto converted = shellOutput("iconv -f UTF-8 -t " + std::string(sample.encoding) + " " + folder.file("utf8.txt"));
      ASSERT_TRUE(converted);
      const std::string original = std::string(sample.mark) + *converted;
      folder.write("file.txt", original);
      std::vector<std::string> arguments = {"edit", "file.txt", "--save-as", "copy.txt"};
      if (sample.named) arguments.insert(arguments.end(), {"--encoding", sample.encoding});
      auto result = runLoom(arguments, folder.path());
      ASSERT_EQ(result.exitCode, 0) << result.err;
      EXPECT_EQ(folder.read("copy.txt"), original) << sample.encoding << " " << (ending[0] == '\n' ? "LF" : ending[1] ? "CRLF" : "CR");
      arguments = {"edit", "file.txt", "--batch"};  // no step: saved back unchanged
      if (sample.named) arguments.insert(arguments.end(), {"--encoding", sample.encoding});
      EXPECT_EQ(runLoom(arguments, folder.path()).exitCode, 0);
      EXPECT_EQ(folder.read("file.txt"), original);
    }
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
      {{"edit", "missing.txt", "--save-as", "out.txt"}, "loom: Can't open missing.txt for reading\n"},
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

TEST(LoomEdit, MixedLineEndsAreReportedAndSavedNatively) {
  ScratchFolder folder;
  folder.write("m.txt", "a\r\nb\n");
  auto result = runLoom({"edit", "m.txt", "--batch"}, folder.path());
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.err,
            "loom: This file m.txt has inconsistent line endings; all line endings have been changed to native line "
            "endings\n");
  EXPECT_EQ(folder.read("m.txt"), "a\nb\n");
}

}  // namespace
}  // namespace loom
