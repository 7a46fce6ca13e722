// The register tree the reader writes: texts, sizes, access, reset values, field
// positions, enumerated values, -ignore-name and -ignore-description; and the
// reader's number conversions, the interrupt table and the core values.
#include <optional>
#include <regex>

#include "base/parse_number.h"
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

TEST(SVDValues, DecimalAndPrefixedNumbersReadTheWholeText) {
  const std::nullopt_t none = std::nullopt;
  const std::tuple<const char*, std::optional<int32_t>, std::optional<int32_t>> cases[] = {
      {"32", 32, 32},       {" 12\n", 12, 12},   {"-4", -4, -4},         {"0x20", none, 32},  {"0X1f", none, 31},
      {"-0x10", none, -16}, {"010", 10, 8},      {"08", 8, none},        {"0", 0, 0},         {"0b1", none, none},
      {"0x", none, none},   {"12abc", none, none}, {"4U", none, none},   {"", none, none},   {"-", none, none},
      {"2147483647", 2147483647, 2147483647},    {"2147483648", none, none}, {"0xffffffff", none, none},
      {"18446744073709551621", none, none}};  // 2^64 + 5: an overflow, not 5
  for (const auto& [text, decimal, prefixed] : cases) {
    EXPECT_EQ(decimalNumber(text), decimal) << text;
    EXPECT_EQ(prefixedNumber(text), prefixed) << text;
  }
}

TEST(SVDValues, InterruptsFillTheTableByDecimalNumber) {
  // "INT_" or else "_IRQ" is cut off; a hexadecimal, negative or too high value is
  // dropped, the last name of a number wins, a "value" counts only behind its "name",
  // and one element may hold several pairs.
  const std::string svd = deviceWithPeripherals(R"(<peripheral><name>P</name>
    <interrupt><name>INT_TIMER0</name><value>16</value></interrupt><interrupt><name>INT_UART0_IRQ</name><value>6</value></interrupt>
    <interrupt><name>UART0_IRQ</name><description>u</description><value>5</value></interrupt><interrupt><value>8</value><name>V</name></interrupt>
    <interrupt><name>HEX</name><value>0x3</value></interrupt><interrupt><name>NEGATIVE</name><value>-1</value></interrupt>
    <interrupt><name>AT_END</name><value>32</value></interrupt><interrupt><name></name><value>11</value></interrupt>
    <interrupt><name>FIRST</name><value>7</value></interrupt><interrupt><name>LAST</name><value>7</value></interrupt>
    <interrupt><name>P</name><value>9</value><name>Q</name><value>10</value></interrupt></peripheral>)");
  SVDFile file, kept, withoutTable;
  file.setInterruptTableSize(32);
  kept.setInterruptTableSize(32);
  ASSERT_TRUE(loadSVDFromText(file, svd.c_str(), 0, nullptr));
  const std::pair<int, const char*> expected[] = {{16, "TIMER0"}, {5, "UART0"}, {6, "UART0_IRQ"}, {3, nullptr},
                                                  {7, "LAST"},    {8, nullptr},  {9, "P"},  {10, "Q"}, {11, nullptr}};
  for (const auto& [index, name] : expected) EXPECT_STREQ(file.interruptName(index), name) << index;
  EXPECT_EQ(file.highestInterrupt, 16);
  // With KeepInterrupts, or without a table, nothing is stored and the highest stays.
  ASSERT_TRUE(loadSVDFromText(kept, svd.c_str(), flagBit(SVDReaderFlag::KeepInterrupts), nullptr));
  ASSERT_TRUE(loadSVDFromText(withoutTable, svd.c_str(), 0, nullptr));
  EXPECT_EQ(kept.highestInterrupt, -1);
  EXPECT_EQ(kept.interruptName(16), nullptr);
  EXPECT_EQ(withoutTable.highestInterrupt, SVDFile().highestInterrupt);
}

TEST(SVDValues, CpuReplacesTheCoreValues) {
  // Read over 4, VTOR, 2 priority bits, MPU and FPU, as the command line might set them.
  auto core = [](const std::string& cpu, uint32_t flags = 0) {
    SVDFile file;
    file.setCoreInfo(4, true, 2, true, true);
    EXPECT_TRUE(loadSVDFromText(file, deviceWith("<cpu>" + cpu + "</cpu>").c_str(), flags, nullptr));
    return std::to_string(file.coreNumber) + (file.hasVTOR ? " vtor" : "") + (file.mpuPresent ? " mpu" : "") +
           (file.fpuPresent ? " fpu" : "") + " bits " + std::to_string(file.nvicPrioBits);
  };
  const std::pair<const char*, const char*> cases[] = {
      {"<name>CM0</name><nvicPrioBits>2</nvicPrioBits>", "0 bits 2"},
      {"<name>CM0PLUS</name><mpuPresent>1</mpuPresent>", "0 vtor mpu bits 0"},
      {"<name>CM0+</name><fpuPresent>true</fpuPresent>", "0 vtor fpu bits 0"},
      {"<name>CM7</name><mpuPresent>TRUE</mpuPresent><fpuPresent>yes</fpuPresent>", "7 vtor bits 0"},
      {"<name>CM23</name><nvicPrioBits>0x3</nvicPrioBits>", "23 vtor bits 0"},
      {"<name>CM33</name><fpuPresent>1</fpuPresent>", "33 vtor fpu bits 0"},
      {"<name>CM55</name><nvicPrioBits>3</nvicPrioBits>", "4 vtor bits 3"},
      {"<name>cm3</name><nvicPrioBits>-1</nvicPrioBits>", "4 vtor bits 0"}};
  for (const auto& [cpu, expected] : cases) EXPECT_EQ(core(cpu), expected) << cpu;
  EXPECT_EQ(core("<name>CM0</name>", flagBit(SVDReaderFlag::KeepCoreInfo)), "4 vtor mpu fpu bits 2");
}

}  // namespace
}  // namespace regmill
