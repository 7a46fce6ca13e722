// The parser and the document's load and parse: what tree a text gives, the two
// errors and their lines, the prolog, and reading files; and the node model it
// builds: linking and unlinking children, attributes, the helpers over siblings.
//
// The writer: prolog, indentation, spreading of long tags, the first-text-child
// rule, escaping, and save.
#include "xml/xml_parser.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <initializer_list>
#include <string>
#include <utility>

#include "tests/support/scratch_folder.h"
#include "tests/support/tree_dump.h"
#include "xml/qt_xml_document.h"
#include "xml/xml_writer.h"

namespace regmill {
namespace {

using testing::dumpTree;
using testing::owned;

constexpr bool kText = true;
constexpr bool kNoText = false;

// What a parse or load gave, in one line: "version encoding type | " when there was a
// prolog ("-" for what it didn't give), "error text at line | " when it failed, then
// the tree in dumpTree form or "null".
std::string described(const XMLDocument& document, const Status& status) {
  std::string prolog;
  for (const char* part : {document.version(), document.encoding(), document.documentType()})
    prolog += std::string(part == nullptr ? "-" : part) + " ";
  std::string result = prolog == "- - - " ? "" : prolog + "| ";
  if (!status.ok()) result += document.errorText() + (" at " + std::to_string(document.errorLine())) + " | ";
  return result + testing::dumpRoot(document);
}

struct TreeCase { const char* input; bool textNodes; const char* parsed; };

// Each case parses alike into heap nodes and into an arena; the sanitizers check
// that both free all they made, the lost elements of a cut-off text included.
void expectParses(std::initializer_list<TreeCase> cases) {
  for (const TreeCase& c : cases) {
    for (XMLStorage storage : {XMLStorage::Heap, XMLStorage::Arena}) {
      SCOPED_TRACE(::testing::Message() << "input: " << c.input << (c.textNodes ? " (text nodes)" : "")
                                      << (storage == XMLStorage::Arena ? " (arena)" : ""));
      XMLDocument document(c.textNodes, storage);
      EXPECT_EQ(described(document, document.parse(c.input)), c.parsed);
    }
  }
}

TEST(XmlParser, TextNodesFillEveryGapAndCommentsFollowThemButCdataDoesNot) {
  expectParses({
      {" \n\t\r\f\v ", kText, "null"},
      {"text <a/>", kText, "null"},
      {"\xEF\xBB\xBF<a/>", kText, "null"},  // no byte order mark handling in memory
      {"<a>\n  <b>x</b>\n</a>", kText, "(a \"\\n  \" (b \"x\") \"\\n\")"},
      {"<!--c--><a>x\r\ny\r > ' \"</a>top-level text<!--d--></b>", kText, "(a \"x\\ny > ' \\\"\")"},
      {"<a><!--c--><!-x>\n<b/></a>", kNoText, "(a (b))"},
      // A dash starts a test of the next two bytes; a second dash without ">" resumes
      // the search behind it, so three dashes before ">" don't close the comment.
      {"<a><!-- x - y -- z --><!--x--->y--><!---x----><!-x></a>", kText,
       "(a \"\" #\" x - y -- z \" \"\" #\"x--->y\" \"\" #\"-x--\" \"\" \"x>\")"},
      {"<a><![CDATA[x<y>&amp;\r\n]]><![CDATA[x]]y]]]>z]]></a>", kNoText, "(a $\"x<y>&amp;\\r\\n\" $\"x]]y]]]>z\")"},
  });
}

TEST(XmlParser, ValuesTakeEitherQuoteAndDecodeEntitiesAndReferences) {
  expectParses({
      {"<a v=\"&lt;&gt;&amp;&quot;&apos;\">1 &lt; 2 &amp;&amp; &#x41;&#66;</a>", kText,
       "(a @v=\"<>&\\\"'\" \"1 < 2 && AB\")"},
      // Only the low 8 bits of a number are kept.
      {"<a d=\"&#65;\" h=\"&#x41;&#x6a;\" l=\"&#321;&#x1e9;\"/>", kNoText, "(a @d=\"A\" @h=\"Aj\" @l=\"A\\xE9\")"},
      // Anything that isn't one of the forms, or is cut short by the end of its token,
      // keeps its "&" and the bytes behind it.
      {"<a v=\"&nbsp;&#;&#x;&#65&&AMP;&am p;\" w=\"&#x41\" n=\"&amp\">&#65</a>", kText,
       "(a @v=\"&nbsp;&#;&#x;&#65&&AMP;&am p;\" @w=\"&#x41\" @n=\"&amp\" \"&#65\")"},
      {"<a x=\"it's\"\n\ty = 'say \"hi\"'  />", kNoText, "(a @x=\"it's\" @y=\"say \\\"hi\\\"\")"},
      {"<a v=\"x\r\ny\" w='<b>'/>", kNoText, "(a @v=\"x\\r\\ny\" @w=\"<b>\")"},  // a carriage return stays
      // A word without "=" or a value without quotes is dropped; the element survives.
      {"<a:b-c_1 b -c=\"1\" d=e _f='2' :g=>text</a:b-c_1>", kText, "(a:b-c_1 @-c=\"1\" @_f=\"2\" \"text\")"},
  });
}

TEST(XmlParser, EndTagsCloseByPrefixTheLastRootWinsThePrologGoesToTheDocumentAndCutTextIsNoError) {
  expectParses({
      {"<abc><ab></></a\n>", kNoText, "(abc (ab))"},
      // Without ">" behind the name the end tag is text, and nothing is closed.
      {"<abc></ab x></abc>", kText, "(abc \"\" \"x>\")"},
      {"</a><a x='1'><c/></a>text</b><b><c><d/></c></b>", kNoText, "(b (c (d)))"},
      {"<?xml version=\"1.0\" standalone='yes' encoding='UTF-8' ?>\n<!DOCTYPE device>\n<a/>", kNoText,
       "1.0 UTF-8 device | (a)"},
      {"<?x version=\"&amp;\"?><!DOC d><a/>", kNoText, "&amp; - d | (a)"},  // prefixes; taken raw
      {"<?xml-stylesheet version=\"s\"?><!doctype d><!DOCTYPE d SYSTEM \"d.dtd\"><!OTHER d><a/>", kNoText, "(a)"},
      {"<a><!DOCTYPE x [y]><?pi x?></a>", kText, "(a \"\" \" [y]>\" \"x?>\")"},  // not understood: text
      // A declaration's value without quotes ends the parse with no root and no error.
      {"<a/><?xml version=1.0?><b/>", kNoText, "null"},
      // A text that ends inside markup is no error; elements still open at the end are
      // lost (LeakSanitizer sees to it that they are freed).
      {"<a x=\"1\"/><b><c x='1'>text<!--c", kText, "(a @x=\"1\")"},
      {"<a x=\"1", kNoText, "null"},      {"<a/><![CDATA[x]", kNoText, "(a)"},
      {"<a/></", kNoText, "(a)"},         {"<a/><?", kNoText, "(a)"},         {"<a/><!", kNoText, "(a)"},
  });
}

TEST(XmlParser, TheTwoErrorsStopTheParseAtTheirLine) {
  expectParses({
      {"<a 1x=\"1\"/>", kText, "bad tagName at 0 | null"},
      {"<a x=1/>", kNoText, "bad tagName at 0 | null"},
      {"<a.b/>", kText, "bad tagName at 0 | null"},  // "." is no name character
      {"<a\xC3\xA9/>", kNoText, "bad tagName at 0 | null"},
      {"<a/>\n<b\n\n 1/>", kText, "bad tagName at 3 | (a)"},
      {"<a></b>", kNoText, "tagName mismatch at 0 | null"},
      {"<a></abc>", kText, "tagName mismatch at 0 | null"},
      {"<A></a>", kNoText, "tagName mismatch at 0 | null"},
      {"<a/>\n<b></c>", kText, "tagName mismatch at 1 | (a)"},
      // Line feeds count wherever the cursor steps onto them.
      {"<?xml version='1'\n?>\n<!DOCTYPE\nd>\n<r>\n<!--\n\n-->\n<![CDATA[\n]]><e v='\n'\n/>\n<x></y>", kText,
       "1 - d | tagName mismatch at 12 | null"},
  });
}

TEST(XmlParser, NodesKeepTheLineOfTheirStart) {
  XMLDocument document(kText);
  ASSERT_TRUE(document.parse("<a>\n<b>x</b>\n<!--c\n-->\n<![CDATA[d]]>\n<e\nv='1'/><f/></a>"));
  std::string lines;
  for (XMLNode* node = document.root()->firstChild(); node != nullptr; node = node->nextSibling())
    lines += std::to_string(node->line()) + (node->nodeType() == XMLNodeType::Data ? " " : "* ");
  EXPECT_EQ(lines, "1 1* 2 2* 4 4* 5 5* 6 6* 6 ");  // a text begins on the line feed it starts with
}

TEST(XmlLoad, FilesAreReadWholeBehindAByteOrderMarkAndFailuresNameTheFileOrLine) {
  testing::ScratchFolder folder;
  const std::pair<std::string, const char*> cases[] = {
      {"", "null"},
      {"\xEF\xBB\xBF<?xml version='1.0'?>\r\n<a>\r\n  <b>x</b>\r\n</c>\r\n", "1.0 - - | tagName mismatch at 3 | null"},
      {"\xEF\xBB<a/>", "null"},  // only the whole mark, only at the very start
      {" \xEF\xBB\xBF<a/>", "null"},
      {std::string("<a/>\0<b/>", 9), "(a)"},  // bytes behind a zero byte are not seen
  };
  for (const auto& [contents, expected] : cases) {
    SCOPED_TRACE(contents);
    std::string path = folder.write("in.xml", contents);
    QXMLDocument byPath(kText), byQString(kText), byStream(kText);
    EXPECT_EQ(described(byPath, byPath.load(path.c_str())), expected);
    EXPECT_EQ(described(byQString, byQString.load(QString::fromStdString(path))), expected);
    std::FILE* stream = std::fopen(path.c_str(), "rb");
    std::fseek(stream, 3, SEEK_SET);
    EXPECT_EQ(described(byStream, byStream.load(stream)), expected);  // read from its start
    EXPECT_EQ(std::fclose(stream), 0);                                // and left open
  }
  // A failure names the file and the line counted from 1.
  XMLDocument mismatched(kNoText, XMLStorage::Arena);
  Status status = mismatched.load(folder.write("bad.xml", "<a>\n\n</b>").c_str());
  EXPECT_EQ(status.message(), folder.file("bad.xml") + " : line 3: tagName mismatch");
  for (const std::string& path : {folder.file("missing.xml"), folder.file("")}) {
    QXMLDocument document(kNoText);  // a folder is no file to read either
    EXPECT_FALSE(document.parse("<a>\n</b>").ok());  // leaves line 1 behind
    EXPECT_EQ(described(document, document.load(path.c_str())), "couldn't read " + path + " at 0 | null");
    EXPECT_EQ(described(document, document.load(QString::fromStdString(path))),
              "couldn't read " + path + " at 0 | null");
  }
}

XMLElement* element(char tag) {
  const char text[2] = {tag, 0};
  return new XMLElement(owned(text));
}

// The children's tags in chain order; a child whose parent is wrong shows as "!".
std::string childNames(const XMLNode& parent) {
  std::string names;
  for (const XMLNode* child = parent.firstChild(); child != nullptr; child = child->nextSibling())
    names += child->parent() == &parent ? child->getName() : "!";
  return names;
}

// An unlinked chain of siblings: unlinking leaves each node's next sibling as it was.
XMLNode* chainOf(const char* tags) {
  XMLElement holder(owned("h"));
  for (const char* tag = tags; *tag != 0; ++tag) holder.addChild(element(*tag));
  XMLNode* first = holder.firstChild();
  while (holder.firstChild() != nullptr) holder.removeChild(holder.firstChild());
  return first;
}

// The parent's children before, the edit: prepend "x", remove, replace by "x" or insert
// the chain "xyz" behind the child at `at` (-1: a node that is no child), and the
// children after the edit and one more addChild of "n", which shows the chain's end.
struct EditCase { const char* before; char edit; int at; const char* after; };

TEST(XmlNode, ChildEditsKeepTheChainItsParentsAndItsEnd) {
  const EditCase cases[] = {
      {"", 'p', 0, "xn"},         {"ab", 'p', 0, "xabn"},     {"abc", 'r', 0, "bcn"},
      {"abc", 'r', 1, "acn"},     {"abc", 'r', 2, "abn"},     {"ab", 'r', -1, "abn"},
      {"abc", 'x', 0, "xbcn"},    {"abc", 'x', 2, "abxn"},    {"abc", 'i', 1, "abxyzcn"},
      {"ab", 'i', 1, "abxyzn"},   {"", 'i', -1, "xyzn"},  // on no children the chain becomes them
  };
  for (const EditCase& c : cases) {
    SCOPED_TRACE(::testing::Message() << c.before << " " << c.edit << c.at);
    XMLElement parent(owned("p"));
    XMLNode* children[4] = {};
    for (int i = 0; c.before[i] != 0; ++i) parent.addChild(children[i] = element(c.before[i]));
    XMLNode* named = c.at < 0 ? element('s') : children[c.at];
    switch (c.edit) {
      case 'p': EXPECT_EQ(parent.prependChild(element('x')), children[0]); break;
      case 'r': parent.removeChild(named); break;
      case 'x': parent.replaceChild(named, element('x')); break;
      case 'i': parent.insertChildrenAfter(named, chainOf("xyz")); break;
    }
    if (c.edit == 'r') {  // the removed node's own links stay as they were
      EXPECT_EQ(named->parent(), c.at < 0 ? nullptr : &parent);
      EXPECT_EQ(named->nextSibling(), c.at < 0 ? nullptr : children[c.at + 1]);
    }
    parent.addChild(element('n'));
    EXPECT_EQ(childNames(parent), c.after);
    // Nobody else owns a node that was removed, replaced or never a child; deleting it
    // must leave the parent's chain alone.
    if (c.at < 0 || c.edit == 'r' || c.edit == 'x') delete named;
  }
}

TEST(XmlNode, AttributesKeepTheirPlaceAndTellNullFromEmpty) {
  XMLElement node(owned("e"));
  for (const char* name : {"a", "b", "c", "d"}) node.setAttributeCopy(name, name);
  node.setAttribute(owned("c"), owned("new"));  // keeps its place, the count stays
  node.setAttributeCopy("C", nullptr);          // names are case-sensitive
  node.setAttributeCopy("e", "");
  EXPECT_EQ(node.attributeCount(), 6u);
  EXPECT_EQ(dumpTree(&node), "(e @a=\"a\" @b=\"b\" @c=\"new\" @d=\"d\" @C @e=\"\")");
  EXPECT_TRUE(node.hasAttribute("C"));
  EXPECT_EQ(node.getAttribute("C"), nullptr);
  EXPECT_FALSE(node.hasAttribute("absent"));
  EXPECT_EQ(node.getAttribute("absent"), nullptr);
  for (const char* name : {"b", "a", "e", "absent"}) node.removeAttribute(name);  // middle, first, last
  node.setAttributeCopy("a", "again");
  std::string backwards;
  for (const XMLAttribute* a = node.attributes()->next->next->next; a != nullptr; a = a->previous) backwards += a->name;
  EXPECT_EQ(backwards, "aCdc");
  EXPECT_EQ(dumpTree(&node), "(e @c=\"new\" @d=\"d\" @C @a=\"again\")");
}

TEST(XmlNode, AnElementWithVeryManyAttributesStaysFast) {
  // Searching all earlier pairs for each new one would make this quadratic.
  constexpr unsigned kCount = 200000;
  std::string text = "<e";
  for (unsigned i = 0; i < kCount; ++i) text += " n" + std::to_string(i) + "='" + std::to_string(i) + "'";
  XMLDocument document(false);
  ASSERT_TRUE(document.parse((text + " n7='again'/>").c_str()));
  auto* root = static_cast<XMLElement*>(document.root());
  for (unsigned i = 0; i < kCount; i += 2) root->removeAttribute(("n" + std::to_string(i)).c_str());
  EXPECT_EQ(root->attributeCount(), kCount / 2);
  EXPECT_STREQ(root->getAttribute("n7"), "again");
  EXPECT_FALSE(root->hasAttribute("n2"));
}

TEST(XmlNode, ChainHelpersPassOverNodesThatAreNotElements) {
  XMLDocument document(true);
  ASSERT_TRUE(document.parse(
      "<r>t\xC3\xA9<!--f--><f id='1'>one<f id='2'><f id='3'/></f><b/>two</f><x><f id='4'/></x><f id='5'/></r>"));
  XMLNode* children = document.root()->firstChild();
  std::string ids;
  for (bool recursive : {true, false})
    for (const XMLElement* found : collectElements(children, "f", recursive)) ids += found->getAttribute("id");
  EXPECT_EQ(ids, "1234515");  // in document order, each node's children right behind it
  const XMLElement* first = findChild(children, "f");
  EXPECT_STREQ(first->getAttribute("id"), "1");
  EXPECT_STREQ(findChild(first->firstChild(), "b")->getName(), "b");
  EXPECT_EQ(elementText(first), "onetwo");
  EXPECT_EQ(elementText(static_cast<XMLElement*>(document.root())).toLatin1(), "t\xC3\xA9");  // byte for byte
}

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
