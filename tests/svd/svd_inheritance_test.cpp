// Bases of peripherals, registers, fields and value lists: which element a
// "derivedFrom" finds, and what the derived element takes from it.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "readers/svd/svd_base_search.h"
#include "readers/svd/svd_inheritance.h"
#include "readers/svd/svd_reader.h"
#include "tests/svd/svd_test_support.h"
#include "xml/xml_document.h"

namespace regmill {
namespace {

using testing::convertSVD;
using testing::deviceWithPeripherals;

TEST(SVDInheritance, DerivedChainTakesFromLastBaseByTextOrByElement) {
  // A -> B -> C: A takes C's values and nothing of B. B's empty "fields" element is
  // its own and wins over C's; D's empty description reads C's; names aren't inherited.
  std::string svd = deviceWithPeripherals(R"(<peripheral><name>P</name><baseAddress>0x0</baseAddress><registers>
    <register derivedFrom="B"><name>A</name></register>
    <register derivedFrom="C"><name>B</name><addressOffset>0x4</addressOffset><resetValue>0x5</resetValue><description>b</description><fields/></register>
    <register><name>C</name><addressOffset>0x8</addressOffset><size>16</size><description>c</description>
      <fields><field><name>F</name><bitOffset>0</bitOffset><bitWidth>1</bitWidth></field></fields></register>
    <register derivedFrom="C"><description></description></register>
  </registers></peripheral>)");
  EXPECT_EQ(convertSVD(svd), R"(<Processor name="D">
  <RegisterGroup name="P" start="0x0">
    <Register start="+0x8" size="2" name="A" access="Read/Write" description="c">
      <BitField start="0" size="1" name="F" />
    </Register>
    <Register start="+0x4" size="2" name="B" access="Read/Write" description="b" reset_value="0x5" />
    <Register start="+0x8" size="2" name="C" access="Read/Write" description="c">
      <BitField start="0" size="1" name="F" />
    </Register>
    <Register start="+0x8" size="2" name="" access="Read/Write" description="c">
      <BitField start="0" size="1" name="F" />
    </Register>
  </RegisterGroup>
</Processor>
)");
}

TEST(SVDInheritance, FieldsAndValueListsFindTheirBaseAnywhereInTheDocument) {
  // X finds a field of a later peripheral, with its value list; Y the first of two
  // DUP; a dotted path matches no "name". A's list names LIST and loses its own
  // entry; B's names nothing and keeps its own.
  std::string svd = deviceWithPeripherals(R"(
  <peripheral><name>P1</name><baseAddress>0x0</baseAddress><registers>
    <register><name>R1</name><addressOffset>0x0</addressOffset><fields>
      <field derivedFrom="LATER"><name>X</name></field>
      <field derivedFrom="DUP"><name>Y</name></field>
      <field derivedFrom="P2.R3.LATER"><name>Z</name></field>
      <field><name>A</name><bitOffset>0</bitOffset><bitWidth>1</bitWidth>
        <enumeratedValues derivedFrom="LIST"><enumeratedValue><name>OWN</name><value>9</value></enumeratedValue></enumeratedValues></field>
      <field><name>B</name><bitOffset>1</bitOffset><bitWidth>1</bitWidth>
        <enumeratedValues derivedFrom="NOPE"><enumeratedValue><name>KEEP</name><value>1</value></enumeratedValue></enumeratedValues></field>
    </fields></register>
    <register><name>R2</name><addressOffset>0x4</addressOffset><fields>
      <field><name>DUP</name><bitOffset>1</bitOffset><bitWidth>1</bitWidth></field></fields></register>
  </registers></peripheral>
  <peripheral><name>P2</name><baseAddress>0x100</baseAddress><registers>
    <register><name>R3</name><addressOffset>0x0</addressOffset><fields>
      <field><name>DUP</name><bitOffset>2</bitOffset><bitWidth>2</bitWidth></field>
      <field><name>LATER</name><bitRange>[7:4]</bitRange>
        <enumeratedValues><name>LIST</name><enumeratedValue><name>ON</name><value>1</value></enumeratedValue></enumeratedValues></field>
    </fields></register>
  </registers></peripheral>)");
  const std::string on = "        <Enum name=\"ON\" start=\"1\" />\n";
  EXPECT_EQ(convertSVD(svd), R"(<Processor name="D">
  <RegisterGroup name="P1" start="0x0">
    <Register start="+0x0" size="0" name="R1" access="Read/Write">
      <BitField start="4" size="4" name="X">
)" + on + R"(      </BitField>
      <BitField start="1" size="1" name="Y" />
      <BitField start="0" size="0" name="Z" />
      <BitField start="0" size="1" name="A">
)" + on + R"(      </BitField>
      <BitField start="1" size="1" name="B">
        <Enum name="KEEP" start="1" />
      </BitField>
    </Register>
    <Register start="+0x4" size="0" name="R2" access="Read/Write">
      <BitField start="1" size="1" name="DUP" />
    </Register>
  </RegisterGroup>
  <RegisterGroup name="P2" start="0x100">
    <Register start="+0x0" size="0" name="R3" access="Read/Write">
      <BitField start="2" size="2" name="DUP" />
      <BitField start="4" size="4" name="LATER">
)" + on + R"(      </BitField>
    </Register>
  </RegisterGroup>
</Processor>
)");
}

TEST(SVDInheritance, DerivedPeripheralTakesRegistersAndTextsButNotInterrupts) {
  // V has no registers and so no group, but its interrupt counts; U1 doesn't repeat U0's.
  std::string svd = deviceWithPeripherals(R"(
  <peripheral><name>U0</name><baseAddress>0x100</baseAddress><description>uart</description><prependToName>U_</prependToName>
    <size>16</size><registers><register><name>DR</name><addressOffset>0x0</addressOffset></register></registers>
    <interrupt><name>UART0</name><value>3</value></interrupt></peripheral>
  <peripheral><name>V</name><interrupt><name>OTHER</name><value>3</value></interrupt></peripheral>
  <peripheral derivedFrom="U0"><name>U1</name><baseAddress>0X200</baseAddress></peripheral>)");
  SVDFile file;
  file.setInterruptTableSize(8);
  ASSERT_TRUE(loadSVDFromText(file, svd.c_str(), 0, nullptr));
  std::vector<XMLElement*> groups = collectElements(file.root(), "RegisterGroup", true);
  ASSERT_EQ(groups.size(), 2u);
  EXPECT_STREQ(groups[1]->getAttribute("name"), "U1");
  EXPECT_STREQ(groups[1]->getAttribute("start"), "0x200");
  EXPECT_STREQ(groups[1]->getAttribute("description"), "uart");
  std::vector<XMLElement*> registers = collectElements(groups[1], "Register", true);
  ASSERT_EQ(registers.size(), 1u);
  EXPECT_STREQ(registers[0]->getAttribute("name"), "U_DR");
  EXPECT_STREQ(registers[0]->getAttribute("size"), "2");
  EXPECT_STREQ(file.interruptName(3), "OTHER");
}

TEST(SVDInheritance, BaseWithManyChildrenGivesItsValuesToEveryDerivedElement) {
  // A base of more than a few children has its table kept; the values are the same.
  std::string junk;
  for (int i = 0; i < 100; ++i) junk += "<x" + std::to_string(i) + "/>";
  std::string registers = "<register><name>B</name>" + junk + "<size>8</size></register>";
  for (int i = 0; i < 3; ++i) registers += "<register derivedFrom=\"B\"><name>D" + std::to_string(i) + "</name></register>";
  SVDFile file;
  ASSERT_TRUE(loadSVDFromText(file, deviceWithPeripherals("<peripheral><name>P</name><registers>" + registers +
                                                          "</registers></peripheral>").c_str(), 0, nullptr));
  std::vector<XMLElement*> written = collectElements(file.root(), "Register", true);
  ASSERT_EQ(written.size(), 4u);
  for (XMLElement* reg : written) EXPECT_STREQ(reg->getAttribute("size"), "1");
}

// A parsed document of fields, for asking the index directly.
class ParsedFields {
 public:
  explicit ParsedFields(const std::string& fields) : document_(true) {
    std::string text = "<device><register><fields>" + fields + "</fields></register></device>";
    EXPECT_TRUE(document_.parse(text.c_str()));
  }
  const XMLNode* root() const { return document_.root(); }
  const XMLElement* field(const std::string& name) const { return findNamedElement(root(), "field", true, name); }

 private:
  QXMLDocument document_;
};

TEST(SVDInheritance, CyclesEndBeforeTheRepeatWhateverTheOrderOfQuestions) {
  // D -> A -> B -> C -> A: a chain stops at the last element before one would come
  // round again. A field naming itself is its own base.
  ParsedFields doc(R"(<field derivedFrom="A"><name>D</name></field><field derivedFrom="B"><name>A</name></field>
    <field derivedFrom="C"><name>B</name></field><field derivedFrom="A"><name>C</name></field>
    <field derivedFrom="S"><name>S</name></field><field derivedFrom="NONE"><name>N</name></field>
    <field><name>T</name></field>)");
  const std::vector<std::pair<std::string, std::string>> expected = {
      {"D", "C"}, {"A", "C"}, {"B", "A"}, {"C", "B"}, {"S", "S"}, {"N", ""}, {"T", ""}};
  for (bool reversed : {false, true}) {
    DerivationIndex index(doc.root());
    for (size_t k = 0; k < expected.size(); ++k) {
      const auto& [name, base] = expected[reversed ? expected.size() - 1 - k : k];
      SCOPED_TRACE(name + (reversed ? " asked last to first" : " asked first to last"));
      EXPECT_EQ(index.resolveDerived(doc.field(name)), base.empty() ? nullptr : doc.field(base));
    }
  }
}

TEST(SVDInheritance, LongChainEndsAtItsLastElement) {
  const int length = 20000;
  std::string fields;
  for (int i = 0; i < length; ++i)
    fields += "<field derivedFrom=\"F" + std::to_string(i + 1) + "\"><name>F" + std::to_string(i) + "</name></field>";
  ParsedFields doc(fields + "<field><name>F" + std::to_string(length) + "</name></field>");
  DerivationIndex index(doc.root());
  const XMLElement* last = doc.field("F" + std::to_string(length));
  EXPECT_EQ(index.resolveDerived(doc.field("F5000")), last);
  EXPECT_EQ(index.resolveDerived(doc.field("F0")), last);
}

TEST(SVDBaseSearch, IndexGivesTheFirstMatchOfEachSearch) {
  QXMLDocument document(true);
  ASSERT_TRUE(document.parse(R"(<device><peripherals>
    <peripheral><name>P</name><registers>
      <register derivedFrom=""><name>R1</name><fields>
        <field><name>N</name><field><name>N</name></field></field><field derivedFrom="N"><name>M</name></field>
      </fields></register>
      <register><name>R1</name></register><register derivedFrom="R1"><name>R2</name></register>
    </registers></peripheral>
    <peripheral derivedFrom="P"><name>Q</name><registers><register derivedFrom="R2"><name>R3</name></register></registers></peripheral>
    <peripheral><name>P</name></peripheral>
  </peripherals></device>)"));
  XMLNode* root = document.root();
  std::vector<XMLElement*> peripherals = collectElements(root, "peripheral", true);
  std::vector<XMLElement*> registers = collectElements(root, "register", true);
  std::vector<XMLElement*> fields = collectElements(root, "field", true);  // outer N, inner N, M
  ASSERT_EQ(registers.size(), 4u);
  ASSERT_EQ(fields.size(), 3u);
  const std::pair<const XMLElement*, const XMLElement*> cases[] = {
      {registers[0], registers[0]},      // an empty name takes the first named sibling: itself
      {registers[2], registers[0]},      // the first of two R1
      {peripherals[1], peripherals[0]},  // the first of two P
      {registers[3], nullptr},           // R2 is no sibling of R3
      {fields[2], fields[1]},            // the inner N is searched before the outer one
  };
  BaseSearchIndex index(root);
  for (const auto& [element, base] : cases) {
    const char* wanted = element->getAttribute("derivedFrom");
    bool wholeDocument = std::string(element->getName()) == "field";
    const XMLNode* area = wholeDocument ? root : element->parent()->firstChild();
    SCOPED_TRACE(std::string(element->getName()) + " derived from '" + wanted + "'");
    EXPECT_EQ(findNamedElement(area, element->getName(), wholeDocument, wanted), base);
    EXPECT_EQ(index.find(element, wanted), base);
  }
}

}  // namespace
}  // namespace regmill
