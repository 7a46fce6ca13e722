// Where a literal reading of the engine's rules would corrupt memory or overflow
// a native stack, a script gets a clear error instead, and the context stays usable.
#include <gtest/gtest.h>

#include <string>

#include "tests/script/script_runner.h"

namespace regmill::script {
namespace {

using testing::ScriptRunner;

std::string repeated(const std::string& part, int times) {
  std::string text;
  for (int i = 0; i < times; ++i) text += part;
  return text;
}

TEST(ESLimits, DeepScriptRecursionIsACatchableError) {
  ScriptRunner runner;
  EXPECT_EQ(runner.run("function r(n) { return r(n + 1); } r(0)"),
            "RangeError: script calls nested too deeply @ 1");
  EXPECT_EQ(runner.run("function fib(n) { if (n < 2) return n; return fib(n - 1) + fib(n - 2); } fib(15)"),
            "number 610");
}

TEST(ESLimits, TheValueStackIsBoundedOnPush) {
  // Each call leaves 4000 arguments on the stack: about 260 calls fill it.
  std::string arguments = "0" + repeated(",0", 3999);
  ScriptRunner runner;
  EXPECT_EQ(runner.run("function r() { return r(" + arguments + "); } r()"),
            "RangeError: virtual machine stack too small @ 1");
  EXPECT_EQ(runner.run("1 + 1"), "number 2");
}

TEST(ESLimits, ByNameIncrementStatementsLeaveNothingOnTheStack) {
  // More increments than the stack has entries: a leaked entry per statement would overflow.
  ScriptRunner runner;
  EXPECT_EQ(runner.run("var o = {n: 0}; with (o) { for (var i = 0; i < 1100000; i++) n++; } o.n"),
            "number 1100000");
}

TEST(ESLimits, DeeplyNestedSourceIsASyntaxError) {
  const std::string cases[] = {
      repeated("(", 20000) + "1" + repeated(")", 20000),
      "1" + repeated("+1", 20000),  // a long left-leaning chain makes a deep tree
      repeated("{", 20000) + repeated("}", 20000),
      repeated("if (1) ", 5000) + "x = 1;",
  };
  for (const std::string& source : cases) {
    ScriptRunner runner;
    EXPECT_EQ(runner.run(source), "SyntaxError: program nested too deeply @ 1") << source.substr(0, 20);
  }
}

TEST(ESLimits, OperandsBeyondSixteenBitsFailTheCompilation) {
  ScriptRunner names;
  std::string source = "var o = {};";
  for (int i = 0; i < 66000; ++i) source += "o.p" + std::to_string(i) + "=1;";
  EXPECT_EQ(names.run(source), "SyntaxError: too many names for one program @ 1");

  ScriptRunner numbers;
  source = "var x;";
  for (int i = 0; i < 66000; ++i) source += "x=" + std::to_string(i + 10) + ".5;";
  EXPECT_EQ(numbers.run(source), "SyntaxError: too many number constants for one program @ 1");
  EXPECT_EQ(numbers.run("x"), "undefined");  // declared while parsing, but nothing ran
}

TEST(ESLimits, CodeBeyondSixteenBitPositionsIsAFatalCompilerError) {
  ScriptRunner runner;
  std::string source = "var x; if (x) {" + repeated("x=x+1;", 20000) + "}";
  EXPECT_THROW(runner.run(source), ESFatalError);
}

TEST(ESLimits, StringsStopGrowingAtTheirBound) {
  // Every string is interned for ever: a doubling loop is stopped before it exhausts memory.
  ScriptRunner runner;
  EXPECT_EQ(runner.run("var s = 'x';\nwhile (1) s = s + s;"), "RangeError: string too long @ 2");
  EXPECT_EQ(runner.run("s.length"), "number 16777216");  // the last doubling that fit
}

TEST(ESLimits, AStepBudgetEndsAnEndlessScriptQuietly) {
  ScriptRunner runner;
  runner.context().setStepBudget(100000);
  EXPECT_EQ(runner.run("var n = 0; for (;;) n++;"), "undefined");
  runner.context().setStepBudget(0);
  EXPECT_GT(std::stoi(runner.run("n").substr(7)), 10000);
}

}  // namespace
}  // namespace regmill::script
