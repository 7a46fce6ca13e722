// The memory-map model: element kinds, the root, searches, and the SVD file's
// interrupt table and group removal, and the addresses computed over a tree.
#include "memorymap/compute_addresses.h"
#include "memorymap/memory_map.h"
#include "memorymap/svd_file.h"
#include "xml/xml_string.h"

#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>

#include "tests/support/scratch_folder.h"

namespace regmill {
namespace {

TEST(MemoryMap, KindsComeFromExactTags) {
  const std::pair<const char*, ElementKind> cases[] = {
      {"MemorySegment", ElementKind::MemorySegment}, {"Register", ElementKind::Register}, {"ProgramSection", ElementKind::ProgramSection},
      {"Root", ElementKind::Root}, {"RegisterGroup", ElementKind::RegisterGroup}, {"BitField", ElementKind::BitField}, {"Enum", ElementKind::Enum},
      {"Processor", ElementKind::Processor}, {"Vector", ElementKind::Vector}, {"enum", ElementKind::Other}, {"Registers", ElementKind::Other},
      {"", ElementKind::Other}};
  MemoryMap map;
  for (const auto& [tag, kind] : cases)
    EXPECT_EQ(std::unique_ptr<MemoryMapElement>(map.newElement(tag))->kind(), kind) << tag;
}

TEST(MemoryMap, RootOfAnotherClassReadsAsNull) {
  MemoryMap map;
  EXPECT_EQ(map.root(), nullptr);
  map.setRoot(new XMLElement(copyXmlString("Root", 4)));
  EXPECT_EQ(map.root(), nullptr);
  map.setRoot(map.newElement("Root"));
  ASSERT_NE(map.root(), nullptr);
  EXPECT_EQ(testing::writtenText(map), "<Root/>\n");
}

// Parsed elements come from the map, so they have kinds to be found by.
TEST(MemoryMap, FindElementGoesDepthFirstInDocumentOrderWithOrWithoutCase) {
  MemoryMap map;
  ASSERT_TRUE(map.parse(
      "<Processor>"
      "<RegisterGroup name=\"UART\"><Register name=\"CR\"><BitField name=\"EN\"/></Register></RegisterGroup>"
      "<RegisterGroup name=\"NVIC\"><Register name=\"ISER0\"/></RegisterGroup>"
      "<RegisterGroup name=\"nvic\"/>"
      "<Register name=\"CR\" start=\"second\"/>"
      "</Processor>"));
  auto find = [&](ElementKind kind, const char* name, const char* value, bool caseSensitive) {
    return findElement(map.root(), kind, name, value, caseSensitive);
  };
  MemoryMapElement* loose = find(ElementKind::RegisterGroup, "name", "nvic", false);
  ASSERT_NE(loose, nullptr);
  EXPECT_STREQ(loose->getAttribute("name"), "NVIC");  // the first in document order
  MemoryMapElement* exact = find(ElementKind::RegisterGroup, "name", "nvic", true);
  ASSERT_NE(exact, nullptr);
  EXPECT_STREQ(exact->getAttribute("name"), "nvic");
  EXPECT_EQ(find(ElementKind::RegisterGroup, "name", "NVIc", true), nullptr);
  MemoryMapElement* cr = find(ElementKind::Register, "name", "CR", true);
  ASSERT_NE(cr, nullptr);
  EXPECT_FALSE(cr->hasAttribute("start"));  // the nested one comes before the later sibling
  EXPECT_STREQ(find(ElementKind::BitField, nullptr, nullptr, true)->getAttribute("name"), "EN");
  EXPECT_EQ(find(ElementKind::Register, "start", "missing", true), nullptr);
  EXPECT_EQ(find(ElementKind::Enum, nullptr, nullptr, true), nullptr);
  EXPECT_EQ(find(ElementKind::Processor, nullptr, nullptr, true), map.root());
}

// The names of entries 0 to 4, "-" for none, and the highest entry.
std::string table(const SVDFile& file) {
  std::string text;
  for (int i = -1; i < 5; ++i) {
    const char* name = file.interruptName(i);
    text += std::string(name == nullptr ? "-" : name) + " ";
  }
  return text + std::to_string(file.highestInterrupt);
}

TEST(SVDFile, InterruptNamesNeedATableAndFilledEntriesStay) {
  SVDFile file;
  file.setInterruptNames({"A", "B"});
  file.storeInterruptName(0, "A");
  EXPECT_EQ(table(file), "- - - - - - -1");  // untouched without a table
  file.setInterruptTableSize(4);
  file.setInterruptNames({"A", "", "C"});  // empty parts leave entries free
  file.setInterruptNames({"X", "B", "Y", "D", "BEYOND"});
  EXPECT_EQ(table(file), "- A B C D - 3");
  file.setInterruptTableSize(8);
  file.storeInterruptName(2, "OLD");
  file.storeInterruptName(2, "");  // stored names replace and may be empty
  file.storeInterruptName(8, "OUTSIDE");
  EXPECT_EQ(table(file), "- - -  - - 2");
}

TEST(SVDFile, RemoveGroupsUnlinksDirectChildrenByExactName) {
  SVDFile file;
  ASSERT_TRUE(file.parse(
      "<Processor><RegisterGroup name=\"A\"><Register name=\"B\"/></RegisterGroup>"
      "<RegisterGroup name=\"B\"/><RegisterGroup name=\"b\"/><RegisterGroup name=\"C\"/></Processor>"));
  file.removeGroups({"B", "", "C", "A"});
  XMLNode* remaining = file.root()->firstChild();
  ASSERT_NE(remaining, nullptr);
  EXPECT_STREQ(static_cast<XMLElement*>(remaining)->getAttribute("name"), "b");
  EXPECT_EQ(remaining->nextSibling(), nullptr);
}

// Builds memory-map trees by hand; the map makes the elements and owns the root.
class AddressTree {
 public:
  MemoryMapElement* add(MemoryMapElement* parent, const char* tag, const char* start = nullptr,
                        const char* size = nullptr) {
    MemoryMapElement* element = map_.newElement(tag);
    if (start != nullptr) element->setAttributeCopy("start", start);
    if (size != nullptr) element->setAttributeCopy("size", size);
    if (parent == nullptr) map_.setRoot(element);
    else parent->addChild(element);
    return element;
  }

 private:
  MemoryMap map_;
};

// Address and size of each element, in hexadecimal.
std::string placed(std::initializer_list<const MemoryMapElement*> elements) {
  std::ostringstream text;
  for (const MemoryMapElement* e : elements) text << (text.tellp() > 0 ? " " : "") << std::hex << e->address << '/' << e->size;
  return text.str();
}

TEST(ComputeAddresses, RelativeStartsAddTheBaseTheirKindPassesOn) {
  AddressTree tree;
  MemoryMapElement* root = tree.add(nullptr, "Root");
  MemoryMapElement* group = tree.add(root, "RegisterGroup", "0x40000000", "0x400");
  MemoryMapElement* cluster = tree.add(group, "RegisterGroup", "+0x100", "4*4");
  MemoryMapElement* relative = tree.add(cluster, "Register", "+0x100+0x20+8", "32");
  MemoryMapElement* absolute = tree.add(group, "Register", "0x20000000", "0x10");
  MemoryMapElement* field = tree.add(relative, "BitField", "3", "2");
  MemoryMapElement* fieldPlus = tree.add(relative, "BitField", "+3");
  MemoryMapElement* value = tree.add(field, "Enum", "+1");
  computeAddresses(root, 0);
  // A field's start is relative to nothing.
  EXPECT_EQ(placed({group, cluster, relative, absolute, field, fieldPlus, value}),
            "40000000/400 40000100/10 40000228/20 20000000/10 3/2 3/0 1/0");
}

TEST(ComputeAddresses, FailedFormulasReadAsZeroAndStopNothing) {
  AddressTree tree;
  MemoryMapElement* root = tree.add(nullptr, "Root");
  MemoryMapElement* broken = tree.add(root, "RegisterGroup", "BASE + 4", "1 == 1");
  MemoryMapElement* child = tree.add(broken, "Register", "+8", "0x20U");
  MemoryMapElement* brokenRelative = tree.add(root, "MemorySegment", "+0x10", "0x100");
  MemoryMapElement* segmentChild = tree.add(brokenRelative, "ProgramSection", "+junk(");
  broken->size = 77;
  computeAddresses(root, 0x1000);
  // A size that fails leaves the size as it was; the root passes its base on
  // unchanged, and a failed relative start is the base alone.
  EXPECT_EQ(placed({broken, child, brokenRelative, segmentChild}), "0/4d 8/20 1010/100 1010/0");
}

TEST(ComputeAddresses, ElementsWithoutStartPassTheirBaseOn) {
  AddressTree tree;
  MemoryMapElement* root = tree.add(nullptr, "Processor", "0x999");
  MemoryMapElement* group = tree.add(root, "RegisterGroup", "0x4000");
  MemoryMapElement* plain = tree.add(group, "RegisterGroup");
  MemoryMapElement* other = tree.add(plain, "Vector", "0x50");
  MemoryMapElement* reg = tree.add(other, "Register", "+4", "0x");
  MemoryMapElement* empty = tree.add(group, "Register", "", "");
  computeAddresses(root, 0);
  // A kind without addresses ignores its start.
  EXPECT_EQ(placed({root, plain, other, reg, empty}), "0/0 0/0 0/0 4004/0 0/0");
  MemoryMapElement* parent = root;
  for (int level = 0; level < 100000; ++level) parent = tree.add(parent, "RegisterGroup", "+1");
  computeAddresses(root, 0);  // deep trees need no deep stack
  EXPECT_EQ(parent->address, 100000u);
}

}  // namespace
}  // namespace regmill
