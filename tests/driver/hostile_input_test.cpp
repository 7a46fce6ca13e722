// Inputs and surroundings a hostile or unlucky user brings: endless or huge inputs,
// inputs that ask for billions of elements, names that would break the vector file,
// outputs that name each other, a full disk, a read-only folder, too little memory.
// Each run ends with exit 1 and one line, within a CPU-time and a memory bound, and
// leaves an output that was there before as it was, with no temporary file beside it.
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <string>
#include <vector>

#include "tests/support/regmill_process.h"
#include "tests/support/scratch_folder.h"

namespace regmill {
namespace {

using testing::ProcessResult;
using testing::ScratchFolder;
using testing::repeated;

constexpr long kPeakBoundKilobytes = 1L << 20;  // 1 GiB, sanitizer builds included
constexpr rlim_t kCpuSeconds = 60;

const std::string kSource = REGMILL_SOURCE_DIR;

// One enumeration of 350,000 names under 30 fields: 700 KB that ask for ten million elements.
std::string enumerationBlowupTCF() {
  std::string fields;
  for (int i = 0; i < 30; ++i)
    fields += "<bitField name=\"F" + std::to_string(i) + "\" low_bit=\"0\" high_bit=\"1\" enumerationId=\"e\"/>";
  return "<boards><board><enumeration name=\"e\" values=\"" + repeated("a,", 350000) +
         "\"/><peripheral name=\"P\" offset=\"0\"><register name=\"R\" offset=\"0\" size=\"4\">" + fields +
         "</register></peripheral></board></boards>";
}

// One register file of 1,000 registers named by 10,000 instances.
void writeInstanceBlowupRDT(const ScratchFolder& folder) {
  folder.write("regs.xml", "<r>" + repeated("<register id=\"R\" offset=\"0\"/>", 1000) + "</r>");
  folder.write("big.rdt", "<device><cpu id=\"CortexA9_0\">" +
                              repeated("<instance id=\"I\" baseaddr=\"0\" xml=\"regs.xml\"/>", 10000) +
                              "</cpu></device>");
}

void limitFileSize() {
  rlimit limit{1024, 1024};
  setrlimit(RLIMIT_FSIZE, &limit);
  signal(SIGXFSZ, SIG_IGN);  // kept across exec, so that a write past the limit fails instead
}

// As root, permissions don't hold: the run drops to an ordinary user, for whom the
// folder (root's) is read-only.
void becomeUnprivileged() {
  if (geteuid() == 0 && (setgid(65534) != 0 || setuid(65534) != 0)) _exit(126);
}

struct HostileCase {
  const char* what;
  std::vector<std::string> arguments;
  std::string error;
  void (*prepare)(const ScratchFolder&) = nullptr;
  void (*beforeExec)() = nullptr;
  bool mapWritten = false;  // the map is finished before the vector table fails
};

const HostileCase kHostileCases[] = {
    {"an endless input", {"/dev/zero", "out.xml"}, "error: read of /dev/zero failed\n"},
    {"an endless random input", {"/dev/urandom", "out.xml"}, "error: read of /dev/urandom failed\n"},
    {"an enumeration under every field", {"-tcf", "big.tcf", "out.xml"}, "error: read of big.tcf failed\n",
     [](const ScratchFolder& folder) { folder.write("big.tcf", enumerationBlowupTCF()); }},
    {"a register file under every instance", {"-rdt", "big.rdt", "out.xml"}, "error: read of big.rdt failed\n",
     writeInstanceBlowupRDT},
    {"a vector table named like the map", {"-ddf", "-irqs", "A", "-irq-table", "out", "uart.ddf", "out.vec"},
     "error: the vector table out.vec is also the memory-map file\n"},
    {"a line break in an interrupt name",
     {"-ddf", "-irqs", "A\n.word evil", "-irq-table", "out", "-irq-start", "0", "uart.ddf", "out.xml"},
     "error: write of out.vec failed\n", nullptr, nullptr, true},
    {"a file-size limit", {"-ddf", "-pp", "uart.ddf", "out.xml"}, "error: write of out.xml failed\n", nullptr,
     limitFileSize},
    {"a read-only folder", {"-ddf", "uart.ddf", "out.xml"}, "error: write of out.xml failed\n", nullptr,
     becomeUnprivileged},
};

TEST(HostileInput, EndsWithOneLineAndLeavesTheOutputAsItWas) {
  for (const HostileCase& c : kHostileCases) {
    SCOPED_TRACE(c.what);
    ScratchFolder folder;
    folder.write("uart.ddf", testing::readFile(kSource + "/examples/uart.ddf"));
    if (c.prepare) c.prepare(folder);
    folder.write("out.xml", "precious");
    folder.write("out.vec", "precious");
    size_t files = folder.entryCount();
    // The folder is root's own; the read-only case runs as another user, who may
    // read it but not write to it.
    chmod(folder.path().c_str(), geteuid() == 0 ? 0755 : 0555);
    ProcessResult result = testing::runRegmill(c.arguments, folder.path(), [&] {
      rlimit cpu{kCpuSeconds, kCpuSeconds};
      setrlimit(RLIMIT_CPU, &cpu);
      if (c.beforeExec) c.beforeExec();
    });
    chmod(folder.path().c_str(), 0700);
    EXPECT_FALSE(result.killedBySignal);
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.err, c.error);
    EXPECT_LT(result.peakKilobytes, kPeakBoundKilobytes);
    EXPECT_EQ(folder.read("out.xml").find("UART_CR") != std::string::npos, c.mapWritten);
    EXPECT_EQ(folder.read("out.vec"), "precious");
    EXPECT_EQ(folder.entryCount(), files) << "a file was left behind";
  }
}

TEST(HostileInput, RunningOutOfMemoryIsOneLine) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
  GTEST_SKIP() << "a sanitizer's allocator doesn't throw when memory runs out; the plain build runs this";
#else
  ScratchFolder folder;
  ProcessResult result = testing::runRegmill({"/dev/zero", "out.xml"}, folder.path(), [] {
    rlimit memory{150L << 20, 150L << 20};
    setrlimit(RLIMIT_AS, &memory);
  });
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(result.err, "error: out of memory\n");
  EXPECT_FALSE(folder.exists("out.xml"));
#endif
}

}  // namespace
}  // namespace regmill
