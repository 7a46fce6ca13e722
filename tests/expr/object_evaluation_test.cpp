// The paths of the tree that only a parser with objects reaches, through a small
// world of variables that records what the tree asks of it.
#include <gtest/gtest.h>

#include <map>

#include "expr/parser_exception.h"
#include "expr/simple_expression_parser.h"
#include "tests/support/tree_dump.h"

namespace regmill {
namespace {

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
