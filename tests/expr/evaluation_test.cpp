#include <gtest/gtest.h>

#include <bit>
#include <cstdint>

#include "expr/parser_exception.h"
#include "expr/simple_expression_parser.h"
#include "tests/support/tree_dump.h"

namespace regmill {
namespace {

ExprValue valueOf(const char* text) {
  SimpleExpressionParser parser;
  return parser.parse(QString::fromUtf8(text));
}

QString failureOf(const char* text) {
  SimpleExpressionParser parser;
  auto parse = [&] { parser.parse(QString::fromUtf8(text)); };
  return QString::fromStdString(testing::failureMessage<ParserException>(parse));
}

struct IntegerCase {
  const char* text;
  ExprKind kind;
  int64_t value;
};

TEST(SimpleExpressionParser, IntegerAndBoolResults) {
  const IntegerCase cases[] = {
      {"0x10+8", ExprKind::Signed, 0x18},
      {"+0x10+8", ExprKind::Signed, 0x18},
      {"0b101 + 017 + 10UL", ExprKind::Signed, 5 + 15 + 10},
      {"1 + 2 junk", ExprKind::Signed, 3},
      {"7 / 2", ExprKind::Signed, 3},
      {"-7 / 2", ExprKind::Signed, -3},
      {"-7 % 2", ExprKind::Signed, -1},
      {"5 & 3 | 8 ^ 1", ExprKind::Signed, 1 | (8 ^ 1)},
      {"~0", ExprKind::Signed, -1},
      {"1 << 65", ExprKind::Signed, 2},
      {"1 << -1", ExprKind::Signed, INT64_MIN},
      {"-1 >> 1", ExprKind::Signed, -1},
      {"0xFFFFFFFFFFFFFFFF * 2", ExprKind::Signed, -2},
      {"0x7FFFFFFFFFFFFFFF + 1", ExprKind::Signed, INT64_MIN},
      {"(-0x7FFFFFFFFFFFFFFF - 1) / -1", ExprKind::Signed, INT64_MIN},
      {"(-0x7FFFFFFFFFFFFFFF - 1) % -1", ExprKind::Signed, 0},
      {"-(-0x7FFFFFFFFFFFFFFF - 1)", ExprKind::Signed, INT64_MIN},
      {"3 && 0", ExprKind::Signed, 0},
      {"0 || 7", ExprKind::Signed, 1},
      {"1 == 1", ExprKind::Bool, 1},
      {"2 < 1", ExprKind::Bool, 0},
      {"-1 < 0", ExprKind::Bool, 1},
      {"\"abc\" == \"abc\"", ExprKind::Bool, 1},
      {"\"abc\" < \"abd\"", ExprKind::Bool, 1},
      {"!0", ExprKind::Bool, 1},
      {"!0.5", ExprKind::Bool, 0},
      {"(1 == 1) + 0", ExprKind::Bool, 1},
      {"(1 == 1) - (2 == 2)", ExprKind::Bool, 0},
      {"(1 == 1) == 257", ExprKind::Bool, 1},  // a Bool compares the first byte
      {"-(1 == 1)", ExprKind::Signed, -1},
  };
  for (const IntegerCase& c : cases) {
    ExprValue value = valueOf(c.text);
    EXPECT_EQ(value.kind, c.kind) << c.text;
    EXPECT_EQ(value.asSigned(), c.value) << c.text;
  }
}

TEST(SimpleExpressionParser, FloatResults) {
  const std::pair<const char*, double> cases[] = {
      {"7 / 2.0", 3.5}, {"2.0 * 3", 6.0}, {"1 - 0.25", 0.75}, {"1.5 + (1 == 1)", 2.5}, {"-1.5", -1.5},
  };
  for (const auto& [text, expected] : cases) {
    ExprValue value = valueOf(text);
    EXPECT_EQ(value.kind, ExprKind::Float) << text;
    EXPECT_EQ(value.floatValue(), expected) << text;
    EXPECT_EQ(value.size, 8u) << text;
  }
}

TEST(SimpleExpressionParser, EvaluationFailures) {
  const std::pair<const char*, const char*> cases[] = {
      {"1 / 0", "divide by zero"},
      {"1 % 0", "divide by zero"},
      {"1.0 / 0.0", "divide by zero"},
      {"1 % 0.5", "divide by zero"},
      {"(1 == 1) / (1 == 2)", "divide by zero"},
      {"\"a\" / 0", "divide by zero"},
      {"1 / \"a\"", "unsupported binary numeric operation"},
      {"1.5 % 2", "unsupported binary numeric operation"},
      {"1.5 & 1", "unsupported binary numeric operation"},
      {"\"abc\" + 1", "unsupported binary numeric operation"},
      {"\"abc\" + 1.5", "unsupported binary numeric operation"},
      {"1.0 == 1.0", "unsupported comparison operation"},
      {"1 << 1.0", "integer shift value expected"},
      {"1 << (1 == 1)", "integer shift value expected"},
      {"1.0 << 1", "can only shift numeric values"},
      {"~1.5", "unsupported unary num operation"},
      {"-\"a\"", "unsupported unary num operation"},
      {"x", "x symbol not found"},
      {"x.y", "x symbol not found"},
      {"sizeof x", "x symbol not found"},
      {"x + y", "y symbol not found"},
      {"x == y", "y symbol not found"},
      {"x << y", "y symbol not found"},
      {"x && y", "y symbol not found"},
      {"a::b", "a::b symbol not found"},
      {"::a", "a symbol not found"},
      {"@r0", "r0unknown register"},
      {"(int)1", "cannot cast"},
      {"(int)x", "x symbol not found"},
      {"x = 1", "x symbol not found"},
      {"1 = y", "bad expression type"},
      {"++1", "bad expression type"},
      {"1[0]", "bad expression type"},
      {"*1", "bad expression type"},
      {"(1).x", "bad expression type"},
      {"&1", "cannot take address of a constant"},
      {"sizeof 1", "cannot determine sizeof of a constant"},
      {"sizeof(int)", "sizeof(typename) not implemented"},
      {"addressof(\"f.c\", 3)", "addressof not implemented"},
      {"1(2)", "cannot call a constant"},
      {"f(y)", "f symbol not found"},
  };
  for (const auto& [text, message] : cases) EXPECT_EQ(failureOf(text), QString::fromUtf8(message)) << text;
}

TEST(SimpleExpressionParser, EmptyTextIsNoErrorAndNoValue) {
  EXPECT_EQ(valueOf("").kind, ExprKind::None);
  SimpleExpressionParser parser;
  bool ok = true;
  EXPECT_EQ(parser.evaluateUnsigned(QString(), &ok), 0u);
  EXPECT_FALSE(ok);
}

TEST(SimpleExpressionParser, EndPositionIsBehindTheTokenAfterTheExpression) {
  SimpleExpressionParser parser;
  qsizetype end = -1;
  parser.parse(QStringLiteral("1 2 3"), &end);
  EXPECT_EQ(end, 3);
  parser.parse(QStringLiteral("1+2"), &end);
  EXPECT_EQ(end, 3);
}

TEST(SimpleExpressionParser, EvaluateUnsignedAcceptsNumbersOnly) {
  SimpleExpressionParser parser;
  struct Case {
    const char* text;
    bool ok;
    uint64_t value;
  };
  const Case cases[] = {
      {"+0x100+0x20+8", true, 0x128},
      {"-1", true, UINT64_MAX},
      {"1.5", true, std::bit_cast<uint64_t>(1.5)},
      {"1 == 1", false, 0},
      {"\"a\"", false, 0},
      {"x", false, 0},
      {"1 +", false, 0},
      {"1.5 + (1 == 1)", true, std::bit_cast<uint64_t>(2.5)},
      {"(1 == 1) + 0.5", true, 0},  // a float of the Bool's size 0 has no bits
  };
  for (const Case& c : cases) {
    bool ok = !c.ok;
    EXPECT_EQ(parser.evaluateUnsigned(QString::fromUtf8(c.text), &ok), c.value) << c.text;
    EXPECT_EQ(ok, c.ok) << c.text;
  }
}

TEST(SimpleExpressionParser, EvaluateSignedTruncatesFloatsSoundly) {
  SimpleExpressionParser parser;
  bool ok = false;
  EXPECT_EQ(parser.evaluateSigned(QStringLiteral("-2.9"), &ok), -2);
  EXPECT_TRUE(ok);
  EXPECT_EQ(parser.evaluateSigned(QStringLiteral("99999999999999999999.0"), &ok), INT64_MAX);
  const QString big = QStringLiteral("1") + QString(200, QLatin1Char('0')) + QStringLiteral(".0");
  const QString infinity = big + QLatin1Char('*') + big;
  EXPECT_EQ(parser.evaluateSigned(infinity + QLatin1Char('-') + infinity, &ok), 0);  // NaN reads as 0
  EXPECT_TRUE(ok);
  EXPECT_EQ(parser.evaluateSigned(QStringLiteral("1 == 1"), &ok), 0);
  EXPECT_FALSE(ok);
}

TEST(SimpleExpressionParser, EvaluateBoolAcceptsBoolOnly) {
  SimpleExpressionParser parser;
  bool ok = false;
  EXPECT_TRUE(parser.evaluateBool(QStringLiteral("2 > 1 == (1 == 1)"), &ok));
  EXPECT_TRUE(ok);
  EXPECT_FALSE(parser.evaluateBool(QStringLiteral("1 != 1"), &ok));
  EXPECT_TRUE(ok);
  EXPECT_FALSE(parser.evaluateBool(QStringLiteral("1"), &ok));
  EXPECT_FALSE(ok);
  EXPECT_FALSE(parser.evaluateBool(QStringLiteral("1 / 0 == 1"), nullptr));
}

}  // namespace
}  // namespace regmill
