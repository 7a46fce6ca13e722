#include "script/es_host_binding.h"

namespace regmill::script {

std::vector<int32_t> readIntegerArray(ESContext& context, ESValue value) {
  if (!value.isObject() || value.object->klass != context.arrayClass())
    context.raiseError(QStringLiteral("array argument expected"));
  ESObject* array = value.object;
  ESEngine& engine = context.engine();
  uint32_t length = context.toUint32(array->klass->get(context, array, engine.names().length));
  if (length > kMaxIntegerArrayLength) context.raiseRangeError(QStringLiteral("array argument too long"));
  std::vector<int32_t> integers;
  integers.reserve(length);
  for (uint32_t i = 0; i < length; ++i)
    integers.push_back(context.toInt32(array->klass->get(context, array, engine.indexAtom(i))));
  return integers;
}

QString reportText(ESContext& context, ESValue value) {
  try {
    return context.toString(value);
  } catch (const ESException&) {
    return ESContext::typeOf(value);
  }
}

QString errorField(ESContext& context, ESObject* error, ESAtom* name) {
  ESValue value;
  try {
    value = error->klass->get(context, error, name);
  } catch (const ESException&) {
    return QString();  // a host class's get may raise
  }
  return value.isUndefined() ? QString() : reportText(context, value);
}

}  // namespace regmill::script
