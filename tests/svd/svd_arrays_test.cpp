// Register arrays, cluster arrays and the placing of clusters into groups.
#include "readers/svd/svd_arrays.h"
#include "readers/svd/svd_text.h"
#include "tests/svd/svd_test_support.h"

namespace regmill {
namespace {

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

}  // namespace
}  // namespace regmill
