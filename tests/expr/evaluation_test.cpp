#include <gtest/gtest.h>

#include <bit>
#include <cstdint>

#include "expr/parser_exception.h"
#include "expr/simple_expression_parser.h"
#include "tests/support/tree_dump.h"

namespace regmill {
namespace {

// What the text evaluates to, kind and value ("Signed -3", "Bool 1", "Float 3.5", "None 0"),
// or the message of the failure.
QString outcome(const char* text) {
  SimpleExpressionParser parser;
  try {
    ExprValue value = parser.parse(QString::fromUtf8(text));
    const char* kinds[] = {"Bool", "Signed", "Unsigned", "String", "Object", "Float", "None"};
    return QString::fromLatin1(kinds[static_cast<int>(value.kind)]) + QLatin1Char(' ') +
           (value.kind == ExprKind::Float ? QString::number(value.floatValue()) + (value.size == 8 ? "" : " odd size")
                                          : QString::number(value.asSigned()));
  } catch (const ParserException& e) {
    return e.message();
  }
}

TEST(SimpleExpressionParser, ResultsAndFailures) {
  const std::pair<const char*, const char*> cases[] = {
      {"", "None 0"}, {"0x10+8", "Signed 24"}, {"0b101 + 017 + 10UL", "Signed 30"}, {"1 + 2 junk", "Signed 3"},
      {"7 / 2", "Signed 3"},
      {"-7 / 2", "Signed -3"}, {"-7 % 2", "Signed -1"}, {"5 & 3 | 8 ^ 1", "Signed 9"}, {"~0", "Signed -1"},
      {"1 << 65", "Signed 2"}, {"1 << -1", "Signed -9223372036854775808"}, {"-1 >> 1", "Signed -1"},
      {"0xFFFFFFFFFFFFFFFF * 2", "Signed -2"}, {"0x7FFFFFFFFFFFFFFF + 1", "Signed -9223372036854775808"},
      {"(-0x7FFFFFFFFFFFFFFF - 1) / -1", "Signed -9223372036854775808"},
      {"(-0x7FFFFFFFFFFFFFFF - 1) % -1", "Signed 0"}, {"-(-0x7FFFFFFFFFFFFFFF - 1)", "Signed -9223372036854775808"},
      {"3 && 0", "Signed 0"}, {"0 || 7", "Signed 1"}, {"1 == 1", "Bool 1"}, {"2 < 1", "Bool 0"}, {"-1 < 0", "Bool 1"},
      {"\"abc\" == \"abc\"", "Bool 1"}, {"\"abc\" < \"abd\"", "Bool 1"}, {"!0", "Bool 1"}, {"!0.5", "Bool 0"},
      {"(1 == 1) + 0", "Bool 1"}, {"(1 == 1) - (2 == 2)", "Bool 0"},
      {"(1 == 1) == 257", "Bool 1"},  // a Bool compares the first byte
      {"-(1 == 1)", "Signed -1"}, {"7 / 2.0", "Float 3.5"}, {"2.0 * 3", "Float 6"}, {"1 - 0.25", "Float 0.75"},
      {"1.5 + (1 == 1)", "Float 2.5"}, {"-1.5", "Float -1.5"}, {"1 / 0", "divide by zero"},
      {"1 % 0", "divide by zero"}, {"1.0 / 0.0", "divide by zero"}, {"1 % 0.5", "divide by zero"},
      {"(1 == 1) / (1 == 2)", "divide by zero"}, {"\"a\" / 0", "divide by zero"},
      {"1 / \"a\"", "unsupported binary numeric operation"}, {"1.5 % 2", "unsupported binary numeric operation"},
      {"1.5 & 1", "unsupported binary numeric operation"}, {"\"abc\" + 1", "unsupported binary numeric operation"},
      {"\"abc\" + 1.5", "unsupported binary numeric operation"}, {"1.0 == 1.0", "unsupported comparison operation"},
      {"1 << 1.0", "integer shift value expected"}, {"1 << (1 == 1)", "integer shift value expected"},
      {"1.0 << 1", "can only shift numeric values"}, {"~1.5", "unsupported unary num operation"},
      {"-\"a\"", "unsupported unary num operation"}, {"x", "x symbol not found"}, {"x.y", "x symbol not found"},
      {"sizeof x", "x symbol not found"}, {"x + y", "y symbol not found"}, {"x == y", "y symbol not found"},
      {"x << y", "y symbol not found"}, {"x && y", "y symbol not found"}, {"a::b", "a::b symbol not found"},
      {"::a", "a symbol not found"}, {"@r0", "r0unknown register"}, {"(int)1", "cannot cast"},
      {"(int)x", "x symbol not found"}, {"x = 1", "x symbol not found"}, {"1 = y", "bad expression type"},
      {"++1", "bad expression type"}, {"1[0]", "bad expression type"}, {"*1", "bad expression type"},
      {"(1).x", "bad expression type"}, {"&1", "cannot take address of a constant"},
      {"sizeof 1", "cannot determine sizeof of a constant"}, {"sizeof(int)", "sizeof(typename) not implemented"},
      {"addressof(\"f.c\", 3)", "addressof not implemented"}, {"1(2)", "cannot call a constant"},
      {"f(y)", "f symbol not found"},
  };
  for (const auto& [text, expected] : cases) EXPECT_EQ(outcome(text), QString::fromUtf8(expected)) << text;
}

TEST(SimpleExpressionParser, EndPositionIsBehindTheTokenAfterTheExpression) {
  SimpleExpressionParser parser;
  qsizetype end = -1;
  parser.parse(QStringLiteral("1 2 3"), &end);
  EXPECT_EQ(end, 3);
  parser.parse(QStringLiteral("1+2"), &end);
  EXPECT_EQ(end, 3);
}

// evaluateUnsigned takes numbers, evaluateSigned truncates floats soundly and
// evaluateBool takes Bool only; ok tells whether the kind was accepted.
TEST(SimpleExpressionParser, TypedEvaluationsAcceptTheirKindsOnly) {
  SimpleExpressionParser parser;
  struct Case { char as; const char* text; bool ok; uint64_t value; };
  const Case cases[] = {
      {'u', "+0x100+0x20+8", true, 0x128}, {'u', "-1", true, UINT64_MAX}, {'u', "1.5", true, std::bit_cast<uint64_t>(1.5)},
      {'u', "1 == 1", false, 0}, {'u', "\"a\"", false, 0}, {'u', "x", false, 0}, {'u', "1 +", false, 0},
      {'u', "1.5 + (1 == 1)", true, std::bit_cast<uint64_t>(2.5)},
      {'u', "(1 == 1) + 0.5", true, 0},  // a float of the Bool's size 0 has no bits
      {'u', "", false, 0},
      {'s', "-2.9", true, static_cast<uint64_t>(-2)}, {'s', "99999999999999999999.0", true, INT64_MAX},
      {'s', "1 == 1", false, 0}, {'b', "2 > 1 == (1 == 1)", true, 1}, {'b', "1 != 1", true, 0}, {'b', "1", false, 0},
  };
  for (const Case& c : cases) {
    const QString text = QString::fromUtf8(c.text);
    bool ok = !c.ok;
    uint64_t value = c.as == 'u'   ? parser.evaluateUnsigned(text, &ok)
                     : c.as == 's' ? static_cast<uint64_t>(parser.evaluateSigned(text, &ok))
                                   : parser.evaluateBool(text, &ok);
    EXPECT_EQ(value, c.value) << c.text;
    EXPECT_EQ(ok, c.ok) << c.text;
  }
  const QString big = QStringLiteral("1") + QString(200, QLatin1Char('0')) + QStringLiteral(".0");
  const QString infinity = big + QLatin1Char('*') + big;
  bool ok = false;
  EXPECT_EQ(parser.evaluateSigned(infinity + QLatin1Char('-') + infinity, &ok), 0);  // NaN reads as 0
  EXPECT_TRUE(ok);
  EXPECT_FALSE(parser.evaluateBool(QStringLiteral("1 / 0 == 1"), nullptr));
}

}  // namespace
}  // namespace regmill
