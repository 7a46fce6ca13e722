// The context a host embeds: the global object, the built-in prototypes and
// classes, the value stack and the registers of the machine, the function table,
// and every object record, which it owns until it dies (there is no collector:
// see README). A host derives from it to override `poll`, calls setUp once, then
// evaluate as often as it likes. One thread at a time.
#pragma once
#include <QString>
#include <cstdint>
#include <deque>
#include <memory>
#include <vector>

#include "script/es_code.h"
#include "script/es_engine.h"
#include "script/es_exception.h"
#include "script/es_object.h"
#include "script/es_value.h"

namespace regmill::script {

struct ESEvaluation {
  enum Status : int32_t { Finished = 0, ScriptError = 4 };
  int32_t status = Finished;
  ESValue value;  // the program's value, or the thrown value
  QString text;   // stays empty
};

// One built-in function as the native classes and hosts define it. `fullName`
// (such as "Array.prototype.join") becomes the function object's value; the call
// sequence pads the arguments up to `length`; `builtinId` selects the operation in
// the class's call; a non-empty `help` becomes the function's `help` property.
struct ESBuiltinDef {
  ESAtom* name = nullptr;
  ESAtom* fullName = nullptr;
  int32_t length = 0;
  int32_t builtinId = 0;
  bool isConstructor = false;
  QString help;
};

class ESNativeGlobal;

class ESContext {
 public:
  // Contexts that exchange values must share an engine; none given makes a private one.
  explicit ESContext(std::shared_ptr<ESEngine> engine = nullptr);
  virtual ~ESContext();
  ESContext(const ESContext&) = delete;
  ESContext& operator=(const ESContext&) = delete;

  // Called before a run and after every instruction while polling is on; false
  // ends the run quietly with whatever value stands on top of the stack.
  virtual bool poll() { return true; }

  // Creates the global object, the prototypes and classes and the stack. Once.
  void setUp();

  // Compiles and runs a program; a script error comes back as status 4. An
  // ESFatalError passes through.
  ESEvaluation evaluate(const QString& fileName, const QString& source);
  // The two halves of evaluate, each throwing ESException. The program's block is
  // the caller's; functions found in it join the context's table.
  std::unique_ptr<ESCode> compileProgram(const QString& fileName, const QString& source);
  ESValue runProgram(const ESCode& program);

  // Calls a function object from native code.
  ESValue callFunction(ESObject* function, ESObject* thisObject, int32_t argumentCount, const ESValue* arguments);
  ESObject* construct(ESObject* function, int32_t argumentCount, const ESValue* arguments);

  // Builds an error object from the constructor with the message, completes it with
  // file, line and source line, and throws it. `line` 0 takes the running line.
  [[noreturn]] void raise(ESObject* constructor, const QString& message, uint32_t line = 0);
  [[noreturn]] void raiseTypeError(const QString& message) { raise(typeErrorConstructor_, message); }
  [[noreturn]] void raiseRangeError(const QString& message) { raise(rangeErrorConstructor_, message); }
  [[noreturn]] void raiseSyntaxError(const QString& message, uint32_t line) {
    raise(syntaxErrorConstructor_, message, line);
  }
  [[noreturn]] void raiseError(const QString& message) { raise(errorConstructor_, message); }

  // Conversions of the language.
  ESValue toPrimitive(ESValue value, ESTag hint);
  bool toBoolean(ESValue value);
  double toNumber(ESValue value);
  double toInteger(ESValue value);
  int32_t toInt32(ESValue value);
  uint32_t toUint32(ESValue value);
  uint16_t toUint16(ESValue value) { return uint16_t(toInt32(value) & 0xffff); }
  QString toString(ESValue value, int radix = 10);
  ESValue toStringValue(ESValue value);  // an atom, or the string as it is
  ESObject* toObject(ESValue value);
  ESAtom* toKey(ESValue value);
  static QString numberToString(double number, int radix = 10);
  // Whether the value is an error object (Error.prototype stands on its chain).
  bool isError(ESValue value) const;

  // Operators of the language on two values.
  ESValue add(ESValue left, ESValue right);
  ESValue arithmetic(Op op, ESValue left, ESValue right);  // ADD to USHR
  ESValue compare(ESValue left, ESValue right, bool orEqual);  // LT, LE
  bool equals(ESValue left, ESValue right);                    // EQ
  bool strictEquals(ESValue left, ESValue right);              // IDENTITY
  static QString typeOf(ESValue value);

  // Records: batches of 64, handed out from the free list.
  ESObject* allocate();
  ESObject* newObject(ESObject* prototype, ESClass* klass);
  ESObject* newObject() { return newObject(objectPrototype_, objectClass_); }
  ESObject* newArray();
  ESFunctionInfo* newFunctionInfo();
  // Records allocated so far, in use or free: the context's memory grows with it.
  size_t recordCount() const { return batches_.size() * 64; }
  QString* ownString(const QString& text);  // a transient string the context keeps

  // Defines a built-in with `klass` as its implementing class and puts it on
  // `target`. A constructor goes on the global object instead, with `prototype` as
  // its `prototype` and itself as the prototype's `constructor`.
  ESObject* defineBuiltin(ESObject* target, ESClass* klass, const ESBuiltinDef& definition,
                          ESObject* prototype = nullptr);
  // The definition record with its names interned.
  ESBuiltinDef builtinDef(const QString& name, const QString& fullName, int32_t length, int32_t builtinId,
                          bool isConstructor = false);
  // Shorthands: a function whose full name is its name, and a constructor of id 0.
  ESObject* defineFunction(ESObject* target, const QString& name, ESClass* klass, int32_t length, int32_t builtinId);
  ESObject* defineConstructor(const QString& name, ESClass* klass, int32_t length, ESObject* prototype);

  // Directories that `load` tries, in order, when its argument does not open as it is.
  void addLoadDirectory(const QString& directory);

  // The function table that CLOSURE indexes.
  uint32_t registerFunction(std::unique_ptr<ESCode> code);
  const ESCode& function(uint32_t index) const { return *functions_[index]; }
  uint32_t functionCount() const { return uint32_t(functions_.size()); }

  ESEngine& engine() { return *engine_; }
  ESObject* global() const { return global_; }
  ESObject* objectPrototype() const { return objectPrototype_; }
  ESObject* functionPrototype() const { return functionPrototype_; }
  ESObject* arrayPrototype() const { return arrayPrototype_; }
  ESObject* stringPrototype() const { return stringPrototype_; }
  ESObject* numberPrototype() const { return numberPrototype_; }
  ESObject* booleanPrototype() const { return booleanPrototype_; }
  ESObject* datePrototype() const { return datePrototype_; }
  ESObject* errorPrototype() const { return errorPrototype_; }
  ESClass* objectClass() const { return objectClass_; }
  ESClass* functionClass() const { return functionClass_; }
  ESClass* arrayClass() const { return arrayClass_; }
  ESClass* stringClass() const { return stringClass_; }
  ESClass* numberClass() const { return numberClass_; }
  ESClass* booleanClass() const { return booleanClass_; }
  ESClass* activationClass() const { return activationClass_; }
  ESClass* errorClass() const { return errorClass_; }
  ESClass* dateClass() const { return dateClass_; }
  ESClass* globalClass() const { return globalClass_; }

  // The text and name of the last program given to compile, which complete error
  // objects; eval and load keep the caller's pair around their own program.
  const QString& source() const { return source_; }
  void setProgramText(const QString& fileName, const QString& source) {
    fileName_ = fileName;
    source_ = source;
  }
  // Compiles a function from a parameter text and a body; the new function object
  // closes over the current scope.
  ESObject* compileFunction(const QString& parameters, const QString& body);

  // The source line of the instruction being run, 0 outside a run.
  uint32_t currentLine() const;
  const QString& fileName() const { return fileName_; }

  // Bounds that keep a hostile script from exhausting the process: values on the
  // stack, and script calls nested in native recursion.
  static constexpr int32_t kStackSize = 1048576;
  static constexpr int32_t kMaxCallDepth = 2000;
  // Strings are interned for ever, so a doubling loop would exhaust memory within
  // a few dozen steps; a longer concatenation is a RangeError.
  static constexpr qsizetype kMaxStringLength = qsizetype(1) << 24;

 protected:
  // A subclass that overrides poll turns polling on; without it the machine skips
  // the call, which is unobservable since the default gives true.
  void setPolling(bool on) { polling_ = on; }

 private:
  friend class ESMachine;
  struct Frame;

  void createPrototypes();
  void createClasses();
  void initialiseClasses();
  ESValue defaultValue(ESObject* object, ESTag hint);
  void recycle(ESObject* record);
  void resetMachine();

  // The machine (es_machine.cpp).
  ESValue execute(const ESCode& code);
  void callValue(ESValue callee, ESObject* thisObject, int32_t argumentCount);
  void callObject(ESObject* function, ESObject* thisObject, int32_t argumentCount);
  void constructValue(ESValue callee, int32_t argumentCount);
  void checkNativeStack();
  ESObject* lookupBase(ESAtom* name);
  void captureScope();
  ESObject* makeClosure(uint32_t index);
  ESObject* makeEnumerator(ESValue subject);
  bool nextName();
  ESValue stepByName(ESAtom* name, double step, bool prefix);
  ESValue stepMember(ESValue objectValue, ESValue key, double step, bool prefix);
  bool deleteByName(ESAtom* name);
  void enterWith(ESValue subject);
  void leaveWith();
  [[noreturn]] void stackOverflow();
  void ensureStack(int32_t entries) {
    if (sp_ + entries > stackLimit_) stackOverflow();
  }

  std::shared_ptr<ESEngine> engine_;
  bool polling_ = false;

  // Machine registers. The value stack is sp_[-1] downwards; sp_ points at the first free entry.
  ESValue* stack_ = nullptr;
  ESValue* sp_ = nullptr;
  ESValue* stackLimit_ = nullptr;
  ESObject* scope_ = nullptr;       // head of the scope chain, null at top level
  ESObject* activation_ = nullptr;  // activation of the running function, if it has one
  ESObject* thisObject_ = nullptr;
  ESValue* arguments_ = nullptr;  // first actual argument of the running function
  int32_t argumentCount_ = 0;
  const ESCode* currentCode_ = nullptr;
  const uint8_t* currentPc_ = nullptr;  // the instruction being run, for its line
  int32_t callDepth_ = 0;
  const char* nativeStackBase_ = nullptr;  // where the outermost run began

  ESObject *objectPrototype_ = nullptr, *functionPrototype_ = nullptr, *stringPrototype_ = nullptr,
           *numberPrototype_ = nullptr, *booleanPrototype_ = nullptr, *arrayPrototype_ = nullptr,
           *datePrototype_ = nullptr, *errorPrototype_ = nullptr, *global_ = nullptr;
  ESObject *errorConstructor_ = nullptr, *typeErrorConstructor_ = nullptr, *rangeErrorConstructor_ = nullptr,
           *syntaxErrorConstructor_ = nullptr;
  ESClass *objectClass_ = nullptr, *functionClass_ = nullptr, *arrayClass_ = nullptr, *stringClass_ = nullptr,
          *numberClass_ = nullptr, *booleanClass_ = nullptr, *dateClass_ = nullptr, *globalClass_ = nullptr,
          *activationClass_ = nullptr, *errorClass_ = nullptr, *evalErrorClass_ = nullptr,
          *rangeErrorClass_ = nullptr, *referenceErrorClass_ = nullptr, *syntaxErrorClass_ = nullptr,
          *typeErrorClass_ = nullptr, *mathClass_ = nullptr;
  ESNativeGlobal* nativeGlobal_ = nullptr;
  std::vector<std::unique_ptr<ESClass>> classes_;

  QString source_;
  QString fileName_;
  std::vector<std::unique_ptr<ESCode>> functions_;

  ESObject* freeObjects_ = nullptr;
  std::vector<std::unique_ptr<ESObject[]>> batches_;
  std::deque<ESFunctionInfo> functionInfos_;
  std::deque<QString> ownedStrings_;
};

}  // namespace regmill::script
