// The native classes of the two small wrapper types, `Boolean` and `Number`: their
// constructors (a call converts, `new` wraps) and the methods of their prototypes.
#pragma once
#include "script/es_object.h"

namespace regmill::script {

class ESNativeBoolean : public ESClass {
 public:
  ESNativeBoolean() : ESClass("Boolean") {}
  void initialise(ESContext& context);
  void call(ESContext& context, ESObject* function, ESObject* thisObject, int32_t argumentCount,
            ESValue* arguments) override;
  ESObject* construct(ESContext& context, ESObject* function, int32_t argumentCount, ESValue* arguments) override;
};

class ESNativeNumber : public ESClass {
 public:
  ESNativeNumber() : ESClass("Number") {}
  // Defines `Number` with its constants and the methods of Number.prototype.
  void initialise(ESContext& context);
  void call(ESContext& context, ESObject* function, ESObject* thisObject, int32_t argumentCount,
            ESValue* arguments) override;
  ESObject* construct(ESContext& context, ESObject* function, int32_t argumentCount, ESValue* arguments) override;
};

}  // namespace regmill::script
