// The native classes of the error types. Each instance keeps the prototype and the
// constructor of its type; every error object, whatever its type, gets the
// context's class of `Error`. The five subclasses differ only in their type name.
#pragma once
#include <QString>

#include "script/es_object.h"

namespace regmill::script {

class ESNativeError : public ESClass {
 public:
  ESNativeError() : ESNativeError(QStringLiteral("Error")) {}
  // Makes the prototype with the type's `name`, on the prototype of `base` (null
  // for `Error` itself, whose prototype also has an empty `message`), and the
  // constructor on the global object; then calls initialised.
  void initialise(ESContext& context, const ESNativeError* base);

  ESObject* prototype() const { return prototype_; }
  ESObject* constructor() const { return constructor_; }
  const QString& typeName() const { return typeName_; }

  // Calling a type acts like `new`.
  void call(ESContext& context, ESObject* function, ESObject* thisObject, int32_t argumentCount,
            ESValue* arguments) override;
  ESObject* construct(ESContext& context, ESObject* function, int32_t argumentCount, ESValue* arguments) override;

 protected:
  explicit ESNativeError(QString typeName) : ESClass("Error"), typeName_(std::move(typeName)) {}
  // The end of initialise, for a subclass that adds to its type.
  virtual void initialised(ESContext&) {}

 private:
  QString typeName_;
  ESObject* prototype_ = nullptr;
  ESObject* constructor_ = nullptr;
};

class ESNativeEvalError : public ESNativeError {
 public:
  ESNativeEvalError() : ESNativeError(QStringLiteral("EvalError")) {}
};

class ESNativeRangeError : public ESNativeError {
 public:
  ESNativeRangeError() : ESNativeError(QStringLiteral("RangeError")) {}
};

class ESNativeReferenceError : public ESNativeError {
 public:
  ESNativeReferenceError() : ESNativeError(QStringLiteral("ReferenceError")) {}
};

class ESNativeSyntaxError : public ESNativeError {
 public:
  ESNativeSyntaxError() : ESNativeError(QStringLiteral("SyntaxError")) {}
};

class ESNativeTypeError : public ESNativeError {
 public:
  ESNativeTypeError() : ESNativeError(QStringLiteral("TypeError")) {}
};

}  // namespace regmill::script
