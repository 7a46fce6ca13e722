// The most elements one read of a device description may make. A few bytes of input
// can ask for billions of elements (an array's "dim", an enumeration repeated under
// every field that names it, one register file named by every instance), so each
// reader books what it is about to make: a read that would pass the budget fails
// instead of exhausting memory. Real devices stay far below it.
#pragma once
#include <cstddef>
#include <cstdint>

namespace regmill {

constexpr size_t kDefaultElementLimit = size_t{1} << 23;

class ElementBudget {
 public:
  explicit ElementBudget(uint64_t limit = kDefaultElementLimit) : remaining_(limit) {}

  // Books `count` elements; false, and refused for good, past the limit.
  bool reserve(uint64_t count) {
    if (!fits(count)) {
      refused_ = true;
      return false;
    }
    remaining_ -= count;
    return true;
  }
  // Whether `count` more elements would still fit, booking nothing.
  bool fits(uint64_t count) const { return !refused_ && count <= remaining_; }
  void refuse() { refused_ = true; }
  bool refused() const { return refused_; }

 private:
  uint64_t remaining_;
  bool refused_ = false;
};

}  // namespace regmill
