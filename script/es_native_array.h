// The native class of arrays: the `Array` constructor, the methods of
// Array.prototype, and the `length` rule of every array object.
#pragma once
#include "script/es_object.h"

namespace regmill::script {

class ESNativeArray : public ESClass {
 public:
  ESNativeArray() : ESClass("Array") {}
  // Defines `Array` and the methods of Array.prototype.
  void initialise(ESContext& context);

  // Stores the value, then keeps `length`: a store of `length` takes its ToUint32,
  // and an index at or beyond the length raises it to the index plus 1.
  void put(ESContext& context, ESObject* object, ESAtom* name, ESValue value) override;
  void call(ESContext& context, ESObject* function, ESObject* thisObject, int32_t argumentCount,
            ESValue* arguments) override;
  ESObject* construct(ESContext& context, ESObject* function, int32_t argumentCount, ESValue* arguments) override;
};

}  // namespace regmill::script
