// Real-world files: every XML file of the shared corpus survives a parse, write,
// parse, write cycle, and the second writing changes nothing.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "tests/support/scratch_folder.h"
#include "tests/support/tree_dump.h"
#include "xml/xml_document.h"

namespace regmill {
namespace {

namespace fs = std::filesystem;

std::vector<std::string> corpusFiles() {
  std::vector<std::string> files;
  for (const char* extension : {".svd", ".xml"})
    for (const fs::path& path : testing::filesUnder(testing::corpusFolder(""), extension)) files.push_back(path);
  std::sort(files.begin(), files.end());
  return files;
}

// Brings a tree read with text nodes into a form that the writer prints stably: an
// element holds either one text or no text at all. The white space between tags
// goes; an element with real text keeps its first text only, because a text behind
// a comment or a child element takes up the indentation in front of it on every
// writing. Corpus files are shallow, so the walk may recurse.
void keepOneTextOrNone(XMLNode* node) {
  XMLNode* keptText = nullptr;
  bool onlyTexts = true;
  for (XMLNode* child = node->firstChild(); child != nullptr; child = child->nextSibling()) {
    bool isText = child->nodeType() == XMLNodeType::Data;
    onlyTexts = onlyTexts && isText;
    if (isText && keptText == nullptr && child->getName()[strspn(child->getName(), " \t\n\r\f\v")] != 0)
      keptText = child;
  }
  if (keptText == nullptr && onlyTexts) keptText = node->firstChild();  // white space only
  for (XMLNode *child = node->firstChild(), *next; child != nullptr; child = next) {
    next = child->nextSibling();
    if (keptText != nullptr ? child != keptText : child->nodeType() == XMLNodeType::Data) {
      node->removeChild(child);
      delete child;
    } else if (child->isElement()) {
      keepOneTextOrNone(child);
    }
  }
}

// The tree as read, made stable, and its writing.
std::pair<std::string, std::string> treeAndText(XMLDocument& document, unsigned maxLineLength) {
  if (document.textNodes() && document.root() != nullptr) keepOneTextOrNone(document.root());
  return {testing::dumpRoot(document), testing::writtenText(document, 2, maxLineLength)};
}

void expectRoundTrips(bool textNodes, unsigned maxLineLength) {
  std::vector<std::string> files = corpusFiles();
  if (files.empty())
    GTEST_SKIP() << "no shared corpus under " << REGMILL_SHARED_DIR << "/corpus; the round trip needs its files";
  size_t withRoot = 0;
  for (const std::string& path : files) {
    SCOPED_TRACE(path);
    XMLDocument original(textNodes), reread(textNodes);
    original.load(path.c_str()).ignore();
    auto [firstTree, firstText] = treeAndText(original, maxLineLength);
    EXPECT_TRUE(reread.parse(firstText.c_str()));
    auto [secondTree, secondText] = treeAndText(reread, maxLineLength);
    EXPECT_EQ(firstTree, secondTree);
    EXPECT_EQ(firstText, secondText);
    withRoot += firstTree != "null";
  }
  // Nearly all files of the corpus are well formed; a parser that loses roots shows here.
  EXPECT_GE(withRoot * 10, files.size() * 9);
}

TEST(XmlCorpus, EveryFileSurvivesARoundTripWithText) { expectRoundTrips(true, 0); }

TEST(XmlCorpus, EveryFileSurvivesARoundTripWithoutTextAndWithSpreadTags) { expectRoundTrips(false, 80); }

}  // namespace
}  // namespace regmill
