// The parser and the document's load and parse: what tree a text gives, the two
// errors and their lines, the prolog, and reading files.
#include "xml/xml_parser.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <utility>
#include <vector>

#include "tests/xml/xml_test_support.h"
#include "xml/xml_document.h"

namespace regmill {
namespace {

using test::dumpRoot;

constexpr bool kText = true;
constexpr bool kNoText = false;

struct TreeCase {
  const char* input;
  bool textNodes;
  const char* tree;  // dumpTree form, or "null"
};

// Each text parses without error to the given tree.
void expectTrees(const std::vector<TreeCase>& cases) {
  for (const TreeCase& c : cases) {
    SCOPED_TRACE(testing::Message() << "input: " << c.input << (c.textNodes ? " (text nodes)" : ""));
    XMLDocument document(c.textNodes);
    EXPECT_TRUE(document.parse(c.input));
    EXPECT_EQ(dumpRoot(document), c.tree);
  }
}

TEST(XmlParser, TextThatDoesNotBeginWithATagGivesNoRoot) {
  expectTrees({
      {"", kText, "null"},
      {" \n\t\r\f\v ", kText, "null"},
      {"text <a/>", kText, "null"},
      {"\xEF\xBB\xBF<a/>", kText, "null"},  // no byte order mark handling in memory
      {" \n <a/>", kNoText, "(a)"},
  });
}

TEST(XmlParser, TextNodesFillEveryGapBetweenTags) {
  expectTrees({
      {"<a></a>", kText, "(a \"\")"},
      {"<a></a>", kNoText, "(a)"},
      {"<a>\n  <b>x</b>\n</a>", kText, "(a \"\\n  \" (b \"x\") \"\\n\")"},
      {"<a>\n  <b>x</b>\n</a>", kNoText, "(a (b))"},
      {"<a>x<b/>y</a>", kText, "(a \"x\" (b) \"y\")"},
      {"<a>x\r\ny\r</a>", kText, "(a \"x\\ny\")"},
      {"<a>a > b ' \"</a>", kText, "(a \"a > b ' \\\"\")"},
      {"<a/>top-level text<!--c-->", kText, "(a)"},
  });
}

TEST(XmlParser, EntitiesAndCharacterReferencesAreDecoded) {
  expectTrees({
      {"<a v=\"&lt;&gt;&amp;&quot;&apos;\"/>", kNoText, "(a @v=\"<>&\\\"'\")"},
      {"<a>1 &lt; 2 &amp;&amp; &#x41;&#66;</a>", kText, "(a \"1 < 2 && AB\")"},
      {"<a d=\"&#65;\" h=\"&#x41;\" l=\"&#x6a;\"/>", kNoText, "(a @d=\"A\" @h=\"A\" @l=\"j\")"},
      // Only the low 8 bits of a number are kept.
      {"<a d=\"&#321;\" h=\"&#x1e9;\" u=\"&#xc3;&#xa9;\"/>", kNoText, "(a @d=\"A\" @h=\"\\xE9\" @u=\"\\xC3\\xA9\")"},
      // Anything that isn't one of the forms keeps its "&" and the bytes behind it.
      {"<a v=\"&nbsp;&#;&#x;&#65&&\" c=\"&AMP;&Lt;&am p;\"/>", kNoText,
       "(a @v=\"&nbsp;&#;&#x;&#65&&\" @c=\"&AMP;&Lt;&am p;\")"},
      // A form cut short by the end of its token is no form.
      {"<a w=\"&#x41\" n=\"&amp\" e=\"&\"/>", kNoText, "(a @w=\"&#x41\" @n=\"&amp\" @e=\"&\")"},
      {"<a>&am</a>", kText, "(a \"&am\")"},
      {"<a>&#65</a>", kText, "(a \"&#65\")"},
      {"<a>x&amp;</a>", kText, "(a \"x&\")"},
  });
  // An upper-case X is not the hexadecimal form: whatever it gives, it isn't "A".
  XMLDocument document(kNoText);
  ASSERT_TRUE(document.parse("<a v=\"&#X41;\"/>"));
  EXPECT_STRNE(static_cast<XMLElement*>(document.root())->getAttribute("v"), "A");
}

TEST(XmlParser, AttributeValuesAndLoneWords) {
  expectTrees({
      {"<a x=\"1\" y='2'/>", kNoText, "(a @x=\"1\" @y=\"2\")"},
      {"<a x=\"it's\" y='say \"hi\"'/>", kNoText, "(a @x=\"it's\" @y=\"say \\\"hi\\\"\")"},
      {"<a  x = \"1\"\n\ty\t=\n'2'  />", kNoText, "(a @x=\"1\" @y=\"2\")"},
      {"<a v=\"\" w='<b>'/>", kNoText, "(a @v=\"\" @w=\"<b>\")"},
      // A carriage return in a value stays, also where entities are decoded.
      {"<a v=\"x\r\ny\" w=\"&amp;\r\n\"/>", kNoText, "(a @v=\"x\\r\\ny\" @w=\"&\\r\\n\")"},
      // A word without "=" and an "=" without a quote are dropped; the element survives.
      {"<a b c=\"1\" d/>", kNoText, "(a @c=\"1\")"},
      {"<a b c=\"1\" d>text</a>", kText, "(a @c=\"1\" \"text\")"},
      {"<a b=c d='1'/>", kNoText, "(a @d=\"1\")"},
      {"<a v=/>", kNoText, "(a)"},
      {"<a x=\"1\" y=\"2\" x=\"3\"/>", kNoText, "(a @x=\"3\" @y=\"2\")"},
      {"<a -x=\"1\" _y=\"2\" :z=\"3\" n-1:b_c=\"4\"/>", kNoText,
       "(a @-x=\"1\" @_y=\"2\" @:z=\"3\" @n-1:b_c=\"4\")"},
      {"<a:b-c_1 x='1'></a:b-c_1>", kNoText, "(a:b-c_1 @x=\"1\")"},
      {"< a/>", kNoText, "()"},  // a name may be empty
  });
}

TEST(XmlParser, CommentsFollowTheTextFlagAndCdataDoesNot) {
  expectTrees({
      {"<a><!--c--></a>", kText, "(a \"\" #\"c\" \"\")"},
      {"<a><!--c--></a>", kNoText, "(a)"},
      {"<a><!-- x - y -- z --></a>", kText, "(a \"\" #\" x - y -- z \" \"\")"},
      {"<a><!--x--->y--></a>", kText, "(a \"\" #\"x--->y\" \"\")"},
      {"<a><!---x----></a>", kText, "(a \"\" #\"-x--\" \"\")"},
      {"<a><!----></a>", kText, "(a \"\" #\"\" \"\")"},
      {"<a><!--a<b>&amp;\r\n--></a>", kText, "(a \"\" #\"a<b>&amp;\\r\\n\" \"\")"},
      {"<a><!-x></a>", kText, "(a \"\" \"x>\")"},  // one dash: no comment, the rest is text
      {"<!--c--><a/><!--d-->", kText, "(a)"},
      {"<a><!--x</a>", kText, "null"},  // runs to the end
      {"<a><![CDATA[x<y>&amp;\r\n]]></a>", kNoText, "(a $\"x<y>&amp;\\r\\n\")"},
      {"<a><![CDATA[x<y>]]></a>", kText, "(a \"\" $\"x<y>\" \"\")"},
      {"<a><![CDATA[]]></a>", kNoText, "(a $\"\")"},
      {"<a><![CDATA[x]]y]]]>z]]></a>", kNoText, "(a $\"x]]y]]]>z\")"},
      {"<a><![CDATA[x]]]></a>", kNoText, "null"},  // three brackets don't close the section
      {"<a><![CDATA[x</a>", kText, "null"},
      {"<![CDATA[x]]><a/>", kNoText, "(a)"},
  });
}

TEST(XmlParser, EndTagsCloseByPrefix) {
  expectTrees({
      {"<abc></a>", kNoText, "(abc)"},
      {"<abc></>", kNoText, "(abc)"},
      {"<abc></ >", kNoText, "(abc)"},
      {"<abc></abc\n>", kNoText, "(abc)"},
      {"<a/ >", kNoText, "(a)"},
      // Without ">" behind the name the end tag is text, and nothing is closed.
      {"<abc></ab x></abc>", kText, "(abc \"\" \"x>\")"},
      {"<abc></ab x></abc>", kNoText, "(abc)"},
      {"<a/></b></a>", kNoText, "(a)"},  // extra end tags at the top level
      {"</a><a/>", kNoText, "(a)"},
      {"<a><b><c/></b></a>", kNoText, "(a (b (c)))"},
  });
}

TEST(XmlParser, TheLastTopLevelElementIsTheRoot) {
  expectTrees({
      {"<a/><b/>", kNoText, "(b)"},
      {"<a x='1'><c/></a>text<b></b>", kText, "(b \"\")"},
      {"<a/><b><c/></b>", kNoText, "(b (c))"},
  });
}

TEST(XmlParser, TextThatEndsInsideElementsIsNoError) {
  // The open elements are lost (LeakSanitizer sees to it that they are freed).
  expectTrees({
      {"<a>", kNoText, "null"},
      {"<a><b></b>", kText, "null"},
      {"<a/><b>", kNoText, "(a)"},
      {"<a x=\"1", kNoText, "null"},
      {"<a x=\"1\"", kNoText, "null"},
      {"<a><b x='1'>text<!--c", kText, "null"},
      {"<a></a", kNoText, "null"},
      {"<", kNoText, "null"},
      {"<a/><", kNoText, "(a)"},
      {"<a/></", kNoText, "(a)"},
      {"<a/><!", kNoText, "(a)"},
      {"<a/><?", kNoText, "(a)"},
      {"<a/><![CDATA[", kNoText, "(a)"},
  });
}

struct ErrorCase {
  const char* input;
  XMLParseStatus status;
  uint32_t line;
  const char* tree;
};

TEST(XmlParser, TheTwoErrorsStopTheParseAtTheirLine) {
  const ErrorCase cases[] = {
      {"<a 1x=\"1\"/>", XMLParseStatus::BadAttributeName, 0, "null"},
      {"<a x=1/>", XMLParseStatus::BadAttributeName, 0, "null"},
      {"<a.b/>", XMLParseStatus::BadAttributeName, 0, "null"},  // "." is no name character
      {"<a\xC3\xA9/>", XMLParseStatus::BadAttributeName, 0, "null"},
      {"<a x='1' \"y\"/>", XMLParseStatus::BadAttributeName, 0, "null"},
      {"<a w9.=''/>", XMLParseStatus::BadAttributeName, 0, "null"},
      {"<a\n\n 1='x'/>", XMLParseStatus::BadAttributeName, 2, "null"},
      {"<a/>\n<b 1/>", XMLParseStatus::BadAttributeName, 1, "(a)"},
      {"<a></b>", XMLParseStatus::EndTagMismatch, 0, "null"},
      {"<a></abc>", XMLParseStatus::EndTagMismatch, 0, "null"},
      {"<a/b>", XMLParseStatus::EndTagMismatch, 0, "null"},
      {"<A></a>", XMLParseStatus::EndTagMismatch, 0, "null"},
      {"<a>\n<b>\n</c>", XMLParseStatus::EndTagMismatch, 2, "null"},
      {"<a/>\n<b></c>", XMLParseStatus::EndTagMismatch, 1, "(a)"},
      // Line feeds count wherever the cursor steps onto them.
      {"<r>\n<!--\n\n-->\n<![CDATA[\n]]><e v='\n'\n/>\n<x></y>", XMLParseStatus::EndTagMismatch, 8, "null"},
      {"<?xml version='1'\n?>\n<!DOCTYPE\nd>\n<a>\n</b>", XMLParseStatus::EndTagMismatch, 5, "null"},
  };
  for (const ErrorCase& c : cases) {
    SCOPED_TRACE(testing::Message() << "input: " << c.input);
    for (bool textNodes : {kText, kNoText}) {
      XMLDocument document(textNodes);
      EXPECT_FALSE(document.parse(c.input));
      EXPECT_STREQ(document.errorText(),
                   c.status == XMLParseStatus::BadAttributeName ? "bad tagName" : "tagName mismatch");
      EXPECT_EQ(document.errorLine(), c.line);
      EXPECT_EQ(dumpRoot(document), c.tree);
    }
  }
}

TEST(XmlParser, NodesKeepTheLineOfTheirStart) {
  XMLDocument document(kText);
  ASSERT_TRUE(document.parse("<a>\n<b>x</b>\n<!--c\n-->\n<![CDATA[d]]>\n<e\nv='1'/><f/></a>"));
  std::string lines;
  for (XMLNode* node = document.root()->firstChild(); node != nullptr; node = node->nextSibling()) {
    if (node->nodeType() == XMLNodeType::Data) continue;
    lines += std::string(node->getName()) + ":" + std::to_string(node->line()) + " ";
  }
  EXPECT_EQ(document.root()->line(), 0u);
  EXPECT_EQ(lines, "b:1 c\n:2 d:4 e:5 f:6 ");
  EXPECT_EQ(document.root()->firstChild()->nextSibling()->firstChild()->line(), 1u);  // the text "x"
}

struct PrologCase {
  const char* input;
  const char* version;
  const char* encoding;
  const char* documentType;
  const char* tree;
};

std::string orNull(const char* text) { return text == nullptr ? "(null)" : std::string(text); }

TEST(XmlParser, DeclarationAndDocumentTypeGoToTheDocument) {
  const PrologCase cases[] = {
      {"<?xml version=\"1.0\" encoding='UTF-8'?>\n<a/>", "1.0", "UTF-8", nullptr, "(a)"},
      {"<?xml version=\"1.0\" standalone=\"yes\" encoding=\"x\" ?><a/>", "1.0", "x", nullptr, "(a)"},
      {"<?xml encoding = 'e' ?><a/>", nullptr, "e", nullptr, "(a)"},
      {"<?xml version=\"&amp;\"?><a/>", "&amp;", nullptr, nullptr, "(a)"},  // taken raw
      {"<?x version=\"2\"?><a/>", "2", nullptr, nullptr, "(a)"},  // any prefix of "xml"
      {"<?xml-stylesheet version=\"s\"?><a/>", nullptr, nullptr, nullptr, "(a)"},
      {"<?php version='p' ?><a/>", nullptr, nullptr, nullptr, "(a)"},
      // A value without quotes ends the parse with no root and no error.
      {"<?xml version=1.0?><a/>", nullptr, nullptr, nullptr, "null"},
      {"<a/><?xml version=1.0?>", nullptr, nullptr, nullptr, "null"},
      {"<!DOCTYPE device><a/>", nullptr, nullptr, "device", "(a)"},
      {"<!DOC d><a/>", nullptr, nullptr, "d", "(a)"},
      {"<!doctype d><a/>", nullptr, nullptr, nullptr, "(a)"},
      {"<!DOCTYPE d SYSTEM \"d.dtd\"><a/>", nullptr, nullptr, nullptr, "(a)"},
      {"<!DOCTYPE d [<!ELEMENT a ANY>]><a/>", nullptr, nullptr, nullptr, "(a)"},
      {"<!OTHER d><a/>", nullptr, nullptr, nullptr, "(a)"},
  };
  for (const PrologCase& c : cases) {
    SCOPED_TRACE(testing::Message() << "input: " << c.input);
    XMLDocument document(kNoText);
    EXPECT_TRUE(document.parse(c.input));
    EXPECT_EQ(orNull(document.version()), orNull(c.version));
    EXPECT_EQ(orNull(document.encoding()), orNull(c.encoding));
    EXPECT_EQ(orNull(document.documentType()), orNull(c.documentType));
    EXPECT_EQ(dumpRoot(document), c.tree);
  }
  // A declaration the parser doesn't understand continues as text.
  expectTrees({{"<a><!DOCTYPE x [y]></a>", kText, "(a \"\" \" [y]>\")"},
               {"<a><?pi x?></a>", kText, "(a \"\" \"x?>\")"}});
}

class Special : public XMLElement {
 public:
  using XMLElement::XMLElement;
};

class FactoryDocument : public XMLDocument {
 public:
  FactoryDocument() : XMLDocument(false) {}
  XMLElement* createElement(char* tag) override {
    ++made;
    return new Special(tag);
  }
  int made = 0;
};

TEST(XmlParser, ElementsAreMadeByTheDocumentsFactory) {
  FactoryDocument document;
  ASSERT_TRUE(document.parse("<a><b/><c><d/></c></a>"));
  EXPECT_EQ(document.made, 4);
  EXPECT_NE(dynamic_cast<Special*>(document.root()), nullptr);
  EXPECT_NE(dynamic_cast<Special*>(document.root()->firstChild()->nextSibling()->firstChild()), nullptr);
}

TEST(XmlParser, DeepNestingParsesAndIsFreed) {
  constexpr size_t kDepth = 200000;
  std::string text;
  for (size_t i = 0; i < kDepth; ++i) text += "<e a='1'>";
  std::string unterminated = text;
  for (size_t i = 0; i < kDepth; ++i) text += "</e>";

  XMLDocument document(kNoText);
  ASSERT_TRUE(document.parse(text.c_str()));
  size_t depth = 0;
  for (XMLNode* node = document.root(); node != nullptr; node = node->firstChild()) ++depth;
  EXPECT_EQ(depth, kDepth);

  // The open elements of an unterminated text are freed, whatever their number.
  XMLDocument lost(kText);
  EXPECT_TRUE(lost.parse(unterminated.c_str()));
  EXPECT_EQ(lost.root(), nullptr);
}

// Loading from files: byte order mark, missing files, streams.
class XmlLoad : public testing::Test {
 protected:
  test::TempFolder folder_;
};

TEST_F(XmlLoad, AMissingFileIsReportedWithItsPathAndLineZero) {
  std::string missing = folder_.file("missing.xml");
  XMLDocument document(kNoText);
  EXPECT_FALSE(document.parse("<a>\n</b>"));  // leaves line 1 behind
  EXPECT_FALSE(document.load(missing.c_str()));
  EXPECT_EQ(std::string(document.errorText()), "couldn't read " + missing);
  EXPECT_EQ(document.errorLine(), 0u);

  QXMLDocument byQString(kNoText);
  EXPECT_FALSE(byQString.parse("<a>\n</b>"));
  EXPECT_FALSE(byQString.load(QString::fromStdString(missing)));
  EXPECT_EQ(std::string(byQString.errorText()), "couldn't read " + missing);
  EXPECT_EQ(byQString.errorLine(), 0u);

  // A folder is no file to read either.
  XMLDocument folder(kNoText);
  EXPECT_FALSE(folder.load(folder_.file("").c_str()));
  EXPECT_EQ(std::string(folder.errorText()), "couldn't read " + folder_.file(""));
}

TEST_F(XmlLoad, AFileIsReadWholeBehindItsByteOrderMark) {
  const std::pair<std::string, const char*> cases[] = {
      {"", "null"},
      {"\xEF\xBB\xBF", "null"},
      {"\xEF\xBB\xBF<?xml version='1'?><a/>", "(a)"},
      {"\xEF\xBB<a/>", "null"},  // only the whole mark, only at the very start
      {" \xEF\xBB\xBF<a/>", "null"},
      {"\xEF\xBB\xBF\xEF\xBB\xBF<a/>", "null"},
      {std::string("<a/>\0<b/>", 9), "(a)"},  // bytes behind a zero byte are not seen
      {"<a><b>text</b><c x='1'>", "null"},  // unterminated: no error
  };
  for (const auto& [contents, tree] : cases) {
    XMLDocument document(kText);
    EXPECT_TRUE(document.load(folder_.write("in.xml", contents).c_str())) << contents;
    EXPECT_EQ(dumpRoot(document), tree) << contents;
  }
}

TEST_F(XmlLoad, AMismatchReportsTheLineOfTheEndTag) {
  QXMLDocument document(kText);
  std::string path = folder_.write("bad.xml", "<?xml version='1.0'?>\r\n<a>\r\n  <b>x</b>\r\n</c>\r\n");
  EXPECT_FALSE(document.load(QString::fromStdString(path)));
  EXPECT_STREQ(document.errorText(), "tagName mismatch");
  EXPECT_EQ(document.errorLine(), 3u);
}

TEST_F(XmlLoad, AStreamIsReadFromItsStartAndStaysOpen) {
  std::string path = folder_.write("stream.xml", "<a><b x='1'/></a>");
  std::FILE* stream = std::fopen(path.c_str(), "rb");
  ASSERT_NE(stream, nullptr);
  std::fseek(stream, 5, SEEK_SET);
  XMLDocument document(kNoText);
  EXPECT_TRUE(document.load(stream));
  EXPECT_EQ(dumpRoot(document), "(a (b @x=\"1\"))");
  std::rewind(stream);  // still open and usable
  EXPECT_EQ(std::fgetc(stream), '<');
  std::fclose(stream);
}

}  // namespace
}  // namespace regmill
