// The register tree the reader writes: texts, sizes, access, reset values, field
// positions, enumerated values, -ignore-name and -ignore-description.
#include <regex>

#include "tests/svd/svd_test_support.h"

namespace regmill {
namespace {

std::string registersWith(const std::string& registers, const std::string& deviceDefaults = "") {
  return deviceWith(deviceDefaults + "<peripherals><peripheral><name>P</name><registers>" + registers +
                    "</registers></peripheral></peripherals>");
}

std::string fieldsWith(const std::string& fields) {
  return registersWith("<register><name>R</name><fields>" + fields + "</fields></register>");
}

TEST(SVDReader, DescriptionsCarryLineBreakMarkupUnlessIgnored) {
  // "0X" is rewritten in a base address only; a real line feed stays a line feed; a
  // value "#" is binary, do-not-care digits kept; a value without a name or a number
  // gives no Enum; a field's description stands behind its values. Without
  // descriptions nothing else changes.
  const std::string svd = R"(<device><name>DEV</name><description>line one\nline two &amp; 
end</description><peripherals>
  <peripheral><name>P</name><baseAddress>0X40000000</baseAddress><description>p\n</description><registers>
    <register><name>R</name><addressOffset>0X10</addressOffset><description>r</description><fields>
      <field><name>F</name><description>f</description><bitOffset>0</bitOffset><bitWidth>1</bitWidth>
        <enumeratedValues><enumeratedValue><name>E</name><value>#1x0</value><description>e</description></enumeratedValue>
        <enumeratedValue><name>DEFAULT</name><isDefault>true</isDefault></enumeratedValue><enumeratedValue><value>4</value></enumeratedValue></enumeratedValues>
      </field></fields></register></registers></peripheral></peripherals></device>)";
  const std::string described = R"(<Processor name="DEV" description="line one&lt;br/&gt;line two &amp; &#xa;end">
  <RegisterGroup name="P" start="0x40000000" description="p&lt;br/&gt;">
    <Register start="+0X10" size="0" name="R" access="Read/Write" description="r">
      <BitField start="0" size="1" name="F" description="f">
        <Enum name="E" start="0b1x0" description="e" />
      </BitField>
    </Register>
  </RegisterGroup>
</Processor>
)";
  EXPECT_EQ(convertSVD(svd), described);
  EXPECT_EQ(convertSVD(svd, flagBit(SVDReaderFlag::IgnoreDescription)),
            std::regex_replace(described, std::regex(R"( description="[^"]*")"), ""));
}

TEST(SVDReader, RegisterSizeFallsBackAndIsDecimalBitsUnlessInBytes) {
  // Own, base's, peripheral's, then the device's "size" before its "width".
  std::string svd = deviceWith(R"(<width>32</width><peripherals>
    <peripheral><name>P1</name><size>16</size><registers>
      <register><size>0x20</size></register><register><name>R32</name><size>32</size></register>
      <register><size>12</size></register><register/><register derivedFrom="R32"/><register><size> 8 </size></register>
    </registers></peripheral>
    <peripheral><name>P2</name><registers><register/></registers></peripheral>
  </peripherals>)");
  EXPECT_EQ(attributeValues(svd, "Register", {"size"}), (Values{"0", "4", "1", "2", "4", "1", "4"}));
  EXPECT_EQ(attributeValues(svd, "Register", {"size"}, flagBit(SVDReaderFlag::RegSizeInBytes)),
            (Values{"0", "32", "12", "16", "32", "8", "32"}));
  EXPECT_EQ(attributeValues(registersWith("<register/>", "<width>32</width><size>8</size>"), "Register", {"size"}),
            Values{"1"});
  EXPECT_EQ(attributeValues(registersWith("<register/>"), "Register", {"size"}), Values{"0"});
}

TEST(SVDReader, AccessMapsTheStandardWordsAndResetValuesFallBack) {
  // "readAction" makes "None" on the register itself only, not through a base.
  std::string svd = registersWith(R"(
    <register><name>A</name><access>read-only</access><resetValue>0x1</resetValue><resetMask>0xF</resetMask></register>
    <register><access>write-only</access></register><register><access>writeOnce</access></register>
    <register><access>read-write</access></register><register><access>read-writeOnce</access></register>
    <register><access>READ-ONLY</access></register><register></register>
    <register><name>H</name><access>read-only</access><readAction>clear</readAction></register>
    <register derivedFrom="H"></register><register derivedFrom="A"></register>)",
                                  "<access>write-only</access><resetMask>0xFFFF</resetMask>");
  EXPECT_EQ(attributeValues(svd, "Register", {"access", "reset_value", "reset_mask"}),
            (Values{"ReadOnly 0x1 0xF", "WriteOnly - 0xFFFF", "WriteOnly - 0xFFFF", "Read/Write - 0xFFFF",
                    "Read/Write - 0xFFFF", "Read/Write - 0xFFFF", "WriteOnly - 0xFFFF", "None - 0xFFFF",
                    "ReadOnly - 0xFFFF", "ReadOnly 0x1 0xF"}));
}

TEST(SVDReader, FieldPositionTakesTheFirstFormFound) {
  // A base's "bitOffset" comes before the field's own "bitRange".
  std::string svd = fieldsWith(R"(
    <field><bitOffset>0x4</bitOffset><bitWidth>0x2</bitWidth></field><field><bitOffset>3</bitOffset></field>
    <field><bitOffset>010</bitOffset><bitWidth>08</bitWidth></field>
    <field><bitRange>[7:4]</bitRange></field><field><bitRange>[31:0]</bitRange></field>
    <field><bitRange>[7]</bitRange></field><field><lsb>0</lsb></field><field><lsb>2</lsb><msb>5</msb></field><field/>
    <field><name>BASE</name><bitOffset>9</bitOffset><bitWidth>2</bitWidth></field>
    <field derivedFrom="BASE"><bitRange>[1:0]</bitRange></field>)");
  EXPECT_EQ(attributeValues(svd, "BitField", {"start", "size"}),
            (Values{"4 2", "3 0", "8 0", "4 4", "0 32", "0 0", "0 1", "2 4", "0 0", "9 2", "9 2"}));
}

TEST(SVDReader, IgnoreNameDropsFieldsByCaseInsensitivePrefixOnly) {
  std::string svd = registersWith(R"(<register><name>RESERVED</name><fields>
    <field><name>Reserved0</name></field><field><name>RESERVED</name></field>
    <field><name>RE</name><enumeratedValues><enumeratedValue><name>RESERVED</name><value>1</value></enumeratedValue></enumeratedValues></field>
  </fields></register>)");
  EXPECT_EQ(attributeValues(svd, "BitField", {"name"}, 0, "res"), Values{"RE"});
  EXPECT_EQ(attributeValues(svd, "Register", {"name"}, 0, "res"), Values{"RESERVED"});
  EXPECT_EQ(attributeValues(svd, "Enum", {"name"}, 0, "res"), Values{"RESERVED"});
}

TEST(SVDReader, InputsThatAreNoDeviceDescriptionFail) {
  // The root is made before the parse and stays bare.
  for (const char* text : {"", "plain text", "<other><name>X</name></other>", "<device><a></b></device>"}) {
    SVDFile file;
    EXPECT_FALSE(loadSVDFromText(file, text, 0, nullptr)) << text;
    EXPECT_EQ(writtenText(file), "<Processor/>\n");
  }
  EXPECT_EQ(convertSVD("<device></device>"), "<Processor name=\"\" />\n");
}

}  // namespace
}  // namespace regmill
