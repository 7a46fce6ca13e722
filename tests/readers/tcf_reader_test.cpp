#include "readers/tcf_reader.h"

#include <string>

#include <gtest/gtest.h>

#include "memorymap/svd_file.h"
#include "tests/readers/reader_test_support.h"

namespace regmill {
namespace {

// Parses `text` as the driver loads a TCF file and converts it; "(false)" when the
// reader refuses the tree.
std::string convert(const char* text) {
  XMLDocument input(false);
  input.parse(text);
  SVDFile document;
  if (!readTCF(input.root(), document)) return document.root() == nullptr ? "(false)" : "(false with a root)";
  return writtenText(document);
}

TEST(ReadersTCF, BoardBecomesGroupsRegistersFieldsAndEnums) {
  // Only the first board is read; numbers stay as written; the first enumeration of
  // a name is used and empty parts of its list vanish.
  EXPECT_EQ(convert("<boards>\n"
                    "  <board>\n"
                    "    <enumeration name=\"mode\" values=\"OFF,,ON,\" />\n"
                    "    <enumeration name=\"mode\" values=\"IGNORED\" />\n"
                    "    <peripheral name=\"TIMER0\" offset=\"0x40010000\">\n"
                    "      <register name=\"CTRL\" offset=\"0x40010000\" size=\"4\">\n"
                    "        <bitField name=\"EN\" low_bit=\"0\" high_bit=\"0\" />\n"
                    "        <bitField name=\"MODE\" low_bit=\"4\" high_bit=\"7\" enumerationId=\"mode\" />\n"
                    "        <bitField name=\"DIV\" low_bit=\"0x8\" high_bit=\"017\" enumerationId=\"other\" />\n"
                    "      </register>\n"
                    "      <note text=\"passed over\" />\n"
                    "      <register name=\"COUNT\" offset=\"0x40010004\" size=\"4\" />\n"
                    "    </peripheral>\n"
                    "    <peripheral name=\"TIMER1\" offset=\"0x40011000\" />\n"
                    "  </board>\n"
                    "  <board><peripheral name=\"SECOND\" offset=\"0\" /></board>\n"
                    "</boards>\n"),
            "<Root>\n"
            "  <RegisterGroup name=\"TIMER0\" start=\"0x40010000\">\n"
            "    <Register name=\"CTRL\" start=\"0x40010000\" size=\"4\">\n"
            "      <BitField name=\"EN\" start=\"0\" size=\"1\" />\n"
            "      <BitField name=\"MODE\" start=\"4\" size=\"4\">\n"
            "        <Enum name=\"OFF\" start=\"0\" />\n"
            "        <Enum name=\"ON\" start=\"1\" />\n"
            "      </BitField>\n"
            "      <BitField name=\"DIV\" start=\"0x8\" size=\"8\" />\n"
            "    </Register>\n"
            "    <Register name=\"COUNT\" start=\"0x40010004\" size=\"4\" />\n"
            "  </RegisterGroup>\n"
            "  <RegisterGroup name=\"TIMER1\" start=\"0x40011000\" />\n"
            "</Root>\n");
}

TEST(ReadersTCF, OtherShapesAreRefusedWithoutARoot) {
  for (const char* text : {"", "no tag", "<board><peripheral name=\"A\" /></board>", "<boards />",
                           "<boards><other /><board /></boards>", "<boards><![CDATA[x]]><board /></boards>"})
    EXPECT_EQ(convert(text), "(false)") << text;
  SVDFile document;
  EXPECT_FALSE(readTCF(nullptr, document));
}

TEST(ReadersTCF, AbsentAttributesAreWrittenEmpty) {
  // Absent bit numbers count as 0; a high bit below the low one gives a negative width.
  EXPECT_EQ(convert("<boards><board><peripheral><register>"
                    "<bitField enumerationId=\"none\" /><bitField low_bit=\"7\" high_bit=\"4\" />"
                    "</register></peripheral></board></boards>"),
            "<Root>\n"
            "  <RegisterGroup name=\"\" start=\"\">\n"
            "    <Register name=\"\" start=\"\" size=\"\">\n"
            "      <BitField name=\"\" start=\"\" size=\"1\" />\n"
            "      <BitField name=\"\" start=\"7\" size=\"-2\" />\n"
            "    </Register>\n"
            "  </RegisterGroup>\n"
            "</Root>\n");
}

TEST(ReadersTCF, WalksEndAtTheFirstChildThatIsNoElement) {
  EXPECT_EQ(convert("<boards><board>"
                    "<peripheral name=\"A\" offset=\"1\"><register name=\"R\" offset=\"1\" size=\"1\">"
                    "<bitField name=\"F\" low_bit=\"0\" high_bit=\"0\" enumerationId=\"late\" /></register>"
                    "</peripheral><![CDATA[x]]>"
                    "<enumeration name=\"late\" values=\"X\" /><peripheral name=\"B\" offset=\"2\" />"
                    "</board></boards>"),
            "<Root>\n"
            "  <RegisterGroup name=\"A\" start=\"1\">\n"
            "    <Register name=\"R\" start=\"1\" size=\"1\">\n"
            "      <BitField name=\"F\" start=\"0\" size=\"1\" />\n"
            "    </Register>\n"
            "  </RegisterGroup>\n"
            "</Root>\n");
}

TEST(ReadersTCF, LongValueListsAreTakenWhole) {
  std::string values;
  for (int i = 0; i < 300; ++i) values += "VALUE_" + std::to_string(i) + ",";
  XMLDocument input(false);
  input.parse(("<boards><board><enumeration name=\"e\" values=\"" + values +
               "\" /><peripheral><register><bitField enumerationId=\"e\" /></register></peripheral></board></boards>")
                  .c_str());
  SVDFile document;
  ASSERT_TRUE(readTCF(input.root(), document));
  XMLNode* field = document.root()->firstChild()->firstChild()->firstChild();
  int count = 0;
  XMLElement* last = nullptr;
  for (XMLNode* node = field->firstChild(); node != nullptr; node = node->nextSibling(), ++count)
    last = static_cast<XMLElement*>(node);
  ASSERT_EQ(count, 300);
  EXPECT_STREQ(last->getAttribute("name"), "VALUE_299");
  EXPECT_STREQ(last->getAttribute("start"), "299");
}

}  // namespace
}  // namespace regmill
