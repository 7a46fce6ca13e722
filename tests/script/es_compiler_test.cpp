// The compiler: every diagnostic with its line, the code it generates for the
// forms whose shape matters (written by hand from the instruction rules), and the
// declarations and hoisting of statement lists.
#include <gtest/gtest.h>

#include "script/es_code.h"
#include "tests/script/script_runner.h"

namespace regmill::script {
namespace {

using testing::ScriptRunner;

TEST(ESCompiler, ReportsEachSyntaxErrorWithItsLine) {
  const std::pair<const char*, const char*> cases[] = {
      {"a === b", "SyntaxError: expected ; found === @ 1"},
      {"x = 1 y = 2", "SyntaxError: expected ; found an identifier @ 1"},
      {"a !== b", "SyntaxError: expected ; found !== @ 1"},
      {"x instanceof y", "SyntaxError: expected ; found an identifier @ 1"},
      {"for (k in o) a in b", "SyntaxError: expected ; found in @ 1"},
      {"09", "SyntaxError: expected ; found a number @ 1"},
      {"\n\n@", "SyntaxError: unknown character '@' @ 3"},
      {"(1", "SyntaxError: expected ) found end of input @ 1"},
      {"f(", "SyntaxError: expected an expression, found end of input @ 1"},
      {"class", "SyntaxError: expected an expression, found class @ 1"},
      {"x = [1 2]", "SyntaxError: ']' or ',' expected, found a number @ 1"},
      {"x = {+: 1}", "SyntaxError: number, string, or identifier expected in object initialiser @ 1"},
      {"x = {if: 1}", "SyntaxError: number, string, or identifier expected in object initialiser @ 1"},
      {"x = 1;\nreturn x", "SyntaxError: return not in a function @ 2"},
      {"switch (1) { x }", "SyntaxError: expected 'case' or 'default' but found 'an identifier' @ 1"},
      {"switch (1) { default: default: }", "SyntaxError: default case already defined @ 1"},
      {"for (var a, b in o) ;", "SyntaxError: too many variables in for-in expression @ 1"},
      {"try { x(); }", "SyntaxError: 'catch' or 'finally' clause expected after 'try' @ 1"},
      {"do x(); while (y)", "SyntaxError: expected { found an identifier @ 1"},
      {"function (a) {}", "SyntaxError: expected an identifier found ( @ 1"},
      // The generator reports the last line: the lexer has reached the end by then.
      {"break;\n\n", "SyntaxError: 'break' not in a 'for' or 'while' loop @ 3"},
      {"while (1) { break nowhere; }", "SyntaxError: can't find label nowhere @ 1"},
      {"l: { continue l; }", "SyntaxError: labeled 'continue' doesn't mark a loop @ 1"},
      {"1 = 2", "SyntaxError: not lsh? @ 1"},
      {"f()++", "SyntaxError: not lsh? @ 1"},
      {"for (var a = 1 in o) ;", "SyntaxError: not lsh? @ 1"},
  };
  for (const auto& [source, expected] : cases) {
    ScriptRunner runner;
    EXPECT_EQ(runner.run(source), expected) << source;
  }
}

TEST(ESCompiler, AcceptsTheLooseFormsOfTheLanguage) {
  const std::pair<const char*, const char*> cases[] = {
      {"x = 1\ny = 2\ny", "number 2"},
      {"var a = 1, b = 1; a\n++b; b", "number 2"},     // `++` after a line end is a prefix
      {"var o = {a: 1,}; o.a", "number 1"},
      {"while (1) { break }", "undefined"},
      {"var i = 0; while (1) { if (i) break; else i = 1; } i", "number 1"},
      {"continue; 5", "number 5"},                      // outside a loop it generates nothing
      {"do { x = 3; } while (0) x", "number 3"},        // nothing is taken after `)`
      {"// only a comment", "undefined"},
      {"", "undefined"},
      {"var r = 1; try { r = 2; } catch (e) { r = 3; } finally { r = 4; } r", "number 1"},
      {"throw 5; 7", "number 7"},
      {"new Foo; 1", "number 1"},                       // dropped: no parentheses, no side effect
      {"function f() { return\n5 } f()", "undefined"},
  };
  for (const auto& [source, expected] : cases) {
    ScriptRunner runner;
    EXPECT_EQ(runner.run(source), expected) << source;
  }
}

// The listing of the last function the program declares.
std::string listing(const char* source) {
  ScriptRunner runner;
  ESContext& context = runner.context();
  auto program = context.compileProgram(QStringLiteral("t.js"), QString::fromUtf8(source));
  const ESCode& code = context.function(context.functionCount() - 1);
  return disassemble(code, context.engine(), context.global()).toStdString();
}

TEST(ESCompiler, GeneratesSlotFormsForPlainFunctions) {
  EXPECT_EQ(listing("function f(a) { var b = a + 1; return b; }"),
            "0000:  GETA\t0\n0003:  NUM_1\n0004:  ADD\n0005:  PUTL\t0\n0008:  GETL\t0\n000b:  RET\n000c:  RETU\n");
  // A `<` condition jumps back to the body with JLT; the update follows the body.
  EXPECT_EQ(listing("function g(n) { for (var i = 0; i < n; i++) ; }"),
            "0000:  NUM_0\n0001:  PUTL\t0\n0004:  J\t000a\n0007:  INCL\t0\n000a:  GETL\t0\n000d:  GETA\t0\n"
            "0010:  JLT\t0007\n0013:  RETU\n");
  // `>` evaluates its right operand first and compares with LT.
  EXPECT_EQ(listing("function h(a, b) { return a > b; }"),
            "0000:  GETA\t1\n0003:  GETA\t0\n0006:  LT\n0007:  RET\n0008:  RETU\n");
  EXPECT_EQ(listing("function c(o) { o.f(1, 2); new o.g(3); }"),
            "0000:  NUM_1\n0001:  NUM_2\n0002:  GETA\t0\n0005:  CALLF\tf, #2\n000a:  DROP\n000b:  NUM_3\n"
            "000c:  GETA\t0\n000f:  GETF\tg\n0012:  NEWA, #1\n0015:  DROP\n0016:  RETU\n");
}

TEST(ESCompiler, GeneratesActivationFormsWhenNamesAreReachedByName) {
  // Inside `with` every name is looked up at run time and the function's own
  // variables live in its activation object.
  EXPECT_EQ(listing("function h(o) { with (o) { return p; } }"),
            "0000:  GETAM\t0\n0003:  WITH\n0004:  GETW\tp\n0007:  RET\n0008:  ENDWITH\n0009:  RETU\n");
  // A by-name `++` whose value nobody wants is dropped, so the stack does not grow.
  EXPECT_EQ(listing("function k(o) { with (o) { n++; } }"),
            "0000:  GETAM\t0\n0003:  WITH\n0004:  STR\tn\n0007:  POSTINCX\n0008:  DROP\n0009:  ENDWITH\n000a:  RETU\n");
  // A variable of the enclosing function is reached by name.
  EXPECT_EQ(listing("function outer(p) { function inner() { return p; } }"),
            "0000:  CLOSURE\t" + std::to_string(0) + "\n0003:  PUTLM\t0\n0006:  RETU\n");
}

TEST(ESCompiler, HoistsFunctionDeclarationsToTheStartOfTheirOwnList) {
  const std::pair<const char*, const char*> cases[] = {
      {"f(); function f() { return 1; }", "number 1"},
      // In a block the declaration runs at the start of that block only.
      {"var before = typeof g; { function g() {} } before + ' ' + typeof g", "string undefined function"},
      {"var r = typeof h; if (1) function h() {}; r + ' ' + typeof h", "string undefined function"},
      // A named function expression assigns its name in the enclosing block.
      {"var v = function named() { return 2; }; named()", "number 2"},
      {"function d(a, a) { return a; } d(1, 2)", "number 2"},   // the later parameter wins
      {"function d(a, a) { return a; } d.length", "number 2"},  // both are counted
  };
  for (const auto& [source, expected] : cases) {
    ScriptRunner runner;
    EXPECT_EQ(runner.run(source), expected) << source;
  }
}

TEST(ESCompiler, TopLevelDeclarationsBecomeGlobalsThatPersist) {
  ScriptRunner runner;
  EXPECT_EQ(runner.run("var kept = 41; function inc() { kept++; }"), "undefined");
  EXPECT_EQ(runner.run("inc(); kept"), "number 42");
  EXPECT_EQ(runner.run("delete kept"), "boolean false");  // a variable at a fixed place
  ESObject* global = runner.context().global();
  int32_t slot = global->findOwn(runner.context().engine().intern(QStringLiteral("kept")));
  ASSERT_GE(slot, 0);
  EXPECT_EQ(global->properties()[size_t(slot)].attributes, ESAttribute::DontEnum | ESAttribute::DontDelete);
}

}  // namespace
}  // namespace regmill::script
