// A file written atomically is either complete in the target's place or not there at
// all: a kill in the middle and an early end keep the old bytes and leave no
// temporary file behind (a failing write is tried through the converter).
#include "base/atomic_file.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <string>

#include "tests/support/scratch_folder.h"

namespace regmill {
namespace {

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
    if (!c.killed) EXPECT_EQ(WEXITSTATUS(status), 0);
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
