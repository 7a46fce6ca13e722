// The DOM form of the preprocessor: its reader keeps what Qt 6's own DOM parser
// drops, its map holds for the whole document, and its own directives.
#include "project/dom_preprocessor.h"

#include <gtest/gtest.h>

#include "tests/project/captured_log.h"
#include "tests/project/qt_printers.h"
#include "tests/support/scratch_folder.h"

namespace regmill {
namespace {

// The document as one line of XML.
QString flat(const QDomDocument& document) { return document.toString(-1).trimmed(); }

TEST(DomReader, KeepsWhiteSpaceTextThatQtsParserDrops) {
  const QByteArray text = "<a> <b x=\"1\"/>\n<c>t</c></a>";
  QDomDocument ours;
  QString error;
  int line = 0, column = 0;
  ASSERT_TRUE(readDomDocument(text, ours, error, line, column));
  EXPECT_EQ(flat(ours), "<a> <b x=\"1\"/>\n<c>t</c></a>");
  EXPECT_FALSE(readDomDocument("<a>\n<b></a>", ours, error, line, column));
  EXPECT_EQ(line, 2);
  EXPECT_FALSE(readDomDocument(QByteArray::fromStdString(testing::repeated("<d>", 2000)), ours, error, line, column));
  EXPECT_EQ(error, "elements nested deeper than 1024 levels");
}

class DomPreprocessor : public ::testing::Test {
 protected:
  // The file preprocessed with the extra macros, as one line; the log in `messages`.
  QString run(const std::string& text, const QString& macroString = QString()) {
    XmlPP pp;
    if (!pp.load(QString::fromStdString(folder.write("page.xml", text)), macroString)) return "<failed>";
    messages = log.take();
    return flat(pp.document());
  }
  testing::ScratchFolder folder;
  testing::CapturedLog log;
  std::string messages;
};

TEST_F(DomPreprocessor, DefinitionsHoldForTheRestOfTheDocument) {
  EXPECT_EQ(run("<r><if build=\"RELEASE\"><define_macro name=\"x\" value=\"1\"/></if>"
                "<ifdef name=\"x\"><seen/></ifdef><p><define name=\"y\" value=\"2\"/></p><ifdef name=\"y\"><also/></ifdef></r>"),
            "<r><seen/><p/><also/></r>");
  EXPECT_EQ(run("<r><define_macro name=\"x\"/><ifdef name=\"x\"><no/></ifdef></r>"), "<r/>");
  EXPECT_EQ(messages, "warning: XmlPP::processConditionals(): missing name and/or value in <define_macro>\n");
  EXPECT_EQ(run("<r><switch name=\"m\"><case value=\"a\"><one/></case><default><d/></default></switch></r>", "m=a"),
            "<r><one/></r>");
  EXPECT_EQ(run("<r><if><ifdef name=\"ide\"><x/></ifdef></if></r>"), "<r><if><x/></if></r>");
  EXPECT_EQ(messages, "warning: XmlPP::processConditionals(): one condition required for <if[not]>\n");
}

TEST_F(DomPreprocessor, ExpandsDefinitionsAndChosenAttributes) {
  EXPECT_EQ(run("<r><expand_definition name=\"t\" lowercase=\"\" underscore_spaces=\"\"/>|"
                "<expand_definition name=\"none\" default=\"fallback\"/>|<expand_definition name=\"none\"/>|"
                "<expand_definition name=\"ide\"/></r>", "t=Hello Big World"),
            "<r>hello_big_world|fallback||loom</r>");
  XmlPP pp;
  ASSERT_TRUE(pp.load(QString::fromStdString(folder.write(
                          "a.xml", "<r><a expand_attributes=\"href,,title\" href=\"$(base)/x\" title=\"$(base)\" alt=\"$(base)\"/></r>")),
                      "base=doc"));
  const QDomElement a = pp.document().documentElement().firstChildElement();
  // The DOM keeps attributes in no fixed order, so they are looked at one by one.
  EXPECT_EQ(a.attribute("href") + " " + a.attribute("title") + " " + a.attribute("alt"), "doc/x doc $(base)");
  EXPECT_FALSE(a.hasAttribute("expand_attributes"));
}

TEST_F(DomPreprocessor, IncludesFilesAndTextAndPagesKnowTheirOutput) {
  folder.write("part.xml", "<envelope><p k=\"$(k)\"/><define_macro name=\"fromPart\" value=\"1\"/></envelope>");
  folder.write("notes.txt", "a < b\n");
  EXPECT_EQ(run("<r><include filename=\"part.xml\" expand_macros=\"\" macros=\"k=inner\"/>"
                "<ifdef name=\"fromPart\"><defined/></ifdef><ifdef name=\"k\"><leaked/></ifdef>"
                "<include filename=\"notes.txt\" type=\"text\" tag=\"code\" class=\"c\" id=\"\"/>"
                "<include filename=\"notes.txt\" type=\"text\"/></r>"),
            "<r><p k=\"inner\"/><defined/><code class=\"c\">a &lt; b\n</code><pre>a &lt; b\n</pre></r>");
  const std::string missing = folder.file("missing.xml");
  EXPECT_EQ(run("<r><include filename=\"missing.xml\"><if build=\"RELEASE\"><kept/></if></include></r>"),
            "<r><include filename=\"missing.xml\"><kept/></include></r>");
  EXPECT_EQ(messages, "error: XmlPP::processConditionals could not open include file " + missing + "\n");
  folder.write("bad.xml", "<a>\n<b></a>");
  EXPECT_EQ(run("<r><include filename=\"bad.xml\"/></r>"), "<r><include filename=\"bad.xml\"/></r>");
  EXPECT_EQ(messages.rfind("error: XmlPP: error reading XML - ", 0), 0u) << messages;
  EXPECT_NE(messages.find(" on line 2 column "), std::string::npos) << messages;
  // A page knows whether it is printed or shown.
  const QString path = QString::fromStdString(
      folder.write("page.xml", "<r><if output=\"print\"><printed/></if><if output=\"html\"><shown/></if></r>"));
  EXPECT_EQ(flat(XmlPP::forPage(path, 1)->document()), "<r><printed/></r>");
  EXPECT_EQ(flat(XmlPP::forPage(path, 2)->document()), "<r><shown/></r>");
}

}  // namespace
}  // namespace regmill
