// The String and Date built-ins run on small programs: each table row is a program
// and the value it leaves, written from the rules of the two types. Date texts and
// getTime depend on the time zone, so the suite runs with TZ=UTC.
#include <gtest/gtest.h>

#include <QDate>
#include <cstdlib>
#include <ctime>
#include <random>
#include <string>
#include <vector>

#include "script/es_native_date.h"
#include "tests/script/script_runner.h"

namespace regmill::script {
namespace {

using testing::ScriptRunner;

using Cases = std::vector<std::pair<const char*, const char*>>;

// `show(a)` lists an array's elements as [x|y|z]; it stands on the first line of
// every program, so that line numbers stay those of the program.
constexpr const char* kShow =
    "function show(a) { var s = '['; for (var i = 0; i < a.length; i++) s = s + (i ? '|' : '') + a[i];"
    " return s + ']'; } ";

void expectAll(const Cases& cases) {
  for (const auto& [source, expected] : cases) {
    ScriptRunner runner;
    EXPECT_EQ(runner.run(std::string(kShow) + source), expected) << source;
  }
}

class ESNativeStringDate : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    setenv("TZ", "UTC", 1);
    tzset();
  }
};

TEST_F(ESNativeStringDate, SliceCountsNegativeBoundsFromTheEndAndSubstringSwapsThem) {
  expectAll({
      {"'abcdef'.slice(1, 3)", "string bc"},
      {"'abcdef'.slice(-2)", "string ef"},
      {"'abcdef'.slice(-10, 2)", "string ab"},      // from the end, stopping at 0
      {"'abcdef'.slice(2, 0)", "string "},          // inverted: empty
      {"'abcdef'.slice(4, 99)", "string ef"},
      {"'abcdef'.slice(1.9, Infinity)", "string bcdef"},
      {"'abcdef'.slice(-Infinity, -Infinity)", "string "},
      {"'abcdef'.slice()", "string abcdef"},
      {"'abc'.substring(2, 0)", "string ab"},       // the smaller bound is the start
      {"'abcdef'.substring(-3, 2)", "string ab"},   // a negative bound is 0, not from the end
      {"'abcdef'.substring(4)", "string ef"},
      {"'abcdef'.substring(NaN, 2)", "string ab"},
      {"'abcdef'.substring(99, 3)", "string def"},
  });
}

TEST_F(ESNativeStringDate, SplitKeepsEmptyPartsAndReplaceTakesEveryOccurrenceLiterally) {
  expectAll({
      {"show('a,b'.split(','))", "string [a|b]"},
      {"show('a,,b,'.split(','))", "string [a||b|]"},
      {"''.split(',').length", "number 1"},
      {"show('aXbxc'.split('X'))", "string [a|bxc]"},    // case-sensitive
      {"show('1undefined2'.split())", "string [1|2]"},   // no separator is the text "undefined"
      {"show('a.b'.split('.', 1))", "string [a|b]"},     // the limit is ignored
      // An empty separator cuts before and after every unit, ends included (as Qt 6 does).
      {"show('abc'.split(''))", "string [|a|b|c|]"},
      {"'x'.replace('x', 'y')", "string y"},
      {"'xx'.replace('x', 'y')", "string yy"},
      {"'aAa'.replace('a', 'b')", "string bAb"},
      {"'a.*a'.replace('.*', '$1')", "string a$1a"},     // no pattern syntax
      {"'aaa'.replace('aa', 'b')", "string ba"},
      {"'ab'.replace('', '-')", "string -a-b-"},
      {"'1null'.replace(null, 2)", "string 12"},
  });
  ScriptRunner runner;
  EXPECT_EQ(runner.run("var s = 'x'; while (s.length < 1048576) s = s + s;\ns.replace('x', s)"),
            "RangeError: string too long @ 2");
  EXPECT_EQ(runner.run("s.concat(s, s, s, s, s, s, s, s, s, s, s, s, s, s, s, s, s)"),
            "RangeError: string too long @ 1");
}

TEST_F(ESNativeStringDate, SearchesAndPositionsFollowTheirDefaults) {
  expectAll({
      {"'abcabc'.indexOf('c')", "number 2"},
      {"'abcabc'.indexOf('c', 3)", "number 5"},
      {"'abcabc'.indexOf('c', -5)", "number 2"},
      {"'abcabc'.indexOf('C')", "number -1"},
      {"'abc'.indexOf('', 9)", "number -1"},
      {"'a1'.indexOf(1)", "number 1"},
      {"'abcabc'.lastIndexOf('c')", "number 5"},
      {"'abcabc'.lastIndexOf('c', 4)", "number 2"},
      // Qt 6 finds nothing for a longer needle searched from beyond the end; the
      // default start is limited to the length first.
      {"'abcb'.lastIndexOf('cb')", "number 2"},
      {"'abc'.lastIndexOf('')", "number 3"},
      {"'xundefined'.search()", "number 1"},
      {"'abc'.search('d')", "number -1"},
      {"'abc'.charAt(1) + 'abc'.charAt(3) + 'abc'.charAt(-1)", "string b"},
      {"'abc'.charAt(1.7)", "string b"},
      {"'abc'.charCodeAt(0)", "number 97"},
      {"'abc'.charCodeAt(3)", "number NaN"},
      {"typeof 'abc'.match('a')", "string undefined"},
      {"'a'.concat(1, null, 'b')", "string a1nullb"},
      {"'a'.localeCompare('b') < 0 && 'b'.localeCompare('a') > 0", "boolean true"},
      {"'a'.localeCompare('a')", "number 0"},
  });
}

TEST_F(ESNativeStringDate, TrimReducesInnerRunsAndCaseFollowsUnicode) {
  expectAll({
      {"'a  b '.trim()", "string a b"},
      {"' \\t a \\n\\r b \\t'.trim()", "string a b"},
      // No-break, line separator and ideographic spaces count as white space too.
      {"'\\u00a0a\\u2028\\u3000b\\u00a0'.trim()", "string a b"},
      {"'   '.trim().length", "number 0"},
      {"'Straße'.toUpperCase()", "string STRASSE"},
      {"'ÀB'.toLowerCase() + 'àb'.toLocaleUpperCase()", "string àbÀB"},
  });
}

TEST_F(ESNativeStringDate, StringObjectsAndReceivers) {
  expectAll({
      {"'abc'.length", "number 3"},
      {"var s = new String('abc'); s.length = 9; s.length", "number 3"},  // a put of length is ignored
      {"var s = new String('abc'); s.x = 1; s.x", "number 1"},
      {"String.prototype.length", "number 0"},
      {"String.length + ' ' + ''.indexOf.length + ' ' + String.fromCharCode.length", "string 1 2 0"},
      {"String()", "string undefined"},
      {"String(12)", "string 12"},
      {"(new String()).valueOf()", "string undefined"},
      {"typeof new String('a')", "string object"},
      {"String.fromCharCode(72, 105, 65536 + 33)", "string Hi!"},
      {"String.fromCharCode()", "string "},
      // A receiver of any kind is converted by ToString, through its own toString.
      {"var o = { toString: function() { return 'xyz'; } }; o.at = ''.charAt; o.at(1)", "string y"},
      {"var up = ''.toUpperCase; up()", "string [OBJECT GLOBAL]"},  // called with `this` the global object
      {"String.prototype.toString = function() { return 'q'; }; 'abc'.charAt(0)", "string q"},
      {"var o = {}; o.f = ''.toString; o.f()",
       "TypeError: String.prototype.toString called on non-String object @ 1"},
      {"var o = {}; o.f = ''.valueOf; o.f()", "TypeError: String.prototype.valueOf called on non-String object @ 1"},
      {"new String.fromCharCode(1)", "TypeError: new must be given a constructor object @ 1"},
  });
}

// ---- Date ----

TEST_F(ESNativeStringDate, DayNumbersRoundTripWithQDateFromYearOneOn) {
  const qint64 first = QDate(1, 1, 1).toJulianDay(), last = QDate(9999, 12, 31).toJulianDay();
  for (qint64 day = first; day <= last; ++day) {
    QDate date = QDate::fromJulianDay(day);
    ESNativeDate::CivilDate civil = ESNativeDate::dateFromDay(double(day));
    ASSERT_EQ(civil.year, date.year()) << day;
    ASSERT_EQ(civil.month, date.month()) << day;
    ASSERT_EQ(civil.day, date.day()) << day;
    ASSERT_EQ(ESNativeDate::dayFromDate(civil.year, civil.month, civil.day), double(day));
  }
  // Before year 1 the formulas still invert each other; they count a year 0, QDate does not.
  for (double day = -400000; day < first; day += 7) {
    ESNativeDate::CivilDate civil = ESNativeDate::dateFromDay(day);
    ASSERT_EQ(ESNativeDate::dayFromDate(civil.year, civil.month, civil.day), day);
  }
  EXPECT_EQ(ESNativeDate::dateFromDay(double(first - 1)).year, 0);
}

TEST_F(ESNativeStringDate, ScriptsSeeTheDayNumbersAndWeekdaysOfQDate) {
  std::mt19937 random(20201);
  std::uniform_int_distribution<qint64> days(QDate(1, 1, 1).toJulianDay(), QDate(9999, 12, 31).toJulianDay());
  ScriptRunner runner;
  for (int i = 0; i < 300; ++i) {
    QDate date = QDate::fromJulianDay(days(random));
    std::string source = "var d = new Date(1); d.setFullYear(" + std::to_string(date.year()) + ", " +
                         std::to_string(date.month() - 1) + ", " + std::to_string(date.day()) +
                         "); d.valueOf() / 86400000 + ' ' + d.getDay() + ' ' + d.getFullYear() + '-' + "
                         "(d.getMonth() + 1) + '-' + d.getDate()";
    std::string expected = "string " + std::to_string(date.toJulianDay()) + ' ' + std::to_string(date.dayOfWeek()) +
                           ' ' + std::to_string(date.year()) + '-' + std::to_string(date.month()) + '-' +
                           std::to_string(date.day());
    ASSERT_EQ(runner.run(source), expected);
  }
}

TEST_F(ESNativeStringDate, GettersReadTheTimeValueCountedFromJulianDayZero) {
  // 2024-01-01 is Julian day 2460311, a Monday.
  expectAll({
      {"(new Date(2020, 1, 1)).valueOf()", "number 0"},  // any argument gives day 0
      {"var d = new Date(1); d.getFullYear() + '-' + d.getMonth() + '-' + d.getDate()", "string -4713-10-24"},
      {"var d = new Date(1); d.setTime(2460311 * 86400000 + 3723004);"
       " d.getHours() + ':' + d.getMinutes() + ':' + d.getSeconds() + '.' + d.getMilliseconds()",
       "string 1:2:3.4"},
      {"var d = new Date(1); d.setTime(2460311 * 86400000); d.getDay()", "number 1"},
      {"var d = new Date(1); d.setTime(2460317 * 86400000); d.getDay() + ' ' + d.getUTCDay()", "string 7 7"},
      {"var d = new Date(1); d.setTime(-1); d.getDay() + ' ' + d.getHours() + ' ' + d.getMilliseconds()",
       "string 7 23 999"},
      {"var d = new Date(1); d.setTime(2460311 * 86400000); d.getUTCFullYear() + d.getUTCMonth() + d.getUTCDate()",
       "number 2025"},
      {"(new Date(1)).getTimezoneOffset()", "number 0"},
      {"var o = {}; o.f = Date.prototype.getTimezoneOffset; o.f()", "number 0"},
      {"var d = new Date(1); d.setTime(NaN); d.getFullYear() + ' ' + d.getHours() + ' ' + d.valueOf()",
       "string NaN NaN NaN"},
      {"var p = Date.prototype.valueOf(); (p != p) + ' ' + Date.prototype.length", "string true 7"},
  });
  ScriptRunner runner;
  std::string now = runner.run("var d = new Date(); d.valueOf() / 86400000");
  double today = double(QDate::currentDate().toJulianDay());
  double day = std::stod(now.substr(7));
  EXPECT_GE(day, today - 1);
  EXPECT_LT(day, today + 2);
}

TEST_F(ESNativeStringDate, TimeSettersTakeMissingFieldsFromTheTimeValue) {
  // Each starts at 2024-01-01 10:20:30.400 (Julian day 2460311).
  std::string start = "var d = new Date(1); d.setTime(2460311 * 86400000 + 37230400);\n";
  std::string clock = "; d.getDate() + ' ' + d.getHours() + ':' + d.getMinutes() + ':' + d.getSeconds() + '.' + "
                      "d.getMilliseconds()";
  std::vector<std::pair<std::string, std::string>> cases = {
      {"d.setHours(5)", "1 5:20:30.400"},
      {"d.setHours(5, 6)", "1 5:6:30.400"},
      {"d.setUTCHours(5, 6, 7, 8)", "1 5:6:7.8"},
      {"d.setMinutes(1)", "1 10:1:30.400"},
      {"d.setMinutes(1, 2, 3)", "1 10:1:2.3"},
      {"d.setSeconds(59.9)", "1 10:20:59.400"},   // each field is floored
      {"d.setMilliseconds(1500)", "1 10:20:31.500"},
      {"d.setHours(25)", "2 1:20:30.400"},         // beyond a field spills into the next day
      {"d.setMinutes(-1)", "1 9:59:30.400"},
      {"d.setHours(5, undefined, 0)", "1 5:20:0.400"},
  };
  for (const auto& [setter, expected] : cases) {
    ScriptRunner runner;
    EXPECT_EQ(runner.run(start + setter + clock), "string " + expected) << setter;
  }
  expectAll({
      {"var d = new Date(1); d.setMilliseconds()", "number NaN"},  // the first argument is never missing
      {"var d = new Date(1); d.setTime(NaN); d.setHours(1)", "number NaN"},
      {"var d = new Date(1); var r = d.setMinutes(2); r == d.valueOf() && r == 120000", "boolean true"},
      // setMinutes is declared with 2 parameters and setUTCMinutes with 3.
      {"Date.prototype.setMinutes.length + ' ' + Date.prototype.setUTCMinutes.length", "string 2 3"},
  });
}

TEST_F(ESNativeStringDate, DateSettersGiveNaNForDatesThatDoNotExist) {
  std::string start = "var d = new Date(1); d.setFullYear(2020, 0, 31); d.setHours(12);\n";
  std::string date = "; d.getFullYear() + '-' + d.getMonth() + '-' + d.getDate() + ' ' + d.getHours()";
  std::vector<std::pair<std::string, std::string>> cases = {
      {"d.setDate(15)", "2020-0-15 12"},
      {"d.setMonth(2)", "2020-2-31 12"},
      {"d.setMonth(3)", "NaN-NaN-NaN NaN"},           // 31 April
      {"d.setMonth(1, 29)", "2020-1-29 12"},
      {"d.setFullYear(2021, 1, 29)", "NaN-NaN-NaN NaN"},
      {"d.setFullYear(1900, 1, 28)", "1900-1-28 12"},
      {"d.setFullYear(2000)", "2000-0-31 12"},
      {"d.setUTCFullYear(0)", "NaN-NaN-NaN NaN"},     // QDate has no year 0
      {"d.setMonth(12)", "NaN-NaN-NaN NaN"},          // no overflow into the next year
      {"d.setDate(0)", "NaN-NaN-NaN NaN"},
      {"d.setDate(Infinity)", "NaN-NaN-NaN NaN"},
      {"d.setMonth(1, undefined)", "NaN-NaN-NaN NaN"},  // day 31 kept: 31 February
      {"d.setDate(2.9)", "2020-0-2 12"},
      {"d.setFullYear(1e10)", "NaN-NaN-NaN NaN"},
  };
  for (const auto& [setter, expected] : cases) {
    ScriptRunner runner;
    EXPECT_EQ(runner.run(start + setter + date), "string " + expected) << setter;
  }
}

TEST_F(ESNativeStringDate, SetTimeClipsAndTakesAnyReceiver) {
  expectAll({
      {"(new Date(1)).setTime(8.64e15)", "number 8640000000000000"},
      {"(new Date(1)).setTime(8.64e15 + 1)", "number NaN"},
      {"(new Date(1)).setTime(-1e20)", "number -100000000000000000000"},  // only the top is clipped
      {"(new Date(1)).setTime(-Infinity)", "number -Infinity"},
      {"(new Date(1)).setTime('12')", "number 12"},
      {"var d = new Date(1); d.setTime(-1e20); d.getFullYear() + ' ' + d.toString().length", "string NaN 0"},
      {"var o = {}; o.f = Date.prototype.setTime; o.f(5)", "number 5"},
  });
}

TEST_F(ESNativeStringDate, GetTimeCountsFromTheUnixEpochUnlikeValueOf) {
  expectAll({
      {"var d = new Date(1); d.setFullYear(1970, 0, 1); d.getTime()", "number 0"},
      {"var d = new Date(1); d.setTime(123456789); d.valueOf() - d.getTime()", "number 210866803200000"},
      {"var d = new Date(1); d.setFullYear(2001, 8, 9); d.setHours(1, 46, 40); d.getTime()",
       "number 1000000000000"},
      {"var d = new Date(1); d.setTime(NaN); d.getTime()", "number NaN"},
  });
}

TEST_F(ESNativeStringDate, TextFormsAreQtTextDates) {
  // Qt 6 writes English names whatever the locale, no milliseconds, and years before
  // 1 with a sign and three digits; an invalid date gives the empty text.
  std::string start = "var d = new Date(1); d.setFullYear(1998, 4, 20); d.setHours(3, 40, 13, 250);\n";
  std::vector<std::pair<std::string, std::string>> cases = {
      {"d.toString()", "Wed May 20 03:40:13 1998"},
      {"d.toLocaleString() == d.toString() && d.toUTCString() == d.toString()", ""},
      {"d.toDateString() + '|' + d.toLocaleDateString()", "Wed May 20 1998|Wed May 20 1998"},
      {"d.toTimeString() + '|' + d.toLocaleTimeString()", "03:40:13|03:40:13"},
      {"d.setFullYear(-5, 0, 2); d.toDateString()", "Mon Jan 2 -006"},  // the year -5 counted with a year 0
      {"d.setTime(NaN); d.toString() + '|' + d.toDateString() + '|' + d.toTimeString()", "||"},
      {"'' + new Date(1)", "Mon Nov 24 00:00:00 -4714"},  // the default value of a Date is its text
  };
  for (const auto& [source, expected] : cases) {
    ScriptRunner runner;
    std::string result = runner.run(start + source);
    EXPECT_EQ(result, expected.empty() ? "boolean true" : "string " + expected) << source;
  }
}

TEST_F(ESNativeStringDate, DateMethodsRequireADateObject) {
  expectAll({
      {"var o = {}; o.f = Date.prototype.getFullYear; o.f()", "TypeError: Date object required @ 1"},
      {"var o = {}; o.f = Date.prototype.setHours; o.f(1)", "TypeError: Date object required @ 1"},
      {"var o = {}; o.f = Date.prototype.toString; o.f()", "TypeError: Date object required @ 1"},
      {"var o = {}; o.f = Date.prototype.valueOf; o.f()", "TypeError: Date object required @ 1"},
      {"Date.f = Date.prototype.setHours; Date.f(1)", "TypeError: Date object required @ 1"},
      {"Date()", "Error: bad signature in builtin call @ 1"},
      {"new Date.prototype.getDay()", "TypeError: new must be given a constructor object @ 1"},
  });
}

}  // namespace
}  // namespace regmill::script
