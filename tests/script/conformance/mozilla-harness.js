// The driver that the ECMA test files call, written in the part of the language
// this engine compiles: no try, no regular expression literal, no call of a
// parenthesised expression. Each file makes test cases with `new TestCase(...)`
// and ends with `test()`, which prints one " PASSED! " or " FAILED! " line per case.
var PASSED = " PASSED! ";
var FAILED = " FAILED! ";
var STATUS = "STATUS: ";
var GLOBAL = this + "";
var VERBOSE = false;
var DEBUG = false;
var SECTION = "";
var VERSION = "";
var BUGNUMBER = "";
var TITLE = "";
var gTestfile = "";
var gTestsuite = "";
var gTestsubsuite = "";
var gTestcases = [];
var gTc = 0;
var callStack = [];

function TestCase(n, d, e, a) {
  this.file = gTestfile;
  this.name = n;
  this.description = d;
  this.expect = e;
  this.actual = a;
  this.passed = getTestCaseResult(e, a);
  this.reason = "";
  gTestcases[gTc++] = this;
}

function AddTestCase(description, expect, actual) {
  new TestCase(SECTION, description, expect, actual);
}

// Numbers match within 1e-10, and NaN matches NaN; other values match by ==.
function getTestCaseResult(expected, actual) {
  if (typeof expected != typeof actual) return false;
  if (typeof expected != "number") return actual == expected;
  if (actual != actual) return expected != expected;
  if (expected != expected) return false;
  var difference = actual - expected;
  if (difference < 0) difference = -difference;
  return difference <= 1e-10;
}

function startTest() {
  if (BUGNUMBER) print("BUGNUMBER: " + BUGNUMBER);
}

function test() {
  for (gTc = 0; gTc < gTestcases.length; gTc++) {
    var testCase = gTestcases[gTc];
    testCase.passed = writeTestCaseResult(testCase.expect, testCase.actual,
                                          testCase.description + " = " + testCase.actual);
    if (!testCase.passed) testCase.reason = testCase.reason + "wrong value ";
  }
  stopTest();
  return gTestcases;
}

function writeTestCaseResult(expect, actual, string) {
  var passed = getTestCaseResult(expect, actual);
  writeFormattedResult(expect, actual, string, passed);
  return passed;
}

function writeFormattedResult(expect, actual, string, passed) {
  print((passed ? PASSED : FAILED) + string + " expected: " + expect);
  return passed;
}

function writeHeaderToLog(string) { print(string); }
function stopTest() {}
function inSection(x) { return "Section " + x + " of test - "; }
function printStatus(message) { print(STATUS + message); }
function printBugNumber(number) { BUGNUMBER = number; print("BUGNUMBER: " + number); }
function expectExitCode(n) { print("--- NOTE: IN THIS TESTCASE, WE EXPECT EXIT CODE " + n + " ---"); }
function toPrinted(value) { return "" + value; }

function reportCompare(expected, actual, description) {
  if (typeof description == "undefined") description = "";
  var output = "";
  if (typeof expected != typeof actual) {
    output = output + "Type mismatch, expected type " + typeof expected + ", actual type " + typeof actual + " ";
  }
  if (expected != actual) {
    output = output + "Expected value '" + toPrinted(expected) + "', Actual value '" + toPrinted(actual) + "' ";
  }
  var testCase = new TestCase(gTestfile, description, expected, actual);
  testCase.reason = output;
  if (testCase.passed) print(PASSED + description);
  else print(FAILED + description + " : " + output);
  return testCase.passed;
}

function enterFunc(name) { callStack[callStack.length] = name; }
function exitFunc(name) { if (callStack.length > 0) callStack.length = callStack.length - 1; }
function currentFunc() { return callStack[callStack.length - 1]; }
