#include "script/es_context.h"

#include <QStringList>
#include <cmath>
#include <cstdlib>
#include <sys/mman.h>

#include "base/text.h"
#include "script/es_compiler.h"
#include "script/es_native_array.h"
#include "script/es_native_date.h"
#include "script/es_native_error.h"
#include "script/es_native_global.h"
#include "script/es_native_math.h"
#include "script/es_native_number.h"
#include "script/es_native_object.h"
#include "script/es_native_string.h"

namespace regmill::script {

namespace {

constexpr size_t kStackBytes = size_t(ESContext::kStackSize) * sizeof(ESValue);

}  // namespace

ESContext::ESContext(std::shared_ptr<ESEngine> engine)
    : engine_(engine ? std::move(engine) : std::make_shared<ESEngine>()) {}

ESContext::~ESContext() {
  if (stack_ != nullptr) munmap(stack_, kStackBytes);
}

void ESContext::setUp() {
  if (stack_ != nullptr) return;
  // Mapped pages read as zero bits, which are the undefined value, and cost no
  // memory until a script reaches them.
  void* pages = mmap(nullptr, kStackBytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (pages == MAP_FAILED) throw std::bad_alloc();
  stack_ = static_cast<ESValue*>(pages);
  sp_ = stack_;
  stackLimit_ = stack_ + kStackSize - 4096;  // the rest is room to build the overflow's error
  createClasses();
  createPrototypes();
  initialiseClasses();
  thisObject_ = global_;
}

void ESContext::createClasses() {
  auto addClass = [this](auto klass) {
    auto* raw = klass.get();
    classes_.push_back(std::move(klass));
    return raw;
  };
  objectClass_ = addClass(std::make_unique<ESNativeObject>());
  functionClass_ = addClass(std::make_unique<ESNativeFunction>());
  arrayClass_ = addClass(std::make_unique<ESNativeArray>());
  stringClass_ = addClass(std::make_unique<ESNativeString>());
  numberClass_ = addClass(std::make_unique<ESNativeNumber>());
  booleanClass_ = addClass(std::make_unique<ESNativeBoolean>());
  dateClass_ = addClass(std::make_unique<ESNativeDate>());
  globalClass_ = nativeGlobal_ = addClass(std::make_unique<ESNativeGlobal>());
  activationClass_ = addClass(std::make_unique<ESClass>("activation"));
  errorClass_ = addClass(std::make_unique<ESNativeError>());
  rangeErrorClass_ = addClass(std::make_unique<ESNativeRangeError>());
  referenceErrorClass_ = addClass(std::make_unique<ESNativeReferenceError>());
  syntaxErrorClass_ = addClass(std::make_unique<ESNativeSyntaxError>());
  typeErrorClass_ = addClass(std::make_unique<ESNativeTypeError>());
  evalErrorClass_ = addClass(std::make_unique<ESNativeEvalError>());
  mathClass_ = addClass(std::make_unique<ESNativeMath>());
}

void ESContext::createPrototypes() {
  const ESEngine::Names& names = engine_->names();
  objectPrototype_ = newObject(nullptr, objectClass_);
  functionPrototype_ = newObject(objectPrototype_, functionClass_);
  functionPrototype_->call = newFunctionInfo();
  functionPrototype_->builtinId = ESNativeFunction::kPrototypeId;
  functionPrototype_->value = ESValue::fromAtom(engine_->intern(QStringLiteral("Function.prototype")));
  functionPrototype_->append(names.length, 0, ESValue::fromNumber(0));
  arrayPrototype_ = newObject(objectPrototype_, arrayClass_);
  arrayPrototype_->append(names.length, 0, ESValue::fromNumber(0));
  stringPrototype_ = newObject(objectPrototype_, stringClass_);
  stringPrototype_->value = ESValue::fromAtom(engine_->intern(QString()));
  numberPrototype_ = newObject(objectPrototype_, numberClass_);
  numberPrototype_->value = ESValue::fromNumber(0);
  booleanPrototype_ = newObject(objectPrototype_, booleanClass_);
  booleanPrototype_->value = ESValue::boolean(false);
  booleanPrototype_->append(names.length, 0, ESValue::fromNumber(1));
  datePrototype_ = newObject(objectPrototype_, dateClass_);
  datePrototype_->value = ESValue::fromNumber(std::nan(""));
  datePrototype_->append(names.length, 0, ESValue::fromNumber(7));
  global_ = newObject(objectPrototype_, globalClass_);
  global_->value = ESValue::owned(ownString(QStringLiteral("[object global]")));
}

// The order is that of the built-ins' definitions, which fixes the order of the
// global object's properties and of the names' atoms.
void ESContext::initialiseClasses() {
  static_cast<ESNativeObject*>(objectClass_)->initialise(*this);
  static_cast<ESNativeBoolean*>(booleanClass_)->initialise(*this);
  static_cast<ESNativeArray*>(arrayClass_)->initialise(*this);
  nativeGlobal_->initialise(*this);
  auto* error = static_cast<ESNativeError*>(errorClass_);
  error->initialise(*this, nullptr);
  errorPrototype_ = error->prototype();
  errorConstructor_ = error->constructor();
  for (ESClass* type : {rangeErrorClass_, referenceErrorClass_, syntaxErrorClass_, typeErrorClass_, evalErrorClass_})
    static_cast<ESNativeError*>(type)->initialise(*this, error);
  rangeErrorConstructor_ = static_cast<ESNativeError*>(rangeErrorClass_)->constructor();
  syntaxErrorConstructor_ = static_cast<ESNativeError*>(syntaxErrorClass_)->constructor();
  typeErrorConstructor_ = static_cast<ESNativeError*>(typeErrorClass_)->constructor();
  static_cast<ESNativeNumber*>(numberClass_)->initialise(*this);
  static_cast<ESNativeMath*>(mathClass_)->initialise(*this);
  static_cast<ESNativeString*>(stringClass_)->initialise(*this);
  static_cast<ESNativeFunction*>(functionClass_)->initialise(*this);
  static_cast<ESNativeDate*>(dateClass_)->initialise(*this);
}

void ESContext::addLoadDirectory(const QString& directory) { nativeGlobal_->addSearchDirectory(directory); }

ESObject* ESContext::compileFunction(const QString& parameters, const QString& body) {
  ESCompiler compiler(*this);
  return makeClosure(compiler.compileFunction(parameters, body));
}

ESObject* ESContext::allocate() {
  if (freeObjects_ == nullptr) {
    batches_.push_back(std::make_unique<ESObject[]>(64));
    ESObject* batch = batches_.back().get();
    for (int i = 63; i >= 0; --i) {
      batch[i].nextFree = freeObjects_;
      freeObjects_ = &batch[i];
    }
  }
  ESObject* object = freeObjects_;
  freeObjects_ = object->nextFree;
  object->nextFree = nullptr;
  return object;
}

void ESContext::recycle(ESObject* record) {
  // A record back on the free list is emptied but keeps its slot storage for reuse.
  record->prototype = nullptr;
  record->value = ESValue();
  record->call = record->construct = nullptr;
  record->klass = nullptr;
  record->builtinId = -1;
  record->captured = false;
  record->resetSlots(0);
  record->nextFree = freeObjects_;
  freeObjects_ = record;
}

ESObject* ESContext::newObject(ESObject* prototype, ESClass* klass) {
  ESObject* object = allocate();
  object->prototype = prototype;
  object->klass = klass;
  return object;
}

ESObject* ESContext::newArray() {
  ESObject* array = newObject(arrayPrototype_, arrayClass_);
  array->append(engine_->names().length, 0, ESValue::fromNumber(0));
  return array;
}

ESFunctionInfo* ESContext::newFunctionInfo() { return &functionInfos_.emplace_back(); }

QString* ESContext::ownString(const QString& text) { return &ownedStrings_.emplace_back(text); }

ESBuiltinDef ESContext::builtinDef(const QString& name, const QString& fullName, int32_t length, int32_t builtinId,
                                   bool isConstructor) {
  ESBuiltinDef definition;
  definition.name = engine_->intern(name);
  definition.fullName = engine_->intern(fullName);
  definition.length = length;
  definition.builtinId = builtinId;
  definition.isConstructor = isConstructor;
  return definition;
}

ESObject* ESContext::defineBuiltin(ESObject* target, ESClass* klass, const ESBuiltinDef& definition,
                                   ESObject* prototype) {
  const ESEngine::Names& names = engine_->names();
  ESObject* function = newObject(functionPrototype_, klass);
  function->call = newFunctionInfo();
  function->call->paramCount = definition.length;
  function->builtinId = definition.builtinId;
  function->value = ESValue::fromAtom(definition.fullName);
  function->append(names.length, 0, ESValue::fromNumber(definition.length));
  if (!definition.help.isEmpty())
    function->append(engine_->intern(QStringLiteral("help")), 0, ESValue::fromAtom(engine_->intern(definition.help)));
  if (definition.isConstructor) {
    function->construct = function->call;
    target = global_;
    if (prototype != nullptr) {
      function->append(names.prototype, 0, ESValue::fromObject(prototype));
      prototype->klass->put(*this, prototype, names.constructor, ESValue::fromObject(function));
    }
  }
  target->klass->put(*this, target, definition.name, ESValue::fromObject(function));
  return function;
}

ESObject* ESContext::defineFunction(ESObject* target, const QString& name, ESClass* klass, int32_t length,
                                    int32_t builtinId) {
  return defineBuiltin(target, klass, builtinDef(name, name, length, builtinId));
}

ESObject* ESContext::defineConstructor(const QString& name, ESClass* klass, int32_t length, ESObject* prototype) {
  return defineBuiltin(global_, klass, builtinDef(name, name, length, 0, true), prototype);
}

uint32_t ESContext::registerFunction(std::unique_ptr<ESCode> code) {
  functions_.push_back(std::move(code));
  return uint32_t(functions_.size() - 1);
}

uint32_t ESContext::currentLine() const {
  if (currentCode_ == nullptr || currentPc_ == nullptr) return 0;
  size_t offset = size_t(currentPc_ - currentCode_->bytes.data());
  return offset < currentCode_->lines.size() ? currentCode_->lines[offset] : 0;
}

void ESContext::raise(ESObject* constructor, const QString& message, uint32_t line) {
  if (line == 0) line = currentLine();
  // Building the error may itself need the stack's reserve.
  ESValue* limit = stackLimit_;
  stackLimit_ = stack_ + kStackSize - 16;
  ESValue text = ESValue::fromAtom(engine_->intern(message));
  ESObject* error = construct(constructor, 1, &text);
  const ESEngine::Names& names = engine_->names();
  if (!fileName_.isEmpty())
    error->klass->put(*this, error, names.fileName, ESValue::fromAtom(engine_->intern(fileName_)));
  if (line >= 1) {
    // The line's text without splitting the whole source.
    qsizetype start = 0;
    uint32_t current = 1;
    while (current < line && start >= 0) {
      start = source_.indexOf(QLatin1Char('\n'), start);
      if (start >= 0) ++start;
      ++current;
    }
    if (start >= 0) {
      qsizetype end = source_.indexOf(QLatin1Char('\n'), start);
      QString sourceLine = source_.mid(start, end < 0 ? -1 : end - start);
      error->klass->put(*this, error, names.lineNumber, ESValue::fromNumber(line));
      error->klass->put(*this, error, names.sourceLine, ESValue::fromAtom(engine_->intern(sourceLine)));
    }
  }
  stackLimit_ = limit;
  throw ESException{ESValue::fromObject(error)};
}

bool ESContext::isError(ESValue value) const {
  return value.isObject() && isPrototypeOf(errorPrototype_, value.object);
}

void ESContext::resetMachine() {
  sp_ = stack_;
  scope_ = nullptr;
  activation_ = nullptr;
  thisObject_ = global_;
  arguments_ = stack_;
  argumentCount_ = 0;
  currentCode_ = nullptr;
  currentPc_ = nullptr;
  callDepth_ = 0;
}

std::unique_ptr<ESCode> ESContext::compileProgram(const QString& fileName, const QString& source) {
  setUp();  // does nothing when done
  fileName_ = fileName;
  source_ = source;
  ESCompiler compiler(*this);
  return compiler.compileProgram(source);
}

ESEvaluation ESContext::evaluate(const QString& fileName, const QString& source) {
  ESEvaluation result;
  try {
    std::unique_ptr<ESCode> program = compileProgram(fileName, source);
    result.value = runProgram(*program);
  } catch (const ESException& thrown) {
    result.status = ESEvaluation::ScriptError;
    result.value = thrown.value;
  }
  return result;
}

// ---- Conversions ----

ESValue ESContext::toPrimitive(ESValue value, ESTag hint) {
  if (!value.isObject()) return value;
  if (value.object == global_) return global_->value;
  ESValue result = defaultValue(value.object, hint);
  if (result.isObject()) throw ESFatalError{QStringLiteral("bad type in toPrimitive")};
  return result;
}

ESValue ESContext::defaultValue(ESObject* object, ESTag hint) {
  const ESEngine::Names& names = engine_->names();
  bool stringFirst = hint == ESTag::OwnedString || (hint == ESTag::None && object->klass == dateClass_);
  ESAtom* order[2] = {names.valueOf, names.toString};
  if (stringFirst) std::swap(order[0], order[1]);
  for (ESAtom* name : order) {
    ESValue method = object->klass->get(*this, object, name);
    if (!method.isObject() || method.object->call == nullptr) continue;
    ESValue result = callFunction(method.object, object, 0, nullptr);
    // Undefined is no answer here; null is.
    if (!result.isUndefined() && !result.isObject()) return result;
  }
  raiseTypeError(QStringLiteral("type error: no default value"));
}

bool ESContext::toBoolean(ESValue value) {
  switch (value.tag) {
    case ESTag::Undefined:
    case ESTag::Null:
      return false;
    case ESTag::Boolean:
    case ESTag::Number:
      return value.number != 0.0;  // NaN is true
    case ESTag::Atom:
    case ESTag::OwnedString:
      return !value.text().isEmpty();
    case ESTag::Object:
      return true;
    default:
      throw ESFatalError{QStringLiteral("bad type in toBoolean")};
  }
}

namespace {

double stringToNumber(const QString& text) {
  QString trimmed = text.trimmed();
  if (trimmed.isEmpty()) return std::nan("");
  bool ok = false;
  if (trimmed.startsWith(QLatin1String("0x")) || trimmed.startsWith(QLatin1String("0X"))) {
    QStringView digits = QStringView(trimmed).mid(2);
    // Only hexadecimal digits: the conversion below would also take a sign or a second prefix.
    for (QChar c : digits)
      if (c.unicode() > 127 || !isHexDigitByte((unsigned char)c.unicode())) return std::nan("");
    uint value = digits.toUInt(&ok, 16);
    return ok ? double(value) : std::nan("");
  }
  // Qt 6 reads "inf" and "nan" as the special values; the language reads every word as NaN.
  for (QChar c : trimmed)
    if (c.isLetter() && c != u'e' && c != u'E') return std::nan("");
  double value = trimmed.toDouble(&ok);
  if (ok) return value;
  // Qt 6 refuses a number beyond the double range; it is an infinity.
  if (std::isinf(value)) return value;
  return std::nan("");
}

}  // namespace

double ESContext::toNumber(ESValue value) {
  switch (value.tag) {
    case ESTag::Undefined:
      return std::nan("");
    case ESTag::Null:
      return 0;
    case ESTag::Boolean:
    case ESTag::Number:
      return value.number;
    case ESTag::Atom:
    case ESTag::OwnedString:
      return stringToNumber(value.text());
    case ESTag::Object:
      return toNumber(toPrimitive(value, ESTag::Number));
    default:
      throw ESFatalError{QStringLiteral("bad type in toNumber")};
  }
}

double ESContext::toInteger(ESValue value) {
  double number = toNumber(value);
  if (std::isnan(number)) return 0;
  if (number == 0 || std::isinf(number)) return number;
  return number < 0 ? -std::floor(-number) : std::floor(number);
}

namespace {
uint32_t wrapToUint32(double number) {
  if (std::isnan(number) || std::isinf(number) || number == 0) return 0;
  double integer = number < 0 ? -std::floor(-number) : std::floor(number);
  double wrapped = std::fmod(integer, 4294967296.0);
  if (wrapped < 0) wrapped += 4294967296.0;
  return uint32_t(wrapped);
}
}  // namespace

int32_t ESContext::toInt32(ESValue value) {
  if (value.isNumber() && value.number >= -2147483648.0 && value.number <= 2147483647.0)
    return int32_t(value.number);  // truncation is the rule inside this range
  return int32_t(wrapToUint32(toNumber(value)));
}

uint32_t ESContext::toUint32(ESValue value) { return wrapToUint32(toNumber(value)); }

QString ESContext::numberToString(double number, int radix) {
  if (std::isnan(number)) return QStringLiteral("NaN");
  if (number == 0) return QStringLiteral("0");
  if (std::isinf(number)) return number < 0 ? QStringLiteral("-Infinity") : QStringLiteral("Infinity");
  if (radix < 2 || radix > 36) radix = 10;
  if (number != std::floor(number)) return QString::asprintf("%g", number);
  // Integers print in full. Beyond the 64-bit range the digits come from the double
  // itself (decimal only; another radix there prints the decimal form too).
  if (std::fabs(number) >= 9223372036854775808.0) return QString::asprintf("%.0f", number);
  int64_t integer = int64_t(number);
  if (radix == 10) return QString::number(integer);
  // Another radix prints the 64-bit two's complement pattern, without a sign.
  static const char kDigits[] = "0123456789abcdefghijklmnopqrstuvwxyz";
  uint64_t pattern = uint64_t(integer);
  char buffer[65];
  int position = 65;
  do {
    buffer[--position] = kDigits[pattern % unsigned(radix)];
    pattern /= unsigned(radix);
  } while (pattern != 0);
  return QString::fromLatin1(buffer + position, 65 - position);
}

QString ESContext::toString(ESValue value, int radix) {
  switch (value.tag) {
    case ESTag::Undefined:
      return QStringLiteral("undefined");
    case ESTag::Null:
      return QStringLiteral("null");
    case ESTag::Boolean:
      return value.number != 0.0 ? QStringLiteral("true") : QStringLiteral("false");
    case ESTag::Number:
      return numberToString(value.number, radix);
    case ESTag::Atom:
    case ESTag::OwnedString:
      return value.text();
    case ESTag::Object:
      return toString(toPrimitive(value, ESTag::OwnedString), radix);
    default:
      throw ESFatalError{QStringLiteral("unknown type in toString")};
  }
}

ESValue ESContext::toStringValue(ESValue value) {
  if (value.isString()) return value;
  return ESValue::fromAtom(engine_->intern(toString(value)));
}

ESObject* ESContext::toObject(ESValue value) {
  switch (value.tag) {
    case ESTag::Object:
      return value.object;
    case ESTag::Undefined:
      raiseTypeError(QStringLiteral("can't convert undefined to an object"));
    case ESTag::Null:
      raiseTypeError(QStringLiteral("can't convert null to an object"));
    case ESTag::Boolean: {
      ESObject* wrapper = newObject(booleanPrototype_, booleanClass_);
      wrapper->value = value;
      return wrapper;
    }
    case ESTag::Number: {
      ESObject* wrapper = newObject(numberPrototype_, numberClass_);
      wrapper->value = value;
      return wrapper;
    }
    case ESTag::Atom:
    case ESTag::OwnedString: {
      ESObject* wrapper = newObject(stringPrototype_, stringClass_);
      wrapper->value = value;
      return wrapper;
    }
    default:
      throw ESFatalError{QStringLiteral("unknown type in toObject")};
  }
}

ESAtom* ESContext::toKey(ESValue value) {
  if (value.tag == ESTag::Atom) return value.atom;
  // An array index takes the same atom as ToString gives, without formatting.
  if (value.tag == ESTag::Number && value.number >= 0 && value.number <= 2147483646 &&
      value.number == double(int32_t(value.number)))
    return engine_->indexAtom(uint64_t(value.number));
  if (value.tag == ESTag::OwnedString) return engine_->intern(*value.string);
  return engine_->intern(toString(value));
}

}  // namespace regmill::script
