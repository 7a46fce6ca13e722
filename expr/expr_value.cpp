#include "expr/expr_value.h"

#include <bit>
#include <cmath>
#include <limits>

#include "base/parse_number.h"
#include "expr/expr_object.h"

namespace regmill {

namespace {

int64_t signExtend(uint64_t bits, unsigned width) {
  unsigned shift = 64 - width;
  return static_cast<int64_t>(bits << shift) >> shift;
}

uint64_t maskToSize(uint64_t bits, uint32_t size) {
  switch (size) {
    case 1: return bits & 0xFFu;
    case 2: return bits & 0xFFFFu;
    case 4: return bits & 0xFFFFFFFFu;
    default: return bits;
  }
}

// Truncates toward zero. A NaN reads as 0 and a value beyond the 64-bit range as
// the nearest end of it, so that no float converts to an undefined integer.
int64_t truncateToSigned(double value) {
  if (std::isnan(value)) return 0;
  if (value >= 9223372036854775808.0) return std::numeric_limits<int64_t>::max();
  if (value < -9223372036854775808.0) return std::numeric_limits<int64_t>::min();
  return static_cast<int64_t>(value);
}

// The single-precision form of a double; a finite value beyond its range becomes
// an infinity of the same sign.
float toSingle(double value) {
  constexpr double largest = std::numeric_limits<float>::max();
  if (value > largest) return std::numeric_limits<float>::infinity();
  if (value < -largest) return -std::numeric_limits<float>::infinity();
  return static_cast<float>(value);
}

}  // namespace

ExprValue ExprValue::makeBool(bool value) {
  ExprValue result;
  result.kind = ExprKind::Bool;
  result.payload = value ? 1 : 0;
  result.size = 0;
  return result;
}

ExprValue ExprValue::makeSigned(int64_t value, uint32_t size) {
  ExprValue result;
  result.kind = ExprKind::Signed;
  result.payload = static_cast<uint64_t>(value);
  result.size = size;
  return result;
}

ExprValue ExprValue::makeUnsigned(uint64_t value, uint32_t size) {
  ExprValue result;
  result.kind = ExprKind::Unsigned;
  result.payload = value;
  result.size = size;
  return result;
}

ExprValue ExprValue::makeFloat(double value, uint32_t size) {
  ExprValue result;
  result.kind = ExprKind::Float;
  result.setFloatValue(value);
  result.size = size;
  return result;
}

ExprValue ExprValue::makeString(const QString& text) {
  ExprValue result;
  result.kind = ExprKind::String;
  result.size = 0;
  result.text = text;
  return result;
}

ExprValue ExprValue::makeObject(ExprObject* object) {
  ExprValue result;
  result.kind = ExprKind::Object;
  result.object = std::shared_ptr<ExprObject>(object, [](ExprObject*) {});
  return result;
}

double ExprValue::floatValue() const { return std::bit_cast<double>(payload); }

void ExprValue::setFloatValue(double value) { payload = std::bit_cast<uint64_t>(value); }

int64_t ExprValue::asSigned() const {
  switch (kind) {
    case ExprKind::Bool:
      return boolValue() ? 1 : 0;
    case ExprKind::Signed:
    case ExprKind::Unsigned:
      if (bitWidth != 0) return bitWidth < 64 ? signExtend(payload, bitWidth) : static_cast<int64_t>(payload);
      if (size == 1 || size == 2 || size == 4) return signExtend(payload, size * 8);
      return static_cast<int64_t>(payload);
    case ExprKind::String:
      return static_cast<int64_t>(payload);
    case ExprKind::Float:
      return truncateToSigned(floatValue());
    default:
      return 0;
  }
}

uint64_t ExprValue::asUnsigned() const {
  switch (kind) {
    case ExprKind::Bool:
      return boolValue() ? 1 : 0;
    case ExprKind::Signed:
    case ExprKind::Unsigned:
      return maskToSize(payload, size);
    case ExprKind::Float:
      if (size == 8) return payload;
      if (size == 4) return std::bit_cast<uint32_t>(toSingle(floatValue()));
      return 0;
    default:
      return 0;
  }
}

double ExprValue::asFloat() const {
  switch (kind) {
    case ExprKind::Bool: return boolValue() ? 1.0 : 0.0;
    case ExprKind::Signed: return static_cast<double>(asSigned());
    case ExprKind::Unsigned: return static_cast<double>(asUnsigned());
    case ExprKind::Float: return floatValue();
    default: return 0.0;
  }
}

bool ExprValue::equals(const ExprValue& other) const {
  if (kind != other.kind) return false;
  switch (kind) {
    case ExprKind::Bool: return boolValue() == other.boolValue();
    case ExprKind::Signed:
    case ExprKind::Unsigned: return size == other.size && payload == other.payload;
    case ExprKind::String: return text == other.text;
    case ExprKind::Object:
      if (!object || !other.object) return object == other.object;
      return object->equals(*other.object);
    case ExprKind::Float: return size == other.size && floatValue() == other.floatValue();
    case ExprKind::None: return true;
  }
  return false;
}

ExprValue ExprValue::fromText(const ExprValue& model, const QString& text) {
  ExprValue result;
  result.kind = model.kind;
  result.size = model.size;
  result.bitWidth = model.bitWidth;
  switch (model.kind) {
    case ExprKind::Bool:
      // Only the two words set it; any other text leaves it false.
      if (text == QLatin1String("true")) result.payload = 1;
      break;
    case ExprKind::Signed:
    case ExprKind::Unsigned: {
      QByteArray bytes = text.toUtf8();
      result.payload = static_cast<uint64_t>(parseNumber64(std::string_view(bytes.constData(), bytes.size())));
      break;
    }
    case ExprKind::String:
      result.text = text;
      break;
    case ExprKind::Object:
      result.object = model.object;
      if (result.object) result.object->setFromText(text);
      break;
    case ExprKind::Float:
      result.setFloatValue(text.toDouble());
      break;
    case ExprKind::None:
      break;
  }
  return result;
}

ExprValue dereferenced(const ExprValue& value) {
  if (value.kind == ExprKind::Object && value.object) return value.object->value();
  return value;
}

}  // namespace regmill
