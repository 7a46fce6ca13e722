// Makes the elements of the memory map for the SVD reader, each appended to its
// parent at once, before its attributes are set. A few bytes of SVD text can ask for
// billions of array instances, so the elements are counted against a limit: work
// that would pass it is refused up front and the read fails instead of exhausting
// memory.
#pragma once
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "memorymap/element_budget.h"
#include "memorymap/memory_map.h"

namespace regmill {

class OutputTree {
 public:
  OutputTree(MemoryMap& document, size_t elementLimit) : document_(document), budget_(elementLimit) {}

  // Books `count` elements for making; false, and refused for good, past the limit.
  bool reserve(uint64_t count) { return budget_.reserve(count); }
  // Whether `count` more elements would still fit, booking nothing.
  bool fits(uint64_t count) const { return budget_.fits(count); }
  void refuse() { budget_.refuse(); }
  bool refused() const { return budget_.refused(); }

  // Makes an element of the tag and appends it to `parent`.
  MemoryMapElement* append(XMLNode* parent, const char* tag);

 private:
  MemoryMap& document_;
  ElementBudget budget_;
};

// Sets an attribute to a copy of the text.
void setText(XMLElement* element, const char* name, std::string_view value);

// a * b, or UINT64_MAX when that doesn't fit.
uint64_t cappedProduct(uint64_t a, uint64_t b);
uint64_t cappedSum(uint64_t a, uint64_t b);

}  // namespace regmill
