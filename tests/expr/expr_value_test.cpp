#include <gtest/gtest.h>

#include <bit>
#include <cmath>

#include "expr/expr_value.h"

namespace regmill {
namespace {

ExprValue integer(ExprKind kind, uint64_t payload, uint32_t size, uint32_t bitWidth = 0) {
  ExprValue value = kind == ExprKind::Signed ? ExprValue::makeSigned(static_cast<int64_t>(payload), size)
                                             : ExprValue::makeUnsigned(payload, size);
  value.bitWidth = bitWidth;
  return value;
}

TEST(ExprValue, IntegersConvertBySizeOrBitWidth) {
  struct Case { uint64_t payload; uint32_t size, bitWidth; int64_t asSigned; uint64_t asUnsigned; };
  const Case cases[] = {
      {0x1FF, 1, 0, -1, 0xFF},
      {0x18000, 2, 0, -32768, 0x8000},
      {0x80000000, 4, 0, INT32_MIN, 0x80000000},
      {0x7FFFFFFF, 4, 0, INT32_MAX, 0x7FFFFFFF},
      {0x123456789, 3, 0, 0x123456789, 0x123456789},  // an odd size keeps all 64 bits
      {0x5, 4, 3, -3, 5},                             // a 3-bit field 101 is -3; masking goes by size
      {0x5, 4, 64, 5, 5},
  };
  for (const Case& c : cases) {
    for (ExprKind kind : {ExprKind::Signed, ExprKind::Unsigned}) {
      ExprValue value = integer(kind, c.payload, c.size, c.bitWidth);
      EXPECT_EQ(value.asSigned(), c.asSigned) << std::hex << c.payload;
      EXPECT_EQ(value.asUnsigned(), c.asUnsigned) << std::hex << c.payload;
    }
  }
  EXPECT_EQ(ExprValue::makeUnsigned(UINT64_MAX).asFloat(), 18446744073709551615.0);
  EXPECT_EQ(ExprValue::makeSigned(-1).asFloat(), -1.0);
}

TEST(ExprValue, FloatsGiveTheBitsOfTheirSize) {
  EXPECT_EQ(ExprValue::makeFloat(1.5, 8).asUnsigned(), std::bit_cast<uint64_t>(1.5));
  EXPECT_EQ(ExprValue::makeFloat(1.5, 4).asUnsigned(), std::bit_cast<uint32_t>(1.5f));
  EXPECT_EQ(ExprValue::makeFloat(1e300, 4).asUnsigned(), std::bit_cast<uint32_t>(INFINITY));
  EXPECT_EQ(ExprValue::makeFloat(1.5, 2).asUnsigned(), 0u);
  EXPECT_EQ(ExprValue::makeFloat(-7.9).asSigned(), -7);
  EXPECT_EQ(ExprValue::makeFloat(-1e300).asSigned(), INT64_MIN);
  EXPECT_EQ(ExprValue::makeFloat(NAN).asSigned(), 0);
}

TEST(ExprValue, EqualityNeedsTheSameKindAndSize) {
  EXPECT_TRUE(ExprValue::makeSigned(5).equals(ExprValue::makeSigned(5)));
  EXPECT_FALSE(ExprValue::makeSigned(5).equals(ExprValue::makeUnsigned(5)));
  EXPECT_FALSE(ExprValue::makeSigned(5, 4).equals(ExprValue::makeSigned(5, 8)));
  EXPECT_TRUE(ExprValue::makeFloat(0.0).equals(ExprValue::makeFloat(-0.0)));
  EXPECT_FALSE(ExprValue::makeFloat(NAN).equals(ExprValue::makeFloat(NAN)));
  EXPECT_TRUE(ExprValue::makeString(QStringLiteral("a")).equals(ExprValue::makeString(QStringLiteral("a"))));
  EXPECT_TRUE(ExprValue().equals(ExprValue()));
}

TEST(ExprValue, FromTextKeepsTheShapeOfItsModel) {
  ExprValue bits = ExprValue::fromText(integer(ExprKind::Unsigned, 0, 2, 4), QStringLiteral("0x1fU"));
  EXPECT_EQ(bits.kind, ExprKind::Unsigned);
  EXPECT_EQ(bits.payload, 0x1Fu);
  EXPECT_EQ(bits.size, 2u);
  EXPECT_EQ(bits.bitWidth, 4u);
  EXPECT_TRUE(ExprValue::fromText(ExprValue::makeBool(false), QStringLiteral("true")).boolValue());
  EXPECT_FALSE(ExprValue::fromText(ExprValue::makeBool(true), QStringLiteral("yes")).boolValue());
  EXPECT_EQ(ExprValue::fromText(ExprValue::makeFloat(0, 4), QStringLiteral("2.5")).floatValue(), 2.5);
}

}  // namespace
}  // namespace regmill
