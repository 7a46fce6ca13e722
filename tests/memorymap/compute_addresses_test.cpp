#include <gtest/gtest.h>

#include <memory>

#include "memorymap/compute_addresses.h"

namespace regmill {
namespace {

// Builds memory-map trees by hand; the document only makes the elements.
class AddressTree {
 public:
  MemoryMapElement* add(MemoryMapElement* parent, const char* tag, const char* start = nullptr,
                        const char* size = nullptr) {
    MemoryMapElement* element = map_.newElement(tag);
    if (start != nullptr) element->setAttributeCopy("start", start);
    if (size != nullptr) element->setAttributeCopy("size", size);
    if (parent == nullptr) {
      root_.reset(element);
    } else {
      parent->addChild(element);
    }
    return element;
  }

 private:
  MemoryMap map_;
  std::unique_ptr<MemoryMapElement> root_;
};

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
  EXPECT_EQ(group->address, 0x40000000u);
  EXPECT_EQ(group->size, 0x400u);
  EXPECT_EQ(cluster->address, 0x40000100u);
  EXPECT_EQ(cluster->size, 16u);
  EXPECT_EQ(relative->address, 0x40000228u);
  EXPECT_EQ(relative->size, 32u);
  EXPECT_EQ(absolute->address, 0x20000000u);
  EXPECT_EQ(absolute->size, 16u);
  EXPECT_EQ(field->address, 3u);  // a field's start is relative to nothing
  EXPECT_EQ(field->size, 2u);
  EXPECT_EQ(fieldPlus->address, 3u);
  EXPECT_EQ(value->address, 1u);
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
  EXPECT_EQ(broken->address, 0u);
  EXPECT_EQ(broken->size, 77u);  // a size that fails leaves the size as it was
  EXPECT_EQ(child->address, 8u);
  EXPECT_EQ(child->size, 0x20u);
  EXPECT_EQ(brokenRelative->address, 0x1010u);  // the root passes its base on unchanged, and
  EXPECT_EQ(segmentChild->address, 0x1010u);    // a failed relative start is the base alone
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
  EXPECT_EQ(root->address, 0u);  // a kind without addresses ignores its start
  EXPECT_EQ(plain->address, 0u);
  EXPECT_EQ(other->address, 0u);
  EXPECT_EQ(reg->address, 0x4004u);
  EXPECT_EQ(empty->address, 0u);
}

TEST(ComputeAddresses, DeepTreesNeedNoDeepStack) {
  AddressTree tree;
  MemoryMapElement* root = tree.add(nullptr, "Root");
  MemoryMapElement* parent = root;
  for (int level = 0; level < 100000; ++level) parent = tree.add(parent, "RegisterGroup", "+1");
  computeAddresses(root, 0);
  EXPECT_EQ(parent->address, 100000u);
}

}  // namespace
}  // namespace regmill
