// The word set as programs use it: each row is a program and what it prints, or
// the message it fails with, worked out by hand from the words' rules.
#include <gtest/gtest.h>

#include <string>

#include "script/forth/forth_console.h"

namespace regmill::forth {
namespace {

struct Outcome {
  std::string out;
  std::string failure;
};

Outcome run(const std::string& program) {
  Outcome outcome;
  ForthConsole console([&](std::string_view bytes) { outcome.out += bytes; });
  const Status status = console.runText(program, QStringLiteral("test.fs"));
  if (!status) outcome.failure = status.reason();
  return outcome;
}

struct Row {
  const char* program;
  const char* expected;
};

void expectOutputs(const Row* begin, const Row* end) {
  for (const Row* row = begin; row != end; ++row) {
    const Outcome outcome = run(row->program);
    EXPECT_EQ(outcome.failure, "") << row->program;
    EXPECT_EQ(outcome.out, row->expected) << row->program;
  }
}

void expectFailures(const Row* begin, const Row* end) {
  for (const Row* row = begin; row != end; ++row) EXPECT_EQ(run(row->program).failure, row->expected) << row->program;
}

TEST(ForthWords, ArithmeticWrapsAndDivisionRoundsTowardMinusInfinity) {
  const Row rows[] = {
      {"-7 2 / . -7 2 MOD . 7 -2 /MOD . . 7 2 /MOD . .", "-4 1 -4 -1 3 1 "},
      {"5 NEGATE ABS . 3 -4 MIN . 3 -4 MAX . 1 1+ . 0 1- . 3 2* . -7 2/ .", "5 -4 3 2 -1 6 -4 "},
      {": BIG $7FFFFFFFFFFFFFFF ; BIG 1+ BIG 1+ = . BIG 2 * .", "-1 -2 "},  // compiled literals keep 64 bits
      {"1000000 1000000 1000000 */ .", "1000000 "},                       // the product does not overflow
      {"6 3 AND . 6 3 OR . 6 3 XOR . 0 INVERT . 1 3 LSHIFT . 16 2 RSHIFT . 1 64 LSHIFT .", "2 7 5 -1 8 4 0 "},
      {"-1 U. 1 2 < . 2 1 < . -1 1 U< . 0 0= . 5 0< . 5 0> . 3 3 <> .", "18446744073709551615 -1 0 0 -1 0 -1 0 "},
  };
  expectOutputs(std::begin(rows), std::end(rows));
}

TEST(ForthWords, StackWordsMoveWholeCells) {
  const Row rows[] = {
      {"1 2 3 ROT .S -ROT -ROT .S", "<3> 2 3 1 <3> 3 1 2 "},
      {"1 2 NIP 3 4 TUCK .S", "<4> 2 4 3 4 "},
      {"1 2 2DUP 2SWAP 2OVER .S", "<6> 1 2 1 2 1 2 "},
      {"0 ?DUP 5 ?DUP DEPTH . 2DROP DROP DEPTH .", "3 0 "},
      {"10 20 30 2 PICK . 1.5E DUP F+ F.", "10 3. "},
  };
  expectOutputs(std::begin(rows), std::end(rows));
}

TEST(ForthWords, ControlStructuresNest) {
  const Row rows[] = {
      {": SIGN DUP 0< IF DROP .\" neg\" ELSE 0= IF .\" zero\" ELSE .\" pos\" THEN THEN ; -3 SIGN 0 SIGN 4 SIGN",
       "negzeropos"},
      {": T 3 0 DO 2 0 DO J 10 * I + . LOOP LOOP ; T", "0 1 10 11 20 21 "},
      {": DOWN 0 10 DO I . -3 +LOOP ; : UP 10 0 DO I . 4 +LOOP ; DOWN UP", "10 7 4 1 0 4 8 "},
      {": NONE 5 5 ?DO I . LOOP .\" done\" ; NONE", "done"},
      {": FIRST 100 0 DO I 3 = IF I . LEAVE THEN LOOP .\" out\" ; FIRST", "3 out"},
      {": DEEP 10 0 DO 1 IF 1 IF I 3 = IF LEAVE THEN THEN THEN I . LOOP .\" end\" ; DEEP", "0 1 2 end"},
      {": TWO 2 0 DO 5 0 DO I 1 = IF LEAVE THEN I . LOOP I . LOOP ; TWO", "0 0 0 1 "},  // the inner loop only
      {": COUNT 0 BEGIN DUP 3 < WHILE DUP . 1+ REPEAT DROP ; : HALVE BEGIN DUP . 2/ DUP 0= UNTIL DROP ; COUNT 20 HALVE",
       "0 1 2 20 10 5 2 1 "},
      {": FOREVER BEGIN DUP 5 = IF EXIT THEN 1+ AGAIN ; 0 FOREVER .", "5 "},
      {": FACT DUP 1 > IF DUP 1- RECURSE * THEN ; : INNER 1 >R 2 R@ R> + + ; 10 FACT . INNER .", "3628800 4 "},
  };
  expectOutputs(std::begin(rows), std::end(rows));
}

TEST(ForthWords, DataWordsAndText) {
  const Row rows[] = {
      {"42 CONSTANT ANSWER ANSWER . 1 VALUE N 7 TO N N . : SET 9 TO N ; SET N .", "42 7 9 "},
      {"CREATE TABLE 3 CELLS ALLOT 11 TABLE CELL+ ! TABLE 1 CELLS + @ . HERE TABLE - .", "11 24 "},
      {"VARIABLE V 5 V ! 3 V +! V @ . CREATE LIST 1 , 2 , LIST @ LIST CELL+ @ + .", "8 3 "},
      {"1 ( a comment ) 2 \\ the rest of the line\n+ .", "3 "},
      {".( at once) CR 65 EMIT SPACE 3 SPACES CHAR z EMIT : Q [CHAR] q EMIT ; Q", "at once\nA    zq"},
      {": DUP DUP * ; 3 DUP .", "9 "},  // a definition sees the old word of its own name
      {": SHOUT .\" hi\" ; IMMEDIATE : USE SHOUT ; CR USE", "hi\n"},
      {"2E 3E F* F. 1E 4E F/ F. 7 S>F F. 2.9E F>S .", "6. 0.25 7. 2 "},
  };
  expectOutputs(std::begin(rows), std::end(rows));
}

TEST(ForthWords, FailuresCarryTheirCodesMessage) {
  const Row rows[] = {
      {"1 0 /", "divide by zero"},
      {"DROP", "stack underflow"},
      {"1 2 FROB", "undefined word: FROB"},
      {"IF", "interpreting a compile-only word: IF"},
      {"I", "interpreting a compile-only word: I"},
      {": X THEN ;", "control structure mismatch: THEN"},
      {": X BEGIN IF UNTIL ;", "control structure mismatch: UNTIL"},
      {": X IF ;", "control structure mismatch: ;"},
      {": X LOOP ;", "no DO loop"},
      {": X LEAVE ;", "LEAVE not in DO"},
      {"1E .", "argument type mismatch"},
      {"0 @", "invalid address"},
      {"HERE @", "invalid address"},
      {"VARIABLE V V 4 + @", "misaligned address"},
      {"-16 ALLOT", "invalid argument"},
      {"9.2233720368547758E18 F>S", "invalid argument"},  // 2 to the 63rd is one past the largest cell
      {": R RECURSE ; R", "return stack overflow"},
      {": B 1 >R ; B", "return stack imbalance: B"},
      {"5 CONSTANT C 6 TO C", "no store method defined: C"},
      {"ABORT", "abort thrown"},
      {"-9 THROW", "invalid address"},
      {":", "-16 THROW undefined: :"},
  };
  expectFailures(std::begin(rows), std::end(rows));
  EXPECT_EQ(run("0 THROW 1 .").out, "1 ");
}

TEST(ForthWords, AFailureNamesTheLineOfTheFailingWordAndEndsTheDefinition) {
  ForthConsole console([](std::string_view) {});
  const Status status = console.runText(": A\n  1 +\n  FROB ;\n", QStringLiteral("prog.fs"));
  EXPECT_EQ(status.message(), "prog.fs : line 3: undefined word: FROB");
  EXPECT_EQ(run(": A 1 ;\r\n: B A A + ;\r\nB .").out, "2 ");  // a definition may span lines
}

}  // namespace
}  // namespace regmill::forth
