// The first child element of each tag that the SVD reader looks up, found in one pass
// over an element's children. A lookup of a value is then one array access, however
// many children the element has and however often it serves as a base.
#pragma once
#include <array>
#include <cstdint>

#include "readers/svd/svd_text.h"
#include "xml/xml_node.h"

namespace regmill {

// The tags of the single-valued children the reader reads, spelled as in kSVDTagNames.
enum class SVDTag : uint8_t {
  Name, Description, Width, Size, Access, ResetValue, ResetMask, Peripherals, Cpu,
  MpuPresent, FpuPresent, NvicPrioBits, BaseAddress, PrependToName, AppendToName,
  Registers, AddressOffset, AlternateCluster, Dim, DimIncrement, DimIndex, ReadAction,
  Fields, BitOffset, BitWidth, BitRange, Lsb, Msb, EnumeratedValues, Value,
  Count
};

class ChildTable {
 public:
  // The table of an absent element: every lookup gives null.
  ChildTable() { first_.fill(nullptr); }
  explicit ChildTable(const XMLElement* element);

  // The first child element with the tag (exact, case-sensitive), or null.
  const XMLElement* find(SVDTag tag) const { return first_[static_cast<size_t>(tag)]; }
  TextValue text(SVDTag tag) const { return TextValue(find(tag)); }
  // How many child nodes the pass went over.
  size_t childCount() const { return childCount_; }

 private:
  std::array<const XMLElement*, static_cast<size_t>(SVDTag::Count)> first_;
  size_t childCount_ = 0;
};

}  // namespace regmill
