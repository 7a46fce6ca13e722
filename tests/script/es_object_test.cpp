// The object model on its own: atoms and keys, the default property rules of a
// class, the slot index of large objects, and the conversions of the machine.
#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "script/es_context.h"

namespace regmill::script {
namespace {

class ESObjectTest : public ::testing::Test {
 protected:
  ESObjectTest() { context.setUp(); }
  ESAtom* atom(const char* text) { return context.engine().intern(QString::fromUtf8(text)); }
  ESValue get(ESObject* object, const char* name) { return object->klass->get(context, object, atom(name)); }
  void put(ESObject* object, const char* name, double value) {
    object->klass->put(context, object, atom(name), ESValue::fromNumber(value));
  }
  ESContext context;
};

TEST_F(ESObjectTest, AtomsAreInternedOnceAndKeysMeetThere) {
  ESEngine& engine = context.engine();
  EXPECT_EQ(atom("abc"), engine.intern(QStringLiteral("ab") + QStringLiteral("c")));
  EXPECT_EQ(engine.indexAtom(5), atom("5"));
  EXPECT_EQ(engine.indexAtom(1000), atom("1000"));
  EXPECT_EQ(engine.indexAtom(70000), atom("70000"));
  EXPECT_EQ(context.toKey(ESValue::fromNumber(5)), atom("5"));
  EXPECT_EQ(context.toKey(ESValue::fromNumber(1000)), atom("1000"));
  EXPECT_EQ(context.toKey(ESValue::fromNumber(1.5)), atom("1.5"));
  EXPECT_EQ(context.toKey(ESValue::fromNumber(-0.0)), atom("0"));
  EXPECT_EQ(context.toKey(ESValue::null()), atom("null"));
  QString owned = QStringLiteral("abc");
  EXPECT_EQ(context.toKey(ESValue::owned(&owned)), atom("abc"));
  // Only canonical decimals up to 2147483646 are array indexes.
  const std::pair<const char*, int64_t> indexes[] = {
      {"0", 0}, {"7", 7}, {"2147483646", 2147483646}, {"2147483647", -1}, {"01", -1}, {"-1", -1}, {"1.0", -1},
      {"", -1}, {"1e3", -1}};
  for (const auto& [text, index] : indexes) EXPECT_EQ(atom(text)->arrayIndex, index) << text;
  // A fresh engine has atoms of its own.
  ESEngine other;
  EXPECT_NE(other.intern(QStringLiteral("abc")), atom("abc"));
}

TEST_F(ESObjectTest, DefaultPropertyRules) {
  ESObject* prototype = context.newObject();
  ESObject* object = context.newObject(prototype, context.objectClass());
  prototype->append(atom("fixed"), ESAttribute::ReadOnly, ESValue::fromNumber(1));
  EXPECT_EQ(get(object, "fixed").number, 1);
  EXPECT_TRUE(get(object, "missing").isUndefined());
  // A name found only on the chain gets an own slot, even over a ReadOnly one.
  put(object, "fixed", 2);
  EXPECT_EQ(get(object, "fixed").number, 2);
  EXPECT_EQ(get(prototype, "fixed").number, 1);
  put(prototype, "fixed", 3);  // a ReadOnly slot keeps its value silently
  EXPECT_EQ(get(prototype, "fixed").number, 1);

  EXPECT_TRUE(hasProperty(object, atom("fixed")));
  EXPECT_FALSE(hasOwnProperty(prototype, atom("other")));
  prototype->append(atom("hidden"), ESAttribute::DontEnum | ESAttribute::DontDelete, ESValue());
  EXPECT_FALSE(isEnumerable(prototype, atom("hidden")));
  EXPECT_FALSE(deleteProperty(prototype, atom("hidden")));
  EXPECT_TRUE(deleteProperty(prototype, atom("never")));
  EXPECT_TRUE(isPrototypeOf(prototype, object));
  EXPECT_FALSE(isPrototypeOf(object, object));
  EXPECT_TRUE(isPrototypeOf(context.objectPrototype(), object));

  // A deleted slot stays in place; the name comes back in a new slot.
  size_t before = object->slotCount();
  EXPECT_TRUE(deleteProperty(object, atom("fixed")));
  EXPECT_EQ(object->slotCount(), before);
  EXPECT_EQ(object->properties()[before - 1].name, nullptr);
  EXPECT_EQ(get(object, "fixed").number, 1);  // the prototype shows through again
  put(object, "fixed", 4);
  EXPECT_EQ(object->slotCount(), before + 1);
  EXPECT_EQ(object->findOwn(atom("fixed")), int32_t(before));
}

TEST_F(ESObjectTest, LargeObjectsFindWhatAScanWouldFind) {
  // Puts and deletes at random on an object big enough to be indexed; after each
  // step every name must be found where a scan from the first slot finds it.
  ESObject* object = context.newObject();
  std::mt19937 random(7);
  std::vector<ESAtom*> names;
  for (int i = 0; i < 60; ++i) names.push_back(atom(("n" + std::to_string(i)).c_str()));
  for (int step = 0; step < 3000; ++step) {
    ESAtom* name = names[random() % names.size()];
    if (random() % 3 == 0)
      deleteProperty(object, name);
    else
      object->klass->put(context, object, name, ESValue::fromNumber(step));
    for (ESAtom* each : names) {
      int32_t scanned = -1;
      for (size_t i = 0; i < object->slotCount() && scanned < 0; ++i)
        if (object->properties()[i].name == each) scanned = int32_t(i);
      ASSERT_EQ(object->findOwn(each), scanned) << "step " << step;
    }
  }
}

TEST_F(ESObjectTest, ConvertsNumbersToIntegers) {
  const struct {
    double value;
    int32_t int32;
    uint32_t uint32;
    double integer;
  } cases[] = {
      {0, 0, 0, 0},
      {-1.5, -1, 4294967295u, -1},
      {2.9, 2, 2, 2},
      {4294967296.0, 0, 0, 4294967296.0},
      {4294967297.5, 1, 1, 4294967297.0},
      {2147483648.0, -2147483647 - 1, 2147483648u, 2147483648.0},
      {-2147483649.0, 2147483647, 2147483647u, -2147483649.0},
      {1e20, 1661992960, 1661992960u, 1e20},
      {INFINITY, 0, 0, INFINITY},
      {NAN, 0, 0, 0},
  };
  for (const auto& row : cases) {
    ESValue value = ESValue::fromNumber(row.value);
    EXPECT_EQ(context.toInt32(value), row.int32) << row.value;
    EXPECT_EQ(context.toUint32(value), row.uint32) << row.value;
    EXPECT_EQ(context.toInteger(value), row.integer) << row.value;
  }
  EXPECT_EQ(context.toUint16(ESValue::fromNumber(65537)), 1);
  EXPECT_EQ(context.toUint16(ESValue::fromNumber(-1)), 65535);
}

TEST_F(ESObjectTest, ConvertsToObjectsAndPrimitives) {
  ESObject* wrapper = context.toObject(ESValue::fromNumber(2));
  EXPECT_EQ(wrapper->prototype, context.numberPrototype());
  EXPECT_EQ(wrapper->value.number, 2);
  EXPECT_NE(context.toObject(ESValue::fromNumber(2)), wrapper);  // a new wrapper each time
  EXPECT_EQ(context.toObject(ESValue::boolean(true))->prototype, context.booleanPrototype());
  EXPECT_EQ(context.toObject(ESValue::fromAtom(atom("s")))->prototype, context.stringPrototype());
  EXPECT_THROW(context.toObject(ESValue()), ESException);
  // The global object is "[object global]" as an owned string.
  ESValue global = context.toPrimitive(ESValue::fromObject(context.global()), ESTag::None);
  EXPECT_EQ(global.tag, ESTag::OwnedString);
  EXPECT_EQ(context.toString(global), "[object global]");
  QString owned = QStringLiteral("x");
  EXPECT_TRUE(context.equals(ESValue::owned(&owned), ESValue::fromAtom(atom("x"))));
  EXPECT_TRUE(context.strictEquals(ESValue::owned(&owned), ESValue::fromAtom(atom("x"))));
  EXPECT_FALSE(context.strictEquals(ESValue::fromNumber(1), ESValue::boolean(true)));
  EXPECT_FALSE(context.toBoolean(ESValue::fromNumber(-0.0)));
  EXPECT_TRUE(context.toBoolean(ESValue::fromNumber(NAN)));
  EXPECT_FALSE(context.toBoolean(ESValue::fromAtom(atom(""))));
}

}  // namespace
}  // namespace regmill::script
