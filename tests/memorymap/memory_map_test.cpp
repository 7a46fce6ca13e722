// The memory-map model: element kinds, the root, searches, and the SVD file's
// interrupt table and group removal.
#include "memorymap/memory_map.h"
#include "memorymap/svd_file.h"
#include "xml/xml_string.h"

#include <gtest/gtest.h>

#include <memory>
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

}  // namespace
}  // namespace regmill
