// ExprValue: what an expression computes. A small value type, copied freely: a
// kind, 64 bits of payload, a width in bytes, a bit-field width and a text. An
// Object value holds a shared handle on an object that its parser owns.
#pragma once
#include <QString>
#include <cstdint>
#include <memory>

namespace regmill {

class ExprObject;

enum class ExprKind : uint32_t {
  Bool = 0,
  Signed = 1,
  Unsigned = 2,
  String = 3,
  Object = 4,
  Float = 5,
  None = 6,
};

struct ExprValue {
  ExprKind kind = ExprKind::None;
  // A bool in the low byte, the integer's bits, or the bits of a double.
  uint64_t payload = 0;
  uint32_t size = 2;
  uint32_t bitWidth = 0;
  QString text;
  std::shared_ptr<ExprObject> object;

  static ExprValue makeBool(bool value);
  static ExprValue makeSigned(int64_t value, uint32_t size = 8);
  static ExprValue makeUnsigned(uint64_t value, uint32_t size = 8);
  static ExprValue makeFloat(double value, uint32_t size = 8);
  static ExprValue makeString(const QString& text);
  // A new handle on an object the parser keeps; dropping the handle never frees it.
  static ExprValue makeObject(ExprObject* object);

  bool boolValue() const { return (payload & 0xFF) != 0; }
  double floatValue() const;
  void setFloatValue(double value);

  // The payload as a signed integer: sign-extended from the bit-field width, else
  // from a size of 1, 2 or 4 bytes; floats truncate toward zero.
  int64_t asSigned() const;
  // The payload as an unsigned integer: masked by a size of 1, 2 or 4; a float
  // gives the bits of its double (size 8) or single (size 4) form.
  uint64_t asUnsigned() const;
  double asFloat() const;

  // Same kind and same value; floats compare numerically, so NaN differs from itself.
  bool equals(const ExprValue& other) const;

  // A value shaped like model (kind, size, bit width) read from text.
  static ExprValue fromText(const ExprValue& model, const QString& text);
};

// An Object operand replaced by what its object holds; any other value as it is.
ExprValue dereferenced(const ExprValue& value);

}  // namespace regmill
