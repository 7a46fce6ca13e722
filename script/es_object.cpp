#include "script/es_object.h"

#include "script/es_context.h"

namespace regmill::script {

namespace {
// Up to this many slots a linear scan beats a hash look-up.
constexpr size_t kIndexThreshold = 12;
}  // namespace

int32_t ESObject::findOwn(const ESAtom* name) const {
  if (index_) {
    auto found = index_->find(name);
    return found == index_->end() ? -1 : found->second;
  }
  const ESProperty* own = properties_.data();
  for (size_t i = 0, n = properties_.size(); i < n; ++i)
    if (own[i].name == name) return int32_t(i);
  return -1;
}

int32_t ESObject::append(ESAtom* name, uint32_t attributes, ESValue value) {
  // Grows by 50 slots as the object model asks, and by half the size once the
  // object is big, so that filling a large array costs linear time.
  if (properties_.size() == properties_.capacity())
    properties_.reserve(properties_.size() + std::max<size_t>(50, properties_.size() / 2));
  int32_t number = int32_t(properties_.size());
  properties_.push_back(ESProperty{name, attributes, value});
  if (index_) {
    if (name != nullptr) index_->emplace(name, number);  // keeps an earlier slot of the name
  } else if (properties_.size() > kIndexThreshold) {
    buildIndex();
  }
  return number;
}

void ESObject::clearSlot(int32_t i) {
  ESProperty& slot = properties_[size_t(i)];
  if (index_ && slot.name != nullptr) {
    index_->erase(slot.name);
    // A later slot of the same name (possible in activations) becomes the first.
    for (size_t j = size_t(i) + 1; j < properties_.size(); ++j)
      if (properties_[j].name == slot.name) {
        index_->emplace(slot.name, int32_t(j));
        break;
      }
  }
  slot.name = nullptr;
  slot.value = ESValue();
}

void ESObject::resetSlots(size_t count) {
  index_.reset();
  properties_.assign(count, ESProperty());
}

void ESObject::buildIndex() {
  index_ = std::make_unique<std::unordered_map<const ESAtom*, int32_t>>();
  index_->reserve(properties_.size() * 2);
  for (size_t i = 0; i < properties_.size(); ++i)
    if (properties_[i].name != nullptr) index_->emplace(properties_[i].name, int32_t(i));
}

ESValue ESClass::get(ESContext&, ESObject* object, ESAtom* name) {
  for (ESObject* o = object; o != nullptr; o = o->prototype) {
    int32_t i = o->findOwn(name);
    if (i >= 0) return o->slot(size_t(i)).value;
  }
  return ESValue();
}

void ESClass::put(ESContext&, ESObject* object, ESAtom* name, ESValue value) {
  int32_t i = object->findOwn(name);
  if (i < 0) {
    object->append(name, 0, value);
    return;
  }
  ESProperty& slot = object->slot(size_t(i));
  if (!(slot.attributes & ESAttribute::ReadOnly)) slot.value = value;
}

void ESClass::call(ESContext&, ESObject*, ESObject*, int32_t, ESValue* arguments) { arguments[0] = ESValue(); }

void ESClass::expose(ESContext& context) {
  ESObject* object = context.newObject();
  context.global()->klass->put(context, context.global(), context.engine().intern(QString::fromLatin1(name)),
                               ESValue::fromObject(object));
}

bool hasOwnProperty(const ESObject* object, const ESAtom* name) { return object->findOwn(name) >= 0; }

bool hasProperty(const ESObject* object, const ESAtom* name) {
  for (const ESObject* o = object; o != nullptr; o = o->prototype)
    if (o->findOwn(name) >= 0) return true;
  return false;
}

bool isEnumerable(const ESObject* object, const ESAtom* name) {
  int32_t i = object->findOwn(name);
  return i >= 0 && !(object->properties()[size_t(i)].attributes & ESAttribute::DontEnum);
}

bool deleteProperty(ESObject* object, const ESAtom* name) {
  int32_t i = object->findOwn(name);
  if (i < 0) return true;
  if (object->slot(size_t(i)).attributes & ESAttribute::DontDelete) return false;
  object->clearSlot(i);
  return true;
}

bool isPrototypeOf(const ESObject* prototype, const ESObject* object) {
  for (const ESObject* o = object->prototype; o != nullptr; o = o->prototype)
    if (o == prototype) return true;
  return false;
}

}  // namespace regmill::script
