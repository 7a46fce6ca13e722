#include "script/es_native.h"

namespace regmill::script {

void defineNativeFunctions(ESContext& context, ESObject* target, ESClass* klass, const char* prefix,
                           std::initializer_list<ESNativeFunctionRow> rows) {
  const QString fullPrefix = QString::fromLatin1(prefix);
  for (const ESNativeFunctionRow& row : rows) {
    const QString name = QString::fromLatin1(row.name);
    context.defineBuiltin(target, klass, context.builtinDef(name, fullPrefix + name, row.length, row.builtinId));
  }
}

ESObject* defineNativeConstructor(ESContext& context, ESClass* klass, const char* name, int32_t length,
                                  ESObject* prototype) {
  const QString text = QString::fromLatin1(name);
  return context.defineBuiltin(context.global(), klass, context.builtinDef(text, text, length, 0, true), prototype);
}

void raiseBadCall(ESContext& context) { context.raiseError(QStringLiteral("bad signature in builtin call")); }

void raiseBadConstruct(ESContext& context) {
  context.raiseError(QStringLiteral("bad signature in builtin construct"));
}

}  // namespace regmill::script
