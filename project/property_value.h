// Property values: a class bound to the place where its value lives, read and
// written as a string. The typed access (Booleans, integers, lists, rectangles)
// works through those two operations and the class, so that it is the same
// wherever the value is stored. A value does not own its class.
#pragma once
#include <QObject>
#include <QRect>
#include <QString>
#include <QStringList>
#include <memory>
#include <vector>

#include "project/property_class.h"

namespace regmill {

class PropertyValue {
 public:
  explicit PropertyValue(const PropertyClass* propertyClass);
  virtual ~PropertyValue();
  PropertyValue(const PropertyValue&) = delete;
  PropertyValue& operator=(const PropertyValue&) = delete;

  virtual PropertyValue* clone() const = 0;
  virtual bool isReadOnly() const { return readOnly_; }
  virtual bool isDefault() const { return true; }
  virtual QString description() const;
  virtual void setPropertyValue(const QString& text) = 0;
  virtual QString propertyValue() const = 0;

  const PropertyClass* propertyClass() const { return class_; }

  // The value, or the class default when it is empty, read by the class's type.
  bool boolValue() const;
  int intValue() const;
  QStringList stringListValue() const;
  // Four comma-separated integers; the null rectangle when the text has not four.
  QRect rectValue() const;

  // Writes an integer in the stored form of the class's type; wrong types and
  // enumeration indexes outside the list are told on the warning channel.
  void setValue(int value);
  void setValue(bool value);
  void setValue(const QRect& rectangle);

 protected:
  // The value's own text, or the class default when that is empty.
  QString valueOrDefault() const;

 private:
  bool readOnly_;
  const PropertyClass* class_;
  // Owned: the menu actions of an enumerated value, when a menu shows it.
  std::unique_ptr<QObject> actionGroup_;
};

// A fact shown beside the settings (a size, a date): a string kept in the object.
class SimplePropertyValue : public PropertyValue {
 public:
  SimplePropertyValue(const PropertyClass* propertyClass, const QString& value);
  PropertyValue* clone() const override;
  bool isReadOnly() const override { return true; }
  void setPropertyValue(const QString& text) override { value_ = text; }
  QString propertyValue() const override { return value_; }

 private:
  QString value_;
};

// An ordered list of values that owns them when autoDelete is on.
class PropertyValueList {
 public:
  explicit PropertyValueList(bool autoDelete = true) : autoDelete_(autoDelete) {}
  ~PropertyValueList();
  PropertyValueList(const PropertyValueList&) = delete;
  PropertyValueList& operator=(const PropertyValueList&) = delete;
  PropertyValueList(PropertyValueList&& other) noexcept;
  PropertyValueList& operator=(PropertyValueList&& other) noexcept;

  void append(PropertyValue* value) { values_.push_back(value); }
  // Appends unless a value of the same class is in the list already. A null value,
  // or one without a class, is told on the error channel and left out.
  void appendUnique(PropertyValue* value);
  // By the short captions of the classes, ascending, comparing plain strings.
  void sort();
  // Takes the value out of the list without deleting it.
  void remove(PropertyValue* value) { std::erase(values_, value); }

  size_t size() const { return values_.size(); }
  PropertyValue* at(size_t index) const { return values_[index]; }
  auto begin() const { return values_.begin(); }
  auto end() const { return values_.end(); }
  bool autoDelete() const { return autoDelete_; }

 private:
  std::vector<PropertyValue*> values_;
  bool autoDelete_;
};

}  // namespace regmill
