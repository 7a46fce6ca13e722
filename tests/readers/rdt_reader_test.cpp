#include "readers/rdt_reader.h"

#include <filesystem>
#include <string>

#include <gtest/gtest.h>

#include "memorymap/svd_file.h"
#include "xml/xml_string.h"
#include "tests/readers/reader_test_support.h"

namespace regmill {
namespace {

// Runs the reader on the main text; "(no cpu)" or "(unreadable NAME)" when it stops.
std::string convert(const std::string& text) {
  XMLDocument input(false);
  input.parse(text.c_str());
  SVDFile document;
  RDTReadResult result = readRDT(input.root(), document);
  if (!result.cpuFound) return document.root() == nullptr ? "(no cpu)" : "(no cpu, with a root)";
  if (result.unreadableFile) return "(unreadable " + *result.unreadableFile + ")";
  return writtenText(document);
}

std::string instance(const char* id, const char* base, const std::string& file) {
  return std::string("<instance id=\"") + id + "\" baseaddr=\"" + base + "\" xml=\"" + file + "\" />";
}

TEST(ReadersRDT, InstancesBecomeGroupsFromTheirRegisterFiles) {
  ScratchFolder folder;
  std::string gpio = folder.write("gpio.xml",
                                  "<registers>\n"
                                  "  <register id=\"DATA\" offset=\"0x0\">\n"
                                  "    <bitfield id=\"PIN0\" end=\"0\" width=\"1\">\n"
                                  "      <value id=\"LOW\" value=\"0\" />\n"
                                  "      <value id=\"HIGH\" value=\"1\" />\n"
                                  "    </bitfield>\n"
                                  "    <bitfield id=\"RESERVED\" end=\"1\" width=\"31\"><v id=\"X\" /></bitfield>\n"
                                  "  </register>\n"
                                  "  <note />\n"
                                  "  <register id=\"DIR\" offset=\"0x4\"><bitfield end=\"0\" /></register>\n"
                                  "  <register id=\"CTRL\" />\n"
                                  "</registers>\n");
  std::string empty = folder.write("empty.xml", "<registers />");
  std::string untagged = folder.write("untagged.xml", "no tag here");
  // The first cpu has another id; the wanted one is nested deeper, and its children
  // are read up to the first that isn't an element.
  EXPECT_EQ(convert("<device><cpu id=\"Other\">" + instance("WRONG", "0", "missing.xml") +
                    "</cpu><group><cpu id=\"CortexA9_0\">" + instance("GPIO0", "0xE000A000", gpio) +
                    "<other id=\"x\" />" + instance("GPIO1", "0xE000B000", empty) +
                    instance("GPIO2", "0xE000C000", untagged) + "<![CDATA[x]]>" +
                    instance("BEHIND_TEXT", "0", "missing.xml") + "</cpu></group></device>"),
            "<Root>\n"
            "  <RegisterGroup name=\"GPIO0\" start=\"0xE000A000\">\n"
            "    <Register name=\"DATA\" start=\"+0x0\">\n"
            "      <BitField name=\"PIN0\" start=\"0\" size=\"1\">\n"
            "        <Enum name=\"LOW\" start=\"0\" />\n"
            "        <Enum name=\"HIGH\" start=\"1\" />\n"
            "      </BitField>\n"
            "    </Register>\n"
            "    <Register name=\"DIR\" start=\"+0x4\">\n"
            "      <BitField name=\"\" start=\"0\" size=\"\" />\n"
            "    </Register>\n"
            "    <Register name=\"CTRL\" start=\"\" />\n"
            "  </RegisterGroup>\n"
            "  <RegisterGroup name=\"GPIO1\" start=\"0xE000B000\" />\n"
            "  <RegisterGroup name=\"GPIO2\" start=\"0xE000C000\" />\n"
            "</Root>\n");
}

TEST(ReadersRDT, WithoutTheProcessorNothingIsRead) {
  for (const char* text : {"", "<cpu id=\"CortexA9_1\" />", "<board><cpu><instance /></cpu></board>",
                           "<board><core id=\"CortexA9_0\" /></board>"})
    EXPECT_EQ(convert(text), "(no cpu)") << text;
}

TEST(ReadersRDT, UnreadableInstanceFileIsNamed) {
  ScratchFolder folder;
  std::string broken = folder.write("broken.xml", "<registers><register></registers>");
  std::string missing = (folder.path() / "missing.xml").string();
  EXPECT_EQ(convert("<cpu id=\"CortexA9_0\">" + instance("A", "0", broken) + "</cpu>"),
            "(unreadable " + broken + ")");
  EXPECT_EQ(convert("<cpu id=\"CortexA9_0\">" + instance("A", "0", missing) + "</cpu>"),
            "(unreadable " + missing + ")");
  EXPECT_EQ(convert("<cpu id=\"CortexA9_0\"><instance id=\"A\" /></cpu>"), "(unreadable )");
}

TEST(ReadersRDT, InstanceFileNameIsRelativeToTheCurrentFolder) {
  ScratchFolder folder;
  folder.write("regs.xml", "<r><register id=\"R\" offset=\"8\" /></r>");
  std::filesystem::path before = std::filesystem::current_path();
  std::filesystem::current_path(folder.path());
  std::string text = convert("<cpu id=\"CortexA9_0\">" + instance("P", "0x100", "regs.xml") + "</cpu>");
  std::filesystem::current_path(before);
  EXPECT_EQ(text,
            "<Root>\n"
            "  <RegisterGroup name=\"P\" start=\"0x100\">\n"
            "    <Register name=\"R\" start=\"+8\" />\n"
            "  </RegisterGroup>\n"
            "</Root>\n");
}

TEST(ReadersRDT, FindBoardCPUSearchesDepthFirstAtAnyDepth) {
  XMLDocument input(false);
  input.parse("<a><b><c><cpu id=\"X\" n=\"1\" /></c></b><cpu id=\"X\" n=\"2\" /></a>");
  XMLElement* found = findBoardCPU(input.root(), "X");
  ASSERT_NE(found, nullptr);
  EXPECT_STREQ(found->getAttribute("n"), "1");

  // A nesting far deeper than any call stack would allow.
  auto* top = new XMLElement(copyXmlString("a"));
  XMLElement* inner = top;
  for (int depth = 0; depth < 200000; ++depth) {
    auto* child = new XMLElement(copyXmlString("a"));
    inner->addChild(child);
    inner = child;
  }
  auto* cpu = new XMLElement(copyXmlString("cpu"));
  cpu->setAttributeCopy("id", "CortexA9_0");
  inner->addChild(cpu);
  EXPECT_EQ(findBoardCPU(top, "CortexA9_0"), cpu);
  EXPECT_EQ(findBoardCPU(top, "CortexA9_1"), nullptr);
  delete top;
}

}  // namespace
}  // namespace regmill
