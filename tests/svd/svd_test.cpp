// The register tree the reader writes: texts, sizes, access, reset values, field
// positions, enumerated values, -ignore-name and -ignore-description; and the
// reader's number conversions, the interrupt table and the core values.
//
// Register arrays, cluster arrays and the placing of clusters into groups; bases of
// peripherals, registers, fields and value lists: which element a "derivedFrom"
// finds, and what the derived element takes from it.
#include <gtest/gtest.h>

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <regex>
#include <string>
#include <vector>

#include "base/parse_number.h"
#include "readers/svd/svd_arrays.h"
#include "readers/svd/svd_base_search.h"
#include "readers/svd/svd_inheritance.h"
#include "readers/svd/svd_reader.h"
#include "readers/svd/svd_text.h"
#include "tests/support/scratch_folder.h"
#include "tests/support/tree_dump.h"

namespace regmill {
namespace {

using Values = std::vector<std::string>;
using testing::writtenText;

// `<device><name>D</name>` + body + `</device>`; the second with a body of peripherals.
std::string deviceWith(const std::string& body) { return "<device><name>D</name>" + body + "</device>"; }
std::string deviceWithPeripherals(const std::string& peripherals) {
  return deviceWith("<peripherals>" + peripherals + "</peripherals>");
}

// The written map of the SVD text read into a fresh SVDFile, or "load failed".
std::string convertSVD(const std::string& svd, uint32_t flags = 0, const char* ignoreName = nullptr) {
  SVDFile file;
  return loadSVDFromText(file, svd.c_str(), flags, ignoreName) ? writtenText(file) : "load failed";
}

// The attribute values of every element of the tag (see testing::attributeValues).
Values attributeValues(const std::string& svd, const char* tag, std::initializer_list<const char*> attributes,
                       uint32_t flags = 0, const char* ignoreName = nullptr) {
  SVDFile file;
  EXPECT_TRUE(loadSVDFromText(file, svd.c_str(), flags, ignoreName));
  return testing::attributeValues(file.root(), tag, attributes);
}

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

TEST(SVDArrays, DimIndexIsARangeOrAList) {
  // A falling range is empty; empty parts are dropped and blanks stay. There are no
  // letter ranges: both ends of A-D count as 0. In 1-3,5 "3,5" isn't decimal, so the
  // range is 1 to 0; three parts at "-" make a list.
  const std::pair<const char*, Values> cases[] = {
      {"", {}},       {"2-5", {"2", "3", "4", "5"}}, {"3-1", {}},  {"a,,b,", {"a", "b"}}, {" x, y", {" x", " y"}},
      {"A-D", {"0"}}, {"1-3,5", {}},                 {"1-2-3", {"1-2-3"}}};
  for (const auto& [text, expected] : cases) {
    DimIndex index = parseDimIndex(text);
    Values entries;
    for (size_t i = 0; i < index.size(); ++i) entries.push_back(index.entryOr(static_cast<int64_t>(i)));
    EXPECT_EQ(entries, expected) << text;
  }
  EXPECT_EQ(parseDimIndex("A").entryOr(3), "3");  // past the list: the decimal index
  EXPECT_EQ(parseDimIndex("0-2147483647").entryOr(2147483647), "2147483647");
}

std::string peripheralWith(const std::string& registers) {
  return deviceWithPeripherals("<peripheral><name>P</name><baseAddress>0x4000</baseAddress>"
                               "<prependToName>PRE_</prependToName><appendToName>_S</appendToName><registers>" +
                               registers + "</registers></peripheral>");
}

TEST(SVDArrays, RegisterAndClusterArraysNumberAndPlaceTheirInstances) {
  // A register's "%s" is replaced only with an increment, a cluster's always; a derived
  // register takes its base's array. Registers come before clusters; a nested cluster
  // is passed over; a cluster's prefix has "+i*increment" only with an increment.
  std::string svd = peripheralWith(R"(
    <cluster><name>C%s</name><addressOffset>0x100</addressOffset><dim>2</dim><dimIncrement>0x20</dimIncrement>
      <register><name>X%s</name><addressOffset>0x4</addressOffset><dim>2</dim><dimIncrement>4</dimIncrement></register>
      <cluster><name>INNER</name><register><name>Y</name></register></cluster></cluster>
    <cluster><name>K%s</name><addressOffset>0x200</addressOffset><register><name>Z</name><addressOffset>0x10</addressOffset></register></cluster>
    <cluster><name>EMPTY</name><dim>0</dim><register><name>W</name></register></cluster>
    <register><name>CH%s</name><addressOffset>0x10</addressOffset><dim>4</dim><dimIncrement>4</dimIncrement><dimIndex>A,B</dimIndex></register>
    <register><name>R%s</name><addressOffset>0x20</addressOffset><dim>2</dim></register>
    <register><name>REG[%s]%s</name><addressOffset>0x30</addressOffset><dim>0x2</dim><dimIncrement>010</dimIncrement></register>
    <register><name>BAD</name><dim>two</dim><dimIncrement>4</dimIncrement></register>
    <register derivedFrom="REG[%s]%s"><name>B%s</name><addressOffset>0x40</addressOffset></register>)");
  EXPECT_EQ(attributeValues(svd, "RegisterGroup", {"name", "start"}), Values{"P 0x4000"});
  EXPECT_EQ(attributeValues(svd, "Register", {"name", "start"}),
            (Values{"PRE_CHA_S +0x10+0", "PRE_CHB_S +0x10+4", "PRE_CH2_S +0x10+8", "PRE_CH3_S +0x10+12",
                    "PRE_R%s_S +0x20", "PRE_R%s_S +0x20", "PRE_REG[0]%s_S +0x30+0", "PRE_REG[1]%s_S +0x30+8",
                    "PRE_B0_S +0x40+0", "PRE_B1_S +0x40+8", "PRE_C0.X0_S +0x100+0*0x20+0x4+0",
                    "PRE_C0.X1_S +0x100+0*0x20+0x4+4", "PRE_C1.X0_S +0x100+1*0x20+0x4+0",
                    "PRE_C1.X1_S +0x100+1*0x20+0x4+4", "PRE_K0.Z_S +0x200+0x10"}));
}

TEST(SVDArrays, ClustersAreAlternativeViewsOnlyWithoutRegistersAndWithMatchingAlternates) {
  // T: one cluster alone; V: B names A as its alternate at A's offset. Each cluster is
  // a group "P (C)" at the peripheral's address, its offset and array unused. W has a
  // register of its own, X's B is at another offset and Z's B names no alternate.
  const std::string pair = R"(
    <cluster><name>A</name><addressOffset>0x10</addressOffset><register><name>X</name><addressOffset>0x0</addressOffset></register></cluster>
    <cluster><name>B</name>%s<addressOffset>%s</addressOffset><register><name>Y</name></register></cluster>)";
  auto clusters = [&pair](const char* alternate, const char* offsetOfB) {
    return replaceFirstPlaceholder(replaceFirstPlaceholder(pair, alternate), offsetOfB);
  };
  auto peripheral = [](const char* name, const std::string& registers) {
    return std::string("<peripheral><name>") + name + "</name><baseAddress>0x70</baseAddress>" +
           "<description>d</description><registers>" + registers + "</registers></peripheral>";
  };
  const char* alternate = "<alternateCluster>A</alternateCluster>";
  std::string svd = deviceWithPeripherals(
      peripheral("T", R"(<cluster><name>C%s</name><addressOffset>0x100</addressOffset><dim>2</dim>
        <dimIncrement>0x20</dimIncrement><register><name>R</name><addressOffset>0x4</addressOffset></register></cluster>)") +
      peripheral("V", clusters(alternate, "0x10")) + peripheral("W", "<register/>" + clusters(alternate, "0x10")) +
          peripheral("X", clusters(alternate, "0x20")) + peripheral("Z", clusters("", "0x10")));
  EXPECT_EQ(attributeValues(svd, "RegisterGroup", {"name", "start", "description"}),
            (Values{"T (C%s) 0x70 d", "V (A) 0x70 d", "V (B) 0x70 d", "W 0x70 d", "X 0x70 d", "Z 0x70 d"}));
  EXPECT_EQ(attributeValues(svd, "Register", {"name", "start"}),
            (Values{"R +0x4", "X +0x0", "Y +", " +", "A.X +0x10+0x0", "B.Y +0x10+", "A.X +0x10+0x0", "B.Y +0x20+",
                    "A.X +0x10+0x0", "B.Y +0x10+"}));
}

TEST(SVDArrays, ArraysBeyondTheElementLimitFailTheRead) {
  // Two billion instances, or a hundred thousand of a hundred thousand, are refused
  // up front rather than made.
  for (const char* registers :
       {"<register><name>R%s</name><dim>0x7fffffff</dim><dimIncrement>4</dimIncrement></register>",
        "<register/><cluster><name>C%s</name><dim>100000</dim><register><dim>100000</dim></register></cluster>"})
    EXPECT_EQ(convertSVD(peripheralWith(registers)), "load failed");
}

TEST(SVDInheritance, DerivedChainTakesFromLastBaseByTextOrByElement) {
  // A -> B -> C: A takes C's values and nothing of B. B's empty "fields" element is
  // its own and wins over C's; D's empty description reads C's; names aren't inherited.
  // C has children enough for its table to be kept, and gives A and D the same.
  std::string svd = deviceWithPeripherals(R"(<peripheral><name>P</name><baseAddress>0x0</baseAddress><registers>
    <register derivedFrom="B"><name>A</name></register>
    <register derivedFrom="C"><name>B</name><addressOffset>0x4</addressOffset><resetValue>0x5</resetValue><description>b</description><fields/></register>
    <register><name>C</name>)" + testing::repeated("<x/>", 100) + R"(<addressOffset>0x8</addressOffset><size>16</size><description>c</description>
      <fields><field><name>F</name><bitOffset>0</bitOffset><bitWidth>1</bitWidth></field></fields></register>
    <register derivedFrom="C"><description></description></register>
  </registers></peripheral>)");
  EXPECT_EQ(attributeValues(svd, "Register", {"name", "start", "size", "description", "reset_value"}),
            (Values{"A +0x8 2 c -", "B +0x4 2 b 0x5", "C +0x8 2 c -", " +0x8 2 c -"}));
  EXPECT_EQ(attributeValues(svd, "BitField", {"name"}), (Values{"F", "F", "F"}));  // none under B
}

TEST(SVDInheritance, FieldsAndValueListsFindTheirBaseAnywhereInTheDocument) {
  // X finds a field of a later peripheral, with its value list; Y the first of two
  // DUP; a dotted path matches no "name". A's list names LIST and loses its own
  // entry; B's names nothing and keeps its own.
  std::string svd = deviceWithPeripherals(R"(
  <peripheral><name>P1</name><registers><register><name>R1</name><fields>
    <field derivedFrom="LATER"><name>X</name></field><field derivedFrom="DUP"><name>Y</name></field>
    <field derivedFrom="P2.R3.LATER"><name>Z</name></field>
    <field><name>A</name><bitOffset>0</bitOffset><bitWidth>1</bitWidth>
      <enumeratedValues derivedFrom="LIST"><enumeratedValue><name>OWN</name><value>9</value></enumeratedValue></enumeratedValues></field>
    <field><name>B</name><bitOffset>1</bitOffset><bitWidth>1</bitWidth>
      <enumeratedValues derivedFrom="NOPE"><enumeratedValue><name>KEEP</name><value>1</value></enumeratedValue></enumeratedValues></field>
  </fields></register>
  <register><name>R2</name><fields><field><name>DUP</name><bitOffset>1</bitOffset><bitWidth>1</bitWidth></field></fields></register>
  </registers></peripheral>
  <peripheral><name>P2</name><registers><register><name>R3</name><fields>
    <field><name>DUP</name><bitOffset>2</bitOffset><bitWidth>2</bitWidth></field>
    <field><name>LATER</name><bitRange>[7:4]</bitRange>
      <enumeratedValues><name>LIST</name><enumeratedValue><name>ON</name><value>1</value></enumeratedValue></enumeratedValues></field>
  </fields></register></registers></peripheral>)");
  EXPECT_EQ(attributeValues(svd, "BitField", {"name", "start", "size"}),
            (Values{"X 4 4", "Y 1 1", "Z 0 0", "A 0 1", "B 1 1", "DUP 1 1", "DUP 2 2", "LATER 4 4"}));
  EXPECT_EQ(attributeValues(svd, "Enum", {"name"}), (Values{"ON", "ON", "KEEP", "ON"}));
}

TEST(SVDInheritance, DerivedPeripheralTakesRegistersAndTextsButNotInterrupts) {
  // V has no registers and so no group, but its interrupt counts; U1 doesn't repeat U0's.
  std::string svd = deviceWithPeripherals(R"(
  <peripheral><name>U0</name><baseAddress>0x100</baseAddress><description>uart</description><prependToName>U_</prependToName>
    <size>16</size><registers><register><name>DR</name></register></registers>
    <interrupt><name>UART0</name><value>3</value></interrupt></peripheral>
  <peripheral><name>V</name><interrupt><name>OTHER</name><value>3</value></interrupt></peripheral>
  <peripheral derivedFrom="U0"><name>U1</name><baseAddress>0X200</baseAddress></peripheral>)");
  EXPECT_EQ(attributeValues(svd, "RegisterGroup", {"name", "start", "description"}),
            (Values{"U0 0x100 uart", "U1 0x200 uart"}));
  EXPECT_EQ(attributeValues(svd, "Register", {"name", "size"}), (Values{"U_DR 2", "U_DR 2"}));
  SVDFile file;
  file.setInterruptTableSize(8);
  ASSERT_TRUE(loadSVDFromText(file, svd.c_str(), 0, nullptr));
  EXPECT_STREQ(file.interruptName(3), "OTHER");
}

TEST(SVDInheritance, ChainsEndAtTheirLastElementOrBeforeARepeat) {
  // D -> A -> B -> C -> A: a chain stops at the last element before one would come
  // round again, whatever the order of questions. A field naming itself is its own
  // base. A long chain ends at its last element from anywhere along it.
  std::string fields = R"(<field derivedFrom="A"><name>D</name></field><field derivedFrom="B"><name>A</name></field>
    <field derivedFrom="C"><name>B</name></field><field derivedFrom="A"><name>C</name></field>
    <field derivedFrom="S"><name>S</name></field><field derivedFrom="NONE"><name>N</name></field>
    <field><name>T</name></field>)";
  for (int i = 0; i < 20000; ++i)
    fields += "<field derivedFrom=\"F" + std::to_string(i + 1) + "\"><name>F" + std::to_string(i) + "</name></field>";
  QXMLDocument document(true);
  ASSERT_TRUE(document.parse(("<device>" + fields + "<field><name>F20000</name></field></device>").c_str()));
  auto field = [&](const std::string& name) { return findNamedElement(document.root(), "field", true, name); };
  const std::pair<std::string, std::string> expected[] = {{"D", "C"}, {"A", "C"}, {"B", "A"},           {"C", "B"},
                                                          {"S", "S"}, {"N", ""},  {"F5000", "F20000"}, {"F0", "F20000"},
                                                          {"T", ""}};
  for (bool reversed : {false, true}) {
    DerivationIndex index(document.root());
    for (size_t k = 0; k < std::size(expected); ++k) {
      const auto& [name, base] = expected[reversed ? std::size(expected) - 1 - k : k];
      EXPECT_EQ(index.resolveDerived(field(name)), base.empty() ? nullptr : field(base)) << name << reversed;
    }
  }
}

TEST(SVDBaseSearch, IndexGivesTheFirstMatchOfEachSearch) {
  // The empty name of the first R1 takes the first named sibling: itself. R2 takes the
  // first of two R1, Q the first of two P; R2 is no sibling of R3; M finds the inner N,
  // searched before the outer one.
  QXMLDocument document(true);
  ASSERT_TRUE(document.parse(R"(<device><peripherals>
    <peripheral><name>P</name><registers><register derivedFrom=""><name>R1</name><fields>
      <field><name>N</name><field><name>N</name></field></field><field derivedFrom="N"><name>M</name></field></fields></register>
      <register><name>R1</name></register><register derivedFrom="R1"><name>R2</name></register></registers></peripheral>
    <peripheral derivedFrom="P"><name>Q</name><registers><register derivedFrom="R2"><name>R3</name></register></registers></peripheral>
    <peripheral><name>P</name></peripheral></peripherals></device>)"));
  XMLNode* root = document.root();
  std::vector<XMLElement*> peripherals = collectElements(root, "peripheral", true);
  std::vector<XMLElement*> registers = collectElements(root, "register", true);
  std::vector<XMLElement*> fields = collectElements(root, "field", true);  // outer N, inner N, M
  ASSERT_TRUE(peripherals.size() == 3 && registers.size() == 4 && fields.size() == 3);
  const std::pair<const XMLElement*, const XMLElement*> cases[] = {{registers[0], registers[0]},
      {registers[2], registers[0]}, {peripherals[1], peripherals[0]}, {registers[3], nullptr}, {fields[2], fields[1]}};
  BaseSearchIndex index(root);
  for (const auto& [element, base] : cases) {
    const char* wanted = element->getAttribute("derivedFrom");
    bool wholeDocument = std::string(element->getName()) == "field";
    const XMLNode* area = wholeDocument ? root : element->parent()->firstChild();
    EXPECT_EQ(findNamedElement(area, element->getName(), wholeDocument, wanted), base) << element->getName() << wanted;
    EXPECT_EQ(index.find(element, wanted), base) << element->getName() << wanted;
  }
}

}  // namespace
}  // namespace regmill
