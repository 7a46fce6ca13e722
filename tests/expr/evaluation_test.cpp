// Values, their conversions and equality, and what the parser evaluates a text to.
//
// The paths of the tree that only a parser with objects reaches, through a small
// world of variables that records what the tree asks of it.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <map>

#include "expr/expr_value.h"
#include "expr/parser_exception.h"
#include "expr/simple_expression_parser.h"
#include "tests/support/tree_dump.h"

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

class Variable : public ExprObject {
 public:
  explicit Variable(ExprValue held) : held(std::move(held)) {}
  ExprValue value() override { return held; }
  bool equals(const ExprObject& other) const override { return &other == this; }
  void setFromText(const QString& text) override { held = ExprValue::fromText(held, text); }
  ExprValue held;
};

class WorldParser : public SimpleExpressionParser {
 public:
  WorldParser() {
    define("a", ExprValue::makeSigned(10));
    define("b", ExprValue::makeSigned(3));
    define("u", ExprValue::makeUnsigned(0xFF, 1));
    define("p", ExprValue::makeUnsigned(0x1000, 4));
    define("s", ExprValue());
  }
  void define(const char* name, ExprValue value) {
    variables[QString::fromLatin1(name)] = std::make_unique<Variable>(std::move(value));
  }
  ExprValue held(const char* name) { return variables.at(QString::fromLatin1(name))->held; }

  ExprObject* lookupSymbol(const QString& name) override {
    log << QStringLiteral("lookup ") + name;
    auto found = variables.find(name);
    if (found == variables.end()) return SimpleExpressionParser::lookupSymbol(name);
    return found->second.get();
  }
  bool isTypeName(const QString& word) override {
    return word == QLatin1String("T") || word == QLatin1String("struct S") ||
           word == QLatin1String("map<int, vector<char> >");
  }
  bool isTemplateName(const QString& word) override { return word == QLatin1String("map"); }
  ExprValue cast(const BaseType& type, const ExprValue& value) override {
    return ExprValue::makeString(type.toString() + QLatin1Char(':') + QString::number(dereferenced(value).asSigned()));
  }
  bool isPointerObject(ExprObject& object) override { return &object == variables.at(QStringLiteral("p")).get(); }
  ExprValue offsetObject(ExprObject&, int64_t offset) override { return ExprValue::makeSigned(1000 + offset); }
  ExprValue memberByName(ExprObject&, const QString& name) override { return ExprValue::makeString(name); }
  ExprValue memberByPath(ExprObject&, const QStringList& names) override {
    return ExprValue::makeString(names.join(QLatin1Char('/')));
  }
  ExprValue elementAt(ExprObject&, int64_t index) override { return ExprValue::makeSigned(index * 100); }
  ExprValue load(ExprObject& object) override {
    log << QStringLiteral("load");
    return object.value();
  }
  ExprValue store(ExprObject& object, const ExprValue& value) override {
    log << QStringLiteral("store");
    static_cast<Variable&>(object).held = value;
    return value;
  }
  ExprValue call(ExprObject&, const std::vector<ExprValue>& arguments) override {
    int64_t digits = 0;
    for (const ExprValue& argument : arguments) digits = digits * 10 + dereferenced(argument).asSigned();
    return ExprValue::makeSigned(digits);
  }
  ExprValue sizeofObject(ExprObject&) override { return ExprValue::makeUnsigned(4); }
  ExprValue sizeofType(const BaseType& type) override { return ExprValue::makeString(type.toString()); }
  ExprValue addressOf(ExprObject&) override { return ExprValue::makeUnsigned(0x2000); }

  std::map<QString, std::unique_ptr<Variable>> variables;
  QStringList log;
};

TEST(ObjectEvaluation, OperandsAreDereferencedRightFirst) {
  WorldParser world;
  EXPECT_EQ(world.parse(QStringLiteral("a * b - -a")).asSigned(), 40);
  EXPECT_EQ(world.log, QStringList({"lookup a", "lookup b", "lookup a"}));
  world.log.clear();
  EXPECT_TRUE(world.parse(QStringLiteral("a > b || b == a")).boolValue());
  EXPECT_EQ(world.log, QStringList({"lookup a", "lookup b", "lookup b", "lookup a"}));
  ExprValue sum = world.parse(QStringLiteral("u + 1"));
  EXPECT_EQ(sum.kind, ExprKind::Unsigned);
  EXPECT_EQ(sum.asUnsigned(), 0u);  // the left's size of one byte wraps the sum
}

// A result as text: a string as it is, a number in decimal.
QString shown(const ExprValue& value) {
  return value.kind == ExprKind::String ? value.text : QString::number(value.asSigned());
}

TEST(ObjectEvaluation, AccessNodesAndPointerPlusHandTheirObjectToTheParser) {
  WorldParser world;
  const std::pair<const char*, const char*> cases[] = {
      {"p + 3", "1003"}, {"p - 3", "4093"},  // plus hands a pointer to the parser, minus does not
      {"a + 3", "13"},   {"a.x", "x"},       {"a->x::y", "x/y"},   {"a[b]", "300"},      {"*a", "0"},
      {"&a", "8192"},    {"sizeof a", "4"},  {"sizeof(T)", "T"},   {"a(1, 2 3)", "123"}, {"(T*)b", "T*:3"},
      {"(struct S)b", "struct S:3"},         {"(map<int, vector<char>>)b", "map<int, vector<char> >:3"}};
  for (const auto& [text, expected] : cases) EXPECT_EQ(shown(world.parse(QString::fromUtf8(text))), expected) << text;
  EXPECT_EQ(testing::failureMessage<ParserException>([&] { world.parse(QStringLiteral("a[s]")); }), "bad index type");
}

TEST(ObjectEvaluation, AssignmentsStoreWhatTheRightLoads) {
  WorldParser world;
  EXPECT_EQ(world.parse(QStringLiteral("a = b")).asSigned(), 3);
  EXPECT_EQ(world.log, QStringList({"lookup a", "lookup b", "load", "store"}));
  EXPECT_EQ(world.parse(QStringLiteral("a += 4")).asSigned(), 7);
  EXPECT_EQ(world.parse(QStringLiteral("a++")).asSigned(), 8);  // the new value
  EXPECT_EQ(world.parse(QStringLiteral("--a")).asSigned(), 7);
  EXPECT_EQ(world.parse(QStringLiteral("b <<= 2")).asSigned(), 12);
  EXPECT_EQ(world.held("a").asSigned(), 7);
  EXPECT_EQ(world.held("b").asSigned(), 12);
  // Text for an object goes to the object, which reads it in the shape of its value.
  ExprValue handle = ExprValue::fromText(ExprValue::makeObject(world.variables.at("u").get()), QStringLiteral("0x1fU"));
  EXPECT_EQ(handle.object.get(), world.variables.at("u").get());
  EXPECT_TRUE(dereferenced(handle).equals(ExprValue::makeUnsigned(0x1F, 1)));
}

}  // namespace
}  // namespace regmill
