#include "script/es_native_error.h"

#include "script/es_native.h"

namespace regmill::script {

void ESNativeError::initialise(ESContext& context, const ESNativeError* base) {
  const ESEngine::Names& names = context.engine().names();
  prototype_ = context.newObject(base ? base->prototype() : context.objectPrototype(), context.objectClass());
  prototype_->append(names.name, 0, stringValue(context, typeName_));
  if (base == nullptr) prototype_->append(names.message, 0, stringValue(context, QString()));
  constructor_ = context.defineBuiltin(context.global(), this,
                                       context.builtinDef(typeName_, typeName_, 1, 0, true), prototype_);
  initialised(context);
}

void ESNativeError::call(ESContext& context, ESObject* function, ESObject*, int32_t argumentCount,
                         ESValue* arguments) {
  if (function->builtinId != 0) raiseBadCall(context);
  arguments[0] = ESValue::fromObject(construct(context, function, argumentCount, arguments));
}

ESObject* ESNativeError::construct(ESContext& context, ESObject* function, int32_t argumentCount,
                                   ESValue* arguments) {
  if (function->builtinId != 0) raiseBadConstruct(context);
  ESObject* error = context.newObject(prototype_, context.errorClass());
  ESValue message = argumentAt(argumentCount, arguments, 0);
  // The message is kept as it was given, not converted.
  if (!message.isUndefined()) error->klass->put(context, error, context.engine().names().message, message);
  return error;
}

}  // namespace regmill::script
