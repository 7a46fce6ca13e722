// The machine run on small programs, grouped by rule: each table row is a program
// and the value it leaves, written from the language's rules.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/script/script_runner.h"

namespace regmill::script {
namespace {

using testing::ScriptRunner;

using testing::expectAll;

TEST(ESMachine, KeepsTheLanguagesOwnRulesWhereLaterVersionsDiffer) {
  expectAll({
      {"null == undefined", "boolean false"},
      {"null == 0", "boolean false"},
      {"1 < NaN", "undefined"},
      {"1 > NaN", "undefined"},
      {"1 <= NaN", "boolean true"},
      {"1 >= NaN", "boolean true"},
      {"var r = 0; if (0/0) r = 1; r", "number 1"},  // NaN is true
      {"'' - 2", "number NaN"},                      // the empty string is NaN, not 0
      {"'Infinity' - 0", "number NaN"},
      {"function f() { return arguments; } f(1)", "undefined"},
      {"var s = '5'; s++", "string 5"},              // the old value is loaded as it was
      {"010", "number 8"},
  });
}

TEST(ESMachine, ConvertsBetweenTypes) {
  expectAll({
      {"1 + 2", "number 3"},
      {"'5' - 2", "number 3"},
      {"'5' + 2", "string 52"},
      {"1 + true", "number 2"},
      {"'a' + null + undefined", "string anullundefined"},
      {"'  12\\n ' * 1", "number 12"},
      {"'0x1F' - 0", "number 31"},
      {"'0x' - 0", "number NaN"},
      {"'0x100000000' - 0", "number NaN"},  // at most 32 bits
      {"'1e5' - 0", "number 100000"},
      {"'12abc' - 0", "number NaN"},
      {"'1e999' - 0", "number Infinity"},
      // Qt 6 reads "inf" and "nan" as numbers; the language reads every word as NaN.
      {"'inf' - 0", "number NaN"},
      {"'nan' - 0", "number NaN"},
      {"!0 + ' ' + !'' + ' ' + !null", "string true true true"},
      {"!1 + ' ' + !'a' + ' ' + !{}", "string false false false"},
      {"'1' == 1", "boolean true"},
      {"true == 1", "boolean true"},
      {"NaN == NaN", "boolean false"},
      {"'10' < '9'", "boolean true"},  // two strings compare as text
      {"10 < '9'", "boolean false"},
      {"'B' < 'a'", "boolean true"},
      {"var a = 'ab'; var b = 'a' + 'b'; a == b", "boolean true"},
      {"var o = {}; o == o", "boolean true"},
      {"({}) == ({})", "boolean false"},
      {"4294967296 | 0", "number 0"},
      {"2147483648 | 0", "number -2147483648"},
      {"-1 >>> 0", "number 4294967295"},
      {"1 << 31", "number -2147483648"},
      {"-8 >> 1", "number -4"},
      {"1 << 33", "number 2"},
      {"-5 % 3", "number -2"},
      {"~5", "number -6"},
      {"-(0) == 0", "boolean true"},
      {"1 / -(0)", "number -Infinity"},
  });
}

TEST(ESMachine, NamesTypes) {
  expectAll({
      {"typeof 1", "string number"},
      {"typeof 'a'", "string string"},
      {"typeof ('a' + 1)", "string string"},
      {"typeof true", "string boolean"},
      {"typeof null", "string object"},
      {"typeof undefined", "string undefined"},
      {"typeof {}", "string object"},
      {"typeof []", "string object"},
      {"typeof function () {}", "string function"},
      {"typeof Error", "string function"},
      {"typeof neverDeclared", "string undefined"},
      {"neverDeclared", "undefined"},  // reading a free name is no error
  });
}

TEST(ESMachine, PrintsNumbers) {
  expectAll({
      {"1/3", "number 0.333333"},
      {"100000", "number 100000"},
      {"1234567.5", "number 1.23457e+06"},
      {"9007199254740993", "number 9007199254740992"},
      {"1e21", "number 1000000000000000000000"},  // integers in full
      {"-5", "number -5"},
      {"0.1 + 0.2", "number 0.3"},
      {"-1e-7", "number -1e-07"},
      {"1/0", "number Infinity"},
      {"-1/0", "number -Infinity"},
      {"-(0)", "number 0"},
  });
  EXPECT_EQ(ESContext::numberToString(-1, 16), "ffffffffffffffff");  // the 64-bit pattern
  EXPECT_EQ(ESContext::numberToString(255, 16), "ff");
  EXPECT_EQ(ESContext::numberToString(35, 36), "z");
  EXPECT_EQ(ESContext::numberToString(0.5, 2), "0.5");  // a fraction ignores the radix
}

TEST(ESMachine, EvaluatesByPrecedenceAndInItsOwnOrder) {
  expectAll({
      {"1 + 2 * 3", "number 7"},
      {"(1 + 2) * 3", "number 9"},
      {"1 - 2 - 3", "number -4"},
      {"2 * 3 % 4", "number 2"},
      {"1 + 2 << 1", "number 6"},
      {"1 | 2 ^ 3 & 4", "number 3"},
      {"1 == 1 < 2", "boolean true"},
      {"!1 == 0", "boolean true"},
      {"-2 * -3", "number 6"},
      {"var a, b; a = b = 3; a + b", "number 6"},
      {"1 ? 2 : 3 ? 4 : 5", "number 2"},
      {"0 || 0 && 1", "number 0"},
      {"1 && 2 || 3", "number 2"},
      {"var x = 5; x += 2, x * 2", "number 14"},
      {"var x = 6; x >>>= 1; x", "number 3"},
      // The right side of an assignment before the target's object; `>` right first;
      // arguments before the callee.
      {"var log = ''; function t(x) { log = log + x; return x; } var o = {};"
       "function obj() { log = log + 'o'; return o; } obj().p = t('v'); log",
       "string vo"},
      {"var log = ''; function t(x) { log = log + x; return x; } t(1) > t(2); log", "string 21"},
      {"var log = ''; function t(x) { log = log + x; return x; }"
       "function f() { log = log + 'f'; return t; } f()(t('a')); log",
       "string afa"},
      {"var o = {n: 1}; o.n <<= 2; o.n", "number 4"},
      {"var o = {n: '1'}; o['n'] += 2; o.n", "string 12"},
  });
}

TEST(ESMachine, CallsFunctionsAndValues) {
  expectAll({
      {"function fib(n) { if (n < 2) return n; return fib(n - 1) + fib(n - 2); } fib(20)", "number 6765"},
      {"function f(a, b) { return b; } f(1)", "undefined"},
      {"function f(a) { var l = 5; return l + a; } f(1, 2, 3)", "number 6"},
      {"(function (a) { return a * 2; })(21)", "number 42"},
      {"function f() { return function (x) { return x + 1; }; } f()(1)", "number 2"},
      {"var o = {k: function () { return this.v; }, v: 3}; o.k()", "number 3"},
      {"var o = {k: function () { return this.v; }, v: 4}; o['k']()", "number 4"},
      {"function A() { this.v = 1; return 5; } var a = new A(); a.v", "number 1"},
      {"function B() { return {w: 2}; } var b = new B(); b.w", "number 2"},
      {"function C() {} C.prototype.m = 7; var c = new C(); c.m", "number 7"},
      {"function C() {} C.prototype.constructor == C", "boolean true"},
  });
}

TEST(ESMachine, ClosuresReachVariablesThroughActivations) {
  expectAll({
      {"function outer(p) { var l = 2; function inner() { return p + l; } return inner(); } outer(1)", "number 3"},
      {"function mk(s) { var c = s; function add(d) { c = c + d; return c; } return add; }"
       "var f = mk(10), g = mk(100); f(1); g(5); f(2) + ' ' + g(5)",
       "string 13 110"},
      // Each call has its own activation, also when activations are recycled in between.
      {"function mk(i) { return function () { return i; }; } function plain(x) { var y = x;"
       "return (function () { return y; })(); } var fs = [], s = 0, i;"
       "for (i = 0; i < 100; i++) { plain(i); fs[i] = mk(i); plain(-i); }"
       "for (i = 0; i < 100; i++) s = s + fs[i](); s",
       "number 4950"},
      // A function found by name in an activation gets that activation as `this`.
      {"function outer() { var v = 7; function inner() { return this.v; } function mid() { return inner(); }"
       "return mid(); } outer()",
       "number 7"},
  });
}

TEST(ESMachine, WithPutsAnObjectOnTheScopeChain) {
  expectAll({
      {"var o = {a: 1}, r; with (o) { r = a; a = 2; } r + o.a", "number 3"},
      {"function f(o) { var x = 1; with (o) { x = y; } return x; } f({y: 5})", "number 5"},
      {"var o = {}; with (o) { fresh = 1; } o.fresh + ' ' + fresh", "string undefined 1"},
      {"var o = {n: 1}; with (o) { n++; ++n; } o.n", "number 3"},
      {"var o = {n: 1}; with (o) { delete n; } typeof o.n", "string undefined"},
      // Leaving a `with` by `break` keeps its scope link: a closure made after it still sees the object.
      {"function f(o) { var z = 1; while (1) { with (o) { break; } } return (function () { return z; })(); }"
       "f({z: 9})",
       "number 9"},
  });
}

TEST(ESMachine, BreaksAndContinuesByLabel) {
  expectAll({
      {"var s = 0; outer: for (var i = 0; i < 3; i++) { for (var j = 0; j < 3; j++) {"
       "if (j == 1) continue outer; if (i == 2) break outer; s = s + 1; } } s",
       "number 2"},
      {"var r = 1; b: { r = 2; break b; r = 3; } r", "number 2"},
      {"var n = 0; a: b: while (1) { n++; if (n < 3) continue a; break b; } n", "number 3"},
      {"var n = 0; do { n++; if (n < 5) continue; break; } while (1) n", "number 5"},
      {"var n = 0; for (;;) { if (++n == 4) break; } n", "number 4"},
  });
}

TEST(ESMachine, SwitchMatchesByIdentityAndTakesDefaultLast) {
  expectAll({
      {"var r; switch (1) { case '1': r = 's'; break; case 1: r = 'n'; break; } r", "string n"},
      {"var r; switch (3) { default: r = 'd'; break; case 3: r = 't'; } r", "string t"},
      {"var r; switch (4) { default: r = 'd'; break; case 3: r = 't'; } r", "string d"},
      {"var r = ''; switch (1) { case 1: r = r + 'a'; case 2: r = r + 'b'; break; case 3: r = r + 'c'; } r",
       "string ab"},
      {"var r = 0; switch (9) { case 1: r = 1; } r", "number 0"},
      {"var log = ''; function t(x) { log = log + x; return x; }"
       "switch (2) { case t(1): case t(2): case t(3): } log",
       "string 12"},
      {"var r = ''; for (var i = 0; i < 3; i++) { switch (i) { case 1: continue; } r = r + i; } r", "string 02"},
  });
}

TEST(ESMachine, EnumeratesNamesInAtomOrder) {
  // The methods of Object.prototype are enumerable too; `mine` leaves them out.
  const std::string mine = "function mine(k) { return !Object.prototype.hasOwnProperty(k); } ";
  expectAll({
      // "b" is interned before "a", so it comes first whatever the creation order.
      {mine + "var names = ['b', 'a']; var o = {}; o.a = 1; o.b = 2; var s = '';"
              "for (var k in o) if (mine(k)) s = s + k + ','; s",
       "string b,a,"},
      {mine + "var o = {x: 1}; var s = ''; for (k in o) if (mine(k)) s = s + k; s", "string x"},
      // Array length is a plain property too; indexes come first as the oldest atoms.
      {"var a = [5, 6]; var s = ''; for (var k in a) if (a.hasOwnProperty(k)) s = s + k + ','; s",
       "string 0,1,length,"},
      // The enumerator is a snapshot: a name deleted during the loop still comes up.
      {mine + "var o = {p: 1, q: 2}; var s = ''; for (var k in o) { delete o.q; if (mine(k)) s = s + k; } s",
       "string pq"},
      // Every name of the chain comes once, the built-in methods among them; the
      // names the engine interns first come first.
      {"function C() { this.own = 1; } C.prototype.inherited = 2; var s = '';"
       "for (var k in new C()) s = s + k + ','; s",
       "string constructor,valueOf,toString,toLocaleString,hasOwnProperty,isPrototypeOf,propertyIsEnumerable,"
       "own,inherited,"},
      // Seven methods of Object.prototype, then a and b.
      {"var o = {}; o.k = 1; var s = 0; for (o.target in {a: 1, b: 2}) s++; s + o.target", "string 9b"},
  });
}

TEST(ESMachine, BuildsArraysAndObjects) {
  expectAll({
      {"[,].length", "number 2"},
      {"[1,,2].length", "number 3"},
      {"[1,].length", "number 2"},
      {"typeof [1,,2][1]", "string undefined"},
      {"var a = []; a[9] = 1; a.length", "number 10"},
      {"var a = [1, 2, 3]; a.length = 1; a[2]", "number 3"},  // no element is removed
      {"var o = {}; o[5] = 1; o['5']", "number 1"},
      {"var o = {}; o[1000] = 2; o['1000']", "number 2"},
      {"var o = {}; o[1.5] = 3; o['1.5']", "number 3"},
      {"var o = {1: 'one'}; o[1]", "string one"},
      {"var p = {v: 1}; function C() {} C.prototype = p; var c = new C(); c.v = 2; p.v", "number 1"},
      {"var o = {a: 1}; delete o.a; o.a = 2; o.a", "number 2"},
      {"var o = {n: '5'}; o.n++; o.n", "number 6"},
      {"var o = {n: 1}; var a = o.n++; a + ' ' + o.n", "string 1 2"},
      {"var o = {n: 1}, k = 'n'; --o[k]", "number 0"},
  });
}

TEST(ESMachine, RaisesErrorsWithTheirLine) {
  expectAll({
      {"x();", "TypeError: not a function object @ 1"},
      {"var o = {};\no.missing();", "TypeError: not a function object @ 2"},
      {"(5)()", "TypeError: not a function object @ 1"},
      {"new 5", "TypeError: new must be given a constructor object @ 1"},
      {"var u;\n\nu.p", "TypeError: can't convert undefined to an object @ 3"},
      {"null.p", "TypeError: can't convert null to an object @ 1"},
      // Without native toString or valueOf an object has no primitive value.
      {"({toString: 1, valueOf: 1}) + 1", "TypeError: type error: no default value @ 1"},
  });
  ScriptRunner runner;
  ESEvaluation failed = runner.context().evaluate(QStringLiteral("f.js"), QStringLiteral("var kept = 1;\nkept()"));
  ASSERT_EQ(failed.status, ESEvaluation::ScriptError);
  ESObject* error = failed.value.object;
  auto field = [&](const char* name) {
    return runner.context().toString(
        error->klass->get(runner.context(), error, runner.context().engine().intern(QLatin1String(name))));
  };
  EXPECT_EQ(field("fileName"), "f.js");
  EXPECT_EQ(field("sourceLine"), "kept()");
  // Globals survive an error.
  EXPECT_EQ(runner.run("kept + 1"), "number 2");
}

TEST(ESMachine, PrintJoinsItsArgumentsWithABlank) {
  ScriptRunner runner;
  EXPECT_EQ(runner.run("print(1, 'a', null, 1/3); print(); print(true)"), "undefined");
  EXPECT_EQ(runner.printed(), "1 a null 0.333333\n\ntrue\n");
}

}  // namespace
}  // namespace regmill::script
