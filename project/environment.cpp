#include "project/environment.h"

namespace regmill {

Environment::Environment(const QString& firstStorePath, const QString& secondStorePath)
    : stores_{std::make_unique<SettingsStore>(firstStorePath), std::make_unique<SettingsStore>(secondStorePath)} {}

Environment::~Environment() { qDeleteAll(pages_); }

const PropertyValueList* Environment::page(const QString& name) const { return pages_.value(name); }

void Environment::registerValue(EnvironmentPropertyValue* value) {
  const QString& page = value->propertyClass()->page();
  if (page.isEmpty() || page == "(Internal)") return;
  PropertyValueList*& list = pages_[page];
  if (list == nullptr) list = new PropertyValueList(false);
  list->appendUnique(value);
  values_.insert(value->propertyClass()->name(), value);
}

void Environment::unregisterValue(EnvironmentPropertyValue* value) {
  if (PropertyValueList* list = pages_.value(value->propertyClass()->page())) list->remove(value);
  auto found = values_.find(value->propertyClass()->name());
  if (found != values_.end() && found.value() == value) values_.erase(found);
}

EnvironmentPropertyValue::EnvironmentPropertyValue(const PropertyClass* propertyClass, Environment& environment,
                                                   int storeIndex)
    : PropertyValue(propertyClass), environment_(environment), storeIndex_(storeIndex) {
  environment_.registerValue(this);
}

EnvironmentPropertyValue::~EnvironmentPropertyValue() { environment_.unregisterValue(this); }

PropertyValue* EnvironmentPropertyValue::clone() const {
  return new EnvironmentPropertyValue(propertyClass(), environment_, storeIndex_);
}

QString EnvironmentPropertyValue::propertyValue() const {
  if (!isCached_) {
    cached_ = environment_.store(storeIndex_).value(propertyClass()->name(), propertyClass()->defaultValue());
    isCached_ = true;
  }
  return cached_;
}

void EnvironmentPropertyValue::setPropertyValue(const QString& text) {
  if (text == propertyValue()) return;
  cached_ = text;
  SettingsStore& store = environment_.store(storeIndex_);
  if (text == propertyClass()->defaultValue())
    store.remove(propertyClass()->name());
  else
    store.setValue(propertyClass()->name(), text);
  environment_.announceChange(propertyClass()->name());
  emit changed(this);
}

}  // namespace regmill
