#include "readers/tcf_reader.h"

#include <gtest/gtest.h>

#include "memorymap/svd_file.h"
#include "tests/support/scratch_folder.h"

namespace regmill {
namespace {

using testing::writtenText;

// Parses `text` as the driver loads a TCF file and gives what the reader writes, behind
// "(false)" when it refuses the tree.
std::string convert(const char* text) {
  XMLDocument input(false);
  input.parse(text).ignore();
  SVDFile document;
  Expected<bool> read = readTCF(input.root(), document);
  std::string verdict = read.ok() && *read ? "" : "(false)";
  return verdict + writtenText(document);
}

TEST(ReadersTCF, FirstBoardBecomesGroupsRegistersFieldsAndEnums) {
  // Numbers stay as written; the first enumeration of a name is used and empty parts
  // of its list vanish; absent bits count as 0. Walks end at the first child that is
  // no element, so neither LATE nor the enumeration "late" is read.
  EXPECT_EQ(convert("<boards><board>\n"
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
    EXPECT_EQ(convert(text), "(false)") << text;
}

}  // namespace
}  // namespace regmill
