// Macro strings and the expander: every reference form, the order of the maps, the
// date macros at a fixed moment, the re-pass and its end, and path abbreviation.
#include "project/macro_expander.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QTimeZone>

#include "tests/project/qt_printers.h"

namespace regmill {
namespace {

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
