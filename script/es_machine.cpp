// The instruction loop, the call sequence, construction, and the operators.
#include <algorithm>
#include <cmath>

#include "script/es_context.h"

namespace regmill::script {

namespace {

inline uint32_t operandAt(const uint8_t* pc) { return (uint32_t(pc[0]) << 8) | pc[1]; }

// Script calls are native recursion too; this much native stack is all the calls of
// one outermost run may use, so that deep recursion is a script error, not a crash.
constexpr ptrdiff_t kNativeStackBudget = ptrdiff_t(3) << 20;

// Scope links made by `with` carry this id, so that only they are recycled at ENDWITH.
constexpr int32_t kWithLinkId = -2;

// Restores the registers of the calling function, also when an error unwinds.
struct SavedRegisters {
  ESObject*& scope;
  ESObject*& activation;
  ESObject*& thisObject;
  ESValue*& arguments;
  int32_t& argumentCount;
  int32_t& depth;
  ESObject* savedScope = scope;
  ESObject* savedActivation = activation;
  ESObject* savedThis = thisObject;
  ESValue* savedArguments = arguments;
  int32_t savedCount = argumentCount;
  ~SavedRegisters() {
    scope = savedScope;
    activation = savedActivation;
    thisObject = savedThis;
    arguments = savedArguments;
    argumentCount = savedCount;
    --depth;
  }
};

bool sameType(ESTag a, ESTag b) {
  auto normal = [](ESTag t) { return t == ESTag::Atom ? ESTag::OwnedString : t; };
  return normal(a) == normal(b);
}

// Equality of two values of one type.
bool equalSameType(ESValue left, ESValue right) {
  switch (left.tag) {
    case ESTag::Undefined:
    case ESTag::Null:
      return true;
    case ESTag::Boolean:
    case ESTag::Number:
      return left.number == right.number;
    case ESTag::Atom:
    case ESTag::OwnedString:
      if (left.tag == ESTag::Atom && right.tag == ESTag::Atom) return left.atom == right.atom;
      return left.text() == right.text();
    case ESTag::Object:
      return left.object == right.object;
    default:
      return false;
  }
}

}  // namespace

ESValue ESContext::runProgram(const ESCode& program) {
  if (callDepth_ == 0) {
    // An outermost run starts from a clean machine, so that an error in one program
    // does not leave the next one inside a dead function's scope.
    resetMachine();
    char probe;
    nativeStackBase_ = &probe;
  }
  return execute(program);
}

void ESContext::stackOverflow() { raiseRangeError(QStringLiteral("virtual machine stack too small")); }

void ESContext::checkNativeStack() {
  char probe;
  if (callDepth_ > kMaxCallDepth || (nativeStackBase_ != nullptr && nativeStackBase_ - &probe > kNativeStackBudget))
    raiseRangeError(QStringLiteral("script calls nested too deeply"));
}

ESObject* ESContext::lookupBase(ESAtom* name) {
  for (ESObject* link = scope_; link != nullptr; link = link->prototype) {
    ESObject* object = link->value.object;
    for (ESObject* o = object; o != nullptr; o = o->prototype)
      if (o->findOwn(name) >= 0) return object;
  }
  return global_;
}

void ESContext::captureScope() {
  for (ESObject* link = scope_; link != nullptr && !link->captured; link = link->prototype) link->captured = true;
}

ESValue ESContext::callFunction(ESObject* function, ESObject* thisObject, int32_t argumentCount,
                                const ESValue* arguments) {
  if (function == nullptr || function->call == nullptr)
    raiseTypeError(QStringLiteral("can only call function objects"));
  ensureStack(argumentCount + 1);
  std::copy(arguments, arguments + argumentCount, sp_);
  sp_ += argumentCount;
  callObject(function, thisObject, argumentCount);
  return *--sp_;
}

ESObject* ESContext::construct(ESObject* function, int32_t argumentCount, const ESValue* arguments) {
  ensureStack(argumentCount + 1);
  std::copy(arguments, arguments + argumentCount, sp_);
  sp_ += argumentCount;
  constructValue(ESValue::fromObject(function), argumentCount);
  return (--sp_)->object;
}

void ESContext::callValue(ESValue callee, ESObject* thisObject, int32_t argumentCount) {
  if (!callee.isObject() || callee.object->call == nullptr) raiseTypeError(QStringLiteral("not a function object"));
  callObject(callee.object, thisObject, argumentCount);
}

// The arguments lie on top of the stack; they are replaced by the result.
void ESContext::callObject(ESObject* function, ESObject* thisObject, int32_t argumentCount) {
  const ESFunctionInfo* info = function->call;
  ++callDepth_;
  SavedRegisters saved{scope_, activation_, thisObject_, arguments_, argumentCount_, callDepth_};
  checkNativeStack();
  ensureStack(info->paramCount + info->localCount + 1);
  while (argumentCount < info->paramCount) {
    *sp_++ = ESValue();
    ++argumentCount;
  }
  ESValue* arguments = sp_ - argumentCount;
  if (function->builtinId >= 0 || info->code == nullptr) {
    if (argumentCount == 0) *sp_ = ESValue();  // the result slot exists even without arguments
    if (info->code == nullptr && function->builtinId >= 0)
      function->klass->call(*this, function, thisObject, argumentCount, arguments);
    else
      arguments[0] = ESValue();
    ESValue result = arguments[0];
    sp_ = arguments;
    *sp_++ = result;
    return;
  }
  const ESCode& code = *info->code;
  arguments_ = arguments;
  argumentCount_ = argumentCount;
  scope_ = info->scope;
  ESObject* link = nullptr;
  if (code.needsActivation) {
    ESObject* activation = newObject(nullptr, activationClass_);
    activation->resetSlots(size_t(argumentCount) + size_t(code.localCount));
    for (int32_t i = 0; i < argumentCount; ++i) {
      ESProperty& slot = activation->slot(size_t(i));
      if (i < code.paramCount) {
        slot.name = code.variables[size_t(i)].name;
        slot.attributes = code.variables[size_t(i)].attributes;
      } else {
        slot.attributes = ESAttribute::DontEnum;
      }
      slot.value = arguments[i];
    }
    for (int32_t i = 0; i < code.localCount; ++i) {
      ESProperty& slot = activation->slot(size_t(argumentCount + i));
      slot.name = code.variables[size_t(code.paramCount + i)].name;
      slot.attributes = code.variables[size_t(code.paramCount + i)].attributes;
    }
    link = allocate();
    link->prototype = scope_;
    link->value = ESValue::fromObject(activation);
    scope_ = link;
    activation_ = activation;
  } else {
    for (int32_t i = 0; i < code.localCount; ++i) *sp_++ = ESValue();
    activation_ = nullptr;
  }
  thisObject_ = thisObject;
  ESValue result = execute(code);
  // (activation_ is still this call's own here: the registers are restored below.)
  // Nothing can reach an activation that no closure captured and that never became
  // `this`: its two records go back to the free list.
  if (link != nullptr && !link->captured && !activation_->captured) {
    recycle(activation_);
    recycle(link);
  }
  sp_ = arguments;
  *sp_++ = result;
}

// The callee on top of the stack, its arguments below; both are replaced by the new object.
void ESContext::constructValue(ESValue callee, int32_t argumentCount) {
  if (!callee.isObject() || callee.object->construct == nullptr)
    raiseTypeError(QStringLiteral("new must be given a constructor object"));
  ESObject* function = callee.object;
  ESValue* arguments = sp_ - argumentCount;
  ESObject* made = nullptr;
  if (function->builtinId >= 0) {
    ensureStack(1);
    if (argumentCount == 0) *sp_ = ESValue();
    made = function->klass->construct(*this, function, argumentCount, arguments);
  } else {
    ESValue prototype = function->klass->get(*this, function, engine_->names().prototype);
    ESObject* object = newObject(prototype.isObject() ? prototype.object : objectPrototype_, objectClass_);
    callObject(function, object, argumentCount);
    ESValue result = *--sp_;
    made = result.isObject() ? result.object : object;
  }
  if (made == nullptr) raiseError(toString(function->value) + QStringLiteral(" failed to generate an object"));
  sp_ = arguments;
  *sp_++ = ESValue::fromObject(made);
}

// ---- Operators ----

ESValue ESContext::add(ESValue left, ESValue right) {
  left = toPrimitive(left, ESTag::None);
  right = toPrimitive(right, ESTag::None);
  if (left.isString() || right.isString()) {
    QString leftText = toString(left), rightText = toString(right);
    if (leftText.size() + rightText.size() > kMaxStringLength) raiseRangeError(QStringLiteral("string too long"));
    return ESValue::fromAtom(engine_->intern(leftText + rightText));
  }
  return ESValue::fromNumber(toNumber(left) + toNumber(right));
}

ESValue ESContext::arithmetic(Op op, ESValue left, ESValue right) {
  switch (op) {
    case Op::ADD:
      return add(left, right);
    case Op::SUB:
      return ESValue::fromNumber(toNumber(left) - toNumber(right));
    case Op::MUL:
      return ESValue::fromNumber(toNumber(left) * toNumber(right));
    case Op::DIV:
      return ESValue::fromNumber(toNumber(left) / toNumber(right));
    case Op::MOD:
      return ESValue::fromNumber(std::fmod(toNumber(left), toNumber(right)));
    case Op::BITAND:
      return ESValue::fromNumber(toInt32(left) & toInt32(right));
    case Op::BITOR:
      return ESValue::fromNumber(toInt32(left) | toInt32(right));
    case Op::BITXOR:
      return ESValue::fromNumber(toInt32(left) ^ toInt32(right));
    case Op::SHL:
      return ESValue::fromNumber(int32_t(uint32_t(toInt32(left)) << (toInt32(right) & 31)));
    case Op::SHR:
      return ESValue::fromNumber(toInt32(left) >> (toInt32(right) & 31));
    case Op::USHR:
      return ESValue::fromNumber(toUint32(left) >> (toInt32(right) & 31));
    default:
      throw ESFatalError{QStringLiteral("??")};
  }
}

// `<` gives true, false or, when a number is NaN, undefined; `<=` gives true for NaN.
ESValue ESContext::compare(ESValue left, ESValue right, bool orEqual) {
  if (left.isNumber() && right.isNumber()) {
    if (std::isnan(left.number) || std::isnan(right.number)) return orEqual ? ESValue::boolean(true) : ESValue();
    return ESValue::boolean(orEqual ? left.number <= right.number : left.number < right.number);
  }
  left = toPrimitive(left, ESTag::Number);
  right = toPrimitive(right, ESTag::Number);
  if (left.isString() && right.isString()) {
    int order = QString::compare(left.text(), right.text(), Qt::CaseSensitive);
    return ESValue::boolean(orEqual ? order <= 0 : order < 0);
  }
  return compare(ESValue::fromNumber(toNumber(left)), ESValue::fromNumber(toNumber(right)), orEqual);
}

bool ESContext::equals(ESValue left, ESValue right) {
  for (;;) {
    if (sameType(left.tag, right.tag)) return equalSameType(left, right);
    if (left.isNumber() && right.isString()) {
      right = ESValue::fromNumber(toNumber(right));
    } else if (left.isString() && right.isNumber()) {
      left = ESValue::fromNumber(toNumber(left));
    } else if (left.isBoolean()) {
      left = ESValue::fromNumber(left.number);
    } else if (right.isBoolean()) {
      right = ESValue::fromNumber(right.number);
    } else if (left.isObject() && (right.isNumber() || right.isString())) {
      left = toPrimitive(left, ESTag::None);
    } else if (right.isObject() && (left.isNumber() || left.isString())) {
      right = toPrimitive(right, ESTag::None);
    } else {
      return false;  // undefined against null among them
    }
  }
}

bool ESContext::strictEquals(ESValue left, ESValue right) {
  return sameType(left.tag, right.tag) && equalSameType(left, right);
}

QString ESContext::typeOf(ESValue value) {
  switch (value.tag) {
    case ESTag::Undefined:
      return QStringLiteral("undefined");
    case ESTag::Boolean:
      return QStringLiteral("boolean");
    case ESTag::Number:
      return QStringLiteral("number");
    case ESTag::Atom:
    case ESTag::OwnedString:
      return QStringLiteral("string");
    case ESTag::Object:
      return value.object->call != nullptr ? QStringLiteral("function") : QStringLiteral("object");
    default:
      return QStringLiteral("object");  // null
  }
}

// ---- Instructions that are too long for the loop ----

ESObject* ESContext::makeClosure(uint32_t index) {
  const ESCode& code = *functions_[index];
  ESObject* function = newObject(functionPrototype_, functionClass_);
  ESFunctionInfo* info = newFunctionInfo();
  info->paramCount = code.paramCount;
  info->localCount = code.localCount;
  info->code = &code;
  info->scope = scope_;
  captureScope();
  function->call = function->construct = info;
  const ESEngine::Names& names = engine_->names();
  function->append(names.length, 0, ESValue::fromNumber(code.paramCount));
  ESObject* prototype = newObject();
  prototype->append(names.constructor, 0, ESValue::fromObject(function));
  function->append(names.prototype, 0, ESValue::fromObject(prototype));
  return function;
}

// The names of every enumerable slot along the chain, once each, in atom order,
// as an object with the names as elements and `index` and `length`.
ESObject* ESContext::makeEnumerator(ESValue subject) {
  ESObject* object = toObject(subject);
  std::vector<ESAtom*> names;
  for (ESObject* o = object; o != nullptr; o = o->prototype)
    for (const ESProperty& slot : o->properties())
      if (slot.name != nullptr && !(slot.attributes & ESAttribute::DontEnum)) names.push_back(slot.name);
  std::sort(names.begin(), names.end(), [](const ESAtom* a, const ESAtom* b) { return a->index < b->index; });
  names.erase(std::unique(names.begin(), names.end()), names.end());
  ESObject* enumerator = newObject();
  for (size_t i = 0; i < names.size(); ++i)
    enumerator->append(engine_->indexAtom(i), 0, ESValue::fromAtom(names[i]));
  enumerator->append(engine_->names().index, 0, ESValue::fromNumber(0));
  enumerator->append(engine_->names().length, 0, ESValue::fromNumber(double(names.size())));
  return enumerator;
}

// Advances the enumerator on top of the stack: true with the next name in its
// place, false with the enumerator popped.
bool ESContext::nextName() {
  ESValue top = sp_[-1];
  if (!top.isObject()) throw ESFatalError{QStringLiteral("tos isn't a property object")};
  ESObject* enumerator = top.object;
  const ESEngine::Names& names = engine_->names();
  double index = toNumber(enumerator->klass->get(*this, enumerator, names.index));
  double length = toNumber(enumerator->klass->get(*this, enumerator, names.length));
  if (!(length > index)) {
    --sp_;
    return false;
  }
  enumerator->klass->put(*this, enumerator, names.index, ESValue::fromNumber(index + 1));
  sp_[-1] = enumerator->klass->get(*this, enumerator, toKey(ESValue::fromNumber(index)));
  return true;
}

// `++`/`--` on what the top of the stack names: a variable by scope look-up.
ESValue ESContext::stepByName(ESAtom* name, double step, bool prefix) {
  ESObject* base = lookupBase(name);
  double old = toNumber(base->klass->get(*this, base, name));
  base = lookupBase(name);
  base->klass->put(*this, base, name, ESValue::fromNumber(old + step));
  return ESValue::fromNumber(prefix ? old + step : old);
}

ESValue ESContext::stepMember(ESValue objectValue, ESValue key, double step, bool prefix) {
  ESObject* object = toObject(objectValue);
  ESAtom* name = toKey(key);
  double old = toNumber(object->klass->get(*this, object, name));
  object->klass->put(*this, object, name, ESValue::fromNumber(old + step));
  return ESValue::fromNumber(prefix ? old + step : old);
}

bool ESContext::deleteByName(ESAtom* name) {
  for (ESObject* link = scope_; link != nullptr; link = link->prototype)
    for (ESObject* o = link->value.object; o != nullptr; o = o->prototype) {
      int32_t i = o->findOwn(name);
      if (i < 0) continue;
      if (o->slot(size_t(i)).attributes & ESAttribute::DontDelete) return false;
      o->clearSlot(i);
      return true;
    }
  return false;
}

void ESContext::enterWith(ESValue subject) {
  ESObject* object = toObject(subject);
  ESObject* link = allocate();
  link->builtinId = kWithLinkId;
  link->prototype = scope_;
  link->value = ESValue::fromObject(object);
  scope_ = link;
}

void ESContext::leaveWith() {
  ESObject* link = scope_;
  if (link == nullptr) return;
  scope_ = link->prototype;
  if (link->builtinId == kWithLinkId && !link->captured) recycle(link);  // its object belongs to the script
}

// ---- The loop ----

#define PUSH(v)                                \
  do {                                         \
    if (sp_ >= stackLimit_) stackOverflow();   \
    *sp_++ = (v);                              \
  } while (0)
#define TOP (sp_[-1])

// ToBoolean without a call for the values tests meet most.
#define truth(value) \
  ((value).tag == ESTag::Boolean || (value).tag == ESTag::Number ? (value).number != 0.0 : toBoolean(value))

ESValue ESContext::execute(const ESCode& code) {
  const ESCode* savedCode = currentCode_;
  const uint8_t* savedPc = currentPc_;
  struct RestoreCode {
    const ESCode*& code;
    const uint8_t*& pc;
    const ESCode* savedCode;
    const uint8_t* savedPc;
    ~RestoreCode() {
      code = savedCode;
      pc = savedPc;
    }
  } restore{currentCode_, currentPc_, savedCode, savedPc};
  currentCode_ = &code;
  const uint8_t* const start = code.bytes.data();
  const uint8_t* pc = start;
  const double* numbers = code.numbers.data();
  ESEngine& engine = *engine_;
  ESValue* const frameBase = sp_;
  // The frame's registers do not change while its code runs: calls restore them.
  ESValue* const arguments = arguments_;
  ESValue* const locals = arguments_ + argumentCount_;
  ESObject* const activation = activation_;
  const size_t localBase = size_t(argumentCount_);
  auto stoppedValue = [&]() { return sp_ > frameBase ? sp_[-1] : ESValue(); };
  const bool polls = polling_;
  if (polls && !poll()) return stoppedValue();
  ESValue* sp = sp_;  // the stack pointer of the fast path, kept in a register

  for (;;) {
    // The fast path: instructions on numbers and variables that can neither fail
    // nor call out. Anything else, or a fast instruction on other values, takes the
    // general path below with the machine's registers in the context.
    switch (Op(*pc)) {
#define FAST_PUSH(v)                          \
  if (sp >= stackLimit_) goto general;        \
  *sp++ = (v)
      case Op::NUM_0: FAST_PUSH(ESValue::fromNumber(0)); pc += 1; goto next;
      case Op::NUM_1: FAST_PUSH(ESValue::fromNumber(1)); pc += 1; goto next;
      case Op::NUM_2: FAST_PUSH(ESValue::fromNumber(2)); pc += 1; goto next;
      case Op::NUM: FAST_PUSH(ESValue::fromNumber(numbers[operandAt(pc + 1)])); pc += 3; goto next;
      case Op::GETA: FAST_PUSH(arguments[operandAt(pc + 1)]); pc += 3; goto next;
      case Op::GETL: FAST_PUSH(locals[operandAt(pc + 1)]); pc += 3; goto next;
      case Op::GETAM: FAST_PUSH(activation->slot(operandAt(pc + 1)).value); pc += 3; goto next;
      case Op::GETLM: FAST_PUSH(activation->slot(localBase + operandAt(pc + 1)).value); pc += 3; goto next;
      case Op::GETG: FAST_PUSH(global_->slot(operandAt(pc + 1)).value); pc += 3; goto next;
      case Op::PUTA: arguments[operandAt(pc + 1)] = *--sp; pc += 3; goto next;
      case Op::PUTL: locals[operandAt(pc + 1)] = *--sp; pc += 3; goto next;
      case Op::PUTAM: activation->slot(operandAt(pc + 1)).value = *--sp; pc += 3; goto next;
      case Op::PUTLM: activation->slot(localBase + operandAt(pc + 1)).value = *--sp; pc += 3; goto next;
      case Op::PUTG: global_->slot(operandAt(pc + 1)).value = *--sp; pc += 3; goto next;
      case Op::DROP: --sp; pc += 1; goto next;
      case Op::DUP: {
        ESValue top = sp[-1];
        FAST_PUSH(top);
        pc += 1;
        goto next;
      }
      case Op::NUM_3: FAST_PUSH(ESValue::fromNumber(3)); pc += 1; goto next;
      case Op::NUM_4: FAST_PUSH(ESValue::fromNumber(4)); pc += 1; goto next;
      case Op::NUM_M1: FAST_PUSH(ESValue::fromNumber(-1)); pc += 1; goto next;
      case Op::TRUE_: FAST_PUSH(ESValue::boolean(true)); pc += 1; goto next;
      case Op::FALSE_: FAST_PUSH(ESValue::boolean(false)); pc += 1; goto next;
      case Op::UNDEFINED: FAST_PUSH(ESValue()); pc += 1; goto next;
#undef FAST_PUSH
#define FAST_ARITHMETIC(operator_)                                         \
  if (!sp[-2].isNumber() || !sp[-1].isNumber()) goto general;              \
  sp[-2].number = sp[-2].number operator_ sp[-1].number;                   \
  --sp;                                                                    \
  pc += 1;                                                                 \
  goto next
      case Op::ADD: FAST_ARITHMETIC(+);
      case Op::SUB: FAST_ARITHMETIC(-);
      case Op::MUL: FAST_ARITHMETIC(*);
      case Op::DIV: FAST_ARITHMETIC(/);
#undef FAST_ARITHMETIC
      case Op::LT:
      case Op::LE: {
        ESValue left = sp[-2], right = sp[-1];
        if (!left.isNumber() || !right.isNumber() || std::isnan(left.number) || std::isnan(right.number))
          goto general;
        sp[-2] = ESValue::boolean(*pc == uint8_t(Op::LT) ? left.number < right.number : left.number <= right.number);
        --sp;
        pc += 1;
        goto next;
      }
      case Op::EQ:
      case Op::NE: {
        ESValue left = sp[-2], right = sp[-1];
        if (!left.isNumber() || !right.isNumber()) goto general;
        sp[-2] = ESValue::boolean((left.number == right.number) == (*pc == uint8_t(Op::EQ)));
        --sp;
        pc += 1;
        goto next;
      }
      case Op::JLT: {
        ESValue left = sp[-2], right = sp[-1];
        if (!left.isNumber() || !right.isNumber()) goto general;
        sp -= 2;
        pc = left.number < right.number ? start + operandAt(pc + 1) : pc + 3;
        goto next;
      }
      case Op::J: pc = start + operandAt(pc + 1); goto next;
      case Op::JT:
      case Op::JF: {
        ESValue test = sp[-1];
        if (test.tag != ESTag::Boolean && test.tag != ESTag::Number) goto general;
        --sp;
        pc = (test.number != 0.0) == (*pc == uint8_t(Op::JT)) ? start + operandAt(pc + 1) : pc + 3;
        goto next;
      }
      case Op::LOGAND:
      case Op::LOGOR: {
        ESValue test = sp[-1];
        if (test.tag != ESTag::Boolean && test.tag != ESTag::Number) goto general;
        if ((test.number != 0.0) == (*pc == uint8_t(Op::LOGOR))) {
          pc = start + operandAt(pc + 1);
        } else {
          --sp;
          pc += 3;
        }
        goto next;
      }
      case Op::INCL:
      case Op::DECL: {
        ESValue& variable = locals[operandAt(pc + 1)];
        if (!variable.isNumber()) goto general;
        variable.number += *pc == uint8_t(Op::INCL) ? 1 : -1;
        pc += 3;
        goto next;
      }
      default:
        goto general;
    }
  general:
    sp_ = sp;
    {
    currentPc_ = pc;
    const Op op = Op(*pc++);
    switch (op) {
      case Op::NUM:
        PUSH(ESValue::fromNumber(numbers[operandAt(pc)]));
        pc += 2;
        break;
      case Op::NUM_0: PUSH(ESValue::fromNumber(0)); break;
      case Op::NUM_1: PUSH(ESValue::fromNumber(1)); break;
      case Op::NUM_2: PUSH(ESValue::fromNumber(2)); break;
      case Op::NUM_3: PUSH(ESValue::fromNumber(3)); break;
      case Op::NUM_4: PUSH(ESValue::fromNumber(4)); break;
      case Op::NUM_M1: PUSH(ESValue::fromNumber(-1)); break;
      case Op::NULL_: PUSH(ESValue::null()); break;
      case Op::TRUE_: PUSH(ESValue::boolean(true)); break;
      case Op::FALSE_: PUSH(ESValue::boolean(false)); break;
      case Op::UNDEFINED: PUSH(ESValue()); break;
      case Op::THIS: PUSH(ESValue::fromObject(thisObject_)); break;
      case Op::STR:
        PUSH(ESValue::fromAtom(engine.atomAt(operandAt(pc))));
        pc += 2;
        break;
      case Op::NEW: {
        ESValue callee = *--sp_;
        constructValue(callee, 0);
        break;
      }
      case Op::NEWA: {
        ESValue callee = *--sp_;
        constructValue(callee, int32_t(operandAt(pc)));
        pc += 2;
        break;
      }
      case Op::DROP: --sp_; break;
      case Op::DUP: {
        ESValue top = TOP;
        PUSH(top);
        break;
      }
      case Op::VOID: TOP = ESValue(); break;
      case Op::TYPEOF: TOP = ESValue::fromAtom(engine.intern(typeOf(TOP))); break;
      case Op::ENUM: TOP = ESValue::fromObject(makeEnumerator(TOP)); break;
      case Op::NEXT:
        if (nextName())
          pc = start + operandAt(pc);
        else
          pc += 2;
        break;
      case Op::CLOSURE:
        PUSH(ESValue::fromObject(makeClosure(operandAt(pc))));
        pc += 2;
        break;
      case Op::MKARRAY: {
        int32_t count = int32_t(operandAt(pc));
        pc += 2;
        ESObject* array = newArray();
        PUSH(ESValue::fromObject(array));
        for (int32_t i = count - 1; i >= 0; --i)
          arrayClass_->put(*this, array, engine.indexAtom(uint64_t(i)), sp_[-2 - (count - 1 - i)]);
        sp_ -= count + 1;
        *sp_++ = ESValue::fromObject(array);
        break;
      }
      case Op::NEWOBJ: PUSH(ESValue::fromObject(newObject())); break;
      case Op::WITH:
        enterWith(TOP);
        --sp_;
        break;
      case Op::ENDWITH: leaveWith(); break;
      case Op::INITF: {
        ESObject* object = sp_[-2].object;
        object->klass->put(*this, object, engine.atomAt(operandAt(pc)), TOP);
        --sp_;
        pc += 2;
        break;
      }

      case Op::CALLW: {
        ESAtom* name = engine.atomAt(operandAt(pc));
        int32_t count = int32_t(operandAt(pc + 2));
        pc += 4;
        ESObject* base = lookupBase(name);
        ESValue callee = base->klass->get(*this, base, name);
        if (base->klass == activationClass_) base->captured = true;  // it becomes `this`
        callValue(callee, base, count);
        break;
      }
      case Op::CALLF: {
        ESAtom* name = engine.atomAt(operandAt(pc));
        int32_t count = int32_t(operandAt(pc + 2));
        pc += 4;
        ESObject* object = toObject(TOP);
        --sp_;
        callValue(object->klass->get(*this, object, name), object, count);
        break;
      }
      case Op::CALLG: {
        ESValue callee = global_->slot(operandAt(pc)).value;
        int32_t count = int32_t(operandAt(pc + 2));
        pc += 4;
        callValue(callee, global_, count);
        break;
      }
      case Op::CALLA:
      case Op::CALLL:
      case Op::CALLAM:
      case Op::CALLLM: {
        uint32_t slot = operandAt(pc);
        int32_t count = int32_t(operandAt(pc + 2));
        pc += 4;
        ESValue callee = op == Op::CALLA    ? arguments[slot]
                         : op == Op::CALLL  ? locals[slot]
                         : op == Op::CALLAM ? activation->slot(slot).value
                                            : activation->slot(localBase + slot).value;
        callValue(callee, global_, count);
        break;
      }
      case Op::CALLX: {
        int32_t count = int32_t(operandAt(pc));
        pc += 2;
        ESObject* object = toObject(sp_[-2]);
        ESAtom* name = toKey(TOP);
        sp_ -= 2;
        callValue(object->klass->get(*this, object, name), object, count);
        break;
      }
      case Op::CALLV: {
        int32_t count = int32_t(operandAt(pc));
        pc += 2;
        ESValue callee = *--sp_;
        callValue(callee, global_, count);
        break;
      }

      case Op::GETW: {
        ESAtom* name = engine.atomAt(operandAt(pc));
        pc += 2;
        ESObject* base = lookupBase(name);
        PUSH(base->klass->get(*this, base, name));
        break;
      }
      case Op::GETF: {
        ESAtom* name = engine.atomAt(operandAt(pc));
        pc += 2;
        ESObject* object = TOP.isObject() ? TOP.object : toObject(TOP);
        TOP = object->klass->get(*this, object, name);
        break;
      }
      case Op::GETG:
        PUSH(global_->slot(operandAt(pc)).value);
        pc += 2;
        break;
      case Op::GETA:
        PUSH(arguments[operandAt(pc)]);
        pc += 2;
        break;
      case Op::GETL:
        PUSH(locals[operandAt(pc)]);
        pc += 2;
        break;
      case Op::GETAM:
        PUSH(activation->slot(operandAt(pc)).value);
        pc += 2;
        break;
      case Op::GETLM:
        PUSH(activation->slot(localBase + operandAt(pc)).value);
        pc += 2;
        break;
      case Op::GETX: {
        ESObject* object = toObject(sp_[-2]);
        ESAtom* name = toKey(TOP);
        --sp_;
        TOP = object->klass->get(*this, object, name);
        break;
      }
      case Op::PUTW: {
        ESAtom* name = engine.atomAt(operandAt(pc));
        pc += 2;
        ESObject* base = lookupBase(name);
        base->klass->put(*this, base, name, TOP);
        --sp_;
        break;
      }
      case Op::PUTF: {
        ESAtom* name = engine.atomAt(operandAt(pc));
        pc += 2;
        ESObject* object = toObject(TOP);
        object->klass->put(*this, object, name, sp_[-2]);
        sp_ -= 2;
        break;
      }
      case Op::PUTG:
        global_->slot(operandAt(pc)).value = *--sp_;
        pc += 2;
        break;
      case Op::PUTA:
        arguments[operandAt(pc)] = *--sp_;
        pc += 2;
        break;
      case Op::PUTL:
        locals[operandAt(pc)] = *--sp_;
        pc += 2;
        break;
      case Op::PUTAM:
        activation->slot(operandAt(pc)).value = *--sp_;
        pc += 2;
        break;
      case Op::PUTLM:
        activation->slot(localBase + operandAt(pc)).value = *--sp_;
        pc += 2;
        break;
      case Op::PUTX: {
        ESObject* object = toObject(sp_[-2]);
        ESAtom* name = toKey(TOP);
        object->klass->put(*this, object, name, sp_[-3]);
        sp_ -= 3;
        break;
      }

      case Op::ADD:
        if (sp_[-2].isNumber() && TOP.isNumber()) {
          sp_[-2].number += TOP.number;
        } else {
          sp_[-2] = add(sp_[-2], TOP);
        }
        --sp_;
        break;
      case Op::SUB:
        if (sp_[-2].isNumber() && TOP.isNumber())
          sp_[-2].number -= TOP.number;
        else
          sp_[-2] = arithmetic(op, sp_[-2], TOP);
        --sp_;
        break;
      case Op::MUL:
        if (sp_[-2].isNumber() && TOP.isNumber())
          sp_[-2].number *= TOP.number;
        else
          sp_[-2] = arithmetic(op, sp_[-2], TOP);
        --sp_;
        break;
      case Op::DIV:
        if (sp_[-2].isNumber() && TOP.isNumber())
          sp_[-2].number /= TOP.number;
        else
          sp_[-2] = arithmetic(op, sp_[-2], TOP);
        --sp_;
        break;
      case Op::MOD:
      case Op::BITAND:
      case Op::BITOR:
      case Op::BITXOR:
      case Op::SHL:
      case Op::SHR:
      case Op::USHR:
        sp_[-2] = arithmetic(op, sp_[-2], TOP);
        --sp_;
        break;
      case Op::ADDX:
      case Op::SUBX:
      case Op::MULX:
      case Op::DIVX:
      case Op::MODX:
      case Op::BITANDX:
      case Op::BITORX:
      case Op::BITXORX:
      case Op::SHLX:
      case Op::SHRX:
      case Op::USHRX: {
        // Right operand, object, key on the stack; the plain operator is the one before.
        ESAtom* name = toKey(TOP);
        ESObject* object = toObject(sp_[-2]);
        ESValue old = object->klass->get(*this, object, name);
        ESValue result = arithmetic(Op(uint8_t(op) - 1), old, sp_[-3]);
        object->klass->put(*this, object, name, result);
        sp_ -= 2;
        TOP = result;
        break;
      }

      case Op::INCG: case Op::DECG: case Op::INCA: case Op::DECA: case Op::INCL: case Op::DECL:
      case Op::INCM: case Op::DECAM: case Op::INCLM: case Op::DECLM: {
        uint32_t slot = operandAt(pc);
        pc += 2;
        ESValue& variable = op == Op::INCG || op == Op::DECG   ? global_->slot(slot).value
                            : op == Op::INCA || op == Op::DECA  ? arguments[slot]
                            : op == Op::INCL || op == Op::DECL  ? locals[slot]
                            : op == Op::INCM || op == Op::DECAM ? activation->slot(slot).value
                                                                : activation->slot(localBase + slot).value;
        bool up = op == Op::INCG || op == Op::INCA || op == Op::INCL || op == Op::INCM || op == Op::INCLM;
        variable = ESValue::fromNumber(toNumber(variable) + (up ? 1 : -1));
        break;
      }
      case Op::PREINCX:
      case Op::POSTINCX:
      case Op::PREDECX:
      case Op::POSTDECX: {
        bool increment = op == Op::PREINCX || op == Op::POSTINCX;
        bool prefix = op == Op::PREINCX || op == Op::PREDECX;
        TOP = stepByName(toKey(TOP), increment ? 1 : -1, prefix);
        break;
      }
      case Op::PREINCP:
      case Op::POSTINCP:
      case Op::PREDECP:
      case Op::POSTDECP: {
        bool increment = op == Op::PREINCP || op == Op::POSTINCP;
        bool prefix = op == Op::PREINCP || op == Op::PREDECP;
        ESValue result = stepMember(sp_[-2], TOP, increment ? 1 : -1, prefix);
        --sp_;
        TOP = result;
        break;
      }
      case Op::DELETEW:
        PUSH(ESValue::boolean(deleteByName(engine.atomAt(operandAt(pc)))));
        pc += 2;
        break;
      case Op::DELETEX: {
        ESObject* object = toObject(sp_[-2]);
        ESAtom* name = toKey(TOP);
        --sp_;
        TOP = ESValue::boolean(deleteProperty(object, name));
        break;
      }

      case Op::LT:
      case Op::LE:
        if (sp_[-2].isNumber() && TOP.isNumber() && !std::isnan(sp_[-2].number) && !std::isnan(TOP.number))
          sp_[-2] = ESValue::boolean(op == Op::LT ? sp_[-2].number < TOP.number : sp_[-2].number <= TOP.number);
        else
          sp_[-2] = compare(sp_[-2], TOP, op == Op::LE);
        --sp_;
        break;
      case Op::EQ:
      case Op::NE: {
        bool equal = equals(sp_[-2], TOP);
        --sp_;
        TOP = ESValue::boolean(op == Op::EQ ? equal : !equal);
        break;
      }
      case Op::IDENTITY:
      case Op::NIDENTITY: {
        bool same = strictEquals(sp_[-2], TOP);
        --sp_;
        TOP = ESValue::boolean(op == Op::IDENTITY ? same : !same);
        break;
      }
      case Op::LOGNOT: TOP = ESValue::boolean(!toBoolean(TOP)); break;
      case Op::BITNOT: TOP = ESValue::fromNumber(~toInt32(TOP)); break;
      case Op::POS: TOP = ESValue::fromNumber(toNumber(TOP)); break;
      case Op::NEG: TOP = ESValue::fromNumber(-toNumber(TOP)); break;
      case Op::LOGAND:
        if (!truth(TOP)) {
          pc = start + operandAt(pc);
        } else {
          --sp_;
          pc += 2;
        }
        break;
      case Op::LOGOR:
        if (truth(TOP)) {
          pc = start + operandAt(pc);
        } else {
          --sp_;
          pc += 2;
        }
        break;
      case Op::J: pc = start + operandAt(pc); break;
      case Op::JT:
      case Op::JF: {
        ESValue test = *--sp_;
        pc = truth(test) == (op == Op::JT) ? start + operandAt(pc) : pc + 2;
        break;
      }
      case Op::JT_DROP:
        if (truth(TOP)) {
          sp_ -= 2;
          pc = start + operandAt(pc);
        } else {
          --sp_;
          pc += 2;
        }
        break;
      case Op::JLT: {
        ESValue left = sp_[-2], right = TOP;
        sp_ -= 2;
        bool less;
        if (left.isNumber() && right.isNumber()) {
          less = left.number < right.number;
        } else {
          ESValue result = compare(left, right, false);  // undefined for NaN: no jump
          less = result.isBoolean() && result.number != 0.0;
        }
        pc = less ? start + operandAt(pc) : pc + 2;
        break;
      }
      case Op::RET: return *--sp_;
      case Op::RETU: return ESValue();
      default:
        raiseTypeError(QStringLiteral("??"));
    }
    }
    sp = sp_;
  next:
    if (polls) {
      sp_ = sp;
      if (!poll()) return stoppedValue();
    }
  }
}

#undef PUSH
#undef TOP
#undef truth

}  // namespace regmill::script
