// The built-in objects run from scripts, grouped by rule. Each row is a program and
// the value it leaves, written from the rules of the built-ins.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "script/es_native.h"
#include "tests/script/script_runner.h"
#include "tests/support/scratch_folder.h"

namespace regmill::script {
namespace {

using testing::ScriptRunner;

using testing::expectAll;

TEST(ESNative, PadsArgumentsToTheDeclaredLength) {
  expectAll({
      {"[1, 2].join()", "string 1,2"},          // the padded separator is undefined
      {"isNaN() + ' ' + Boolean() + ' ' + Number()", "string true false 0"},  // Number() pads nothing
      {"Number(undefined)", "number NaN"},
      {"Function()()", "undefined"},            // the padded body is the text "undefined"
      {"parseInt.length + Math.atan2.length + Math.max.length + [].slice.length", "number 6"},
  });
}

TEST(ESNative, JoinsAndConvertsArrays) {
  expectAll({
      {"[1, null, 3].join() + '|' + [1, undefined, 3].join('-') + '|' + [].join()", "string 1,3|1-3|"},
      {"[1, null, undefined, 2].toString()", "string 1,,undefined,2"},
      {"[1, [2, 3]].join(';')", "string 1;2,3"},
      {"[1, 2].concat([3, undefined], 4).join()", "string 1,2,3,4"},
      {"[1].concat(undefined).length", "number 2"},  // only an array loses its undefined elements
      {"var o = {}; o.f = [].toString; o.f()", "TypeError: Array.prototype.toString requires an array @ 1"},
      {"var o = {}; o.f = [].toLocaleString; o.f()", "TypeError: Array.prototype.toString requires an array @ 1"},
  });
}

TEST(ESNative, KeepsTheArrayLength) {
  expectAll({
      {"var a = [1, 2, 3]; a.length = 1; a.length + ' ' + a[2]", "string 1 3"},  // elements stay
      {"var a = []; a[5] = 1; var b = []; b['05'] = 1; a.length + ' ' + b.length", "string 6 0"},
      {"var a = []; a.length = '3'; typeof a.length + a.length", "string number3"},
      {"var a = []; a[2147483646] = 1; var b = []; b[2147483647] = 1; a.length + ' ' + b.length",
       "string 2147483647 0"},
      // `new` takes the whole member chain after it, so the new object is put in parentheses.
      {"(new Array(3)).length + ' ' + Array(1, 2).length + ' ' + Array('3').length", "string 3 2 1"},
      {"(new Array(4294967295)).length", "number 4294967295"},
      {"new Array(3.5)", "RangeError: bad length in array constructor @ 1"},
      {"var a = [undefined, 1]; a.reverse(); [1, 2, 3].reverse() + ' ' + a.hasOwnProperty(1) + ' ' + a[0]",
       "string 3,2,1 false 1"},
      {"var a = [1, 2, 3, 4]; a.slice(1, 3) + ' ' + a.slice(-2) + ' ' + a.slice(-9, 9) + ' ' + a.slice(2, 1).length",
       "string 2,3 3,4 1,2,3,4 0"},
      {"var a = [1, 2, 3]; delete a[2]; a.slice(0).length", "number 2"},  // only existing elements
      // Native walks cannot be stopped by a step budget, so they are bounded.
      {"Array(4294967295).join()", "RangeError: array too long for Array.prototype.join @ 1"},
      {"var a = []; a[2000000] = 1; a.sort()", "RangeError: array too long for Array.prototype.sort @ 1"},
      {"var a = []; a[0] = a; a.join()", "RangeError: script calls nested too deeply @ 1"},
      {"var a = []; a[100000] = 'x'; a.reverse(); (a.join() == 'x') + ' ' + a[0] + ' ' + a.length",
       "string true x 100001"},
  });
}

TEST(ESNative, SortsWithTheShellSort) {
  expectAll({
      {"[10, 9, 1].sort().join()", "string 1,10,9"},  // by text
      {"var a = [3, undefined, 1, 2]; a.sort(); a.join() + ' ' + a.length + ' ' + a.hasOwnProperty(3)",
       "string 1,2,3 4 false"},
      {"var a = [2, 1]; var t; (a.sort(function (x, y) { t = this; return x - y; }) == a) + ' ' + (t == a)",
       "string true true"},
      {"[5].sort(5).length", "Error: Array.prototype.sort argument is not a function @ 1"},
      // Many elements pass through every gap: the result is ordered and keeps the sum.
      {"var a = []; var sum = 0; for (var i = 0; i < 500; i++) { a[i] = (i * 7919) % 1009; sum += a[i]; }"
       "a.sort(function (x, y) { return x - y; }); var ok = a.length == 500;"
       "for (var i = 1; i < 500; i++) { if (a[i - 1] > a[i]) ok = false; sum -= a[i]; }"
       "ok && sum == a[0]",
       "boolean true"},
  });
}

TEST(ESNative, ConvertsAndFormatsNumbers) {
  expectAll({
      // 1.005 is the double just below it, and C rounds a tie to even.
      {"(1.005).toFixed(2) + ' ' + (2.5).toFixed() + ' ' + (0.125).toFixed(2) + ' ' + (-1.5).toFixed(0)",
       "string 1.00 2 0.12 -2"},
      {"(1).toFixed(20) + ' ' + (1e21).toFixed(2)", "string 1.00000000000000000000 1000000000000000000000.00"},
      {"(1).toFixed(21)", "RangeError: fraction digits should 0 through 20 @ 1"},
      {"(1).toFixed(-1)", "RangeError: fraction digits should 0 through 20 @ 1"},
      // Any receiver: a plain object's value is undefined, NaN, which prints as C prints it.
      {"var o = {}; o.f = (1).toFixed; o.f(1)", "string nan"},
      {"(255).toString(16) + ' ' + (255).toString() + ' ' + (-1).toString(16)", "string ff 255 ffffffffffffffff"},
      {"var o = {}; o.f = (1).toString; o.f()", "TypeError: Number.prototype.toString called on non-Number object @ 1"},
      {"var o = {}; o.f = (1).valueOf; o.f()", "TypeError: Number.prototype.valueOf called on non-Number object @ 1"},
      {"(new Number(5) + 1) + typeof new Number(5)", "string 6object"},
      {"var o = {}; o.f = true.valueOf; o.f()",
       "TypeError: Boolean.prototype.toString called on non-Boolean object @ 1"},
  });
}

TEST(ESNative, ParsesNumbersFromText) {
  expectAll({
      // A leading 0 means octal, and only a lower-case prefix chooses 16.
      {"[parseInt(' 12 34'), parseInt('010'), parseInt('09'), parseInt('0X1F')].join()", "string 12,8,NaN,NaN"},
      {"parseInt('ff', 16) + parseInt('11', 2) + parseInt('0x10', 0)", "number 274"},
      // Qt 6's integer conversion reads "7" in base 37 as 7; a base outside 2 to 36 reads nothing.
      {"parseInt('7', 1) + ' ' + parseInt('7', 37)", "string NaN NaN"},
      {"parseInt('zz') + ' ' + parseInt('12px') + ' ' + parseInt('')", "string NaN NaN NaN"},
      {"parseInt('99999999999')", "number NaN"},  // beyond 32 bits
      {"(parseFloat('0.1') == 0.1) + ' ' + (parseFloat('0.5') == 0.5)", "string false true"},  // single precision
      {"parseFloat('abc') + ' ' + parseFloat('1e39')", "string NaN NaN"},
      // Qt 6's float conversion reads "inf" and refuses a value that underflows; the
      // float range check of the double reading refuses the first and gives 0.
      {"parseFloat('inf') + ' ' + parseFloat('1e-50')", "string NaN 0"},
  });
}

TEST(ESNative, MathFunctions) {
  expectAll({
      {"Math.max() + ' ' + Math.min()", "string -Infinity Infinity"},
      {"1 / Math.max(-0, 0) + ' ' + 1 / Math.max(0, -0)", "string Infinity Infinity"},
      {"1 / Math.min(0, -0) + ' ' + 1 / Math.min(-0, 0)", "string -Infinity -Infinity"},
      // Conversion stops at the first NaN.
      {"var n = 0; var o = {valueOf: function () { n++; return 1; }}; Math.max(NaN, o); n", "number 0"},
      {"1 / Math.round(-0.2) + ' ' + 1 / Math.round(-0.5) + ' ' + 1 / Math.round(-0)",
       "string -Infinity -Infinity -Infinity"},
      {"Math.round(2.5) + ' ' + Math.round(-2.5) + ' ' + Math.round(-2.6)", "string 3 -2 -3"},
      {"1 / Math.abs(-0)", "number Infinity"},
      // 15 bits of the generator: every value is a multiple of 1/32768 in [0, 1).
      {"var ok = true; for (var i = 0; i < 2000; i++) { var r = Math.random() * 32768;"
       "if (r < 0 || r >= 32768 || r != Math.floor(r)) ok = false; } ok",
       "boolean true"},
  });
}

TEST(ESNative, ObjectAndFunctionMethods) {
  expectAll({
      {"typeof Object(null) + typeof Object(5) + (Object(5) + 1)", "string objectobject6"},
      {"var o = {}; Object(o) == o && new Object(o) == o", "boolean true"},
      {"var f = Object.prototype.toString; function g() {} g.t = f; var a = [];"
       "a.t = f; g.t() + a.t() + Math.toString() + Error().toString() + this.toString()",
       "string [object Function][object Array][object Object][object Error][object global]"},
      {"var o = new Boolean(true); o.v = Object.prototype.valueOf; o.v() + ' ' + (o.valueOf() == o)",
       "string true true"},
      {"var o = {}; Object.prototype.isPrototypeOf(o) + ' ' + o.isPrototypeOf(o) + ' ' +"
       "Object.prototype.isPrototypeOf(5)",
       "string true false false"},
      {"({a: 1}).propertyIsEnumerable('a') + ' ' + ({}).propertyIsEnumerable('toString')", "string true false"},
      {"var g = 3; (new Function('a', 'b', 'return a + b'))(2, 3) + Function('a, b', 'return a * b')(2, 3) +"
       "Function('return g')() + (new Function('x', 'return x')).length",
       "number 15"},
      {"Function('a b', '')", "SyntaxError: expected , found an identifier @ 1"},
      // The parameter text cannot close the list and smuggle in code.
      {"Function('a) { return 1; }; (function (b', 'return 2')", "SyntaxError: expected , found ) @ 1"},
      {"Function('', '1;\\n+')", "SyntaxError: expected an expression, found end of input @ 2"},  // a line of the body
      {"Function.prototype.toString() + (function () {}).toString() + typeof Function.prototype()",
       "string <<function>><<function>>undefined"},
  });
}

TEST(ESNative, ErrorObjects) {
  expectAll({
      {"(new Error('x')).message + Error('y').message + (new RangeError()).message", "string xy"},  // a call is new
      {"TypeError.prototype.hasOwnProperty('message') + ' ' + Error.prototype.isPrototypeOf(new TypeError())",
       "string false true"},
      {"TypeError('t').toString() + typeof Error(5).message", "string [object Error]number"},  // kept unconverted
  });
}

TEST(ESNative, EvalSwallowsErrorsAndBindsAtTopLevel) {
  expectAll({
      {"typeof eval('1+') + typeof eval('null.x')", "string undefinedundefined"},
      {"eval('var g = 4'); eval('function h() { return 1; }'); eval('1 + 2') + eval(5) + g + h()", "number 13"},
      {"function f() { var x = 1; return eval('typeof x'); } f()", "string undefined"},
      // Errors after an eval still report the caller's line.
      {"eval('1');\nnull.x", "TypeError: can't convert null to an object @ 2"},
  });
}

TEST(ESNative, LoadRunsFilesFromThePathOrTheSearchList) {
  regmill::testing::ScratchFolder folder;
  folder.write("lib.js", "var loaded = 41;\nvar text = '\xc3\xa9';\n");  // the bytes are read as UTF-8
  folder.write("bad.js", "var ok = 1;\nvar = 2;\n");
  ScriptRunner runner;
  auto quoted = [&](const std::string& name) { return "'" + folder.file(name) + "'"; };
  EXPECT_EQ(runner.run("load(" + quoted("lib.js") + ") + ' ' + (loaded + 1) + ' ' + (text == '\\u00e9')"),
            "string true 42 true");
  EXPECT_EQ(runner.run("load('lib.js')"), "boolean false");
  runner.context().addLoadDirectory(QString::fromStdString(folder.file("missing")));
  runner.context().addLoadDirectory(QString::fromStdString(folder.path().string()));
  EXPECT_EQ(runner.run("load('lib.js')"), "boolean true");
  // A syntax error in the file reaches the caller, naming the file and its line.
  ESEvaluation failed = runner.context().evaluate(QStringLiteral("main.js"), QStringLiteral("\nload('bad.js')"));
  EXPECT_EQ(runner.describe(failed), "SyntaxError: expected an identifier found = @ 2");
  ESObject* error = failed.value.object;
  EXPECT_EQ(runner.context().toString(error->klass->get(runner.context(), error, runner.context().engine().names().fileName)),
            QString::fromStdString(folder.file("bad.js")));
  EXPECT_EQ(runner.run("ok"), "undefined");  // a file that does not compile runs nothing
  // A file that loads itself ends in the bound on nesting, not in a crash.
  folder.write("self.js", "load('self.js');\n");
  EXPECT_EQ(runner.run("load('self.js')"), "RangeError: script calls nested too deeply @ 1");
}

// The classes are set up in a fixed order, which shows in the order of the
// global names (for-in goes by atom, and atoms are made in order of definition).
TEST(ESNative, SetsUpTheClassesInOrder) {
  expectAll({
      {"var wanted = {Object: 1, Boolean: 1, Array: 1, parseInt: 1, Error: 1, RangeError: 1, ReferenceError: 1,"
       "SyntaxError: 1, TypeError: 1, EvalError: 1, Number: 1, Math: 1, Function: 1};"
       "var s = ''; for (var k in this) if (wanted.hasOwnProperty(k)) s = s + k + ' '; s",
       "string Object Boolean Array parseInt Error RangeError ReferenceError SyntaxError TypeError EvalError "
       "Number Math Function "},
  });
}

// Unknown ids are bad signatures, and a definition carries its help text.
TEST(ESNative, DefinesBuiltinsFromTheirDefinitions) {
  ScriptRunner runner;
  ESContext& context = runner.context();
  auto define = [&](ESClass* klass, const char* name, int32_t id, bool isConstructor) {
    QString text = QLatin1String(name);
    context.defineBuiltin(context.global(), klass, context.builtinDef(text, text, 0, id, isConstructor),
                          context.newObject());
  };
  for (ESClass* klass : {context.objectClass(), context.functionClass(), context.arrayClass(), context.numberClass(),
                         context.booleanClass(), context.globalClass(), context.errorClass()}) {
    define(klass, "odd", 99, false);
    EXPECT_EQ(runner.run("odd()"), "Error: bad signature in builtin call @ 1") << klass->name;
    if (klass == context.globalClass()) continue;  // it constructs nothing
    define(klass, "Odd", 5, true);
    EXPECT_EQ(runner.run("new Odd()"), "Error: bad signature in builtin construct @ 1") << klass->name;
  }
  ESBuiltinDef definition = context.builtinDef(QStringLiteral("sum"), QStringLiteral("Tools.sum"), 2, 0);
  definition.help = QStringLiteral("adds two numbers");
  context.defineBuiltin(context.global(), context.objectClass(), definition);
  EXPECT_EQ(runner.run("sum.help + ' ' + sum.length"), "string adds two numbers 2");
  EXPECT_EQ(runner.run("typeof parseInt.help"), "string undefined");
}

}  // namespace
}  // namespace regmill::script
