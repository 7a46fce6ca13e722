// The node form of the conditional preprocessor: each directive with its scope
// rules and messages, loops with their values and order, stored fragments, and
// inclusion of files from a scratch folder.
//
// The DOM form of the preprocessor: its reader keeps what Qt 6's own DOM parser
// drops, its map holds for the whole document, and its own directives.
//
// Macro strings and the expander: every reference form, the order of the maps, the
// date macros at a fixed moment, the re-pass and its end, and path abbreviation.
#include "project/xml_preprocessor.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QTimeZone>
#include <filesystem>
#include <string>

#include "project/dom_preprocessor.h"
#include "project/macro_expander.h"
#include "tests/project/captured_log.h"
#include "tests/project/qt_printers.h"
#include "tests/support/scratch_folder.h"
#include "tests/support/tree_dump.h"

namespace regmill {
namespace {

// A document that keeps the preprocessor's messages.
class RecordingDocument : public XMLPP2 {
 public:
  explicit RecordingDocument(bool textNodes) : XMLPP2(textNodes) {}
  void reportError(const QString& message) override {
    messages += (messages.empty() ? "" : "; ") + message.toStdString();
  }
  std::string messages;
};

struct Run {
  const char* input;
  const char* tree;
  const char* messages = "";
};

struct Options {
  MacroMap macros;
  bool expandAttributes = true;
  bool textNodes = false;
  QString fileName = "in.xml";
};

// The tree after the walk, then " | " and the messages.
std::string preprocessed(const std::string& text, const Options& options) {
  RecordingDocument document(options.textNodes);
  if (!document.parse(text.c_str()).ok()) return "parse failed";
  processConditionals(document, document.root(), options.fileName, options.macros, options.expandAttributes);
  return testing::dumpRoot(document) + " | " + document.messages;
}

void expectRuns(std::initializer_list<Run> runs, const Options& options = {}) {
  for (const Run& run : runs)
    EXPECT_EQ(preprocessed(run.input, options), std::string(run.tree) + " | " + run.messages) << run.input;
}

TEST(XmlPreprocessor, ConditionsHoistOrDrop) {
  expectRuns({
      {"<r><if m=\"b,a\"><x/><y/></if><z/></r>", "(r (x) (y) (z))"},
      {"<r><if m=\"b,,c\"><x/></if></r>", "(r)"},
      {"<r><if m=\"A\"><x/></if></r>", "(r)"},  // compared case-sensitively
      {"<r><ifnot m=\"b\"><x/></ifnot><ifnot m=\"a\"><y/></ifnot></r>", "(r (x))"},
      // An undefined macro is defined empty once asked about; "" is a list without entries.
      {"<r><if u=\"\"><x/></if><ifnot u=\"\"><y/></ifnot><ifdef name=\"u\"><z/></ifdef></r>", "(r (y) (z))"},
      {"<r><ifdef name=\"m\"><x/></ifdef><ifndef name=\"m\"><y/></ifndef><ifndef name=\"q\"><z/></ifndef></r>",
       "(r (x) (z))"},
      {"<r><if><x/></if><ifnot a=\"1\" b=\"2\"><if m=\"a\"><y/></if></ifnot></r>",
       "(r (if (x)) (ifnot @a=\"1\" @b=\"2\" (y)))",
       "XmlPP::processConditionals(): one condition required for <if[not]>; "
       "XmlPP::processConditionals(): one condition required for <if[not]>"},
      {"<if m=\"a\"><root/></if>", "(root)"},  // a directive at the top hands over the root
      {"<r><ifex expression=\"$(n) * 2 == 6\"><x/></ifex><ifex expression=\"0\"><y/></ifex>"
       "<ifex expression=\"1 +\"><z/></ifex><ifex expression=\"\"><w/></ifex><ifex expression=\"n\"><v/></ifex></r>",
       "(r (x) (ifex @expression=\"\" (w)))"},
  }, {.macros = {{"m", "a"}, {"n", "3"}}});
}

TEST(XmlPreprocessor, DefinitionsHoldForFollowingSiblingsAndTheirDescendantsOnly) {
  expectRuns({
      {"<r><a v=\"$(x)\"/><define name=\"x\" value=\"1\"/><b v=\"$(x)\"><c v=\"$(x)\"/></b></r>",
       "(r (a @v=\"$(x)\") (b @v=\"1\" (c @v=\"1\")))"},
      // A define inside an if is gone behind the if; one in a child list behind its parent.
      {"<r><if m=\"a\"><define name=\"x\" value=\"1\"/><a v=\"$(x)\"/></if><b v=\"$(x)\"/>"
       "<s><define name=\"y\" value=\"2\"/></s><c v=\"$(y)\"/></r>",
       "(r (a @v=\"1\") (b @v=\"$(x)\") (s) (c @v=\"$(y)\"))"},
      {"<r><define name=\"e\" expression=\"2+3*$(n)\"/><define name=\"h\" hex_expression=\"255\"/>"
       "<define name=\"v\" value=\"7\" expression=\"1\"/><define name=\"bad\" expression=\"(\"/>"
       "<a e=\"$(e)\" h=\"$(h)\" v=\"$(v)\" bad=\"$(bad)\"/></r>",
       "(r (a @e=\"11\" @h=\"0xFF\" @v=\"7\" @bad=\"$(bad)\"))"},
      {"<r><define value=\"1\"/><define name=\"x\"/><a/></r>", "(r (a))",
       "XmlPP::processConditionals(): missing name in <define>; "
       "XmlPP::processConditionals(): missing value or expression in <define>"},
  }, {.macros = {{"m", "a"}, {"n", "3"}}});
}

TEST(XmlPreprocessor, AttributesAreExpandedOnlyWhenAsked) {
  expectRuns({{"<r a=\"$(m)\" b=\"$(nope)\" c=\"$(m:x)$$\"><define name=\"m\" value=\"z\"/><s a=\"$(m)\"/></r>",
               "(r @a=\"$(m)\" @b=\"$(nope)\" @c=\"$(m:x)$$\" (s @a=\"$(m)\"))"}},
             {.macros = {{"m", "a"}}, .expandAttributes = false});
  expectRuns({{"<r a=\"$(m)\" b=\"$(nope)\" c=\"$(m:x)$$\"/>", "(r @a=\"a\" @b=\"$(nope)\" @c=\"a$\")"}},
             {.macros = {{"m", "a"}}});
}

TEST(XmlPreprocessor, SwitchChoosesTheFirstMatchingCaseOrTheDefault) {
  expectRuns({
      {"<r><switch name=\"m\"><case value=\"x,b\"><one/></case><other/><default><d/></default>"
       "<case value=\"b\"><two/></case></switch></r>",
       "(r (one))"},
      {"<r><switch name=\"m\"><case value=\"x\"><one/></case><default><d/></default></switch></r>", "(r (d))"},
      {"<r><switch name=\"m\"><case value=\"x\"><one/></case></switch><z/></r>", "(r (z))"},
      // A missing macro switches as an empty value, which no case list holds.
      {"<r><switch name=\"none\"><case value=\",\"><one/></case></switch><ifdef name=\"none\"><y/></ifdef></r>",
       "(r (y))"},
  }, {.macros = {{"m", "b"}}});
}

TEST(XmlPreprocessor, CountedLoopMakesFiveMacrosPerStep) {
  expectRuns({
      {"<r><for index=\"i\" start=\"0\" end=\"3\" incr=\"1\" mul=\"4\" add=\"16\">"
       "<e n=\"$(i)\" a=\"$(i_alpha)\" h=\"$(i_hex)\" p=\"$(i_ap)\" q=\"$(i_ap_hex)\" o=\"$(other)\"/></for><z/></r>",
       "(r (e @n=\"0\" @a=\"A\" @h=\"0x0\" @p=\"16\" @q=\"0x10\" @o=\"$(other)\")"
       " (e @n=\"1\" @a=\"B\" @h=\"0x1\" @p=\"20\" @q=\"0x14\" @o=\"$(other)\")"
       " (e @n=\"2\" @a=\"C\" @h=\"0x2\" @p=\"24\" @q=\"0x18\" @o=\"$(other)\") (z))"},
      {"<r><for index=\"k\" start=\"$(n)\" end=\"$(n)*4\" incr=\"4\" sub=\"1\"><e p=\"$(k_ap)\"><f k=\"$(k)\"/></e></for></r>",
       "(r (e @p=\"2\" (f @k=\"3\")) (e @p=\"6\" (f @k=\"7\")) (e @p=\"10\" (f @k=\"11\")))"},
      {"<r><for index=\"i\" start=\"5\" end=\"5\" incr=\"1\"><e/></for></r>", "(r)"},
      {"<r><for index=\"i\" start=\"5\" end=\"1\" incr=\"1\"><e/></for></r>", "(r)"},
      {"<r><for index=\"i\" start=\"0\" end=\"3\"><e/></for><for index=\"i\" start=\"0\" end=\"3\" incr=\"1\"/></r>",
       "(r)",
       "XmlPP::processConditionals(): <for index=\"i\" start=\"0\" end=\"32\" incr=\"1\">; "
       "XmlPP::processConditionals(): <for index=\"i\" start=\"0\" end=\"32\" incr=\"1\">"},
      {"<r><for index=\"i\" start=\"0\" end=\"3\" incr=\"0\"><e/></for></r>", "(r)",
       "XmlPP::processConditionals(): <for> with incr=\"0\" never ends and is left out"},
      // The clones are walked in their turn: a loop's body may hold directives.
      {"<r><for index=\"i\" start=\"2\" end=\"5\" incr=\"1\"><if n=\"$(i)\"><e i=\"$(i)\"/></if></for></r>",
       "(r (e @i=\"3\"))"},
  }, {.macros = {{"n", "3"}}});
}

TEST(XmlPreprocessor, CartesianLoopVariesTheLastAttributeFastestAndLoopsAreBounded) {
  expectRuns({
      {"<r><foreach a=\"1,2\" b=\"x,&#10;y,\"><e v=\"$(a)$(b)\"/><f/></foreach></r>",
       "(r (e @v=\"1x\") (f) (e @v=\"1y\") (f) (e @v=\"2x\") (f) (e @v=\"2y\") (f))"},
      {"<r><foreach><e v=\"$(a)\"/></foreach></r>", "(r (e @v=\"$(a)\"))"},
      {"<r><foreach a=\"\"><e/></foreach></r>", "(r)"},
  });
  // Loop bodies lose their text while conditions keep it.
  expectRuns({{"<r><for index=\"i\" start=\"0\" end=\"1\" incr=\"1\">lost<e>kept in a child</e></for>"
               "<foreach a=\"1\">lost<f/></foreach><if m=\"a\">kept</if></r>",
               // the parser makes a text node of every gap between tags, empty ones included
               "(r \"\" (e) \"\" (f) \"\" \"kept\" \"\")"}},
             {.macros = {{"m", "a"}}, .textNodes = true});
  const std::string result =
      preprocessed("<r><for index=\"i\" start=\"0\" end=\"0xFFFFFFFF\" incr=\"1\"><e/></for></r>", {});
  EXPECT_NE(result.find("loops made more than 100000 elements; the rest is left out"), std::string::npos);
}

TEST(XmlPreprocessor, FragmentsAreStoredUnexpandedAndPutByName) {
  expectRuns({
      {"<r><xmldef name=\"f\"><a v=\"$(x)\"/><define name=\"y\" value=\"2\"/><b v=\"$(y)\"/></xmldef>"
       "<define name=\"x\" value=\"1\"/><xmlput name=\"f\"/><xmlput name=\"f\"/><c v=\"$(y)\"/></r>",
       "(r (a @v=\"1\") (b @v=\"2\") (a @v=\"1\") (b @v=\"2\") (c @v=\"$(y)\"))"},
      {"<r><xmldef name=\"f\"><a/></xmldef><xmldef name=\"f\"><b/></xmldef><xmlput name=\"f\"/></r>", "(r (b))"},
      {"<r><xmlput name=\"none\"><a/></xmlput><xmldef><b/></xmldef></r>",
       "(r (xmlput @name=\"none\" (a)) (xmldef (b)))",
       "XmlPP::processConditionals(): xmlput cannot fine xmldef named none"},
  });
  // Without expansion a put takes its own macros only when it asks for them.
  expectRuns({{"<r><xmldef name=\"f\"><a v=\"$(x)\"/></xmldef><xmlput name=\"f\"/>"
               "<xmlput name=\"f\" expand_macros=\"\" macros=\"x=3;&#10;y=4\"/></r>",
               "(r (a @v=\"$(x)\") (a @v=\"3\"))"}},
             {.expandAttributes = false});
}

class XmlPreprocessorInclude : public ::testing::Test {
 protected:
  std::string run(const char* text, MacroMap macros = {}, bool expand = false) {
    return preprocessed(text, {.macros = std::move(macros), .expandAttributes = expand,
                               .fileName = QString::fromStdString(folder.file("main.xml"))});
  }
  testing::ScratchFolder folder;
};

TEST_F(XmlPreprocessorInclude, IncludedRootsReplaceTheIncludeAndEnvelopesVanish) {
  folder.write("part.xml", "<?xml version=\"1.0\"?>\n<!DOCTYPE Other>\n<part k=\"$(k)\"><a k=\"$(k)\"/></part>");
  folder.write("env.xml", "<envelope><a/><ifdef name=\"k\"><b/></ifdef></envelope>");
  std::filesystem::create_directory(folder.path() / "sub");
  folder.write("sub/nested.xml", "<n><include filename=\"../part.xml\"/></n>");
  EXPECT_EQ(run("<r><include filename=\"part.xml\" inherit_attributes=\"x;missing\" x=\"1\"><lost/></include><z/></r>"),
            "(r (part @k=\"$(k)\" @x=\"1\" (a @k=\"$(k)\")) (z)) | ");
  EXPECT_EQ(run("<r><include filename=\"env.xml\"/><include filename=\"part.xml\" no_root=\"\"/></r>", {{"k", "1"}}),
            "(r (a) (b) (a @k=\"$(k)\")) | ");
  EXPECT_EQ(run("<r><include filename=\"sub/nested.xml\"/></r>"), "(r (n (part @k=\"$(k)\" (a @k=\"$(k)\")))) | ");
  EXPECT_EQ(run("<include filename=\"part.xml\"/>"), "(part @k=\"$(k)\" (a @k=\"$(k)\")) | ");
  // With expansion, the include's own macros are merged over the map.
  EXPECT_EQ(run("<r><include filename=\"part.xml\" macros=\"k=inner\"/></r>", {{"k", "outer"}}, true),
            "(r (part @k=\"inner\" (a @k=\"inner\"))) | ");
  EXPECT_EQ(run("<r><include filename=\"part.xml\"/></r>", {{"k", "outer"}}, true),
            "(r (part @k=\"outer\" (a @k=\"outer\"))) | ");
}

TEST_F(XmlPreprocessorInclude, FailuresLeaveTheIncludeInPlaceWithTheirMessages) {
  folder.write("empty.xml", "<?xml version=\"1.0\"?>\n");
  folder.write("broken.xml", "<a>\n<b>\n</a>");
  folder.write("self.xml", "<s><include filename=\"self.xml\"/></s>");
  const std::string dir = folder.path().string();
  EXPECT_EQ(run("<r><include filename=\"none.xml\"><ifndef name=\"m\"><x/></ifndef></include></r>"),
            "(r (include @filename=\"none.xml\" (x))) | XmlPP::processConditionals(): error \"couldn't read " + dir +
                "/none.xml\" in include file " + dir + "/none.xml line:0");
  EXPECT_EQ(run("<r><include filename=\"broken.xml\"/></r>"),
            "(r (include @filename=\"broken.xml\")) | XmlPP::processConditionals(): error \"tagName mismatch\" in "
            "include file " + dir + "/broken.xml line:2");
  EXPECT_EQ(run("<r><include filename=\"empty.xml\"/></r>"),
            "(r (include @filename=\"empty.xml\")) | XmlPP::processConditionals(): error: include file '" + dir +
                "/empty.xml' is empty");
  EXPECT_EQ(run("<r><include/></r>"), "(r (include)) | XmlPP::processConditionals(): missing filename in <include>");
  const std::string cycle = run("<r><include filename=\"self.xml\"/></r>");
  EXPECT_NE(cycle.find("includes nested deeper than 16 levels at include file " + dir + "/self.xml"), std::string::npos);
}

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

TEST(MacroString, SplitsOnUnescapedSemicolonsAndKeepsEmptyEntriesOnlyWhenAsked) {
  struct Case { const char* text; bool keepEmpty; QStringList entries; };
  const Case cases[] = {
      {"a;b;;c", false, {"a", "b", "c"}},
      {"a;b;;c", true, {"a", "b", "", "c"}},
      {";", true, {"", ""}},
      {"", false, {}},
      {"a\\;b;c", false, {"a;b", "c"}},
      {"a\\\\;b", false, {"a\\", "b"}},   // an escaped backslash does not escape the ";"
      {"path\\", false, {"path\\"}},       // a backslash at the very end stays
      {"\\x\\=y", false, {"x=y"}},
  };
  for (const Case& c : cases) EXPECT_EQ(splitMacroString(c.text, c.keepEmpty), c.entries) << c.text;
}

TEST(MacroString, MapsReadWithTheFirstEqualsSignAndTheLastEntryWinningAndWriteBackTheSame) {
  EXPECT_EQ(parseMacroString("A=1;B;C=x=y;A=2;D=a\\;b"), (MacroMap{{"A", "2"}, {"B", ""}, {"C", "x=y"}, {"D", "a;b"}}));
  MacroMap map{{" Spaced ", "v"}, {"Semi", "a;b\\c"}, {"Empty", ""}};
  const QString text = macroStringFromMap(map);
  EXPECT_EQ(text, "Spaced=v;Empty=;Semi=a\\;b\\\\c");
  EXPECT_EQ(parseMacroString(text), (MacroMap{{"Spaced", "v"}, {"Semi", "a;b\\c"}, {"Empty", ""}}));
  EXPECT_EQ(splitMacroString(joinMacroString({"x;y", "z\\"})), (QStringList{"x;y", "z\\"}));
}

class MacroExpansion : public ::testing::Test {
 protected:
  void SetUp() override {
    expander.systemMacros().insert("Sys", "system");
    expander.systemMacros().insert("Hidden", "from system");
    expander.globalMacros().insert("Hidden", "from global");
    expander.globalMacros().insert("Glob", "global");
    // 5 March 2024, 07:08:09 UTC
    expander.setClock([] { return QDateTime(QDate(2024, 3, 5), QTime(7, 8, 9), Qt::UTC); });
  }
  QString expand(const QString& text, const MacroMap& map = {}) const { return expander.expand(map, text, true, true); }
  MacroExpander expander;
};

TEST_F(MacroExpansion, ReferenceForms) {
  const MacroMap map{{"A", "alpha"}, {"Empty", ""}, {"B", "$(A)"}, {"Dollar", "$$"}};
  struct Case { const char* text; const char* expanded; };
  const Case cases[] = {
      {"x$(A)y", "xalphay"},
      {"$(Empty)|", "|"},                      // a macro that is there but empty
      {"$(Nope)", "$(Nope)"},                  // unknown macros stay
      {"$(Nope:fallback)", "fallback"},
      {"$(Nope:)", ""},
      {"$(A:fallback)", "alpha"},
      {"$(Nope::$(A))", "$(A)"},               // a literal default gets no second pass
      {"$(Nope:$(A))", "alpha"},               // a default that holds a macro gets one
      {"$(Nope:$(Also:$(A)))", "alpha"},
      {"$$(A)", "$(A)"},                       // "$$" gives "$" and the rest is plain text
      {"$$", "$"},
      {"cost $5", "cost $5"},
      {"end$", "end$"},
      {"$(A", "(A"},                           // no ")": the "$" is dropped
      {"$(A(1))", "$(A(1))"},                  // parentheses nest: the name is "A(1)"
      {"$(Nope:(x)y)", "(x)y"},
      {"$(B)", "$(A)"},                        // a value is not expanded again...
      {"$(Nope:$(B))", "$(A)"},                // a default's pass expands it once
      {"$(Dollar)", "$$"},
  };
  for (const Case& c : cases) EXPECT_EQ(expand(c.text, map), c.expanded) << c.text;
}

TEST_F(MacroExpansion, LooksInTheGivenMapThenGlobalThenSystem) {
  const MacroMap map{{"Sys", "local"}};
  EXPECT_EQ(expand("$(Sys) $(Hidden) $(Glob)", map), "local from global global");
  EXPECT_EQ(expander.expand({}, "$(Sys) $(Hidden) $(Glob)", false, true), "system from system $(Glob)");
  EXPECT_EQ(expander.expand({}, "$(Sys) $(Hidden) $(Glob)", false, false), "$(Sys) $(Hidden) $(Glob)");
  EXPECT_EQ(expander.expandSystem("$(Glob:none)"), "none");
  EXPECT_EQ(expander.macroValue("Hidden"), "from global");
  EXPECT_TRUE(expander.macroValue("Nope").isNull());
}

TEST_F(MacroExpansion, DateMacrosAreComputedAtTheMomentWhateverTheMapHolds) {
  const QDateTime moment = QDateTime(QDate(2024, 3, 5), QTime(7, 8, 9), Qt::UTC);
  expander.setClock([&] { return moment.toLocalTime(); });
  const QDateTime local = moment.toLocalTime();
  const QString expected = QString("%1 %2 %3|%4|%5").arg(local.date().day()).arg("March").arg(2024)
                               .arg(QString::number(moment.toSecsSinceEpoch()))
                               .arg(local.toString("yyyy-MM-dd hh:mm:ss"));
  EXPECT_EQ(expand("$(Date)|$(UnixTime)|$(DateYear)-$(DateMonth)-$(DateDay) $(Time)", {{"Date", "stale"}}),
            expected);
  EXPECT_EQ(expand("$(TimeHour)$(TimeMinute)$(TimeSecond)"), local.toString("hhmmss"));
  // Without the system maps a date macro is only found in the given map.
  EXPECT_EQ(expander.expand({}, "$(Date)", false, false), "$(Date)");
}

TEST_F(MacroExpansion, RepeatedPassesEndAtAFixedPointOrABound) {
  // The name part holds a macro that nothing defines: the text never changes.
  EXPECT_EQ(expand("$(X$(Y))"), "$(X$(Y))");
  // Two macros that name each other through defaults change the text for ever.
  const MacroMap pingPong{{"P", "$(Q:$(z))"}, {"Q", "$(P:$(z))"}};
  const QString result = expand("$(P:$(z))", pingPong);
  EXPECT_TRUE(result == "$(P:$(z))" || result == "$(Q:$(z))") << result.toStdString();
  // A value that doubles itself on each pass stops at the size bound.
  const MacroMap doubling{{"D", "$(D:$(z))$(D:$(z))"}};
  EXPECT_LE(expand("$(D:$(z))", doubling).size(), qsizetype{1} << 19);
}

TEST_F(MacroExpansion, AbbreviatesPathsBelowAMacroDirectory) {
  const QString root = QDir::cleanPath(QDir::tempPath() + "/loom-root");
  expander.globalMacros().insert("Root", root);
  struct Case { QString path; bool isFile; bool abbreviated; QString result; };
  const Case cases[] = {
      {root + "/lib/x", false, true, "$(Root)/lib/x"},
      {root, false, true, "$(Root)"},
      {root + "/lib/a.c", true, true, "$(Root)/lib/a.c"},
      {root + "/a.c", true, true, "$(Root)/a.c"},
      {root + "-other/x", false, false, root + "-other/x"},
      {"/elsewhere/x", false, false, "/elsewhere/x"},
  };
  for (const Case& c : cases) {
    QString path = c.path;
    EXPECT_EQ(expander.abbreviatePath("Root", path, c.isFile), c.abbreviated) << c.path.toStdString();
    EXPECT_EQ(path, c.result);
  }
  QString path = root;
  EXPECT_FALSE(expander.abbreviatePath("Unknown", path));
}

}  // namespace
}  // namespace regmill
