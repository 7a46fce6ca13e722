// The writer: prolog, indentation, spreading of long tags, the first-text-child
// rule, escaping, and save.
#include "xml/xml_writer.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>
#include <utility>

#include "tests/xml/xml_test_support.h"
#include "xml/xml_document.h"

namespace regmill {
namespace {

using test::owned;
using test::writeToString;

using Attributes = std::initializer_list<std::pair<const char*, const char*>>;

XMLElement* el(const char* tag, Attributes attributes, std::initializer_list<XMLNode*> children = {}) {
  auto* element = new XMLElement(owned(tag));
  for (const auto& [name, value] : attributes) element->setAttributeCopy(name, value);
  for (XMLNode* child : children) element->addChild(child);
  return element;
}
XMLElement* el(const char* tag, std::initializer_list<XMLNode*> children = {}) { return el(tag, {}, children); }
XMLNode* data(const char* text) { return new XMLData(owned(text)); }
XMLNode* comment(const char* text) { return new XMLComment(owned(text)); }
XMLNode* cdata(const char* text) { return new XMLCDATASection(owned(text)); }

std::string written(XMLNode* root, unsigned indentation, unsigned maxLineLength = 0) {
  XMLDocument document(true);
  document.setRoot(root);
  return writeToString(document, indentation, maxLineLength);
}

const std::string k14a(14, 'a');
const std::string k14b(14, 'b');
const std::string k15b(15, 'b');

TEST(XmlWriter, AnEmptyDocumentIsAnEmptyFile) {
  XMLDocument document(true);
  EXPECT_EQ(writeToString(document, 2, 0), "");
}

TEST(XmlWriter, ThePrologHasTwoBlanksAfterXmlAndOneBeforeTheQuestionMark) {
  XMLDocument full(false);
  ASSERT_TRUE(full.parse("<?xml version='1.0' encoding='UTF-8'?><!DOCTYPE device><a/>"));
  EXPECT_EQ(writeToString(full, 0, 0), "<?xml  version=\"1.0\" encoding=\"UTF-8\" ?>\n<!DOCTYPE device>\n<a/>");

  XMLDocument versionOnly(false);
  versionOnly.setVersion(owned("1.0"));
  EXPECT_EQ(writeToString(versionOnly, 2, 0), "<?xml  version=\"1.0\" ?>\n");

  XMLDocument encodingOnly(false);
  encodingOnly.setEncoding(owned("e"));
  encodingOnly.setRoot(el("a"));
  EXPECT_EQ(writeToString(encodingOnly, 2, 0), "<?xml  encoding=\"e\" ?>\n<a/>\n");

  XMLDocument typeOnly(false);
  typeOnly.setDocumentType(owned("t"));
  EXPECT_EQ(writeToString(typeOnly, 2, 0), "<!DOCTYPE t>\n");
}

struct LayoutCase {
  const char* name;
  XMLNode* root;
  unsigned indentation;
  unsigned maxLineLength;
  std::string expected;
};

void expectLayouts(std::initializer_list<LayoutCase> cases) {
  for (const LayoutCase& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(written(c.root, c.indentation, c.maxLineLength), c.expected);
  }
}

TEST(XmlWriter, IndentationPlacesTagsAndLineFeeds) {
  expectLayouts({
      {"empty element", el("a"), 2, 0, "<a/>\n"},
      {"empty element, no indentation", el("a"), 0, 0, "<a/>"},
      {"empty element with attribute", el("a", {{"x", "1"}}), 2, 0, "<a x=\"1\" />\n"},
      {"nested", el("a", {el("b", {el("c")})}), 2, 0, "<a>\n  <b>\n    <c/>\n  </b>\n</a>\n"},
      {"nested, three blanks", el("a", {el("b", {el("c")})}), 3, 0, "<a>\n   <b>\n      <c/>\n   </b>\n</a>\n"},
      {"nested, no indentation", el("a", {el("b", {el("c")})}), 0, 0, "<a><b><c/></b></a>"},
      {"text elements", el("a", {el("b", {data("t")}), el("c", {{"x", "1"}}, {data("u")})}), 2, 0,
       "<a>\n  <b>t</b>\n  <c x=\"1\">u</c>\n</a>\n"},
      {"text elements, no indentation", el("a", {el("b", {data("t")}), el("c", {data("")})}), 0, 0,
       "<a><b>t</b><c></c></a>"},
  });
}

TEST(XmlWriter, OnlyAFirstTextChildIsPrinted) {
  expectLayouts({
      {"mixed content keeps its first text", el("a", {data("x"), el("b"), data("y")}), 2, 0, "<a>x</a>\n"},
      {"an empty first text hides the rest", el("a", {data(""), el("b", {data("t")})}), 2, 0, "<a></a>\n"},
      {"a later text is printed like any child", el("a", {el("b"), data("y")}), 2, 0, "<a>\n  <b/>\n  y</a>\n"},
  });
  // Parsed with text nodes on, the gap behind a start tag is the first child.
  XMLDocument document(true);
  ASSERT_TRUE(document.parse("<a>\n  <b>t</b>\n</a>"));
  EXPECT_EQ(writeToString(document, 2, 0), "<a>&#xa;  </a>\n");
}

TEST(XmlWriter, CommentsAndCdataAreRawAndEndNoLine) {
  expectLayouts({
      {"indented", el("a", {comment("c"), el("b"), cdata("d")}), 2, 0,
       "<a>\n  <!--c-->  <b/>\n  <![CDATA[d]]></a>\n"},
      {"not indented", el("a", {comment("c"), el("b"), cdata("d")}), 0, 0, "<a><!--c--><b/><![CDATA[d]]></a>"},
      {"raw texts", el("a", {comment("<&\"\xE9\n>"), cdata("<&\"\xE9\n>")}), 0, 0,
       "<a><!--<&\"\xE9\n>--><![CDATA[<&\"\xE9\n>]]></a>"},
      {"text root", data("t&"), 2, 0, "t&amp;"},
      {"comment root", comment("c"), 2, 0, "<!--c-->"},
  });
}

TEST(XmlWriter, NullAndEmptyValuesBothPrintAsEmptyQuotes) {
  expectLayouts({
      {"null and empty", el("a", {{"n", nullptr}, {"e", ""}}), 2, 0, "<a n=\"\" e=\"\" />\n"},
      {"null with children", el("a", {{"n", nullptr}}, {el("b")}), 0, 0, "<a n=\"\"><b/></a>"},
  });
}

TEST(XmlWriter, LongTagsSpreadTheirAttributesOverLines) {
  const std::string a = k14a, b = k14b, b15 = k15b;
  const std::string amps(14, '&');
  std::string ampsEscaped;
  for (int i = 0; i < 14; ++i) ampsEscaped += "&amp;";
  expectLayouts({
      // "<e" counts 2, each pair 4 plus its name and value: 2 + 19 + 19 = 40.
      {"exactly at the limit", el("e", {{"x", a.c_str()}, {"y", b.c_str()}}), 2, 40,
       "<e x=\"" + a + "\" y=\"" + b + "\" />\n"},
      {"one over the limit", el("e", {{"x", a.c_str()}, {"y", b15.c_str()}}), 2, 40,
       "<e\n  x=\"" + a + "\"\n  y=\"" + b15 + "\" />\n"},
      {"the depth counts", el("r", {el("e", {{"x", a.c_str()}, {"y", b.c_str()}})}), 2, 40,
       "<r>\n  <e\n    x=\"" + a + "\"\n    y=\"" + b + "\" />\n</r>\n"},
      {"no depth without indentation", el("r", {el("e", {{"x", a.c_str()}, {"y", b.c_str()}})}), 0, 40,
       "<r><e x=\"" + a + "\" y=\"" + b + "\" /></r>"},
      {"spread without indentation", el("r", {el("e", {{"x", a.c_str()}, {"y", b15.c_str()}})}), 0, 40,
       "<r><e\nx=\"" + a + "\"\ny=\"" + b15 + "\" /></r>"},
      {"one attribute never spreads", el("e", {{"x", std::string(100, 'v').c_str()}}), 2, 40,
       "<e x=\"" + std::string(100, 'v') + "\" />\n"},
      {"no limit", el("e", {{"x", std::string(100, 'v').c_str()}, {"y", "1"}}), 2, 0,
       "<e x=\"" + std::string(100, 'v') + "\" y=\"1\" />\n"},
      {"the value counts before escaping", el("e", {{"x", amps.c_str()}, {"y", b.c_str()}}), 2, 40,
       "<e x=\"" + ampsEscaped + "\" y=\"" + b + "\" />\n"},
      {"a null value stays on the tag's line",
       el("e", {{"n", nullptr}, {"p", "1234567890"}, {"q", "z"}}), 2, 20,
       "<e n=\"\"\n  p=\"1234567890\"\n  q=\"z\" />\n"},
      {"spread with children", el("e", {{"x", a.c_str()}, {"y", b15.c_str()}}, {el("c")}), 2, 40,
       "<e\n  x=\"" + a + "\"\n  y=\"" + b15 + "\">\n  <c/>\n</e>\n"},
      {"spread with text", el("e", {{"x", a.c_str()}, {"y", b15.c_str()}}, {data("t")}), 2, 40,
       "<e\n  x=\"" + a + "\"\n  y=\"" + b15 + "\">t</e>\n"},
  });
}

struct EscapeCase {
  std::string raw;
  std::string escaped;
};

TEST(XmlWriter, ValuesAndTextAreEscapedByteByByte) {
  const EscapeCase cases[] = {
      {"\"", "&quot;"},
      {"&", "&amp;"},
      {"<", "&lt;"},
      {">", "&gt;"},
      {"'", "'"},
      {" ~", " ~"},
      {"AZaz09!#$%()*+,-./:;=?@[\\]^_`{|}", "AZaz09!#$%()*+,-./:;=?@[\\]^_`{|}"},
      {"a&b;c", "a&amp;b;c"},
      {"\n", "&#xa;"},
      {"\t", "&#x9;"},
      {"\r", "&#xd;"},
      {"\x01", "&#x1;"},
      {"\x1f", "&#x1f;"},
      {"\x7f", "&#x7f;"},
      {"\x80", "&#x80;"},
      {"\xe9", "&#xe9;"},
      {"\xff", "&#xff;"},
      {"caf\xc3\xa9", "caf&#xc3;&#xa9;"},
  };
  for (const EscapeCase& c : cases) {
    SCOPED_TRACE(c.escaped);
    EXPECT_EQ(written(el("e", {{"v", c.raw.c_str()}}), 0), "<e v=\"" + c.escaped + "\" />");
    EXPECT_EQ(written(el("e", {data(c.raw.c_str())}), 0), "<e>" + c.escaped + "</e>");
    std::string appended = "x";
    appendEscaped(appended, c.raw.c_str());
    EXPECT_EQ(appended, "x" + c.escaped);
  }
}

TEST(XmlWriter, EveryByteReadsBackTheSame) {
  std::string all;
  for (int byte = 1; byte < 256; ++byte) all += static_cast<char>(byte);
  XMLDocument source(true);
  source.setRoot(el("e", {{"v", all.c_str()}}, {data(all.c_str())}));
  std::string text = writeToString(source, 2, 0);
  // Nothing outside the printable range is left in the output but the final line feed.
  for (size_t i = 0; i + 1 < text.size(); ++i) ASSERT_TRUE(text[i] >= 0x20 && text[i] <= 0x7E) << i;

  XMLDocument back(true);
  ASSERT_TRUE(back.parse(text.c_str()));
  auto* root = static_cast<XMLElement*>(back.root());
  ASSERT_NE(root, nullptr);
  EXPECT_EQ(std::string(root->getAttribute("v")), all);
  ASSERT_NE(root->firstChild(), nullptr);
  EXPECT_EQ(std::string(root->firstChild()->getName()), all);
}

TEST(XmlWriter, DeepTreesArePrintedWithoutRecursion) {
  constexpr size_t kDepth = 200000;
  std::string text;
  for (size_t i = 0; i < kDepth; ++i) text += "<e>";
  for (size_t i = 0; i < kDepth; ++i) text += "</e>";

  XMLDocument document(false);
  ASSERT_TRUE(document.parse(text.c_str()));
  std::string expected;
  for (size_t i = 1; i < kDepth; ++i) expected += "<e>";
  expected += "<e/>";
  for (size_t i = 1; i < kDepth; ++i) expected += "</e>";
  EXPECT_EQ(writeToString(document, 0, 80), expected);

  // With text nodes the empty gap behind the first start tag is all that prints.
  XMLDocument withText(true);
  ASSERT_TRUE(withText.parse(text.c_str()));
  EXPECT_EQ(writeToString(withText, 0, 0), "<e></e>");
}

TEST(XmlWriter, SaveWritesTheFileOrReportsThePath) {
  test::TempFolder folder;
  QXMLDocument document(false);
  ASSERT_TRUE(document.parse("<?xml version='1.0'?><a x='1'><b/></a>"));
  EXPECT_TRUE(document.save(QString::fromStdString(folder.file("out.xml")), 2, 0));
  EXPECT_EQ(folder.read("out.xml"), "<?xml  version=\"1.0\" ?>\n<a x=\"1\">\n  <b/>\n</a>\n");

  std::string unwritable = folder.file("no-such-folder/out.xml");
  EXPECT_FALSE(document.save(QString::fromStdString(unwritable), 2, 0));
  EXPECT_EQ(std::string(document.errorText()), "couldn't write " + unwritable);
}

}  // namespace
}  // namespace regmill
