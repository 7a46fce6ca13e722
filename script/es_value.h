// The values every part of the script engine passes around: a tag and an 8-byte
// payload, copied freely. Strings are interned atoms almost everywhere; an owned
// string (a QString the context keeps) appears only where the engine builds a
// transient text. Atoms and owned strings are one language type.
#pragma once
#include <QString>
#include <cstdint>

namespace regmill::script {

class ESObject;

enum class ESTag : uint32_t {
  Undefined = 0,
  Null = 1,
  Boolean = 2,      // payload 1.0 or 0.0
  Number = 3,
  OwnedString = 4,  // payload points to a QString the context owns
  Object = 5,
  None = 6,         // never stored: the "no preference" hint of ToPrimitive
  Atom = 7,         // payload points to an interned ESAtom
};

// An interned string. Two strings are equal exactly when their atoms are the same
// object, so property look-ups compare pointers and never text.
struct ESAtom {
  uint32_t index;      // position in the atom table, also the byte code operand
  QString text;
  int64_t arrayIndex;  // the number when `text` is a canonical decimal up to 2147483646, else -1
};

struct ESValue {
  ESTag tag = ESTag::Undefined;
  union {
    double number = 0;
    QString* string;
    ESObject* object;
    ESAtom* atom;
  };

  static ESValue undefined() { return ESValue(); }
  static ESValue null() { ESValue v; v.tag = ESTag::Null; return v; }
  static ESValue boolean(bool b) { ESValue v; v.tag = ESTag::Boolean; v.number = b ? 1.0 : 0.0; return v; }
  static ESValue fromNumber(double d) { ESValue v; v.tag = ESTag::Number; v.number = d; return v; }
  static ESValue fromAtom(ESAtom* a) { ESValue v; v.tag = ESTag::Atom; v.atom = a; return v; }
  static ESValue fromObject(ESObject* o) { ESValue v; v.tag = ESTag::Object; v.object = o; return v; }
  static ESValue owned(QString* s) { ESValue v; v.tag = ESTag::OwnedString; v.string = s; return v; }

  bool isUndefined() const { return tag == ESTag::Undefined; }
  bool isNull() const { return tag == ESTag::Null; }
  bool isNumber() const { return tag == ESTag::Number; }
  bool isBoolean() const { return tag == ESTag::Boolean; }
  bool isString() const { return tag == ESTag::Atom || tag == ESTag::OwnedString; }
  bool isObject() const { return tag == ESTag::Object; }
  // The text of either string form; only for isString().
  const QString& text() const { return tag == ESTag::Atom ? atom->text : *string; }
};

// Attribute bits of a property slot.
namespace ESAttribute {
constexpr uint32_t ReadOnly = 1;
constexpr uint32_t DontEnum = 2;
constexpr uint32_t DontDelete = 4;
constexpr uint32_t Parameter = 8;  // compile time only: a formal parameter
}  // namespace ESAttribute

struct ESProperty {
  ESAtom* name = nullptr;  // null in a deleted slot and in an activation's unnamed slots
  uint32_t attributes = 0;
  ESValue value;
};

}  // namespace regmill::script
