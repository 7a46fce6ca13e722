#include "readers/ddf_reader.h"

#include <string>

#include <gtest/gtest.h>

#include "memorymap/svd_file.h"
#include "tests/readers/reader_test_support.h"

namespace regmill {
namespace {

using namespace std::string_literals;

// Reads `contents` as a DDF file and returns the memory-map text, or "(false)".
std::string convert(const std::string& contents) {
  ScratchFolder folder;
  SVDFile document;
  if (!readDDF(folder.write("input.ddf", contents).c_str(), document)) return "(false)";
  return writtenText(document);
}

TEST(ReadersDDF, SmallFileGivesTheDocumentedMap) {
  EXPECT_EQ(convert("[Sfr]\n"
                    "sfr = \"UART_CR\", \"Memory\", 0x40001000, 4, base=16\n"
                    "sfr = \"UART_CR.EN\", \"Memory\", 0x40001000, 4, base=16, bitRange=0\n"
                    "sfr = \"UART_DR\", \"Memory\", 0x40001004, 4, base=16\n"
                    "[SfrGroupInfo]\n"
                    "group = \"UART\", \"UART_CR\", \"UART_DR\"\n"),
            "<Root>\n"
            "  <RegisterGroup name=\"UART\" start=\"0x40001000\">\n"
            "    <Register name=\"UART_CR\" start=\"0x40001000\" size=\"4\">\n"
            "      <BitField name=\"EN\" start=\"0\" size=\"1\" />\n"
            "    </Register>\n"
            "    <Register name=\"UART_DR\" start=\"0x40001004\" size=\"4\" />\n"
            "  </RegisterGroup>\n"
            "</Root>\n");
}

TEST(ReadersDDF, BitFieldTokensGiveLowBitAndWidth) {
  // The first token that gives a width decides; none gives no field.
  const struct {
    const char* tokens;
    const char* startAndSize;
  } cases[] = {{"bitRange=3", "3/1"},          {"bitRange=8-15", "8/8"},
               {"bitMask=0x30", "4/2"},        {"bitMask=0x80000000", "31/1"},
               {"bitMask=0, bitRange=2", "2/1"}, {"bitRange=1, bitMask=0xF0", "1/1"},
               {"bitMask=0", nullptr},         {"bitRange=15-8", nullptr},
               {"base=16", nullptr}};
  const std::string head = "<Root>\n  <RegisterGroup name=\"G\" start=\"0x0\">\n";
  const std::string tail = "  </RegisterGroup>\n</Root>\n";
  for (const auto& c : cases) {
    std::string field = c.startAndSize == nullptr ? "" : c.startAndSize;
    std::string expected = field.empty() ? head + "    <Register name=\"R\" start=\"0x0\" size=\"4\" />\n" + tail
                                         : head + "    <Register name=\"R\" start=\"0x0\" size=\"4\">\n" +
                                               "      <BitField name=\"F\" start=\"" + field.substr(0, field.find('/')) +
                                               "\" size=\"" + field.substr(field.find('/') + 1) + "\" />\n" +
                                               "    </Register>\n" + tail;
    EXPECT_EQ(convert(std::string("sfr = R, Memory, 0x0, 4\nsfr = R.F, Memory, 0x0, 4, ") + c.tokens +
                      "\ngroup = G, R\n"),
              expected)
        << c.tokens;
  }
}

TEST(ReadersDDF, LineAndTokenRules) {
  // ";" first and "//" anywhere pass a line over; a marker further in still starts the
  // tokens at its usual byte (so "= B"); a blank doesn't end a token, a tab does; the
  // CR of CR LF is gone; lines whose tokens stay open add nothing, nor does a line
  // behind a zero byte; the last line without a line feed loses its last token.
  EXPECT_EQ(convert("; sfr = C1, Memory, 0x10, 4\n"
                                "sfr = C2, Memory, 0x20, 4 // note\n"
                                "[Sfr]\n"
                                "  sfr = B, Memory, 0x40, 4\n"
                                "sfr = \"UART CR\"\tMemory\t0x30\t4\r\n"
                                "sfr = \n group = \"\"\n\0sfr = Z\n"
                                "sfr = TAIL, Memory, 0x8, 4\n"
                                "group = G, C1, C2, = B, UART CR, TAIL"s),
            "<Root>\n"
            "  <RegisterGroup name=\"G\" start=\"0x30\">\n"
            "    <Register name=\"= B\" start=\"0x40\" size=\"4\" />\n"
            "    <Register name=\"UART CR\" start=\"0x30\" size=\"4\" />\n"
            "  </RegisterGroup>\n"
            "</Root>\n");
}

TEST(ReadersDDF, GroupsTakeListedRegistersOnce) {
  // Only complete registers are listed and the first of a name is found; a register
  // stays in the first group naming it; the start is the lowest address in any base;
  // fields go to the last register read, also an incomplete one, and a field before
  // any register is dropped.
  EXPECT_EQ(convert("sfr = X.EARLY, Memory, 0, 4, bitRange=0\n"
                    "sfr = HI, Register, 0x2000, 2\n"
                    "sfr = LO, Memory, 4096, 1\n"
                    "sfr = LO.A.B, Memory, 0, 1, bitRange=1\n"
                    "sfr = LO, Memory, 0x10, 1\n"
                    "sfr = NOKIND, Port, 0x4, 4\n"
                    "sfr = SHORT, Memory, 0x4\n"
                    "sfr = SHORT.F, Memory, 0x4, 4, bitRange=2\n"
                    "group = FIRST, HI, MISSING, LO, HI\n"
                    "group = SECOND, LO, NOKIND, SHORT\n"
                    "sfr = HI, Memory, 0x9, 4\n"
                    "sfr = HI.LATE, Memory, 0x9, 4, bitRange=3\n"),
            "<Root>\n"
            "  <RegisterGroup name=\"FIRST\" start=\"0x1000\">\n"
            "    <Register name=\"HI\" start=\"0x2000\" size=\"2\" />\n"
            "    <Register name=\"LO\" start=\"4096\" size=\"1\">\n"
            "      <BitField name=\"A.B\" start=\"1\" size=\"1\" />\n"
            "    </Register>\n"
            "  </RegisterGroup>\n"
            "  <RegisterGroup name=\"SECOND\" start=\"0xffffffff\" />\n"
            "</Root>\n");
}

TEST(ReadersDDF, LongLineIsReadInPiecesOfTheLineBuffer) {
  // The first piece holds 32767 bytes and its open last token is dropped; the rest
  // of the line is a line of its own.
  std::string first = "sfr = R, Memory, 0x20, 4, ";
  first.append(32767 - first.size(), 'x');
  EXPECT_EQ(convert(first + "group = G, R\n"),
            "<Root>\n"
            "  <RegisterGroup name=\"G\" start=\"0x20\">\n"
            "    <Register name=\"R\" start=\"0x20\" size=\"4\" />\n"
            "  </RegisterGroup>\n"
            "</Root>\n");
}

TEST(ReadersDDF, OnlyAFileThatCannotBeOpenedFails) {
  ScratchFolder folder;
  SVDFile missing;
  EXPECT_FALSE(readDDF(QString::fromStdString((folder.path() / "missing.ddf").string()), missing));
  EXPECT_EQ(missing.root(), nullptr);
  SVDFile folderInput;
  EXPECT_FALSE(readDDF(folder.path().c_str(), folderInput));
  EXPECT_EQ(folderInput.root(), nullptr);
  EXPECT_EQ(convert(""), "<Root/>\n");
}

}  // namespace
}  // namespace regmill
