// The parser and the document's load and parse: what tree a text gives, the two
// errors and their lines, the prolog, and reading files.
#include "xml/xml_parser.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <utility>

#include "tests/support/scratch_folder.h"
#include "tests/support/tree_dump.h"
#include "xml/qt_xml_document.h"

namespace regmill {
namespace {

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

}  // namespace
}  // namespace regmill
