// The native class of the functions of `Math`, a plain global object that also
// holds the mathematical constants.
#pragma once
#include "script/es_object.h"

namespace regmill::script {

class ESNativeMath : public ESClass {
 public:
  ESNativeMath() : ESClass("Math") {}
  // Creates the `Math` object on the global object with its constants and functions.
  void initialise(ESContext& context);
  void call(ESContext& context, ESObject* function, ESObject* thisObject, int32_t argumentCount,
            ESValue* arguments) override;
};

}  // namespace regmill::script
