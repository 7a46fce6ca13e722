#include "readers/rdt_reader.h"

#include <gtest/gtest.h>

#include "memorymap/svd_file.h"
#include "tests/support/scratch_folder.h"

namespace regmill {
namespace {

using testing::writtenText;

// Runs the reader on the main text and gives what it writes, behind "(no cpu)" when it
// finds no processor, or "(unreadable NAME)" when it stops at an instance file.
std::string convert(const std::string& text) {
  XMLDocument input(false);
  input.parse(text.c_str()).ignore();
  SVDFile document;
  Expected<bool> result = readRDT(input.root(), document);
  if (!result.ok()) return "(unreadable " + result.status().file() + ")";
  return (*result ? "" : "(no cpu)") + writtenText(document);
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
  EXPECT_EQ(convert("<device>" + testing::repeated("<a>", 200000) +
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
    EXPECT_EQ(convert(text), "(no cpu)") << text;
  testing::ScratchFolder folder;
  std::string broken = folder.write("broken.xml", "<registers><register></registers>");
  EXPECT_EQ(convert(processor(instance("A", broken))), "(unreadable " + broken + ")");
  EXPECT_EQ(convert(processor("<instance id=\"A\" />")), "(unreadable )");
}

}  // namespace
}  // namespace regmill
