#include "script/es_native_object.h"

#include <QStringList>

#include "script/es_native.h"

namespace regmill::script {

namespace {

enum ObjectId : int32_t {
  Constructor = 0,
  ToString = 2,
  ToLocaleString = 3,
  ValueOf = 4,
  HasOwnProperty = 5,
  IsPrototypeOf = 6,
  PropertyIsEnumerable = 7,
};

// What `Object(x)` and `new Object(x)` both give: a new object for undefined and
// null, the object itself, or a new wrapper of a primitive.
ESObject* objectFrom(ESContext& context, ESValue value) {
  switch (value.tag) {
    case ESTag::Undefined:
    case ESTag::Null:
      return context.newObject();
    case ESTag::Boolean:
    case ESTag::Number:
    case ESTag::Atom:
    case ESTag::OwnedString:
    case ESTag::Object:
      return context.toObject(value);
    default:
      context.raiseError(QStringLiteral("unknown type in Object constructor"));
  }
}

bool isWrapper(ESContext& context, const ESObject* object) {
  return object->klass == context.stringClass() || object->klass == context.numberClass() ||
         object->klass == context.booleanClass();
}

}  // namespace

void ESNativeObject::initialise(ESContext& context) {
  defineNativeConstructor(context, this, "Object", 1, context.objectPrototype());
  defineNativeFunctions(context, context.objectPrototype(), this, "Object.prototype.",
                        {{"toString", 0, ToString},
                         {"toLocaleString", 0, ToLocaleString},
                         {"valueOf", 0, ValueOf},
                         {"hasOwnProperty", 1, HasOwnProperty},
                         {"isPrototypeOf", 1, IsPrototypeOf},
                         {"propertyIsEnumerable", 1, PropertyIsEnumerable}});
}

void ESNativeObject::call(ESContext& context, ESObject* function, ESObject* thisObject, int32_t argumentCount,
                          ESValue* arguments) {
  if (thisObject == nullptr) thisObject = context.global();
  ESValue& result = arguments[0];
  switch (function->builtinId) {
    case Constructor:
      result = ESValue::fromObject(objectFrom(context, argumentAt(argumentCount, arguments, 0)));
      return;
    case ToString:
    case ToLocaleString:  // the same text; it does not call toString
      result = stringValue(context, QStringLiteral("[object %1]").arg(QLatin1String(thisObject->klass->name)));
      return;
    case ValueOf:
      result = isWrapper(context, thisObject) ? thisObject->value : ESValue::fromObject(thisObject);
      return;
    case HasOwnProperty:
      result = ESValue::boolean(hasOwnProperty(thisObject, context.toKey(arguments[0])));
      return;
    case IsPrototypeOf:
      result = ESValue::boolean(arguments[0].isObject() && isPrototypeOf(thisObject, arguments[0].object));
      return;
    case PropertyIsEnumerable:
      result = ESValue::boolean(isEnumerable(thisObject, context.toKey(arguments[0])));
      return;
    default:
      raiseBadCall(context);
  }
}

ESObject* ESNativeObject::construct(ESContext& context, ESObject* function, int32_t argumentCount,
                                    ESValue* arguments) {
  if (function->builtinId != Constructor) raiseBadConstruct(context);
  return objectFrom(context, argumentAt(argumentCount, arguments, 0));
}

namespace {

enum FunctionId : int32_t { FunctionConstructor = 0, FunctionToString = 1 };

// All arguments but the last are the parameter text, joined with ","; the last is
// the body.
ESObject* functionFrom(ESContext& context, int32_t argumentCount, ESValue* arguments) {
  QStringList parameters;
  for (int32_t i = 0; i + 1 < argumentCount; ++i) parameters << context.toString(arguments[i]);
  QString body = argumentCount > 0 ? context.toString(arguments[argumentCount - 1]) : QString();
  // A syntax error names its line in the body.
  KeepProgramText keep(context);
  context.setProgramText(context.fileName(), body);
  ESObject* function = context.compileFunction(parameters.join(QLatin1Char(',')), body);
  function->value = stringValue(context, QStringLiteral("anonymous"));
  return function;
}

}  // namespace

void ESNativeFunction::initialise(ESContext& context) {
  defineNativeConstructor(context, this, "Function", 1, context.functionPrototype());
  defineNativeFunctions(context, context.functionPrototype(), this, "Function.prototype.",
                        {{"toString", 0, FunctionToString}});
}

void ESNativeFunction::call(ESContext& context, ESObject* function, ESObject*, int32_t argumentCount,
                            ESValue* arguments) {
  switch (function->builtinId) {
    case FunctionConstructor:
      arguments[0] = ESValue::fromObject(functionFrom(context, argumentCount, arguments));
      return;
    case FunctionToString:
      arguments[0] = stringValue(context, QStringLiteral("<<function>>"));
      return;
    case kPrototypeId:
      arguments[0] = ESValue();
      return;
    default:
      raiseBadCall(context);
  }
}

ESObject* ESNativeFunction::construct(ESContext& context, ESObject* function, int32_t argumentCount,
                                      ESValue* arguments) {
  if (function->builtinId != FunctionConstructor) raiseBadConstruct(context);
  return functionFrom(context, argumentCount, arguments);
}

}  // namespace regmill::script
