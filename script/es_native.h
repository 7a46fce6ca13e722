// What the native classes share: a table form of their built-in functions, and
// the two errors of a call that names no operation of its class.
#pragma once
#include <QString>
#include <cstdint>
#include <initializer_list>

#include "script/es_context.h"

namespace regmill::script {

// One row of a native class's function table; the full name is the table's prefix
// followed by `name`.
struct ESNativeFunctionRow {
  const char* name;
  int32_t length;
  int32_t builtinId;
};

// Defines every row on `target`, implemented by `klass`.
void defineNativeFunctions(ESContext& context, ESObject* target, ESClass* klass, const char* prefix,
                           std::initializer_list<ESNativeFunctionRow> rows);
// A constructor of id 0 named `name`, on the global object, linked with `prototype`.
ESObject* defineNativeConstructor(ESContext& context, ESClass* klass, const char* name, int32_t length,
                                  ESObject* prototype);

[[noreturn]] void raiseBadCall(ESContext& context);
[[noreturn]] void raiseBadConstruct(ESContext& context);

// Keeps the caller's program text and file name while eval, load or the Function
// constructor compiles text of its own, so that later errors of the caller are
// still completed from its own source.
class KeepProgramText {
 public:
  explicit KeepProgramText(ESContext& context)
      : context_(context), fileName_(context.fileName()), source_(context.source()) {}
  ~KeepProgramText() { context_.setProgramText(fileName_, source_); }
  KeepProgramText(const KeepProgramText&) = delete;
  KeepProgramText& operator=(const KeepProgramText&) = delete;

 private:
  ESContext& context_;
  QString fileName_;
  QString source_;
};

// An interned string value.
inline ESValue stringValue(ESContext& context, const QString& text) {
  return ESValue::fromAtom(context.engine().intern(text));
}

// The argument at `index`, or undefined when fewer were given (only functions that
// read the count can see fewer than their declared length).
inline ESValue argumentAt(int32_t argumentCount, const ESValue* arguments, int32_t index) {
  return index < argumentCount ? arguments[index] : ESValue();
}

}  // namespace regmill::script
