// Real-world SVD files: every one converts with default flags, and what is written
// reads back with our own parser. The small probing files also check that the base
// index finds what the plain searches find.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "readers/svd/svd_base_search.h"
#include "readers/svd/svd_inheritance.h"
#include "readers/svd/svd_reader.h"
#include "xml/xml_document.h"

namespace regmill {
namespace {

namespace fs = std::filesystem;

fs::path corpusFolder(const char* name) { return fs::path(REGMILL_SHARED_DIR) / "corpus" / name; }

std::vector<fs::path> svdFilesUnder(const fs::path& folder) {
  std::vector<fs::path> files;
  for (const auto& entry : fs::recursive_directory_iterator(folder))
    if (entry.is_regular_file() && entry.path().extension() == ".svd") files.push_back(entry.path());
  std::sort(files.begin(), files.end());
  return files;
}

bool isDeviceDocument(const fs::path& path) {
  QXMLDocument document(true);
  return document.load(QString::fromStdString(path.string())) && document.root() != nullptr &&
         std::strcmp(document.root()->getName(), "device") == 0;
}

bool isOneOf(const char* value, std::initializer_list<const char*> allowed) {
  return value != nullptr && std::any_of(allowed.begin(), allowed.end(),
                                         [value](const char* word) { return std::strcmp(value, word) == 0; });
}

// Reads the written map back and checks the shape every register must have.
void expectReadableMap(SVDFile& file) {
  std::FILE* stream = std::tmpfile();
  ASSERT_NE(stream, nullptr);
  ASSERT_TRUE(file.write(stream, 2, 0));
  XMLDocument back(false);
  EXPECT_TRUE(back.load(stream));
  std::fclose(stream);
  ASSERT_NE(back.root(), nullptr);
  for (XMLElement* reg : collectElements(back.root(), "Register", true)) {
    ASSERT_EQ(reg->getAttribute("start")[0], '+');
    ASSERT_TRUE(isOneOf(reg->getAttribute("access"), {"Read/Write", "ReadOnly", "WriteOnly", "None"}));
  }
}

void convertEveryFileUnder(const char* folderName, size_t expectedAtLeast) {
  fs::path folder = corpusFolder(folderName);
  if (!fs::is_directory(folder)) GTEST_SKIP() << "no corpus at " << folder << "; the real-world files are not here";
  size_t converted = 0;
  for (const fs::path& path : svdFilesUnder(folder)) {
    SCOPED_TRACE(path.string());
    SVDFile file;
    file.setInterruptTableSize(256);
    if (!loadSVD(file, QString::fromStdString(path.string()), 0, nullptr)) {
      EXPECT_FALSE(isDeviceDocument(path)) << "a device description failed to convert";
      continue;
    }
    ++converted;
    expectReadableMap(file);
  }
  EXPECT_GE(converted, expectedAtLeast);
}

TEST(SVDCorpus, VendorFilesConvertAndReadBack) { convertEveryFileUnder("svd", 125); }

TEST(SVDCorpus, ProbingFilesConvertAndReadBack) { convertEveryFileUnder("svd-edge", 170); }

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
  if (!fs::is_directory(folder)) GTEST_SKIP() << "no corpus at " << folder << "; the real-world files are not here";
  size_t derived = 0;
  for (const fs::path& path : svdFilesUnder(folder)) {
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
