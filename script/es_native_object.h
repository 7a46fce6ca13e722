// The native classes of `Object` and `Function`: their constructors and the
// methods of their prototypes. The context creates one instance of each and
// initialises it during set-up.
#pragma once
#include "script/es_object.h"

namespace regmill::script {

class ESNativeObject : public ESClass {
 public:
  ESNativeObject() : ESClass("Object") {}
  // Defines `Object` and the methods of Object.prototype.
  void initialise(ESContext& context);
  void call(ESContext& context, ESObject* function, ESObject* thisObject, int32_t argumentCount,
            ESValue* arguments) override;
  ESObject* construct(ESContext& context, ESObject* function, int32_t argumentCount, ESValue* arguments) override;
};

class ESNativeFunction : public ESClass {
 public:
  // Function.prototype itself is callable with no code: a call of it gives undefined.
  static constexpr int32_t kPrototypeId = 2;

  ESNativeFunction() : ESClass("Function") {}
  // Defines `Function` and Function.prototype.toString.
  void initialise(ESContext& context);
  void call(ESContext& context, ESObject* function, ESObject* thisObject, int32_t argumentCount,
            ESValue* arguments) override;
  ESObject* construct(ESContext& context, ESObject* function, int32_t argumentCount, ESValue* arguments) override;
};

}  // namespace regmill::script
