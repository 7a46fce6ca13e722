#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "memorymap/compute_addresses.h"

namespace regmill {
namespace {

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
