// Real-world files: every XML file of the shared corpus survives a parse, write,
// parse, write cycle, and the second writing changes nothing.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "tests/xml/xml_test_support.h"
#include "xml/xml_document.h"

namespace regmill {
namespace {

namespace fs = std::filesystem;
using test::dumpRoot;
using test::writeToString;

std::vector<std::string> corpusFiles() {
  std::vector<std::string> files;
  fs::path corpus = fs::path(REGMILL_SHARED_DIR) / "corpus";
  std::error_code error;
  if (!fs::is_directory(corpus, error)) return files;
  for (const auto& entry : fs::recursive_directory_iterator(corpus, error)) {
    std::string extension = entry.path().extension().string();
    if (entry.is_regular_file() && (extension == ".svd" || extension == ".xml"))
      files.push_back(entry.path().string());
  }
  std::sort(files.begin(), files.end());
  return files;
}

bool isWhiteSpaceOnly(const char* text) { return text[strspn(text, " \t\n\r\f\v")] == '\0'; }

// Brings a tree read with text nodes into a form that the writer prints stably: an
// element holds either one text or no text at all. The white space between tags
// goes; an element with real text keeps its first text only, because a text behind
// a comment or a child element takes up the indentation in front of it on every
// writing.
void keepOneTextOrNone(XMLNode* root) {
  std::vector<XMLNode*> pending{root};
  while (!pending.empty()) {
    XMLNode* node = pending.back();
    pending.pop_back();
    XMLNode* keptText = nullptr;
    bool hasOthers = false;
    for (XMLNode* child = node->firstChild(); child != nullptr; child = child->nextSibling()) {
      if (child->nodeType() != XMLNodeType::Data)
        hasOthers = true;
      else if (keptText == nullptr && !isWhiteSpaceOnly(child->getName()))
        keptText = child;
    }
    if (keptText == nullptr && !hasOthers) keptText = node->firstChild();  // white space only
    std::vector<XMLNode*> doomed;
    for (XMLNode* child = node->firstChild(); child != nullptr; child = child->nextSibling()) {
      bool keep = keptText != nullptr ? child == keptText : child->nodeType() != XMLNodeType::Data;
      if (!keep) doomed.push_back(child);
    }
    for (XMLNode* child : doomed) {
      node->removeChild(child);
      delete child;
    }
    for (XMLNode* child = node->firstChild(); child != nullptr; child = child->nextSibling())
      if (child->isElement()) pending.push_back(child);
  }
}

struct Cycle {
  std::string firstText;
  std::string secondText;
  std::string firstTree;
  std::string secondTree;
  bool firstParseOk;
  bool secondParseOk;
};

Cycle runCycle(const std::string& path, bool textNodes, unsigned maxLineLength) {
  Cycle cycle;
  XMLDocument original(textNodes);
  cycle.firstParseOk = original.load(path.c_str());
  if (textNodes && original.root() != nullptr) keepOneTextOrNone(original.root());
  cycle.firstTree = dumpRoot(original);
  cycle.firstText = writeToString(original, 2, maxLineLength);

  XMLDocument reread(textNodes);
  cycle.secondParseOk = reread.parse(cycle.firstText.c_str());
  if (textNodes && reread.root() != nullptr) keepOneTextOrNone(reread.root());
  cycle.secondTree = dumpRoot(reread);
  cycle.secondText = writeToString(reread, 2, maxLineLength);
  return cycle;
}

class XmlCorpus : public testing::Test {
 protected:
  void SetUp() override {
    files_ = corpusFiles();
    if (files_.empty())
      GTEST_SKIP() << "no shared corpus under " << REGMILL_SHARED_DIR << "/corpus; the round trip needs its files";
  }
  std::vector<std::string> files_;
};

TEST_F(XmlCorpus, EveryFileSurvivesARoundTripWithText) {
  size_t withRoot = 0;
  for (const std::string& path : files_) {
    SCOPED_TRACE(path);
    Cycle cycle = runCycle(path, true, 0);
    EXPECT_TRUE(cycle.secondParseOk);
    if (cycle.firstTree != "null") ++withRoot;
    EXPECT_EQ(cycle.firstTree, cycle.secondTree);
    EXPECT_EQ(cycle.firstText, cycle.secondText);
  }
  // Nearly all files of the corpus are well formed; a parser that loses roots shows here.
  EXPECT_GE(withRoot * 10, files_.size() * 9);
}

TEST_F(XmlCorpus, EveryFileSurvivesARoundTripWithoutTextAndWithSpreadTags) {
  for (const std::string& path : files_) {
    SCOPED_TRACE(path);
    Cycle cycle = runCycle(path, false, 80);
    EXPECT_TRUE(cycle.secondParseOk);
    EXPECT_EQ(cycle.firstTree, cycle.secondTree);
    EXPECT_EQ(cycle.firstText, cycle.secondText);
  }
}

TEST(XmlCorpusSample, TheArmSampleReadsAsItsTextSays) {
  // A spot check that the content is really there, not only consistent with itself;
  // the counts and lines below were read off the file with a text editor.
  std::string path = std::string(REGMILL_SHARED_DIR) + "/corpus/svd/ARM_SAMPLE/ARM_Sample.svd";
  if (!fs::exists(path)) GTEST_SKIP() << path << " is not there; the sample check needs the shared corpus";
  QXMLDocument document(true);
  ASSERT_TRUE(document.load(QString::fromStdString(path))) << document.errorText();
  EXPECT_STREQ(document.version(), "1.0");
  EXPECT_STREQ(document.encoding(), "utf-8");
  ASSERT_NE(document.root(), nullptr);
  EXPECT_STREQ(document.root()->getName(), "device");
  XMLElement* peripherals = findChild(document.root()->firstChild(), "peripherals");
  ASSERT_NE(peripherals, nullptr);
  std::vector<XMLElement*> all = collectElements(peripherals->firstChild(), "peripheral", false);
  ASSERT_EQ(all.size(), 3u);
  std::string names;
  for (const XMLElement* peripheral : all) {
    names += elementText(findChild(peripheral->firstChild(), "name")).toStdString() + "@" +
             std::to_string(peripheral->line()) + " ";
  }
  EXPECT_EQ(names, "TIMER0@27 TIMER1@719 TIMER2@729 ");
  EXPECT_EQ(all[0]->getAttribute("derivedFrom"), nullptr);
  EXPECT_STREQ(all[2]->getAttribute("derivedFrom"), "TIMER0");
  EXPECT_EQ(collectElements(peripherals->firstChild(), "register", true).size(), 8u);
  EXPECT_EQ(collectElements(document.root(), "field", true).size(), 20u);
}

}  // namespace
}  // namespace regmill
