// The DDF reader's fields, lines and groups; and the two readers of XML board
// descriptions, TCF and RDT: what each makes of the tree the driver loads, and the
// shapes each refuses.
#include "readers/ddf_reader.h"

#include <gtest/gtest.h>

#include "memorymap/svd_file.h"
#include "readers/rdt_reader.h"
#include "readers/tcf_reader.h"
#include "tests/support/scratch_folder.h"
#include "tests/support/tree_dump.h"

namespace regmill {
namespace {

using testing::writtenText;

using namespace std::string_literals;

std::string convert(const std::string& contents) {
  testing::ScratchFolder folder;
  SVDFile document;
  EXPECT_TRUE(readDDF(folder.write("in.ddf", contents).c_str(), document));
  return writtenText(document);
}

TEST(ReadersDDF, FirstTokenThatGivesAWidthPlacesTheField) {
  using Values = std::vector<std::string>;
  const std::pair<const char*, Values> cases[] = {
      {"bitRange=3", {"3 1"}}, {"bitRange=8-15", {"8 8"}}, {"bitMask=0x30", {"4 2"}}, {"bitMask=0x80000000", {"31 1"}},
      {"bitMask=0, bitRange=2", {"2 1"}}, {"bitRange=1, bitMask=0xF0", {"1 1"}}, {"bitMask=0", {}}, {"bitRange=15-8", {}},
      {"bitRange=0-4294967295", {}}};  // a width that wraps to 0 gives no field
  testing::ScratchFolder folder;
  for (const auto& [tokens, expected] : cases) {
    SVDFile document;
    std::string text = "sfr = R, Memory, 0, 4\nsfr = R.F, Memory, 0, 4, "s + tokens + "\ngroup = G, R\n";
    ASSERT_TRUE(readDDF(folder.write("in.ddf", text).c_str(), document));
    EXPECT_EQ(testing::attributeValues(document.root(), "BitField", {"start", "size"}), expected) << tokens;
  }
}

TEST(ReadersDDF, LinesTokensAndGroups) {
  // ";" first and "//" anywhere pass a line over; a blank doesn't end a token, a tab
  // does. A group takes the first complete register of each name it lists that no
  // earlier group took, and starts at their lowest address in any base, or at
  // 0xffffffff without one. A field goes to the last register read, even an incomplete
  // one; before any it is dropped. The last line, without a line feed, loses its last token.
  EXPECT_EQ(convert("; sfr = C1, Memory, 0x10, 4\n"
                    "sfr = C2, Memory, 0x20, 4 // note\n"
                    "sfr = X.EARLY, Memory, 0, 4, bitRange=0\n"
                    "sfr = \"UART CR\"\tRegister\t0x3000\t4\r\n"
                    "sfr = LO, Memory, 4096, 1\n"
                    "sfr = SHORT, Port, 0x4, 4\n"
                    "sfr = SHORT.F, Memory, 0x4, 4, bitRange=2\n"
                    "sfr = LO, Memory, 0x10, 1\n"
                    "sfr = FREE, Memory, 0x8, 4\n"
                    "group = G, C1, C2, MISSING, UART CR, LO\n"
                    "group = NONE, UART CR, SHORT, FREE"),
            "<Root>\n"
            "  <RegisterGroup name=\"G\" start=\"0x1000\">\n"
            "    <Register name=\"UART CR\" start=\"0x3000\" size=\"4\" />\n"
            "    <Register name=\"LO\" start=\"4096\" size=\"1\" />\n"
            "  </RegisterGroup>\n"
            "  <RegisterGroup name=\"NONE\" start=\"0xffffffff\" />\n"
            "</Root>\n");
}

// Parses `text` as the driver loads a board file and gives what the reader writes,
// behind "(false)" when it finds nothing to read, or "(unreadable NAME)" when it stops
// at a file it cannot read.
template <class Reader>
std::string convert(Reader read, const std::string& text) {
  XMLDocument input(false);
  input.parse(text.c_str()).ignore();
  SVDFile document;
  Expected<bool> result = read(input.root(), document, kDefaultElementLimit);
  if (!result.ok()) return "(unreadable " + result.status().file() + ")";
  return (*result ? "" : "(false)") + writtenText(document);
}
std::string convertTCF(const std::string& text) { return convert(readTCF, text); }
std::string convertRDT(const std::string& text) { return convert(readRDT, text); }

TEST(ReadersTCF, FirstBoardBecomesGroupsRegistersFieldsAndEnums) {
  // Numbers stay as written; the first enumeration of a name is used and empty parts
  // of its list vanish; absent bits count as 0. Walks end at the first child that is
  // no element, so neither LATE nor the enumeration "late" is read.
  EXPECT_EQ(convertTCF("<boards><board>\n"
                    "  <enumeration name=\"mode\" values=\"OFF,,ON,\" /><enumeration name=\"mode\" values=\"NO\" />\n"
                    "  <peripheral name=\"TIMER0\" offset=\"0x40010000\">\n"
                    "    <register name=\"CTRL\" offset=\"0x40010000\" size=\"4\">\n"
                    "      <bitField name=\"MODE\" low_bit=\"4\" high_bit=\"7\" enumerationId=\"mode\" />\n"
                    "      <bitField name=\"DIV\" low_bit=\"0x8\" high_bit=\"017\" enumerationId=\"late\" />\n"
                    "      <bitField /></register><note /><register name=\"COUNT\" offset=\"4\" size=\"2\" />\n"
                    "  </peripheral><peripheral name=\"TIMER1\" offset=\"0x40011000\" /><![CDATA[x]]>\n"
                    "  <peripheral name=\"LATE\" /><enumeration name=\"late\" values=\"X\" />\n"
                    "</board><board><peripheral name=\"SECOND\" offset=\"0\" /></board></boards>\n"),
            "<Root>\n"
            "  <RegisterGroup name=\"TIMER0\" start=\"0x40010000\">\n"
            "    <Register name=\"CTRL\" start=\"0x40010000\" size=\"4\">\n"
            "      <BitField name=\"MODE\" start=\"4\" size=\"4\">\n"
            "        <Enum name=\"OFF\" start=\"0\" />\n"
            "        <Enum name=\"ON\" start=\"1\" />\n"
            "      </BitField>\n"
            "      <BitField name=\"DIV\" start=\"0x8\" size=\"8\" />\n"
            "      <BitField name=\"\" start=\"\" size=\"1\" />\n"
            "    </Register>\n"
            "    <Register name=\"COUNT\" start=\"4\" size=\"2\" />\n"
            "  </RegisterGroup>\n"
            "  <RegisterGroup name=\"TIMER1\" start=\"0x40011000\" />\n"
            "</Root>\n");
}

TEST(ReadersTCF, OtherShapesAreRefused) {
  for (const char* text : {"", "<board><peripheral name=\"A\" /></board>", "<boards />",
                           "<boards><other /><board /></boards>", "<boards><![CDATA[x]]><board /></boards>"})
    EXPECT_EQ(convertTCF(text), "(false)") << text;
}

std::string processor(const std::string& children) { return "<cpu id=\"CortexA9_0\">" + children + "</cpu>"; }

std::string instance(const char* id, const std::string& file) {
  return std::string("<instance id=\"") + id + "\" baseaddr=\"0x100\" xml=\"" + file + "\" />";
}

TEST(ReadersRDT, InstancesOfTheProcessorBecomeGroupsFromTheirRegisterFiles) {
  // The processor's cpu is found nested far deeper than a call stack reaches, and
  // depth first: before the later one of the same id. Its children are read up to the
  // first that isn't an element. RESERVED fields are left out with their values, and
  // a register file that doesn't begin with a tag gives an empty group.
  testing::ScratchFolder folder;
  std::string registers = folder.write("registers.xml",
      "<registers><register id=\"DATA\" offset=\"0x0\">\n"
      "  <bitfield id=\"PIN0\" end=\"0\" width=\"1\"><value id=\"LOW\" value=\"0\" /></bitfield>\n"
      "  <bitfield id=\"RESERVED\" end=\"1\" width=\"31\"><v id=\"X\" /></bitfield>\n"
      "</register><note /><register id=\"DIR\"><bitfield end=\"0\" /></register></registers>\n");
  std::string untagged = folder.write("untagged.xml", "no tag here");
  EXPECT_EQ(convertRDT("<device>" + testing::repeated("<a>", 200000) +
                    processor(instance("P", registers) + "<note />" + instance("Q", untagged) +
                              "<![CDATA[x]]>" + instance("LATE", "missing.xml")) +
                    testing::repeated("</a>", 200000) + processor(instance("SECOND", "missing.xml")) + "</device>"),
            "<Root>\n"
            "  <RegisterGroup name=\"P\" start=\"0x100\">\n"
            "    <Register name=\"DATA\" start=\"+0x0\">\n"
            "      <BitField name=\"PIN0\" start=\"0\" size=\"1\">\n"
            "        <Enum name=\"LOW\" start=\"0\" />\n"
            "      </BitField>\n"
            "    </Register>\n"
            "    <Register name=\"DIR\" start=\"\">\n"
            "      <BitField name=\"\" start=\"0\" size=\"\" />\n"
            "    </Register>\n"
            "  </RegisterGroup>\n"
            "  <RegisterGroup name=\"Q\" start=\"0x100\" />\n"
            "</Root>\n");
}

TEST(ReadersRDT, WithoutTheProcessorOrWithAnUnreadableFileNothingIsRead) {
  for (const char* text : {"", "<cpu id=\"CortexA9_1\" />", "<board><cpu><instance /></cpu></board>"})
    EXPECT_EQ(convertRDT(text), "(false)") << text;
  testing::ScratchFolder folder;
  std::string broken = folder.write("broken.xml", "<registers><register></registers>");
  EXPECT_EQ(convertRDT(processor(instance("A", broken))), "(unreadable " + broken + ")");
  EXPECT_EQ(convertRDT(processor("<instance id=\"A\" />")), "(unreadable )");
}

}  // namespace
}  // namespace regmill
