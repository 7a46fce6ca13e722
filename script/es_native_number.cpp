#include "script/es_native_number.h"

#include <cmath>
#include <cstdio>
#include <string>
#include <limits>

#include "script/es_native.h"

namespace regmill::script {

namespace {

enum BooleanId : int32_t { BooleanConstructor = 0, BooleanToString = 1, BooleanValueOf = 2 };

ESObject* wrap(ESContext& context, ESValue primitive) { return context.toObject(primitive); }

}  // namespace

void ESNativeBoolean::initialise(ESContext& context) {
  defineNativeConstructor(context, this, "Boolean", 1, context.booleanPrototype());
  defineNativeFunctions(context, context.booleanPrototype(), this, "Boolean.prototype.",
                        {{"toString", 0, BooleanToString}, {"valueOf", 0, BooleanValueOf}});
}

void ESNativeBoolean::call(ESContext& context, ESObject* function, ESObject* thisObject, int32_t,
                           ESValue* arguments) {
  switch (function->builtinId) {
    case BooleanConstructor:
      arguments[0] = ESValue::boolean(context.toBoolean(arguments[0]));
      return;
    case BooleanToString:
    case BooleanValueOf: {
      // Both refuse another receiver with the same text.
      if (thisObject == nullptr || thisObject->klass != context.booleanClass())
        context.raiseTypeError(QStringLiteral("Boolean.prototype.toString called on non-Boolean object"));
      ESValue value = thisObject->value;
      arguments[0] = function->builtinId == BooleanValueOf ? value : stringValue(context, context.toString(value));
      return;
    }
    default:
      raiseBadCall(context);
  }
}

ESObject* ESNativeBoolean::construct(ESContext& context, ESObject* function, int32_t, ESValue* arguments) {
  if (function->builtinId != BooleanConstructor) raiseBadConstruct(context);
  return wrap(context, ESValue::boolean(context.toBoolean(arguments[0])));
}

namespace {

enum NumberId : int32_t { NumberConstructor = 0, NumberToString = 2, ToFixed = 3, NumberValueOf = 4 };

// The constructor is declared with length 0, so that `Number()` can tell that it
// was given nothing and give 0, where an undefined argument gives NaN.
double numberFrom(ESContext& context, int32_t argumentCount, const ESValue* arguments) {
  return argumentCount == 0 ? 0.0 : context.toNumber(arguments[0]);
}

void requireNumber(ESContext& context, const ESObject* object, const char* method) {
  if (object == nullptr || object->klass != context.numberClass())
    context.raiseTypeError(QStringLiteral("Number.prototype.%1 called on non-Number object").arg(QLatin1String(method)));
}

QString toFixed(ESContext& context, ESValue receiverValue, ESValue digitsValue) {
  double digits = digitsValue.isUndefined() ? 0 : context.toNumber(digitsValue);
  if (digits < 0 || digits > 20) context.raiseRangeError(QStringLiteral("fraction digits should 0 through 20"));
  // A NaN count passes the range test; it is taken as 0 digits.
  int precision = std::isnan(digits) ? 0 : int(digits);
  // The C library's formatting, not the toolkit's: the two round ties differently.
  double value = context.toNumber(receiverValue);
  int size = std::snprintf(nullptr, 0, "%40.*f", precision, value);
  std::string text(size_t(size) + 1, '\0');
  std::snprintf(text.data(), text.size(), "%40.*f", precision, value);
  return QString::fromLatin1(text.c_str()).trimmed();
}

}  // namespace

void ESNativeNumber::initialise(ESContext& context) {
  ESObject* constructor = defineNativeConstructor(context, this, "Number", 0, context.numberPrototype());
  ESEngine& engine = context.engine();
  auto constant = [&](const char* name, double value) {
    constructor->klass->put(context, constructor, engine.intern(QLatin1String(name)), ESValue::fromNumber(value));
  };
  constant("MAX_VALUE", std::numeric_limits<double>::max());
  constant("MIN_VALUE", std::numeric_limits<double>::denorm_min());
  constant("NaN", std::nan(""));
  constant("NEGATIVE_INFINITY", -INFINITY);
  constant("POSITIVE_INFINITY", INFINITY);
  defineNativeFunctions(context, context.numberPrototype(), this, "Number.prototype.",
                        {{"toString", 1, NumberToString}, {"toFixed", 1, ToFixed}, {"valueOf", 0, NumberValueOf}});
}

void ESNativeNumber::call(ESContext& context, ESObject* function, ESObject* thisObject, int32_t argumentCount,
                          ESValue* arguments) {
  ESValue& result = arguments[0];
  switch (function->builtinId) {
    case NumberConstructor:
      result = ESValue::fromNumber(numberFrom(context, argumentCount, arguments));
      return;
    case NumberToString: {
      requireNumber(context, thisObject, "toString");
      int radix = context.toInt32(arguments[0]);
      result = stringValue(context, context.toString(thisObject->value, radix == 0 ? 10 : radix));
      return;
    }
    case ToFixed:
      // The receiver's class is not looked at: any object's value is converted.
      result = stringValue(context, toFixed(context, thisObject ? thisObject->value : ESValue(), arguments[0]));
      return;
    case NumberValueOf:
      requireNumber(context, thisObject, "valueOf");
      result = thisObject->value;
      return;
    default:
      raiseBadCall(context);
  }
}

ESObject* ESNativeNumber::construct(ESContext& context, ESObject* function, int32_t argumentCount,
                                    ESValue* arguments) {
  if (function->builtinId != NumberConstructor) raiseBadConstruct(context);
  return wrap(context, ESValue::fromNumber(numberFrom(context, argumentCount, arguments)));
}

}  // namespace regmill::script
