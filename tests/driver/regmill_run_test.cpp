// The converter as a user runs it: arguments in, files, stdout, stderr and exit
// code out. Expected files are written by hand from the format rules.
//
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
using testing::runRegmill;

const char kUsage[] =
    "Usage:\n"
    "  regmill [options] svd_file memory_map_file\n"
    "\n"
    "Options:\n"
    "  -reg-size-bytes          SVD register size definitions are in bytes\n"
    "  -ignore-description      Ignore description fields in SVD file\n"
    "  -irq-table name          Create an assembly code vector table in 'name'.vec\n"
    "  -irq-start number        The vector entry number to start from default is 16\n"
    "  -irqs irq0;irq1;..       Specify the list of interrupt names\n"
    "  -irqs2 filename          Get the interrupt names and CPU info from a CMSIS header 'filename'\n"
    "  -ignore-name name        Ignore all entries with 'name'\n"
    "  -tcf                     Input file is a tcf file not an SVD file\n"
    "  -ddf                     Input file is a ddf file not an SVD file\n"
    "  -rdt                     Input file is a rdt file not an SVD file\n"
    "  -nvic p                  Create an NVIC registergroup with 'p' priority bits\n"
    "  -pp                      Create PPB register groups e.g. nvic, scb, systick, mpu\n"
    "  -remove name;name;..     Remove the list of register groups\n"
    "  -include f               Add an <include file_name='f'\n"
    "  -include-macros m        Add an <include file_name='f' macros='m'\n"
    "  -core n                  Core type is Cortex-M'n'\n"
    "  -mpu                     Core has an mpu\n"
    "  -fpu                     Core has an fpu\n";

const char kUartDDF[] =
    "; a comment line\n"
    "[Sfr]\n"
    "sfr = \"UART_CR\", \"Register\", 0x40001000, 4\n"
    "sfr = \"UART_CR.EN\", \"Register\", 0x40001000, 4, bitRange=0\n"
    "sfr = \"UART_DR\", \"Register\", 0x40001004, 4\n"
    "[SfrGroupInfo]\n"
    "group = \"UART\", \"UART_CR\", \"UART_DR\"\n";

const char kUartMap[] =
    "<Root>\n"
    "  <RegisterGroup name=\"UART\" start=\"0x40001000\">\n"
    "    <Register name=\"UART_CR\" start=\"0x40001000\" size=\"4\">\n"
    "      <BitField name=\"EN\" start=\"0\" size=\"1\" />\n"
    "    </Register>\n"
    "    <Register name=\"UART_DR\" start=\"0x40001004\" size=\"4\" />\n"
    "  </RegisterGroup>\n"
    "</Root>\n";

const char kThreeGroupsDDF[] =
    "sfr = A0, Register, 0x100, 4\nsfr = B0, Register, 0x200, 4\nsfr = C0, Register, 0x300, 4\n"
    "group = A, A0\ngroup = B, B0\ngroup = C, C0\n";

const char kGpioRDT[] =
    "<system><soc><cpu id=\"CortexA9_0\">\n"
    "  <instance id=\"GPIO0\" baseaddr=\"0xE000A000\" xml=\"gpio.xml\"/>\n"
    "</cpu></soc></system>\n";

const char kGpioInstance[] =
    "<block><register id=\"DATA\" offset=\"0x40\"><bitfield id=\"PIN0\" end=\"0\" width=\"1\"/></register></block>";

class RegmillRun : public ::testing::Test {
 protected:
  ProcessResult run(const std::vector<std::string>& arguments) { return runRegmill(arguments, folder_.path()); }
  void expectSuccess(const ProcessResult& result) {
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "");
  }
  ScratchFolder folder_;
};

TEST_F(RegmillRun, WrongNumberOfPositionalsPrintsUsage) {
  folder_.write("in.ddf", kUartDDF);
  for (const auto& arguments : std::vector<std::vector<std::string>>{
           {}, {"in.ddf"}, {"-ddf", "in.ddf", "a.xml", "b.xml"}, {"-x", "in.ddf", "a.xml"}}) {
    ProcessResult result = run(arguments);
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.out, kUsage);
    EXPECT_EQ(result.err, "");
  }
  EXPECT_FALSE(folder_.exists("a.xml"));
}

TEST_F(RegmillRun, MissingOptionValueNamesTheOption) {
  const std::pair<const char*, const char*> cases[] = {
      {"-irq-table", "Filename required for -irq-table option\n"},
      {"-irq-start", "Size required for -irq-start option\n"},
      {"-ignore-name", "Name required for -ignore-name option\n"},
      {"-nvic", "Num prioirty bits required for -nvic option\n"},
      {"-include", "Argument required for -include option\n"},
      {"-include-macros", "Argument required for -include-macros option\n"},
      {"-irqs", "Argument required for -irqs option\n"},
      {"-irqs2", "Argument required for -irqs2 option\n"},
      {"-remove", "Argument required for -remove option\n"},
      {"-core", "Core number required for -core option\n"},
  };
  for (const auto& [option, message] : cases) {
    // The message comes before anything else, also before the usage check.
    ProcessResult result = run({"-ddf", "in.ddf", "out.xml", option});
    EXPECT_EQ(result.exitCode, 1) << option;
    EXPECT_EQ(result.err, message);
    EXPECT_EQ(result.out, "");
  }
  EXPECT_FALSE(folder_.exists("out.xml"));
}

TEST_F(RegmillRun, DdfInputGivesTheDocumentedMemoryMapWithEitherLineEndAndAnyCoreOptions) {
  std::string crlf;
  for (char c : std::string(kUartDDF)) crlf += c == '\n' ? std::string("\r\n") : std::string(1, c);
  for (const std::string& input : {std::string(kUartDDF), crlf}) {
    folder_.write("uart.ddf", input);
    expectSuccess(run({"-ddf", "uart.ddf", "uart.xml"}));
    EXPECT_EQ(folder_.read("uart.xml"), kUartMap);
  }
  // Core options without a table or core groups change nothing.
  expectSuccess(run({"-ddf", "-core", "4", "-mpu", "-fpu", "-irqs", "A;B", "-nvic", "0", "uart.ddf", "core.xml"}));
  EXPECT_EQ(folder_.read("core.xml"), kUartMap);
}

TEST_F(RegmillRun, VectorTableFollowsTheInterruptListOrTheHeader) {
  folder_.write("uart.ddf", kUartDDF);
  folder_.write("device.h", "typedef enum {\n  SysTick_IRQn = -1,\n  WDT_IRQn = 0,\n  RTC_IRQn = 2,\n} IRQn_Type;\n");
  // With the default first entry of 16 the names at 0 to 2 are not printed.
  const std::pair<std::vector<std::string>, const char*> cases[] = {
      {{"-irqs", "A;;B", "-irq-start", "0"}, "ISR_HANDLER A_IRQHandler\nISR_RESERVED\nISR_HANDLER B_IRQHandler\n"},
      {{"-irqs", "A;;B", "-irq-start", "2"}, "ISR_HANDLER B_IRQHandler\n"},
      {{"-irqs", "A;;B"}, ""},
      {{"-irq-start", "0xFFFFFFFF"}, ""},
      {{"-irqs2", "device.h", "-irq-start", "0"},
       "ISR_HANDLER WDT_IRQHandler\nISR_RESERVED\nISR_HANDLER RTC_IRQHandler\n"}};
  for (const auto& [options, vectors] : cases) {
    std::vector<std::string> arguments{"-ddf", "-irq-table", "v"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    arguments.insert(arguments.end(), {"uart.ddf", "out.xml"});
    expectSuccess(run(arguments));
    EXPECT_EQ(folder_.read("v.vec"), vectors) << options[1];
  }
}

TEST_F(RegmillRun, TcfWinsOverDdfAndDdfOverRdt) {
  // Read as a board file the DDF text has no root, and the map is empty.
  folder_.write("uart.ddf", kUartDDF);
  expectSuccess(run({"-ddf", "-tcf", "uart.ddf", "tcf.xml"}));
  EXPECT_EQ(folder_.read("tcf.xml"), "");
  expectSuccess(run({"-rdt", "-ddf", "uart.ddf", "ddf.xml"}));
  EXPECT_EQ(folder_.read("ddf.xml"), kUartMap);
}

TEST_F(RegmillRun, RdtInputLoadsInstanceFilesFromTheWorkingFolder) {
  folder_.write("board.rdt", kGpioRDT);
  folder_.write("gpio.xml", kGpioInstance);
  expectSuccess(run({"-rdt", "board.rdt", "gpio-map.xml"}));
  EXPECT_NE(folder_.read("gpio-map.xml").find("<BitField name=\"PIN0\" start=\"0\" size=\"1\" />"), std::string::npos);
}

TEST_F(RegmillRun, ReadFailuresNameTheFileAndLeaveTheOutputUntouched) {
  folder_.write("board.rdt", kGpioRDT);  // without its instance file gpio.xml
  folder_.write("bad.tcf", "<boards><board></wrong></boards>");
  const std::pair<std::vector<std::string>, const char*> cases[] = {
      {{"-rdt", "board.rdt"}, "gpio.xml"}, {{"-tcf", "bad.tcf"}, "bad.tcf"},
      {{"-ddf", "missing-input"}, "missing-input"}, {{"-tcf", "missing-input"}, "missing-input"},
      {{"-rdt", "missing-input"}, "missing-input"}, {{"missing.svd"}, "missing.svd"}};
  for (const auto& [arguments, file] : cases) {
    folder_.write("out.xml", "precious");
    std::vector<std::string> all = arguments;
    all.push_back("out.xml");
    ProcessResult result = run(all);
    EXPECT_EQ(result.exitCode, 1) << file;
    EXPECT_EQ(result.err, std::string("error: read of ") + file + " failed\n");
    EXPECT_EQ(folder_.read("out.xml"), "precious");
  }
}

TEST_F(RegmillRun, RemovalsSkipEmptyPartsAndUnknownNamesAndTheIncludeComesLast) {
  folder_.write("three.ddf", kThreeGroupsDDF);
  expectSuccess(run({"-ddf", "-remove", "A;;B;NOPE", "-include", "core.xml", "three.ddf", "plain.xml"}));
  EXPECT_EQ(folder_.read("plain.xml"),
            "<Root>\n"
            "  <RegisterGroup name=\"C\" start=\"0x300\">\n"
            "    <Register name=\"C0\" start=\"0x300\" size=\"4\" />\n"
            "  </RegisterGroup>\n"
            "  <include filename=\"core.xml\" no_root=\"1\" />\n"
            "</Root>\n");
  expectSuccess(run({"-ddf", "-remove", "A;B;C", "-include-macros", "M=1&N", "-include", "core.xml", "three.ddf",
                     "macros.xml"}));
  EXPECT_EQ(folder_.read("macros.xml"),
            "<Root>\n"
            "  <include filename=\"core.xml\" macros=\"M=1&amp;N\" no_root=\"1\" />\n"
            "</Root>\n");
  // Macros without an include add nothing.
  expectSuccess(run({"-ddf", "-include-macros", "M", "three.ddf", "none.xml"}));
  EXPECT_EQ(folder_.read("none.xml").find("include"), std::string::npos);
}

TEST_F(RegmillRun, UnwritableOutputsFailAndAVectorTableFailsBehindTheMemoryMap) {
  folder_.write("uart.ddf", kUartDDF);
  ProcessResult result = run({"-ddf", "uart.ddf", "no-such-folder/out.xml"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(result.err, "error: write of no-such-folder/out.xml failed\n");
  result = run({"-ddf", "-irqs", "A", "-irq-table", "no-such-folder/v", "uart.ddf", "out.xml"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(result.err, "error: write of no-such-folder/v.vec failed\n");
  EXPECT_EQ(folder_.read("out.xml"), kUartMap);
}

TEST_F(RegmillRun, MissingHeaderFailsWithoutLineFeedUnlessIrqsWins) {
  folder_.write("uart.ddf", kUartDDF);
  ProcessResult result = run({"-ddf", "-irqs2", "nope.h", "uart.ddf", "out.xml"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(result.err, "couldn't read header file nope.h");
  EXPECT_FALSE(folder_.exists("out.xml"));
  expectSuccess(run({"-ddf", "-irqs", "A", "-irqs2", "nope.h", "uart.ddf", "out.xml"}));
}

TEST_F(RegmillRun, InputWithoutRootWritesAnEmptyFileUnlessARootIsNeeded) {
  folder_.write("board.tcf", "<board><peripheral name=\"X\" offset=\"0\"/></board>");
  expectSuccess(run({"-tcf", "board.tcf", "empty.xml"}));
  EXPECT_EQ(folder_.read("empty.xml"), "");
  ProcessResult result = run({"-tcf", "-include", "x.xml", "board.tcf", "include.xml"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(result.err, "error: read of board.tcf failed\n");
  EXPECT_FALSE(folder_.exists("include.xml"));
}

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
