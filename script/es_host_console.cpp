#include "script/es_host_console.h"

#include "script/es_host_binding.h"

namespace regmill::script {

namespace {

// `print(...)`: the arguments converted to strings, joined by a blank, as one line.
class PrintClass : public ESClass {
 public:
  explicit PrintClass(MyESContext2& console) : ESClass("Object"), console_(console) {}
  void call(ESContext& context, ESObject*, ESObject*, int32_t argumentCount, ESValue* arguments) override {
    QString line;
    for (int32_t i = 0; i < argumentCount; ++i) {
      if (i > 0) line += QLatin1Char(' ');
      line += context.toString(arguments[i]);
    }
    line += QLatin1Char('\n');
    console_.write(line);
    arguments[0] = ESValue();
  }

 private:
  MyESContext2& console_;
};

}  // namespace

MyESContext2::MyESContext2(OutputSink output, std::shared_ptr<ESEngine> engine)
    : ESContext(std::move(engine)), output_(std::move(output)) {
  setUp();
  printClass_ = std::make_unique<PrintClass>(*this);
  // Length 0: the call sequence pads nothing, so print() prints an empty line.
  ESObject* print = defineFunction(global(), QStringLiteral("print"), printClass_.get(), 0, 0);
  // `console.log` is the very same function object, so that test files written
  // for other consoles run unchanged.
  ESObject* console = newObject();
  console->klass->put(*this, console, ESContext::engine().intern(QStringLiteral("log")), ESValue::fromObject(print));
  global()->klass->put(*this, global(), ESContext::engine().intern(QStringLiteral("console")), ESValue::fromObject(console));
}

MyESContext2::~MyESContext2() = default;

void MyESContext2::setPendingEventsHook(std::function<void()> hook) {
  pendingEvents_ = std::move(hook);
  updatePolling(false);
}

void MyESContext2::updatePolling(bool subclassNeedsPolling) {
  setPolling(subclassNeedsPolling || static_cast<bool>(pendingEvents_));
}

bool MyESContext2::poll() {
  if (stepCounter == 10) {
    stepCounter = 0;
    if (pendingEvents_) pendingEvents_();
  } else {
    ++stepCounter;
  }
  return running;
}

ESEvaluation MyESContext2::evaluateLine(const QString& line) {
  running = true;
  ESEvaluation result = evaluate(QString(), line);
  running = false;
  printOutcome(result);
  return result;
}

void MyESContext2::printOutcome(const ESEvaluation& result) {
  if (result.status == ESEvaluation::Finished) {
    if (result.value.isUndefined()) return;
    try {
      write(toString(result.value) + QLatin1Char('\n'));
      return;
    } catch (const ESException& thrown) {
      // A value whose conversion throws is reported as that error.
      printOutcome(ESEvaluation{ESEvaluation::ScriptError, thrown.value, QString()});
      return;
    }
  }
  if (!isError(result.value)) {
    write(QStringLiteral("Uncaught exception: ") + reportText(*this, result.value) + QLatin1Char('\n'));
    return;
  }
  const ESEngine::Names& names = engine().names();
  ESObject* error = result.value.object;
  write(errorField(*this, error, names.message) + QLatin1Char('\n') + errorField(*this, error, names.fileName) +
        QLatin1Char(':') + errorField(*this, error, names.lineNumber) + QLatin1Char('\n'));
}

}  // namespace regmill::script
