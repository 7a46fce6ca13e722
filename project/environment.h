// The user's environment options: the application's two settings stores, the
// environment values grouped by the page that shows them, and a value for each
// option name. EnvironmentPropertyValue reads and writes one option in a store.
#pragma once
#include <QMap>
#include <QObject>
#include <QString>
#include <array>
#include <memory>

#include "project/property_value.h"
#include "project/settings_store.h"

namespace regmill {

class EnvironmentPropertyValue;

class Environment : public QObject {
  Q_OBJECT

 public:
  // The two stores' files; the host chooses them.
  Environment(const QString& firstStorePath, const QString& secondStorePath);
  ~Environment() override;

  SettingsStore& store(int index) { return *stores_[index == 0 ? 0 : 1]; }

  // The values shown on a page, in the order they registered; not owned.
  const PropertyValueList* page(const QString& name) const;
  QStringList pageNames() const { return pages_.keys(); }
  // The value last registered for the option, or null.
  EnvironmentPropertyValue* value(const QString& name) const { return values_.value(name); }

  // Called by a value as it is made and destroyed.
  void registerValue(EnvironmentPropertyValue* value);
  void unregisterValue(EnvironmentPropertyValue* value);

  // Tells that the option of that name has changed.
  void announceChange(const QString& name) { emit keyChanged(name); }

 signals:
  void keyChanged(const QString& name);

 private:
  std::array<std::unique_ptr<SettingsStore>, 2> stores_;
  QMap<QString, PropertyValueList*> pages_;
  QMap<QString, EnvironmentPropertyValue*> values_;
};

class EnvironmentPropertyValue : public QObject, public PropertyValue {
  Q_OBJECT

 public:
  // Reads and writes the option of the class's name in the environment's store of
  // that index (the program's options are all in the second, index 1). A class
  // with a page other than "(Internal)" registers the value with that page.
  EnvironmentPropertyValue(const PropertyClass* propertyClass, Environment& environment, int storeIndex = 1);
  ~EnvironmentPropertyValue() override;

  PropertyValue* clone() const override;
  // Read from the store at the first call, the class default standing in for a
  // missing option, and kept from then on.
  QString propertyValue() const override;
  // A value equal to the class default is removed from the store, so that a later
  // change of the default takes effect; any other is written.
  void setPropertyValue(const QString& text) override;

 signals:
  void changed(EnvironmentPropertyValue* value);

 private:
  Environment& environment_;
  int storeIndex_;
  mutable QString cached_;
  mutable bool isCached_ = false;
};

}  // namespace regmill
