// The interpreter core without the word set: the number syntax, the THROW texts, the
// stacks' bounds, the search order, the console's line and the code classes' defaults.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "script/forth/forth_console.h"
#include "script/forth/forth_interpreter.h"
#include "script/forth/forth_number.h"

namespace regmill::forth {
namespace {

using Kind = Number::Kind;

TEST(ForthNumber, IntegersTakeASignABasePrefixAndDigitsOfThatBase) {
  struct Row {
    const char* text;
    int64_t value;
  } rows[] = {
      {"$ff", 255}, {"$FF", 255}, {"%101", 5}, {"-#12", -12}, {"#12", 12}, {"+7", 7}, {"-$10", -16},
      {"0", 0},     {"007", 7},   {"$7fffffffffffffff", INT64_MAX},
      {"$10000000000000001", 1},  // digits beyond 64 bits wrap
  };
  for (const Row& row : rows) {
    const Number number = convertNumber(QString::fromLatin1(row.text));
    EXPECT_EQ(number.kind, Kind::Integer) << row.text;
    EXPECT_EQ(number.integer, row.value) << row.text;
  }
}

TEST(ForthNumber, TextsWithoutValidDigitsAreNoNumber) {
  for (const char* text : {"", "-", "+", "$", "%", "#", "%2", "$FG", "#1F", "12A", "$-1", "--1", "1.2.3", "E", "+-1E",
                           "1E5X", "1 2", "\xc3\xa9"}) {
    EXPECT_EQ(convertNumber(QString::fromUtf8(text)).kind, Kind::None) << text;
  }
  // One point among the digits makes a double-cell number, which is refused.
  for (const char* text : {"1.5", "1.", ".5", "-$F.F"})
    EXPECT_EQ(convertNumber(QString::fromLatin1(text)).kind, Kind::DoubleCell) << text;
}

TEST(ForthNumber, AnExponentLetterMakesAFloat) {
  struct Row {
    const char* text;
    double value;
  } rows[] = {{"1E", 1}, {"1E0", 1}, {"1e", 1}, {"-2.5E1", -25}, {"+3E-1", 0.3}, {".5E", 0.5}, {"1E+2", 100}};
  for (const Row& row : rows) {
    const Number number = convertNumber(QString::fromLatin1(row.text));
    EXPECT_EQ(number.kind, Kind::Floating) << row.text;
    EXPECT_DOUBLE_EQ(number.floating, row.value) << row.text;
  }
}

TEST(ForthThrow, MessagesComeFromTheTableWithTheTextBehindThem) {
  struct Row {
    int32_t code;
    const char* text;
    const char* message;
  } rows[] = {
      {-2, "", "abort thrown"},
      {-1, "MYWORD failed", "MYWORD failed"},  // no table text: the exception's text alone
      {-13, "FROB", "undefined word: FROB"},
      {-8, "", "-8 THROW undefined"},
      {-8, "X", "-8 THROW undefined: X"},
      {3, "", "3 THROW undefined"},
  };
  for (const Row& row : rows)
    EXPECT_EQ(throwText(row.code, QString::fromLatin1(row.text)), QString::fromLatin1(row.message)) << row.code;
}

class RecordingListener : public ForthListener {
 public:
  void error(const QString& text) override { texts.push_back(text); }
  std::vector<QString> texts;
};

// The message of what `action` throws.
template <typename Action>
QString thrownText(Action action) {
  try {
    action();
  } catch (const ForthException& failure) {
    return throwText(failure.code, failure.text);
  }
  return QStringLiteral("(nothing thrown)");
}

TEST(ForthInterpreter, TheStacksHold512CellsAndRaiseTheirCodesBeyond) {
  ForthInterpreter interpreter;
  for (int index = 0; index < CellStack::kCells; ++index) interpreter.pushInteger(index);
  EXPECT_EQ(thrownText([&] { interpreter.pushInteger(512); }), QStringLiteral("stack overflow"));
  EXPECT_EQ(interpreter.data.fromTop(0).integer, 511);
  for (int index = 0; index < CellStack::kCells; ++index) interpreter.second.push(Cell::ofInteger(index));
  EXPECT_EQ(thrownText([&] { interpreter.second.push(Cell{}); }), QStringLiteral("return stack overflow"));
  interpreter.second.clear();
  EXPECT_EQ(thrownText([&] { interpreter.second.pop(); }), QStringLiteral("return stack underflow"));
}

TEST(ForthInterpreter, SearchOrderHoldsTwentyListsAndTheLastOneWins) {
  ForthInterpreter interpreter;
  pcode first(QStringLiteral("W"));
  pcode second(QStringLiteral("W"));
  WordList* lower = interpreter.createWordList();
  WordList* upper = interpreter.createWordList();
  lower->insert(QStringLiteral("W"), &first);
  upper->insert(QStringLiteral("W"), &second);
  interpreter.pushSearchOrder(lower);
  interpreter.pushSearchOrder(upper);
  EXPECT_EQ(interpreter.findWord(QStringLiteral("W")), &second);
  interpreter.current = lower;  // the compilation list comes before the order
  EXPECT_EQ(interpreter.findWord(QStringLiteral("W")), &first);
  for (int count = 2; count < ForthInterpreter::kSearchOrderSize; ++count) interpreter.pushSearchOrder(lower);
  EXPECT_EQ(thrownText([&] { interpreter.pushSearchOrder(lower); }), QStringLiteral("search order overflow"));
  for (int count = 0; count < ForthInterpreter::kSearchOrderSize; ++count) interpreter.popSearchOrder();
  EXPECT_EQ(thrownText([&] { interpreter.popSearchOrder(); }), QStringLiteral("search order underflow"));
}

TEST(ForthInterpreter, CodesWithoutAnOperationOfTheirOwnThrowTheirCodes) {
  ForthInterpreter interpreter;
  pcode word(QStringLiteral("PLAIN"));
  EXPECT_EQ(thrownText([&] { word.execute(interpreter); }),
            QStringLiteral("host execution of this word not supported: PLAIN"));
  EXPECT_EQ(thrownText([&] { word.getPfa(); }), QStringLiteral("PLAINdoes not have a PFA"));
  EXPECT_EQ(thrownText([&] { word.getCfa(); }), QStringLiteral("no CFA"));
  EXPECT_EQ(thrownText([&] { word.store(interpreter); }), QStringLiteral("no store method defined: PLAIN"));
  // Appending needs an open definition, and an open one must not be sealed.
  EXPECT_EQ(thrownText([&] { interpreter.append(interpreter.make<PLiteralChild>(Cell{})); }),
            QStringLiteral("no current definition"));
  PDefinition definition(QStringLiteral("DONE"));
  definition.sealed = true;
  interpreter.definition = &definition;
  EXPECT_EQ(thrownText([&] { interpreter.append(interpreter.make<PLiteralChild>(Cell{})); }),
            QStringLiteral("sealed definition: DONE"));
}

// The console prints a blank, the line's output, the failure, and " OK" whenever
// no definition is left open. Control and high bytes separate words, and a step
// budget ends a runaway loop.
TEST(ForthConsole, AnswersEachLineAndGoesOnAfterAFailure) {
  std::string out;
  ForthConsole console([&](std::string_view bytes) { out += bytes; });
  RecordingListener listener;
  console.interpreter().listener = &listener;
  console.interpreter().setStepBudget(10000);
  for (const char* line : {"2 3 + .", ": SQ", "DUP * ;", "7 SQ .", ": BAD 1 FROB 2 ;", "BAD", "1.5", "4294967297 ."})
    console.typeLine(line);
  console.typeLine(std::string(256, ' '));
  console.typeLine(std::string(254, ' ') + "1");
  console.typeLine("1\t2\x01" "3\xff+ + .");
  console.typeLine(": SPIN BEGIN AGAIN ; SPIN");
  EXPECT_EQ(out,
            " 5  OK\n"
            " \n"
            "  OK\n"
            " 49  OK\n"
            " undefined word: FROB OK\n"  // the definition was abandoned, and with it compile state
            " undefined word: BAD OK\n"
            " undefined word: 1.5 OK\n"
            " 1  OK\n"  // a typed number is cut to 32 bits
            " string buffer overflow OK\n"
            "  OK\n"
            " 6  OK\n"
            " user interrupt OK\n");
  ASSERT_EQ(listener.texts.size(), 5u);
  EXPECT_EQ(listener.texts[0], QStringLiteral("undefined word: FROB"));
  EXPECT_EQ(console.interpreter().data.count(), 1);  // the abandoned definition pushed nothing
}

}  // namespace
}  // namespace regmill::forth
