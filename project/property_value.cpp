#include "project/property_value.h"

#include <algorithm>
#include <limits>

#include "base/text.h"
#include "project/diagnostics.h"
#include "project/macro_map.h"

namespace regmill {

namespace {

// An integer as a C program writes it: optional sign, then "0x" for hexadecimal, a
// leading "0" for octal, else decimal; blanks around it are allowed. Anything else,
// or a number outside 32 bits, gives 0. A "0b" prefix is no binary number here.
int integerFromText(const QString& text) {
  const QString trimmed = text.trimmed();
  qsizetype at = 0;
  bool negative = false;
  if (at < trimmed.size() && (trimmed[at] == u'+' || trimmed[at] == u'-')) negative = trimmed[at++] == u'-';
  int base = 10;
  if (trimmed.mid(at, 2).compare("0x", Qt::CaseInsensitive) == 0 && trimmed.size() > at + 2) {
    base = 16;
    at += 2;
  } else if (trimmed.mid(at, 1) == "0" && trimmed.size() > at + 1) {
    base = 8;
    at += 1;
  }
  if (at >= trimmed.size()) return 0;
  int64_t value = 0;
  for (; at < trimmed.size(); ++at) {
    const int digit = trimmed[at].unicode() < 128 ? digitValue(static_cast<unsigned char>(trimmed[at].unicode())) : -1;
    if (digit < 0 || digit >= base) return 0;
    value = value * base + digit;
    if (value > int64_t{std::numeric_limits<int32_t>::max()} + 1) return 0;
  }
  if (negative) value = -value;
  if (value > std::numeric_limits<int32_t>::max() || value < std::numeric_limits<int32_t>::min()) return 0;
  return int(value);
}

// The zero-padded digit count of a hexadecimal class: as many as its maximum needs.
int hexDigitsFor(int32_t maximum) {
  const auto limit = static_cast<uint32_t>(maximum);
  int digits = 1;
  for (uint32_t bound = 0x10; digits < 8 && limit >= bound; bound <<= 4) ++digits;
  return maximum <= 0 ? 1 : digits;
}

}  // namespace

PropertyValue::PropertyValue(const PropertyClass* propertyClass)
    : readOnly_(propertyClass != nullptr && propertyClass->isReadOnly()), class_(propertyClass) {}

PropertyValue::~PropertyValue() = default;

QString PropertyValue::description() const { return class_ == nullptr ? QString() : class_->description(); }

QString PropertyValue::valueOrDefault() const {
  QString value = propertyValue();
  return value.isEmpty() && class_ != nullptr ? class_->defaultValue() : value;
}

bool PropertyValue::boolValue() const {
  const QString value = valueOrDefault();
  const qsizetype index = class_->enumerates().indexOf(value);
  if (index == 0 || index == 1) return index == 1;
  const QString folded = value.toLower();
  return folded == "true" || folded == "yes" || folded == "1";
}

int PropertyValue::intValue() const {
  const QString value = valueOrDefault();
  if (class_->type() == PropertyType::Boolean || class_->type() == PropertyType::Enumeration)
    return std::max<int>(0, int(class_->enumerates().indexOf(value)));
  return integerFromText(value);
}

QStringList PropertyValue::stringListValue() const { return splitMacroString(valueOrDefault()); }

QRect PropertyValue::rectValue() const {
  const QStringList parts = propertyValue().split(u',');
  if (parts.size() != 4) return QRect();
  int numbers[4];
  for (int i = 0; i < 4; ++i) {
    bool ok = false;
    numbers[i] = parts[i].trimmed().toInt(&ok);
    if (!ok) return QRect();
  }
  return QRect(numbers[0], numbers[1], numbers[2], numbers[3]);
}

void PropertyValue::setValue(int value) {
  switch (class_->type()) {
    case PropertyType::Boolean:
    case PropertyType::Enumeration: {
      const QStringList entries = class_->enumerates();
      if (value >= 0 && value < entries.size()) {
        setPropertyValue(entries[value]);
        return;
      }
      reportWarning("PropertyValue::setValue(int): Setting an enumeration to a value which isn't in its enumerates");
      reportWarning(QString("--- setting %1 to %2").arg(class_->name()).arg(value));
      setPropertyValue(QString(""));
      return;
    }
    case PropertyType::HexInteger:
      setPropertyValue("0x" + QString::number(static_cast<uint32_t>(value), 16)
                                  .rightJustified(hexDigitsFor(class_->maximum()), u'0'));
      return;
    case PropertyType::Integer:
    case PropertyType::BoundedInteger: setPropertyValue(QString::number(value)); return;
    default: reportWarning("PropertyValue::setValue(int): Setting a non-integer property");
  }
}

void PropertyValue::setValue(bool value) {
  if (class_->type() != PropertyType::Boolean) reportWarning("PropertyValue::setValue(int): Setting a non-Boolean property");
  setValue(value ? 1 : 0);
}

void PropertyValue::setValue(const QRect& rectangle) {
  setPropertyValue(
      QString("%1,%2,%3,%4").arg(rectangle.x()).arg(rectangle.y()).arg(rectangle.width()).arg(rectangle.height()));
}

SimplePropertyValue::SimplePropertyValue(const PropertyClass* propertyClass, const QString& value)
    : PropertyValue(propertyClass), value_(value) {}

PropertyValue* SimplePropertyValue::clone() const { return new SimplePropertyValue(propertyClass(), value_); }

PropertyValueList::~PropertyValueList() {
  if (autoDelete_)
    for (PropertyValue* value : values_) delete value;
}

PropertyValueList::PropertyValueList(PropertyValueList&& other) noexcept
    : values_(std::move(other.values_)), autoDelete_(other.autoDelete_) {
  other.values_.clear();
}

PropertyValueList& PropertyValueList::operator=(PropertyValueList&& other) noexcept {
  if (this != &other) {
    if (autoDelete_)
      for (PropertyValue* value : values_) delete value;
    values_ = std::move(other.values_);
    other.values_.clear();
    autoDelete_ = other.autoDelete_;
  }
  return *this;
}

void PropertyValueList::appendUnique(PropertyValue* value) {
  if (value == nullptr || value->propertyClass() == nullptr) {
    reportErrorMessage("Bad property value in PropertyValueList::appendUnique");
    return;
  }
  for (const PropertyValue* present : values_)
    if (present->propertyClass() == value->propertyClass()) return;
  values_.push_back(value);
}

void PropertyValueList::sort() {
  std::stable_sort(values_.begin(), values_.end(), [](const PropertyValue* a, const PropertyValue* b) {
    return a->propertyClass()->shortCaption() < b->propertyClass()->shortCaption();
  });
}

}  // namespace regmill
