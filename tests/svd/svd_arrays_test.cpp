// Register arrays, cluster arrays and the placing of clusters into groups.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "readers/svd/svd_arrays.h"
#include "readers/svd/svd_reader.h"
#include "readers/svd/svd_text.h"
#include "tests/svd/svd_test_support.h"

namespace regmill {
namespace {

using testing::convertSVD;
using testing::deviceWithPeripherals;

TEST(SVDArrays, DimIndexIsARangeOrAList) {
  const std::pair<const char*, std::vector<std::string>> cases[] = {
      {"", {}},
      {"0-3", {"0", "1", "2", "3"}},
      {"3-1", {}},              // a falling range is empty
      {"A,B", {"A", "B"}},
      {"a,,b,", {"a", "b"}},    // empty parts are dropped
      {" x, y", {" x", " y"}},  // blanks stay
      {"A-D", {"0"}},           // no letter ranges: both ends count as 0
      {"1-3,5", {}},            // "3,5" isn't decimal: the range is 1 to 0
      {"1-2-3", {"1-2-3"}},     // three parts at "-" make a list
  };
  for (const auto& [text, expected] : cases) {
    SCOPED_TRACE(text);
    DimIndex index = parseDimIndex(text);
    std::vector<std::string> entries;
    for (size_t i = 0; i < index.size(); ++i) entries.push_back(index.entryOr(static_cast<int64_t>(i)));
    EXPECT_EQ(entries, expected);
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
  // "%s" is replaced only with an increment; a derived register takes its base's
  // array. Registers come before clusters; a nested cluster is passed over; a
  // cluster's prefix has "+i*increment" only with an increment.
  std::string svd = peripheralWith(R"(
    <cluster><name>C%s</name><description>unread</description><addressOffset>0x100</addressOffset><dim>2</dim><dimIncrement>0x20</dimIncrement>
      <register><name>X%s</name><addressOffset>0x4</addressOffset><dim>2</dim><dimIncrement>4</dimIncrement></register>
      <cluster><name>INNER</name><register><name>Y</name></register></cluster></cluster>
    <cluster><name>K%s</name><addressOffset>0x200</addressOffset><register><name>Z</name><addressOffset>0x10</addressOffset></register></cluster>
    <cluster><name>EMPTY</name><dim>0</dim><register><name>W</name></register></cluster>
    <register><name>CH%s</name><addressOffset>0x10</addressOffset><dim>4</dim><dimIncrement>4</dimIncrement><dimIndex>A,B</dimIndex></register>
    <register><name>R%s</name><addressOffset>0x20</addressOffset><dim>2</dim></register>
    <register><name>REG[%s]%s</name><addressOffset>0x30</addressOffset><dim>0x2</dim><dimIncrement>010</dimIncrement></register>
    <register><name>BAD</name><dim>two</dim><dimIncrement>4</dimIncrement></register>
    <register derivedFrom="REG[%s]%s"><name>B%s</name><addressOffset>0x40</addressOffset></register>)");
  EXPECT_EQ(convertSVD(svd), R"(<Processor name="D">
  <RegisterGroup name="P" start="0x4000">
    <Register start="+0x10+0" size="0" name="PRE_CHA_S" access="Read/Write" />
    <Register start="+0x10+4" size="0" name="PRE_CHB_S" access="Read/Write" />
    <Register start="+0x10+8" size="0" name="PRE_CH2_S" access="Read/Write" />
    <Register start="+0x10+12" size="0" name="PRE_CH3_S" access="Read/Write" />
    <Register start="+0x20" size="0" name="PRE_R%s_S" access="Read/Write" />
    <Register start="+0x20" size="0" name="PRE_R%s_S" access="Read/Write" />
    <Register start="+0x30+0" size="0" name="PRE_REG[0]%s_S" access="Read/Write" />
    <Register start="+0x30+8" size="0" name="PRE_REG[1]%s_S" access="Read/Write" />
    <Register start="+0x40+0" size="0" name="PRE_B0_S" access="Read/Write" />
    <Register start="+0x40+8" size="0" name="PRE_B1_S" access="Read/Write" />
    <Register start="+0x100+0*0x20+0x4+0" size="0" name="PRE_C0.X0_S" access="Read/Write" />
    <Register start="+0x100+0*0x20+0x4+4" size="0" name="PRE_C0.X1_S" access="Read/Write" />
    <Register start="+0x100+1*0x20+0x4+0" size="0" name="PRE_C1.X0_S" access="Read/Write" />
    <Register start="+0x100+1*0x20+0x4+4" size="0" name="PRE_C1.X1_S" access="Read/Write" />
    <Register start="+0x200+0x10" size="0" name="PRE_K0.Z_S" access="Read/Write" />
  </RegisterGroup>
</Processor>
)");
}

TEST(SVDArrays, ClustersAreAlternativeViewsOnlyWithoutRegistersAndWithMatchingAlternates) {
  // T: one cluster alone; V: B names A as its alternate at A's offset. Each cluster
  // is a group at the peripheral's address, its offset and array unused. W has a
  // register of its own and Z's B names no alternate: one group each.
  const std::string clusters = R"(<cluster><name>A</name><addressOffset>0x10</addressOffset><register><name>X</name><addressOffset>0x0</addressOffset></register></cluster>
    <cluster><name>B</name>%s<addressOffset>0x10</addressOffset><register><name>Y</name><addressOffset>0x0</addressOffset></register></cluster>)";
  const std::string alternate = replaceFirstPlaceholder(clusters, "<alternateCluster>A</alternateCluster>");
  std::string svd = deviceWithPeripherals(R"(<peripheral><name>T</name><baseAddress>0x6000</baseAddress><registers>
    <cluster><name>C%s</name><addressOffset>0x100</addressOffset><dim>2</dim><dimIncrement>0x20</dimIncrement>
      <register><name>X</name><addressOffset>0x4</addressOffset></register></cluster></registers></peripheral>
    <peripheral><name>V</name><baseAddress>0x7000</baseAddress><description>v</description><registers>)" +
                                          alternate + R"(</registers></peripheral>
    <peripheral><name>W</name><baseAddress>0x0</baseAddress><registers><register><name>R</name></register>)" +
                                          alternate + R"(</registers></peripheral>
    <peripheral><name>Z</name><baseAddress>0x0</baseAddress><registers>)" +
                                          replaceFirstPlaceholder(clusters, "") + "</registers></peripheral>");
  EXPECT_EQ(convertSVD(svd), R"map(<Processor name="D">
  <RegisterGroup name="T (C%s)" start="0x6000">
    <Register start="+0x4" size="0" name="X" access="Read/Write" />
  </RegisterGroup>
  <RegisterGroup name="V (A)" start="0x7000" description="v">
    <Register start="+0x0" size="0" name="X" access="Read/Write" />
  </RegisterGroup>
  <RegisterGroup name="V (B)" start="0x7000" description="v">
    <Register start="+0x0" size="0" name="Y" access="Read/Write" />
  </RegisterGroup>
  <RegisterGroup name="W" start="0x0">
    <Register start="+" size="0" name="R" access="Read/Write" />
    <Register start="+0x10+0x0" size="0" name="A.X" access="Read/Write" />
    <Register start="+0x10+0x0" size="0" name="B.Y" access="Read/Write" />
  </RegisterGroup>
  <RegisterGroup name="Z" start="0x0">
    <Register start="+0x10+0x0" size="0" name="A.X" access="Read/Write" />
    <Register start="+0x10+0x0" size="0" name="B.Y" access="Read/Write" />
  </RegisterGroup>
</Processor>
)map");
}

TEST(SVDArrays, ArraysBeyondTheElementLimitFailTheRead) {
  // Two billion instances, or a hundred thousand of a hundred thousand, are refused
  // up front rather than made; a group and four registers are five elements.
  for (const char* registers :
       {"<register><name>R%s</name><dim>0x7fffffff</dim><dimIncrement>4</dimIncrement></register>",
        "<register><name>R</name></register><cluster><name>C%s</name><dim>100000</dim><dimIncrement>4</dimIncrement>"
        "<register><name>R%s</name><dim>100000</dim><dimIncrement>4</dimIncrement></register></cluster>"}) {
    SVDFile file;
    EXPECT_FALSE(loadSVDFromText(file, peripheralWith(registers).c_str(), 0, nullptr));
  }
  std::string four = peripheralWith("<register><name>R%s</name><dim>4</dim><dimIncrement>4</dimIncrement></register>");
  SVDFile atLimit, pastLimit;
  EXPECT_TRUE(loadSVDFromText(atLimit, four.c_str(), 0, nullptr, 5));
  EXPECT_FALSE(loadSVDFromText(pastLimit, four.c_str(), 0, nullptr, 4));
}

}  // namespace
}  // namespace regmill
