// The register tree the reader writes: texts, sizes, access, reset values, field
// positions, enumerated values, -ignore-name and -ignore-description.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "readers/svd/svd_reader.h"
#include "tests/svd/svd_test_support.h"

namespace regmill {
namespace {

using testing::convertSVD;
using testing::deviceWith;
using testing::deviceWithPeripherals;
using Values = std::vector<std::string>;

// The values of one attribute on every element of the tag, in document order; "-"
// where the element lacks it.
Values attributeValues(const std::string& svd, const char* tag, const char* attribute, uint32_t flags = 0,
                       const char* ignoreName = nullptr) {
  SVDFile file;
  EXPECT_TRUE(loadSVDFromText(file, svd.c_str(), flags, ignoreName));
  Values values;
  for (XMLElement* element : collectElements(file.root(), tag, true)) {
    const char* value = element->getAttribute(attribute);
    values.push_back(value == nullptr ? "-" : value);
  }
  return values;
}

std::string registersWith(const std::string& registers, const std::string& deviceDefaults = "") {
  return deviceWith(deviceDefaults + "<peripherals><peripheral><name>P</name><registers>" + registers +
                    "</registers></peripheral></peripherals>");
}

std::string fieldsWith(const std::string& fields) {
  return registersWith("<register><name>R</name><fields>" + fields + "</fields></register>");
}

const char* const kDescribedDevice = R"(<device><name>DEV</name><description>line one\nline two &amp; 
end</description><peripherals>
  <peripheral><name>P</name><baseAddress>0X40000000</baseAddress><description>p\n</description><registers>
    <register><name>R</name><addressOffset>0X10</addressOffset><description>r</description><fields>
      <field><name>F</name><description>f</description><bitOffset>0</bitOffset><bitWidth>1</bitWidth>
        <enumeratedValues><enumeratedValue><name>E</name><value>#01</value><description>e</description></enumeratedValue></enumeratedValues>
      </field></fields></register></registers></peripheral></peripherals></device>)";

TEST(SVDReader, DescriptionsCarryLineBreakMarkupAndFieldsDescribeBehindTheirValues) {
  // "0X" is rewritten in a base address only; a real line feed stays a line feed.
  EXPECT_EQ(convertSVD(kDescribedDevice), R"(<Processor name="DEV" description="line one&lt;br/&gt;line two &amp; &#xa;end">
  <RegisterGroup name="P" start="0x40000000" description="p&lt;br/&gt;">
    <Register start="+0X10" size="0" name="R" access="Read/Write" description="r">
      <BitField start="0" size="1" name="F" description="f">
        <Enum name="E" start="0b01" description="e" />
      </BitField>
    </Register>
  </RegisterGroup>
</Processor>
)");
  EXPECT_EQ(convertSVD(kDescribedDevice, IgnoreDescription), R"(<Processor name="DEV">
  <RegisterGroup name="P" start="0x40000000">
    <Register start="+0X10" size="0" name="R" access="Read/Write">
      <BitField start="0" size="1" name="F">
        <Enum name="E" start="0b01" />
      </BitField>
    </Register>
  </RegisterGroup>
</Processor>
)");
}

TEST(SVDReader, RegisterSizeFallsBackAndIsDecimalBitsUnlessInBytes) {
  std::string svd = deviceWith(R"(<width>32</width><peripherals>
    <peripheral><name>P1</name><size>16</size><registers>
      <register><name>HEX</name><size>0x20</size></register><register><name>R32</name><size>32</size></register>
      <register><name>R12</name><size>12</size></register><register><name>FROM_PERIPHERAL</name></register>
      <register derivedFrom="R32"><name>FROM_BASE</name></register><register><name>SPACES</name><size> 8 </size></register>
    </registers></peripheral>
    <peripheral><name>P2</name><registers><register><name>FROM_WIDTH</name></register></registers></peripheral>
  </peripherals>)");
  EXPECT_EQ(attributeValues(svd, "Register", "size"), (Values{"0", "4", "1", "2", "4", "1", "4"}));
  EXPECT_EQ(attributeValues(svd, "Register", "size", RegSizeInBytes), (Values{"0", "32", "12", "16", "32", "8", "32"}));
  EXPECT_EQ(attributeValues(registersWith("<register><name>R</name></register>", "<width>32</width><size>8</size>"),
                            "Register", "size"),
            Values{"1"});  // the device's "size" comes before its "width"
  EXPECT_EQ(attributeValues(registersWith("<register><name>R</name></register>"), "Register", "size"), Values{"0"});
}

TEST(SVDReader, AccessMapsTheStandardWordsAndResetValuesFallBack) {
  // "readAction" makes "None" on the register itself only, not through a base.
  std::string svd = registersWith(R"(
    <register><name>A</name><access>read-only</access><resetValue>0x1</resetValue><resetMask>0xF</resetMask></register>
    <register><name>B</name><access>write-only</access></register><register><name>C</name><access>writeOnce</access></register>
    <register><name>D</name><access>read-write</access></register><register><name>E</name><access>read-writeOnce</access></register>
    <register><name>F</name><access>READ-ONLY</access></register><register><name>G</name></register>
    <register><name>H</name><access>read-only</access><readAction>clear</readAction></register>
    <register derivedFrom="H"><name>I</name></register><register derivedFrom="A"><name>J</name></register>)",
                                  "<access>write-only</access><resetMask>0xFFFFFFFF</resetMask>");
  EXPECT_EQ(attributeValues(svd, "Register", "access"), (Values{"ReadOnly", "WriteOnly", "WriteOnly", "Read/Write",
                                                                "Read/Write", "Read/Write", "WriteOnly", "None",
                                                                "ReadOnly", "ReadOnly"}));
  EXPECT_EQ(attributeValues(svd, "Register", "reset_value"), (Values{"0x1", "-", "-", "-", "-", "-", "-", "-", "-", "0x1"}));
  const std::string device = "0xFFFFFFFF";
  EXPECT_EQ(attributeValues(svd, "Register", "reset_mask"),
            (Values{"0xF", device, device, device, device, device, device, device, device, "0xF"}));
}

TEST(SVDReader, FieldPositionTakesTheFirstFormFound) {
  // A base's "bitOffset" comes before the field's own "bitRange".
  std::string svd = fieldsWith(R"(
    <field><name>HEX</name><bitOffset>0x4</bitOffset><bitWidth>0x2</bitWidth></field>
    <field><name>NO_WIDTH</name><bitOffset>3</bitOffset></field>
    <field><name>OCTAL</name><bitOffset>010</bitOffset><bitWidth>08</bitWidth></field>
    <field><name>RANGE</name><bitRange>[7:4]</bitRange></field><field><name>WHOLE</name><bitRange>[31:0]</bitRange></field>
    <field><name>ONE_PART</name><bitRange>[7]</bitRange></field><field><name>LSB</name><lsb>0</lsb></field>
    <field><name>LSB_MSB</name><lsb>2</lsb><msb>5</msb></field><field><name>NONE</name></field>
    <field><name>BASE</name><bitOffset>9</bitOffset><bitWidth>2</bitWidth></field>
    <field derivedFrom="BASE"><name>OWN_RANGE</name><bitRange>[1:0]</bitRange></field>)");
  EXPECT_EQ(attributeValues(svd, "BitField", "start"), (Values{"4", "3", "8", "4", "0", "0", "0", "2", "0", "9", "9"}));
  EXPECT_EQ(attributeValues(svd, "BitField", "size"), (Values{"2", "0", "0", "4", "32", "0", "1", "4", "0", "2", "2"}));
}

TEST(SVDReader, EnumeratedValuesNeedANameAndAValue) {
  std::string svd = fieldsWith(R"(<field><name>F</name><enumeratedValues>
    <enumeratedValue><name>BIN</name><value>#1x0</value></enumeratedValue>
    <enumeratedValue><name>DEFAULT</name><isDefault>true</isDefault></enumeratedValue>
    <enumeratedValue><name>DEFAULT_VALUE</name><value>3</value><isDefault>true</isDefault></enumeratedValue>
    <enumeratedValue><value>4</value></enumeratedValue><enumeratedValue><name>HEX</name><value>0x5</value></enumeratedValue>
  </enumeratedValues></field>)");
  EXPECT_EQ(attributeValues(svd, "Enum", "name"), (Values{"BIN", "DEFAULT_VALUE", "HEX"}));
  EXPECT_EQ(attributeValues(svd, "Enum", "start"), (Values{"0b1x0", "3", "0x5"}));
}

TEST(SVDReader, IgnoreNameDropsFieldsByCaseInsensitivePrefixOnly) {
  std::string svd = registersWith(R"(<register><name>RESERVED</name><fields>
    <field><name>Reserved0</name></field><field><name>RESERVED</name></field>
    <field><name>RE</name><enumeratedValues><enumeratedValue><name>RESERVED</name><value>1</value></enumeratedValue></enumeratedValues></field>
  </fields></register>)");
  EXPECT_EQ(attributeValues(svd, "BitField", "name", 0, "res"), Values{"RE"});
  EXPECT_EQ(attributeValues(svd, "Register", "name", 0, "res"), Values{"RESERVED"});
  EXPECT_EQ(attributeValues(svd, "Enum", "name", 0, "res"), Values{"RESERVED"});
}

TEST(SVDReader, InputsThatAreNoDeviceDescriptionFail) {
  for (const char* text : {"", "plain text", "<other><name>X</name></other>", "<device><a></b></device>"}) {
    SCOPED_TRACE(text);
    SVDFile file;
    EXPECT_FALSE(loadSVDFromText(file, text, 0, nullptr));
    ASSERT_NE(file.root(), nullptr);  // the root was made before the parse
    EXPECT_STREQ(file.root()->getName(), "Processor");
  }
  SVDFile missing;
  EXPECT_FALSE(loadSVD(missing, "/nonexistent/device.svd", 0, nullptr));
  EXPECT_EQ(convertSVD("<device></device>"), "<Processor name=\"\" />\n");
}

}  // namespace
}  // namespace regmill
