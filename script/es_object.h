// The record of every script object, reused for activations and scope links, and
// the class that carries out its property operations. Records belong to their
// context (see es_context.h), which allocates them in batches and frees them all
// when it dies.
#pragma once
#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

#include "script/es_value.h"

namespace regmill::script {

class ESClass;
class ESContext;
struct ESCode;

// What a callable object points to. For a script function `call` and `construct`
// share one record; `code` is null for a native function.
struct ESFunctionInfo {
  int32_t paramCount = 0;  // a native function's declared length
  int32_t localCount = 0;
  const ESCode* code = nullptr;
  ESObject* scope = nullptr;  // the scope link current when a script function was made
};

class ESObject {
 public:
  ESObject* prototype = nullptr;
  ESValue value;  // a wrapper's primitive; a function's full name
  ESFunctionInfo* call = nullptr;
  ESFunctionInfo* construct = nullptr;
  ESClass* klass = nullptr;
  int32_t builtinId = -1;  // 0 or more selects the operation of a native class's call
  // Set when a closure or a `this` may still reach this activation or scope link
  // after its call returned; an uncaptured one goes back to the free list.
  bool captured = false;
  ESObject* nextFree = nullptr;

  // Own slots in order of creation. A deleted slot keeps its place, so that slot
  // numbers held by compiled code stay valid.
  const std::vector<ESProperty>& properties() const { return properties_; }
  ESProperty& slot(size_t i) { return properties_[i]; }
  size_t slotCount() const { return properties_.size(); }

  // The first own slot named `name`, or -1.
  int32_t findOwn(const ESAtom* name) const;
  // Appends a slot; gives its number.
  int32_t append(ESAtom* name, uint32_t attributes, ESValue value);
  // Empties the slot's name and value (delete).
  void clearSlot(int32_t i);
  // Sizes the slots to exactly `count` empty ones (activations, reused records).
  void resetSlots(size_t count);

 private:
  void buildIndex();

  std::vector<ESProperty> properties_;
  // Beyond a few slots a look-up goes through this index of first slots by name, so
  // that filling a big object is not quadratic. It answers what the scan would.
  std::unique_ptr<std::unordered_map<const ESAtom*, int32_t>> index_;
};

// The operations a class supplies for its objects. The machine reaches native and
// host objects only through these; the defaults are the plain property rules.
class ESClass {
 public:
  explicit ESClass(const char* name) : name(name) {}
  virtual ~ESClass() = default;

  // Walks the prototype chain; the first slot with the name gives the value.
  virtual ESValue get(ESContext& context, ESObject* object, ESAtom* name);
  // Stores in an own slot; a ReadOnly one is silently kept; a new name appends a slot.
  virtual void put(ESContext& context, ESObject* object, ESAtom* name, ESValue value);
  // Only the array's `length` rule calls it.
  virtual bool remove(ESContext& context, ESObject* object, ESAtom* name) { return false; }
  // A native function: the result goes over arguments[0], which always exists.
  virtual void call(ESContext& context, ESObject* function, ESObject* thisObject, int32_t argumentCount,
                    ESValue* arguments);
  // A native constructor: the new object, or null.
  virtual ESObject* construct(ESContext& context, ESObject* function, int32_t argumentCount, ESValue* arguments) {
    return nullptr;
  }
  // Puts a plain object on the global object under the class's name.
  virtual void expose(ESContext& context);

  const char* const name;  // reported by Object.prototype.toString
};

// The default property rules on their own, for classes that extend them.
bool hasOwnProperty(const ESObject* object, const ESAtom* name);
bool hasProperty(const ESObject* object, const ESAtom* name);
bool isEnumerable(const ESObject* object, const ESAtom* name);
// True when nothing is there or the slot was cleared; false for DontDelete.
bool deleteProperty(ESObject* object, const ESAtom* name);
// Whether `prototype` stands on the chain of `object` above `object` itself.
bool isPrototypeOf(const ESObject* prototype, const ESObject* object);

}  // namespace regmill::script
