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

using testing::expectAll;
using testing::ScriptRunner;

class ESNativeStringDate : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    setenv("TZ", "UTC", 1);
    tzset();
  }
};

TEST_F(ESNativeStringDate, SliceCountsNegativeBoundsFromTheEndAndSubstringSwapsThem) {
  expectAll({
      // From the end, stopping at 0; an inverted pair is empty.
      {"var s = 'abcdef'; s.slice(-2) + '|' + s.slice(-10, 2) + '|' + s.slice(2, 0) + '|' + s.slice(1.9, Infinity) +"
       "'|' + s.slice(-Infinity, -Infinity)",
       "string ef|ab||bcdef|"},
      // The smaller bound is the start, and a negative bound is 0, not from the end.
      {"var s = 'abcdef'; s.substring(2, 0) + '|' + s.substring(-3, 2) + '|' + s.substring(NaN, 2) +"
       "s.substring(99, 4)",
       "string ab|ab|abef"},
  });
}

TEST_F(ESNativeStringDate, SplitKeepsEmptyPartsAndReplaceTakesEveryOccurrenceLiterally) {
  expectAll({
      // Case-sensitive; no separator is the text "undefined", and the limit is ignored.
      {"'a,,b,'.split(',').join('|') + ' ' + ''.split(',').length + ' ' + 'aXbxc'.split('X').join('|') + ' ' +"
       "'1undefined2'.split().join('|') + ' ' + 'a.b'.split('.', 1).join('|')",
       "string a||b| 1 a|bxc 1|2 a|b"},
      // An empty separator cuts before and after every unit, ends included (as Qt 6 does).
      {"'abc'.split('').join('|')", "string |a|b|c|"},
      {"'xx'.replace('x', 'y') + 'aAa'.replace('a', 'b') + 'a.*a'.replace('.*', '$1')", "string yybAba$1a"},
      {"'aaa'.replace('aa', 'b') + 'ab'.replace('', '-') + '1null'.replace(null, 2)", "string ba-a-b-12"},
  });
  expectAll({{"s.replace('x', s)", "RangeError: string too long @ 2"},
             {"s.concat(s, s, s, s, s, s, s, s, s, s, s, s, s, s, s, s, s)", "RangeError: string too long @ 2"}},
            "var s = 'x'; while (s.length < 1048576) s = s + s;\n");
}

TEST_F(ESNativeStringDate, SearchesAndPositionsFollowTheirDefaults) {
  expectAll({
      {"'abcabc'.indexOf('c', 3) + ' ' + 'abcabc'.indexOf('c', -5)", "string 5 2"},
      {"'abcabc'.indexOf('C') + ' ' + 'abc'.indexOf('', 9) + ' ' + 'a1'.indexOf(1)", "string -1 -1 1"},
      {"'abcabc'.lastIndexOf('c') + ' ' + 'abcabc'.lastIndexOf('c', 4)", "string 5 2"},
      // Qt 6 finds nothing for a longer needle searched from beyond the end; the
      // default start is limited to the length first.
      {"'abcb'.lastIndexOf('cb') + ' ' + 'abc'.lastIndexOf('')", "string 2 3"},
      {"'xundefined'.search() + ' ' + 'abc'.search('d')", "string 1 -1"},
      {"'abc'.charAt(1.7) + 'abc'.charAt(3) + 'abc'.charAt(-1) + 'abc'.charCodeAt(0) + ' ' + 'abc'.charCodeAt(3)",
       "string b97 NaN"},
      {"typeof 'abc'.match('a') + 'a'.concat(1, null, 'b')", "string undefineda1nullb"},
  });
}

TEST_F(ESNativeStringDate, TrimReducesInnerRunsAndCaseFollowsUnicode) {
  expectAll({
      // No-break, line separator and ideographic spaces count as white space too.
      {"' \\t a  \\n\\r b \\t'.trim() + '|' + '\\u00a0a\\u2028\\u3000b\\u00a0'.trim()", "string a b|a b"},
      {"'Straße'.toUpperCase() + 'ÀB'.toLowerCase() + 'àb'.toLocaleUpperCase()", "string STRASSEàbÀB"},
  });
}

TEST_F(ESNativeStringDate, StringObjectsAndReceivers) {
  expectAll({
      {"var s = new String('abc'); s.length = 9; s.x = 1; s.length + s.x", "number 4"},  // length stays
      {"String.length + ' ' + ''.indexOf.length + ' ' + String.fromCharCode.length", "string 1 2 0"},
      {"String() + ' ' + (new String()).valueOf() + ' ' + String(12)", "string undefined undefined 12"},
      {"String.fromCharCode(72, 105, 65536 + 33) + String.fromCharCode()", "string Hi!"},
      // A receiver of any kind is converted by ToString, through its own toString.
      {"var o = { toString: function() { return 'xyz'; } }; o.at = ''.charAt; o.at(1)", "string y"},
      {"var up = ''.toUpperCase; up()", "string [OBJECT GLOBAL]"},  // `this` is the global object
      {"var o = {}; o.up = ''.toUpperCase; var n = new Number(5); n.f = ''.concat; o.up() + n.f(6)",
       "string [OBJECT OBJECT]56"},
      {"String.prototype.toString = function() { return 'q'; }; 'abc'.charAt(0)", "string q"},
      {"var o = {}; o.f = ''.toString; o.f()", "TypeError: String.prototype.toString called on non-String object @ 1"},
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
    ASSERT_EQ(civil.year * 10000 + civil.month * 100 + civil.day,
              date.year() * 10000 + date.month() * 100 + date.day());
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
    const QString fields = QStringLiteral("%1, %2, %3").arg(date.year()).arg(date.month() - 1).arg(date.day());
    QString source = QStringLiteral("var d = new Date(1); d.setFullYear(%1); d.valueOf() / 86400000 + ' ' + d.getDay()"
                                    " + ' ' + d.getFullYear() + ', ' + d.getMonth() + ', ' + d.getDate()");
    QString expected = QStringLiteral("string %1 %2 ").arg(date.toJulianDay()).arg(date.dayOfWeek()) + fields;
    ASSERT_EQ(runner.run(source.arg(fields).toStdString()), expected.toStdString());
  }
}

TEST_F(ESNativeStringDate, GettersReadTheTimeValueCountedFromJulianDayZero) {
  // 2024-01-01 is Julian day 2460311, a Monday.
  expectAll(
      {
          {"0", "string -4713-10-24 1 0:0:0.0"},  // any argument to the constructor gives day 0
          {"d.setTime(2460311 * 86400000 + 3723004)", "string 2024-0-1 1 1:2:3.4"},
          {"d.setTime(2460317 * 86400000)", "string 2024-0-7 7 0:0:0.0"},
          {"d.setTime(-1)", "string -4713-10-23 7 23:59:59.999"},
          {"d.setTime(NaN)", "string NaN-NaN-NaN NaN NaN:NaN:NaN.NaN"},
      },
      "var d = new Date(2020, 1, 1);\n",
      "; d.getFullYear() + '-' + d.getMonth() + '-' + d.getDate() + ' ' + d.getDay() + ' ' + d.getHours() + ':' + "
      "d.getMinutes() + ':' + d.getSeconds() + '.' + d.getMilliseconds()");
  expectAll({
      {"var d = new Date(1); d.setTime(2460317 * 86400000);"
       " d.getUTCFullYear() + ' ' + d.getUTCMonth() + ' ' + d.getUTCDate() + ' ' + d.getUTCDay()",
       "string 2024 0 7 7"},
      {"var o = {}; o.f = Date.prototype.getTimezoneOffset; var p = Date.prototype.valueOf();"
       "o.f() + ' ' + (p != p) + ' ' + Date.prototype.length",
       "string 0 true 7"},
  });
  ScriptRunner runner;
  double day = std::stod(runner.run("var d = new Date(); d.valueOf() / 86400000").substr(7));
  double today = double(QDate::currentDate().toJulianDay());
  EXPECT_GE(day, today - 1);
  EXPECT_LT(day, today + 2);
}

TEST_F(ESNativeStringDate, TimeSettersTakeMissingFieldsFromTheTimeValue) {
  // Each starts at 2024-01-01 10:20:30.400 (Julian day 2460311).
  expectAll(
      {
          {"d.setHours(5, 6)", "string 1 5:6:30.400"},
          {"d.setUTCHours(5, 6, 7, 8)", "string 1 5:6:7.8"},
          {"d.setMinutes(1)", "string 1 10:1:30.400"},
          {"d.setSeconds(59.9)", "string 1 10:20:59.400"},  // each field is floored
          {"d.setMilliseconds(1500)", "string 1 10:20:31.500"},
          {"d.setHours(25)", "string 2 1:20:30.400"},  // beyond a field spills into the next day
          {"d.setMinutes(-1)", "string 1 9:59:30.400"},
          {"d.setHours(5, undefined, 0)", "string 1 5:20:0.400"},
          {"d.setMilliseconds()", "string NaN NaN:NaN:NaN.NaN"},  // the first argument is never missing
      },
      "var d = new Date(1); d.setTime(2460311 * 86400000 + 37230400);\n",
      "; d.getDate() + ' ' + d.getHours() + ':' + d.getMinutes() + ':' + d.getSeconds() + '.' + d.getMilliseconds()");
  expectAll({
      {"var d = new Date(1); var r = d.setMinutes(2); (r == d.valueOf() && r == 120000) + ' ' +"
       "Date.prototype.setMinutes.length + ' ' + Date.prototype.setUTCMinutes.length",
       "string true 2 3"},
  });
}

TEST_F(ESNativeStringDate, DateSettersGiveNaNForDatesThatDoNotExist) {
  expectAll(
      {
          {"d.setMonth(2)", "string 2020-2-31 12"},
          {"d.setMonth(3)", "string NaN-NaN-NaN NaN"},  // 31 April
          {"d.setMonth(1, 29)", "string 2020-1-29 12"},
          {"d.setFullYear(2021, 1, 29)", "string NaN-NaN-NaN NaN"},
          {"d.setUTCFullYear(0)", "string NaN-NaN-NaN NaN"},  // QDate has no year 0
          {"d.setMonth(12)", "string NaN-NaN-NaN NaN"},       // no overflow into the next year
          {"d.setMonth(2147483647)", "string NaN-NaN-NaN NaN"},
          {"d.setMonth(1, undefined)", "string NaN-NaN-NaN NaN"},  // day 31 kept: 31 February
          {"d.setDate(2.9)", "string 2020-0-2 12"},
          {"d.setFullYear(1e10)", "string NaN-NaN-NaN NaN"},
      },
      "var d = new Date(1); d.setFullYear(2020, 0, 31); d.setHours(12);\n",
      "; d.getFullYear() + '-' + d.getMonth() + '-' + d.getDate() + ' ' + d.getHours()");
}

TEST_F(ESNativeStringDate, SetTimeClipsAndGetTimeCountsFromTheUnixEpoch) {
  expectAll(
      {
          {"d.setTime(8.64e15) + ' ' + d.setTime(8.64e15 + 1)", "string 8640000000000000 NaN"},
          {"d.setTime(-1e20) + ' ' + d.getFullYear()", "string -100000000000000000000 NaN"},  // only the top is clipped
          {"var o = {}; o.f = Date.prototype.setTime; o.f('5')", "number 5"},                 // any receiver
          {"d.setFullYear(1970, 0, 1); d.getTime()", "number 0"},
          {"d.setTime(123456789); d.valueOf() - d.getTime()", "number 210866803200000"},
          {"d.setFullYear(2001, 8, 9); d.setHours(1, 46, 40); d.getTime()", "number 1000000000000"},
          },
      "var d = new Date(1); ");
}

TEST_F(ESNativeStringDate, TextFormsAreQtTextDates) {
  // Qt 6 writes English names whatever the locale, no milliseconds, and years before
  // 1 with a sign and three digits; an invalid date gives the empty text.
  expectAll(
      {
          {"d.toString()", "string Wed May 20 03:40:13 1998"},
          {"d.toLocaleString() == d.toString() && d.toUTCString() == d.toString()", "boolean true"},
          {"d.toDateString() + '|' + d.toLocaleDateString()", "string Wed May 20 1998|Wed May 20 1998"},
          {"d.toTimeString() + '|' + d.toLocaleTimeString()", "string 03:40:13|03:40:13"},
          {"d.setFullYear(-5, 0, 2); d.toDateString()", "string Mon Jan 2 -006"},  // -5 counted with a year 0
          {"d.setTime(NaN); d.toString() + '|' + d.toDateString() + '|' + d.toTimeString()", "string ||"},
          {"'' + new Date(1)", "string Mon Nov 24 00:00:00 -4714"},  // a Date's default value is its text
      },
      "var d = new Date(1); d.setFullYear(1998, 4, 20); d.setHours(3, 40, 13, 250);\n");
}

TEST_F(ESNativeStringDate, DateMethodsRequireADateObject) {
  expectAll(
      {
          {"o.f = Date.prototype.getFullYear; o.f()", "TypeError: Date object required @ 1"},
          {"Date.f = Date.prototype.valueOf; Date.f()", "TypeError: Date object required @ 1"},
          {"Date()", "Error: bad signature in builtin call @ 1"},
      },
      "var o = {}; ");
}

}  // namespace
}  // namespace regmill::script
