// The writer: prolog, indentation, spreading of long tags, the first-text-child
// rule, escaping, and save.
#include "xml/xml_writer.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <initializer_list>
#include <string>
#include <utility>

#include "tests/support/scratch_folder.h"
#include "tests/support/tree_dump.h"
#include "xml/qt_xml_document.h"

namespace regmill {
namespace {

using testing::owned;
using testing::repeated;
using testing::writtenText;

using Attributes = std::initializer_list<std::pair<std::string, const char*>>;

XMLElement* el(const char* tag, Attributes attributes, std::initializer_list<XMLNode*> children = {}) {
  auto* element = new XMLElement(owned(tag));
  for (const auto& [name, value] : attributes) element->setAttributeCopy(name.c_str(), value);
  for (XMLNode* child : children) element->addChild(child);
  return element;
}
XMLElement* el(const char* tag, std::initializer_list<XMLNode*> children = {}) { return el(tag, {}, children); }
XMLNode* data(const char* text) { return new XMLData(owned(text)); }

struct LayoutCase { const char* name; XMLNode* root; unsigned indentation, maxLineLength; std::string expected; };

TEST(XmlWriter, LayoutFollowsIndentationLineLengthAndTheFirstChild) {
  const LayoutCase cases[] = {
      {"nested, no indentation",
       el("a", {el("b", {el("c")}), el("d", {{"x", "1"}, {"n", nullptr}, {"e", ""}}), el("f", {data("")})}), 0, 0,
       "<a><b><c/></b><d x=\"1\" n=\"\" e=\"\" /><f></f></a>"},
      {"mixed content keeps its first text", el("a", {data("x"), el("b"), data("y")}), 2, 0, "<a>x</a>\n"},
      {"a later text prints like any child", el("a", {el("b"), data("y")}), 3, 0, "<a>\n   <b/>\n   y</a>\n"},
      {"comments and CDATA are raw and end no line",
       el("a", {new XMLComment(owned("<&\xE9")), el("b"), new XMLCDATASection(owned("<&\n"))}), 2, 0,
       "<a>\n  <!--<&\xE9-->  <b/>\n  <![CDATA[<&\n]]></a>\n"},
      // "<e" counts 2, each pair 4 plus its name and its value before escaping: 2 + 10 + 8 = 20.
      {"at the limit", el("e", {{"x", "aaaaa"}, {"y", "&&&"}}), 2, 20, "<e x=\"aaaaa\" y=\"&amp;&amp;&amp;\" />\n"},
      {"spread without indentation", el("e", {{"x", "aaaaa"}, {"y", "bbbb"}}), 0, 20, "<e\nx=\"aaaaa\"\ny=\"bbbb\" />"},
      {"one attribute never spreads", el("e", {{"x", "longer than twenty bytes"}}), 2, 20,
       "<e x=\"longer than twenty bytes\" />\n"},
      {"a null value stays on the tag's line", el("e", {{"n", nullptr}, {"p", "1234567890"}, {"q", "z"}}), 2, 20,
       "<e n=\"\"\n  p=\"1234567890\"\n  q=\"z\" />\n"},
  };
  for (const LayoutCase& c : cases) {
    SCOPED_TRACE(c.name);
    XMLDocument document(true);
    document.setRoot(c.root);
    EXPECT_EQ(writtenText(document, c.indentation, c.maxLineLength), c.expected);
  }
}

TEST(XmlWriter, EveryByteOutsideThePrintableRangeIsAHexadecimalReference) {
  const std::string raw = "\"&<>' ~a&b;\n\t\x01\x1f\x7f\x80\xe9\xff";
  const std::string escaped = "&quot;&amp;&lt;&gt;' ~a&amp;b;&#xa;&#x9;&#x1;&#x1f;&#x7f;&#x80;&#xe9;&#xff;";
  XMLDocument document(true);
  document.setRoot(el("e", {{"v", raw.c_str()}}, {data(raw.c_str())}));
  EXPECT_EQ(writtenText(document, 0, 0), "<e v=\"" + escaped + "\">" + escaped + "</e>");
  // And the parser reads every byte back as it was.
  std::string all;
  for (int byte = 1; byte < 256; ++byte) all += static_cast<char>(byte);
  XMLDocument source(true), back(true);
  source.setRoot(el("e", {{"v", all.c_str()}}, {data(all.c_str())}));
  ASSERT_TRUE(back.parse(writtenText(source, 2, 0).c_str()));
  EXPECT_EQ(testing::dumpRoot(back), testing::dumpRoot(source));
}

TEST(XmlWriter, DeepNestingParsesWritesAndIsFreedWithoutRecursion) {
  // A recursive parser, writer or destructor would exhaust the stack long before this.
  constexpr size_t kDepth = 200000;
  const std::string text = repeated("<e a='1'>", kDepth) + repeated("</e>", kDepth);
  XMLDocument document(false), withText(true);
  ASSERT_TRUE(document.parse(text.c_str()));
  EXPECT_EQ(writtenText(document, 0, 80),
            repeated("<e a=\"1\">", kDepth - 1) + "<e a=\"1\" />" + repeated("</e>", kDepth - 1));
  // With text nodes every element also holds empty texts; the first of them is all that prints.
  ASSERT_TRUE(withText.parse(text.c_str()));
  EXPECT_EQ(writtenText(withText, 0, 0), "<e a=\"1\"></e>");
}

TEST(XmlWriter, FailedSavesAndWritesAreReportedAndAPrologNeedsNoRoot) {
  testing::ScratchFolder folder;
  QXMLDocument document(false);
  std::string unwritable = folder.file("no-such-folder/out.xml");
  EXPECT_FALSE(document.save(QString::fromStdString(unwritable), 2, 0));
  EXPECT_EQ(std::string(document.errorText()), "couldn't write " + unwritable);
  XMLDocument encodingOnly(false);  // without a root nothing follows the prolog
  encodingOnly.setEncoding(owned("e"));
  EXPECT_EQ(writtenText(encodingOnly, 2, 0), "<?xml  encoding=\"e\" ?>\n");
  ASSERT_TRUE(document.parse(("<a x='" + std::string(100000, 'v') + "'/>").c_str()));
  std::FILE* full = std::fopen("/dev/full", "wb");
  ASSERT_NE(full, nullptr);
  EXPECT_FALSE(document.write(full, 2, 0).ok());
  std::fclose(full);
}

}  // namespace
}  // namespace regmill
