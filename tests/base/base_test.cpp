// Reading text: a file line by line in pieces, and numbers in their written forms.
//
// A file written atomically is either complete in the target's place or not there at
// all: a kill in the middle and an early end keep the old bytes and leave no
// temporary file behind (a failing write is tried through the converter).
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <string>
#include <vector>

#include "base/atomic_file.h"
#include "base/parse_number.h"
#include "base/text_file.h"
#include "tests/support/scratch_folder.h"

namespace regmill {
namespace {

std::vector<std::string> linesOf(const std::string& contents, size_t bufferSize) {
  testing::ScratchFolder folder;
  TextFileReader reader;
  EXPECT_TRUE(reader.open(folder.write("text", contents).c_str()));
  std::vector<std::string> lines;
  std::vector<char> buffer(bufferSize);
  while (reader.readLine(buffer.data(), buffer.size())) lines.emplace_back(buffer.data());
  return lines;
}

TEST(TextFileReader, LinesComeInPiecesWithOnlyCarriageReturnsBeforeLineFeedsDropped) {
  const std::tuple<const char*, size_t, std::vector<std::string>> cases[] = {
      {"a\r\nb\rc\n\r\r\nend", 64, {"a\n", "b\rc\n", "\r\n", "end"}},
      {"abcdefg\nhi\n", 4, {"abc", "def", "g\n", "hi\n"}},
      {"ab\r\ncd", 3, {"ab", "\n", "cd"}},  // a carriage return at a piece boundary still pairs
  };
  for (const auto& [contents, bufferSize, lines] : cases) EXPECT_EQ(linesOf(contents, bufferSize), lines) << contents;
}

TEST(ParseNumber, PrefixesSignsAndSuffixes) {
  const std::pair<const char*, int64_t> cases[] = {
      {"0x1F", 31},     {"0X10", 16},   {"0b101", 5},  {"017", 15},   {"42", 42},
      {"  -12", -12},   {"+7", 7},      {"0x20UL", 32}, {"10u", 10},  {"", 0},
      {"0", 0},         {"0x", 0},      {"12 34", 12}, {"-0x10", -16},
      // Letters add their value whatever the base: 0b12 reads 1*2+2, 019 reads 1*8+9.
      {"0b12", 4},      {"019", 17},    {"1z", 45},
  };
  for (const auto& [text, value] : cases) EXPECT_EQ(parseNumber64(text), value) << text;
}

TEST(ParseNumber, ThirtyTwoBitFormKeepsTheLowBits) {
  EXPECT_EQ(parseNumber("0x1FFFFFFFF"), -1);
  EXPECT_EQ(parseNumber("0xFFFFFFFF"), -1);
  EXPECT_EQ(parseNumber("0x7FFFFFFF"), 0x7FFFFFFF);
}

TEST(ParseUnsignedC, NegativeNumbersWrapAndJunkOrNothingIsZero) {
  EXPECT_EQ(parseUnsignedC("-1"), 0xFFFFFFFFu);
  EXPECT_EQ(parseUnsignedC("junk"), 0u);
  EXPECT_EQ(parseUnsignedC(nullptr), 0u);
}

using testing::ScratchFolder;

void writeLots(std::FILE* stream) {
  std::string line(1000, 'x');
  for (int i = 0; i < 1000; ++i) std::fputs(line.c_str(), stream);
}

// Runs `body` in a child process, which exits 0 when `body` gives true; the
// child's wait status.
template <typename Body>
int inChild(Body body) {
  pid_t child = fork();
  if (child == 0) _exit(body() ? 0 : 1);
  int status = 0;
  waitpid(child, &status, 0);
  return status;
}

TEST(AtomicFile, AFailedOrKilledWriteKeepsTheTargetAndLeavesNoTemporaryFile) {
  struct Case {
    const char* what;
    bool (*write)(const std::string& target);
    bool killed;
  };
  const Case cases[] = {
      {"a kill in the middle",
       [](const std::string& target) {
         return !writeFileAtomically(target, [](std::FILE* stream) {
           writeLots(stream);
           std::fflush(stream);
           raise(SIGKILL);
         });
       },
       true},
      {"an exit in the middle",
       [](const std::string& target) {
         AtomicFileWriter writer(target);
         if (!writer.open()) return false;
         writeLots(writer.stream());
         std::exit(0);  // no destructor runs, no commit comes
       },
       false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    ScratchFolder folder;
    std::string target = folder.write("out.xml", "precious");
    chmod(target.c_str(), 0640);
    int status = inChild([&] { return c.write(target); });
    EXPECT_EQ(WIFSIGNALED(status), c.killed);
    if (!c.killed) {
      EXPECT_EQ(WEXITSTATUS(status), 0);
    }
    EXPECT_EQ(folder.read("out.xml"), "precious");
    EXPECT_EQ(folder.entryCount(), 1u);
  }
}

TEST(AtomicFile, ACommittedWriteReplacesTheTargetAndKeepsItsPermissions) {
  ScratchFolder folder;
  std::string target = folder.write("out.xml", "old");
  chmod(target.c_str(), 0640);
  ASSERT_TRUE(writeFileAtomically(target, [](std::FILE* stream) { std::fputs("new", stream); }));
  EXPECT_EQ(folder.read("out.xml"), "new");
  struct stat info{};
  ASSERT_EQ(stat(target.c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 07777, 0640u);
  EXPECT_EQ(folder.entryCount(), 1u);
  // A missing folder is a failure that names the target.
  Status missing = writeFileAtomically(folder.file("none/out.xml"), writeLots);
  EXPECT_FALSE(missing);
  EXPECT_EQ(missing.file(), folder.file("none/out.xml"));
}

}  // namespace
}  // namespace regmill
