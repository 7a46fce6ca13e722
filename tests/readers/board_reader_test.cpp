// The two readers of XML board descriptions, TCF and RDT: what each makes of the
// tree the driver loads, and the shapes each refuses.
#include <gtest/gtest.h>

#include "memorymap/svd_file.h"
#include "readers/rdt_reader.h"
#include "readers/tcf_reader.h"
#include "tests/support/scratch_folder.h"

namespace regmill {
namespace {

using testing::writtenText;

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
