#include "readers/svd/svd_child_table.h"

#include <cstring>
#include <optional>
#include <string_view>
#include <vector>

namespace regmill {

namespace {

constexpr std::array<std::string_view, static_cast<size_t>(SVDTag::Count)> kSVDTagNames = {
    "name", "description", "width", "size", "access", "resetValue", "resetMask", "peripherals", "cpu",
    "mpuPresent", "fpuPresent", "nvicPrioBits", "baseAddress", "prependToName", "appendToName",
    "registers", "addressOffset", "alternateCluster", "dim", "dimIncrement", "dimIndex", "readAction",
    "fields", "bitOffset", "bitWidth", "bitRange", "lsb", "msb", "enumeratedValues", "value"};

// The tags grouped by first letter; within a group the length is compared first, so
// a child's tag is compared byte by byte with a name or two at most.
class TagClassifier {
 public:
  TagClassifier() {
    for (size_t i = 0; i < kSVDTagNames.size(); ++i)
      groups_[static_cast<size_t>(kSVDTagNames[i][0] - 'a')].push_back(static_cast<SVDTag>(i));
  }
  std::optional<SVDTag> find(const char* tag) const {
    if (tag[0] < 'a' || tag[0] > 'z') return std::nullopt;
    size_t length = std::strlen(tag);
    for (SVDTag candidate : groups_[static_cast<size_t>(tag[0] - 'a')]) {
      std::string_view name = kSVDTagNames[static_cast<size_t>(candidate)];
      if (name.size() == length && std::memcmp(name.data(), tag, length) == 0) return candidate;
    }
    return std::nullopt;
  }

 private:
  std::array<std::vector<SVDTag>, 26> groups_;
};

}  // namespace

ChildTable::ChildTable(const XMLElement* element) {
  first_.fill(nullptr);
  if (element == nullptr) return;
  static const TagClassifier tags;
  for (const XMLNode* node = element->firstChild(); node != nullptr; node = node->nextSibling()) {
    ++childCount_;
    if (!node->isElement()) continue;
    std::optional<SVDTag> found = tags.find(node->getName());
    if (!found) continue;
    const XMLElement*& slot = first_[static_cast<size_t>(*found)];
    if (slot == nullptr) slot = static_cast<const XMLElement*>(node);
  }
}

}  // namespace regmill
