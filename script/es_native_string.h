// The String type: the constructor, String.fromCharCode and the methods of
// String.prototype, all carried out by one class that switches on the function's
// id. A String object's `length` is the length of its text and cannot be written.
// The context owns the one instance and gives it to every String wrapper.
#pragma once
#include "script/es_object.h"

namespace regmill::script {

class ESNativeString : public ESClass {
 public:
  ESNativeString() : ESClass("String") {}

  // Defines `String`, `String.fromCharCode` and the methods of the context's
  // String.prototype.
  void initialise(ESContext& context);

  ESValue get(ESContext& context, ESObject* object, ESAtom* name) override;
  void put(ESContext& context, ESObject* object, ESAtom* name, ESValue value) override;
  void call(ESContext& context, ESObject* function, ESObject* thisObject, int32_t argumentCount,
            ESValue* arguments) override;
  ESObject* construct(ESContext& context, ESObject* function, int32_t argumentCount, ESValue* arguments) override;

 private:
  // A wrapper made by `new String` or by a member access on a string; the
  // functions of this class are not String objects.
  bool isStringObject(const ESObject* object) const;
  // The receiver of a method, converted by ToString.
  QString receiverText(ESContext& context, ESObject* thisObject);
  ESValue callMethod(ESContext& context, int32_t id, const QString& text, int32_t argumentCount,
                     const ESValue* arguments);

  ESObject* nativeToString_ = nullptr;  // String.prototype.toString as defined
};

}  // namespace regmill::script
