// The small probing files of the real-world corpus: the base index finds what the
// plain searches find. The corpus conversions run through the converter itself.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <set>

#include "readers/svd/svd_base_search.h"
#include "readers/svd/svd_inheritance.h"
#include "readers/svd/svd_reader.h"
#include "tests/support/scratch_folder.h"
#include "xml/xml_document.h"

namespace regmill {
namespace {

namespace fs = std::filesystem;
using testing::corpusFolder;
using testing::filesUnder;

bool isOneOf(const char* value, std::initializer_list<const char*> allowed) {
  return value != nullptr && std::any_of(allowed.begin(), allowed.end(),
                                         [value](const char* word) { return std::strcmp(value, word) == 0; });
}

// The chain rule followed step by step with plain searches: the last element reached
// before an element would come round again; an element naming itself is its own base.
const XMLElement* resolveBySearching(const XMLNode* root, const XMLElement* element) {
  std::set<const XMLElement*> passed{element};
  const XMLElement* base = nullptr;
  for (const XMLElement* current = element; current->hasAttribute("derivedFrom");) {
    bool wholeDocument = isOneOf(current->getName(), {"field", "enumeratedValues"});
    const XMLNode* area = wholeDocument ? root : current->parent()->firstChild();
    const XMLElement* next =
        findNamedElement(area, current->getName(), wholeDocument, current->getAttribute("derivedFrom"));
    if (next == nullptr) break;
    if (!passed.insert(next).second) {
      if (base == nullptr) base = next;
      break;
    }
    base = current = next;
  }
  return base;
}

TEST(SVDCorpus, BaseIndexAgreesWithThePlainSearchOnProbingFiles) {
  fs::path folder = corpusFolder("svd-edge");
  REGMILL_SKIP_WITHOUT(folder);
  size_t derived = 0;
  for (const fs::path& path : filesUnder(folder, ".svd")) {
    SCOPED_TRACE(path.string());
    QXMLDocument document(true);
    if (!document.load(QString::fromStdString(path.string())) || document.root() == nullptr) continue;
    XMLNode* root = document.root();
    DerivationIndex index(root);
    for (const char* tag : {"peripheral", "register", "field", "enumeratedValues"}) {
      for (const XMLElement* element : collectElements(root, tag, true)) {
        if (!element->hasAttribute("derivedFrom")) continue;
        ++derived;
        EXPECT_EQ(index.resolveDerived(element), resolveBySearching(root, element))
            << tag << " derived from " << element->getAttribute("derivedFrom");
      }
    }
  }
  EXPECT_GT(derived, 50u);
}

}  // namespace
}  // namespace regmill
