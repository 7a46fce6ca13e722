#include "script/es_native_string.h"

#include <QStringList>
#include <algorithm>
#include <cmath>

#include "script/es_native.h"

namespace regmill::script {

namespace {

enum StringId : int32_t {
  Constructor = 0,
  FromCharCode = 1,
  ToString = 2,
  ValueOf = 3,
  CharAt = 4,
  CharCodeAt = 5,
  Concat = 6,
  IndexOf = 7,
  LastIndexOf = 8,
  LocaleCompare = 9,
  Match = 10,
  Replace = 11,
  Search = 12,
  Slice = 13,
  Split = 14,
  Substring = 15,
  ToLowerCase = 16,
  ToLocaleLowerCase = 17,
  ToUpperCase = 18,
  ToLocaleUpperCase = 19,
  Trim = 20,
};

// Strings are interned for ever, so a result beyond the engine's bound is refused
// before it is built, as a concatenation is.
void checkLength(ESContext& context, qint64 length) {
  if (length > ESContext::kMaxStringLength) context.raiseRangeError(QStringLiteral("string too long"));
}

// A bound of slice or substring as a position in a text of `length` units. The
// infinities are limited to the 32-bit range first; a negative bound counts from
// the end for slice and is 0 for substring.
qsizetype clampBound(ESContext& context, ESValue bound, qsizetype length, bool negativeFromEnd) {
  double position = std::clamp(context.toInteger(bound), -2147483648.0, 2147483647.0);
  if (position < 0) position = negativeFromEnd ? std::max(0.0, double(length) + position) : 0.0;
  return qsizetype(std::min(position, double(length)));
}

// Where a search starts: ToInteger, at least 0, and never past the end plus one,
// beyond which no search can succeed.
qsizetype searchStart(ESContext& context, ESValue start, qsizetype length, double whenUndefined) {
  double position = start.isUndefined() ? whenUndefined : std::max(0.0, context.toInteger(start));
  return qsizetype(std::min(position, double(length) + 1));
}

QString replaceAll(ESContext& context, QString text, const QString& before, const QString& after) {
  // An empty text to replace matches before every unit and at the end.
  qint64 matches = before.isEmpty() ? text.size() + 1 : 0;
  if (!before.isEmpty())
    for (qsizetype at = text.indexOf(before); at >= 0; at = text.indexOf(before, at + before.size())) ++matches;
  checkLength(context, text.size() + matches * (after.size() - before.size()));
  return text.replace(before, after);
}

ESValue splitIntoArray(ESContext& context, const QString& text, const QString& separator) {
  const QStringList parts = text.split(separator, Qt::KeepEmptyParts, Qt::CaseSensitive);
  ESObject* array = context.newArray();
  ESEngine& engine = context.engine();
  // The elements are new slots in index order; `length` is set once at the end.
  for (qsizetype i = 0; i < parts.size(); ++i)
    array->append(engine.indexAtom(uint64_t(i)), 0, stringValue(context, parts[i]));
  array->klass->put(context, array, engine.names().length, ESValue::fromNumber(double(parts.size())));
  return ESValue::fromObject(array);
}

}  // namespace

void ESNativeString::initialise(ESContext& context) {
  ESObject* prototype = context.stringPrototype();
  ESObject* constructor = defineNativeConstructor(context, this, "String", 1, prototype);
  defineNativeFunctions(context, constructor, this, "String.", {{"fromCharCode", 0, FromCharCode}});
  defineNativeFunctions(context, prototype, this, "String.prototype.",
                        {{"toString", 0, ToString},
                         {"valueOf", 0, ValueOf},
                         {"charAt", 1, CharAt},
                         {"charCodeAt", 1, CharCodeAt},
                         {"concat", 0, Concat},
                         {"indexOf", 2, IndexOf},
                         {"lastIndexOf", 2, LastIndexOf},
                         {"localeCompare", 1, LocaleCompare},
                         {"match", 1, Match},
                         {"replace", 2, Replace},
                         {"search", 1, Search},
                         {"slice", 2, Slice},
                         {"split", 2, Split},
                         {"substring", 2, Substring},
                         {"toLowerCase", 0, ToLowerCase},
                         {"toLocaleLowerCase", 0, ToLocaleLowerCase},
                         {"toUpperCase", 0, ToUpperCase},
                         {"toLocaleUpperCase", 0, ToLocaleUpperCase},
                         {"trim", 0, Trim}});
  nativeToString_ = ESClass::get(context, prototype, context.engine().names().toString).object;
}

bool ESNativeString::isStringObject(const ESObject* object) const {
  return object != nullptr && object->klass == this && object->call == nullptr && object->value.isString();
}

ESValue ESNativeString::get(ESContext& context, ESObject* object, ESAtom* name) {
  if (name == context.engine().names().length && isStringObject(object))
    return ESValue::fromNumber(double(object->value.text().size()));
  return ESClass::get(context, object, name);
}

void ESNativeString::put(ESContext& context, ESObject* object, ESAtom* name, ESValue value) {
  if (name == context.engine().names().length && isStringObject(object)) return;
  ESClass::put(context, object, name, value);
}

ESObject* ESNativeString::construct(ESContext& context, ESObject* function, int32_t argumentCount,
                                    ESValue* arguments) {
  if (function->builtinId != Constructor) raiseBadConstruct(context);
  ESObject* wrapper = context.newObject(context.stringPrototype(), this);
  // Without an argument the text is "undefined", as for a call.
  wrapper->value = context.toStringValue(argumentCount > 0 ? arguments[0] : ESValue());
  return wrapper;
}

QString ESNativeString::receiverText(ESContext& context, ESObject* thisObject) {
  if (thisObject == nullptr) return QStringLiteral("undefined");
  // A String object whose toString is still the built-in one converts to its own
  // text; the full conversion would call that method from here.
  if (isStringObject(thisObject)) {
    ESValue method = get(context, thisObject, context.engine().names().toString);
    if (method.isObject() && method.object == nativeToString_) return thisObject->value.text();
  }
  return context.toString(ESValue::fromObject(thisObject));
}

void ESNativeString::call(ESContext& context, ESObject* function, ESObject* thisObject, int32_t argumentCount,
                          ESValue* arguments) {
  const int32_t id = function->builtinId;
  switch (id) {
    case Constructor:
      arguments[0] = context.toStringValue(arguments[0]);  // padded: no argument reads undefined
      return;
    case FromCharCode: {
      QString text(argumentCount, Qt::Uninitialized);
      for (int32_t i = 0; i < argumentCount; ++i) text[i] = QChar(context.toUint16(arguments[i]));
      arguments[0] = stringValue(context, text);
      return;
    }
    case ToString:
    case ValueOf:
      if (!isStringObject(thisObject))
        context.raiseTypeError(id == ToString ? QStringLiteral("String.prototype.toString called on non-String object")
                                              : QStringLiteral("String.prototype.valueOf called on non-String object"));
      arguments[0] = thisObject->value;
      return;
    default:
      if (id < CharAt || id > Trim) raiseBadCall(context);
      arguments[0] = callMethod(context, id, receiverText(context, thisObject), argumentCount, arguments);
  }
}

ESValue ESNativeString::callMethod(ESContext& context, int32_t id, const QString& text, int32_t argumentCount,
                                   const ESValue* arguments) {
  const qsizetype length = text.size();
  switch (id) {
    case CharAt:
    case CharCodeAt: {
      double position = context.toInteger(arguments[0]);
      bool inside = position >= 0 && position < double(length);
      if (id == CharAt) return stringValue(context, inside ? QString(text[qsizetype(position)]) : QString());
      return ESValue::fromNumber(inside ? double(text[qsizetype(position)].unicode()) : std::nan(""));
    }
    case Concat: {
      QString result = text;
      for (int32_t i = 0; i < argumentCount; ++i) {
        QString part = context.toString(arguments[i]);
        checkLength(context, qint64(result.size()) + part.size());
        result += part;
      }
      return stringValue(context, result);
    }
    case IndexOf: {
      QString needle = context.toString(arguments[0]);
      return ESValue::fromNumber(double(text.indexOf(needle, searchStart(context, arguments[1], length, 0))));
    }
    case LastIndexOf: {
      QString needle = context.toString(arguments[0]);
      // The search starts at the end at the latest: from further on, Qt finds
      // nothing at all for a needle longer than one unit.
      qsizetype start = std::min(searchStart(context, arguments[1], length, 2147483647.0), length);
      return ESValue::fromNumber(double(text.lastIndexOf(needle, start)));
    }
    case LocaleCompare:
      return ESValue::fromNumber(double(text.localeAwareCompare(context.toString(arguments[0]))));
    case Match:
      return ESValue();
    case Replace: {
      QString before = context.toString(arguments[0]);
      QString after = context.toString(arguments[1]);
      return stringValue(context, replaceAll(context, text, before, after));
    }
    case Search:
      return ESValue::fromNumber(double(text.indexOf(context.toString(arguments[0]))));
    case Slice:
    case Substring: {
      bool slice = id == Slice;
      qsizetype start = clampBound(context, arguments[0], length, slice);
      qsizetype end = arguments[1].isUndefined() ? length : clampBound(context, arguments[1], length, slice);
      if (!slice && end < start) std::swap(start, end);
      return stringValue(context, end > start ? text.mid(start, end - start) : QString());
    }
    case Split:
      return splitIntoArray(context, text, context.toString(arguments[0]));
    case ToLowerCase:
    case ToLocaleLowerCase:
      return stringValue(context, text.toLower());
    case ToUpperCase:
    case ToLocaleUpperCase:
      return stringValue(context, text.toUpper());
    case Trim:
      return stringValue(context, text.simplified());
    default:
      raiseBadCall(context);
  }
}

}  // namespace regmill::script
