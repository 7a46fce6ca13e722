#include "script/es_native_array.h"

#include <algorithm>
#include <vector>

#include "script/es_native.h"

namespace regmill::script {

namespace {

enum ArrayId : int32_t {
  Constructor = 0,
  ToString = 2,
  ToLocaleString = 3,
  Concat = 4,
  Join = 5,
  Pop = 6,
  Push = 7,
  Reverse = 8,
  Shift = 9,
  Slice = 10,
  Sort = 11,
};

// Walks over every index up to the length are bounded, since no step budget can
// stop a native loop: a longer array is a RangeError. Sort, which does more than
// linear work, has a lower bound.
constexpr uint32_t kMaxWalkLength = uint32_t(1) << 24;
constexpr uint32_t kMaxSortLength = uint32_t(1) << 20;

// Element access through the object's class, so that overrides are honoured.
// Reads intern nothing: an index whose atom was never made is undefined.
class Elements {
 public:
  Elements(ESContext& context, ESObject* object) : context_(context), object_(object) {}

  uint32_t length() { return context_.toUint32(get(context_.engine().names().length)); }
  // The length, refused beyond `bound` for a method that visits every index.
  uint32_t walkLength(const char* method, uint32_t bound = kMaxWalkLength) {
    uint32_t n = length();
    if (n > bound) context_.raiseRangeError(QStringLiteral("array too long for Array.prototype.%1").arg(QLatin1String(method)));
    return n;
  }
  void setLength(double length) { put(context_.engine().names().length, ESValue::fromNumber(length)); }
  ESAtom* key(uint64_t index) { return context_.engine().indexAtom(index); }
  ESAtom* existingKey(uint64_t index) { return context_.engine().findIndexAtom(index); }
  ESValue at(uint64_t index) {
    ESAtom* name = existingKey(index);
    return name ? get(name) : ESValue();
  }
  bool exists(uint64_t index) {
    ESAtom* name = existingKey(index);
    return name && object_->findOwn(name) >= 0;
  }
  void set(uint64_t index, ESValue value) { put(key(index), value); }
  void remove(uint64_t index) {
    if (ESAtom* name = existingKey(index)) deleteProperty(object_, name);
  }
  // An undefined value is not stored: its slot is deleted instead.
  void setOrDelete(uint64_t index, ESValue value) {
    if (value.isUndefined())
      remove(index);
    else
      set(index, value);
  }
  ESValue get(ESAtom* name) { return object_->klass->get(context_, object_, name); }
  void put(ESAtom* name, ESValue value) { object_->klass->put(context_, object_, name, value); }

 private:
  ESContext& context_;
  ESObject* object_;
};

void checkTextLength(ESContext& context, const QString& text) {
  if (text.size() > ESContext::kMaxStringLength) context.raiseRangeError(QStringLiteral("string too long"));
}

bool isArray(ESContext& context, const ESObject* object) { return object->klass == context.arrayClass(); }

ESObject* arrayFrom(ESContext& context, int32_t argumentCount, ESValue* arguments) {
  ESObject* array = context.newArray();
  Elements elements(context, array);
  if (argumentCount == 1 && arguments[0].isNumber()) {
    double length = arguments[0].number;
    if (length != double(context.toUint32(arguments[0])))
      context.raiseRangeError(QStringLiteral("bad length in array constructor"));
    elements.setLength(length);
    return array;
  }
  for (int32_t i = 0; i < argumentCount; ++i) elements.set(uint64_t(i), arguments[i]);
  return array;
}

// toString: null gives an empty text, undefined the text "undefined".
QString arrayText(ESContext& context, ESObject* array) {
  Elements elements(context, array);
  QString text;
  for (uint32_t i = 0, n = elements.walkLength("toString"); i < n; ++i) {
    checkTextLength(context, text);
    if (i > 0) text += QLatin1Char(',');
    ESValue element = elements.at(i);
    if (!element.isNull()) text += context.toString(element);
  }
  return text;
}

// join: undefined and null elements add nothing, not even their separator.
QString joinText(ESContext& context, ESObject* array, ESValue separatorValue) {
  QString separator = separatorValue.isUndefined() ? QStringLiteral(",") : context.toString(separatorValue);
  Elements elements(context, array);
  QString text;
  for (uint32_t i = 0, n = elements.walkLength("join"); i < n; ++i) {
    ESValue element = elements.at(i);
    if (element.isUndefined() || element.isNull()) continue;
    checkTextLength(context, text);
    if (i > 0) text += separator;
    text += context.toString(element);
  }
  return text;
}

ESObject* concat(ESContext& context, ESObject* receiver, int32_t argumentCount, ESValue* arguments) {
  ESObject* result = context.newArray();
  Elements out(context, result);
  uint64_t next = 0;
  auto append = [&](ESValue item) {
    if (item.isObject() && isArray(context, item.object)) {
      // An array is spliced in without its undefined elements.
      Elements in(context, item.object);
      for (uint32_t i = 0, n = in.walkLength("concat"); i < n; ++i) {
        ESValue element = in.at(i);
        if (!element.isUndefined()) out.set(next++, element);
      }
    } else {
      out.set(next++, item);
    }
  };
  append(ESValue::fromObject(receiver));
  for (int32_t i = 0; i < argumentCount; ++i) append(arguments[i]);
  return result;
}

// pop takes the last element, shift the first and moves the others down. On an
// empty array both set the length to 0 and give undefined.
ESValue removeElement(ESContext& context, ESObject* array, bool first) {
  Elements elements(context, array);
  uint32_t length = first ? elements.walkLength("shift") : elements.length();
  if (length == 0) {
    elements.setLength(0);
    return ESValue();
  }
  ESValue removed = elements.at(first ? 0 : length - 1);
  if (first)
    for (uint32_t i = 1; i < length; ++i) elements.setOrDelete(i - 1, elements.at(i));
  elements.remove(length - 1);
  elements.setLength(length - 1);
  return removed;
}

void reverse(ESContext& context, ESObject* array) {
  Elements elements(context, array);
  uint32_t length = elements.walkLength("reverse");
  for (uint32_t lower = 0, upper = length; lower + 1 < upper; ++lower) {
    --upper;
    ESValue lowerValue = elements.at(lower);
    ESValue upperValue = elements.at(upper);
    elements.setOrDelete(lower, upperValue);
    elements.setOrDelete(upper, lowerValue);
  }
}

// A bound by ToInt32: a negative one counts from the end and stops at 0, one above
// the length stops there.
uint32_t sliceBound(ESContext& context, ESValue bound, uint32_t length) {
  int64_t position = context.toInt32(bound);
  if (position < 0) position = std::max<int64_t>(0, int64_t(length) + position);
  return uint32_t(std::min<int64_t>(position, length));
}

ESObject* slice(ESContext& context, ESObject* array, ESValue startValue, ESValue endValue) {
  Elements in(context, array);
  uint32_t length = in.length();
  uint32_t start = sliceBound(context, startValue, length);
  uint32_t end = endValue.isUndefined() ? length : sliceBound(context, endValue, length);
  if (end > start && end - start > kMaxWalkLength)
    context.raiseRangeError(QStringLiteral("array too long for Array.prototype.slice"));
  ESObject* result = context.newArray();
  Elements out(context, result);
  for (uint32_t i = start; i < end; ++i)
    if (in.exists(i)) out.set(i - start, in.at(i));
  return result;
}

// The order of sort: undefined is greater than everything, and two undefined
// values are equal; a comparison function says greater with a result above 0.
class SortOrder {
 public:
  SortOrder(ESContext& context, ESObject* array, ESValue comparator)
      : context_(context), array_(array), comparator_(comparator) {}

  bool greater(ESValue key, ESValue element) {
    if (element.isUndefined()) return false;
    if (key.isUndefined()) return true;
    if (comparator_.isObject()) {
      ESValue pair[2] = {key, element};
      return context_.toNumber(context_.callFunction(comparator_.object, array_, 2, pair)) > 0;
    }
    return context_.toString(key) > context_.toString(element);
  }

 private:
  ESContext& context_;
  ESObject* array_;
  ESValue comparator_;
};

// The index atoms of the elements being sorted, found once: a sort reads each
// index many times. A hole is looked up again, since a comparison function may
// have made its atom since.
class SortKeys {
 public:
  SortKeys(ESEngine& engine, uint32_t length) : engine_(engine), keys_(length) {
    for (uint32_t i = 0; i < length; ++i) keys_[i] = engine.findIndexAtom(i);
  }
  ESAtom* existing(uint32_t index) {
    if (keys_[index] == nullptr) keys_[index] = engine_.findIndexAtom(index);
    return keys_[index];
  }
  ESAtom* made(uint32_t index) {
    if (keys_[index] == nullptr) keys_[index] = engine_.indexAtom(index);
    return keys_[index];
  }

 private:
  ESEngine& engine_;
  std::vector<ESAtom*> keys_;
};

// A Shell sort: gaps (length + 3) / 5, then (gap + 1) / 3 down to a last pass of 1.
// For each gap the key at i - gap moves up past every element it is greater than.
void sort(ESContext& context, ESObject* array, ESValue comparator) {
  if (!comparator.isUndefined() && !(comparator.isObject() && comparator.object->call != nullptr))
    context.raiseError(QStringLiteral("Array.prototype.sort argument is not a function"));
  Elements elements(context, array);
  const uint32_t length = elements.walkLength("sort", kMaxSortLength);
  if (length < 2) return;
  SortKeys keys(context.engine(), length);
  auto at = [&](uint32_t index) {
    ESAtom* key = keys.existing(index);
    return key ? elements.get(key) : ESValue();
  };
  SortOrder order(context, array, comparator);
  for (uint32_t gap = (length + 3) / 5;; gap = (gap + 1) / 3) {
    for (uint32_t i = length - 1; i >= gap; --i) {
      ESValue key = at(i - gap);
      uint32_t j = i;
      for (; j < length; j += gap) {
        ESValue element = at(j);
        if (!order.greater(key, element)) break;
        elements.put(keys.made(j - gap), element);
      }
      // An undefined key is not stored: its slot is deleted.
      if (!key.isUndefined())
        elements.put(keys.made(j - gap), key);
      else if (ESAtom* hole = keys.existing(j - gap))
        deleteProperty(array, hole);
    }
    if (gap == 1) break;
  }
}

}  // namespace

void ESNativeArray::initialise(ESContext& context) {
  defineNativeConstructor(context, this, "Array", 0, context.arrayPrototype());
  defineNativeFunctions(context, context.arrayPrototype(), this, "Array.prototype.",
                        {{"toString", 0, ToString},
                         {"toLocaleString", 0, ToLocaleString},
                         {"concat", 0, Concat},
                         {"join", 1, Join},
                         {"pop", 0, Pop},
                         {"push", 0, Push},
                         {"reverse", 0, Reverse},
                         {"shift", 0, Shift},
                         {"slice", 2, Slice},
                         {"sort", 1, Sort}});
}

void ESNativeArray::put(ESContext& context, ESObject* object, ESAtom* name, ESValue value) {
  ESClass::put(context, object, name, value);
  ESAtom* length = context.engine().names().length;
  if (name == length) {
    // Elements at or beyond a smaller length stay where they are.
    ESClass::put(context, object, length, ESValue::fromNumber(context.toUint32(value)));
  } else if (name->arrayIndex >= 0) {
    double current = context.toNumber(ESClass::get(context, object, length));
    if (!(double(name->arrayIndex) < current))
      ESClass::put(context, object, length, ESValue::fromNumber(double(name->arrayIndex) + 1));
  }
}

void ESNativeArray::call(ESContext& context, ESObject* function, ESObject* thisObject, int32_t argumentCount,
                         ESValue* arguments) {
  if (thisObject == nullptr) thisObject = context.global();
  ESValue& result = arguments[0];
  switch (function->builtinId) {
    case Constructor:
      result = ESValue::fromObject(arrayFrom(context, argumentCount, arguments));
      return;
    case ToString:
    case ToLocaleString:
      if (!isArray(context, thisObject))
        context.raiseTypeError(QStringLiteral("Array.prototype.toString requires an array"));
      result = stringValue(context, arrayText(context, thisObject));
      return;
    case Concat:
      result = ESValue::fromObject(concat(context, thisObject, argumentCount, arguments));
      return;
    case Join:
      result = stringValue(context, joinText(context, thisObject, arguments[0]));
      return;
    case Pop:
      result = removeElement(context, thisObject, false);
      return;
    case Push: {
      Elements elements(context, thisObject);
      uint64_t next = elements.length();
      for (int32_t i = 0; i < argumentCount; ++i) elements.set(next++, arguments[i]);
      result = ESValue::fromNumber(context.toNumber(elements.get(context.engine().names().length)));
      return;
    }
    case Reverse:
      reverse(context, thisObject);
      result = ESValue::fromObject(thisObject);
      return;
    case Shift:
      result = removeElement(context, thisObject, true);
      return;
    case Slice:
      result = ESValue::fromObject(slice(context, thisObject, arguments[0], arguments[1]));
      return;
    case Sort:
      sort(context, thisObject, arguments[0]);
      result = ESValue::fromObject(thisObject);
      return;
    default:
      raiseBadCall(context);
  }
}

ESObject* ESNativeArray::construct(ESContext& context, ESObject* function, int32_t argumentCount,
                                   ESValue* arguments) {
  if (function->builtinId != Constructor) raiseBadConstruct(context);
  return arrayFrom(context, argumentCount, arguments);
}

}  // namespace regmill::script
