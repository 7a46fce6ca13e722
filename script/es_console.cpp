#include "script/es_console.h"

namespace regmill::script {

namespace {

class PrintClass : public ESClass {
 public:
  explicit PrintClass(std::FILE* output) : ESClass("Object"), output_(output) {}
  void call(ESContext& context, ESObject*, ESObject*, int32_t argumentCount, ESValue* arguments) override {
    QString line;
    for (int32_t i = 0; i < argumentCount; ++i) {
      if (i > 0) line += QLatin1Char(' ');
      line += context.toString(arguments[i]);
    }
    line += QLatin1Char('\n');
    QByteArray bytes = line.toUtf8();
    std::fwrite(bytes.constData(), 1, size_t(bytes.size()), output_);
    arguments[0] = ESValue();
  }

 private:
  std::FILE* output_;
};

}  // namespace

ESConsoleContext::ESConsoleContext(std::FILE* output, std::shared_ptr<ESEngine> engine)
    : ESContext(std::move(engine)), output_(output) {
  setUp();
  printClass_ = std::make_unique<PrintClass>(output_);
  // Length 0: the call sequence pads nothing, so print() prints an empty line.
  defineFunction(global(), QStringLiteral("print"), printClass_.get(), 0, 0);
}

void ESConsoleContext::setStepBudget(uint64_t steps) {
  stepBudget_ = steps;
  steps_ = 0;
  setPolling(steps != 0);
}

bool ESConsoleContext::runFile(const QString& fileName, const QString& source, std::string& diagnostic) {
  std::unique_ptr<ESCode> program;
  try {
    program = compileProgram(fileName, source);
  } catch (const ESException& error) {
    diagnostic = describeError(error.value, true);
    return false;
  }
  try {
    runProgram(*program);
  } catch (const ESException& error) {
    diagnostic = describeError(error.value, false);
    return false;
  }
  return true;
}

std::string ESConsoleContext::describeError(ESValue error, bool compiling) {
  const ESEngine::Names& names = engine().names();
  // A script can give an error a name or message that fails to convert itself
  // (an object without a primitive value): its type stands in for it.
  auto textOf = [&](ESValue value) {
    try {
      return toString(value);
    } catch (const ESException&) {
      return typeOf(value);
    }
  };
  if (!isError(error)) return ("Uncaught exception: " + textOf(error)).toStdString();
  ESObject* object = error.object;
  auto read = [&](ESAtom* name) {
    ESValue value = object->klass->get(*this, object, name);
    return value.isUndefined() ? QString() : textOf(value);
  };
  QString place = read(names.fileName);
  QString line = read(names.lineNumber);
  if (!line.isEmpty()) place += QLatin1Char(':') + line;
  if (compiling) return (place + QStringLiteral(": ") + read(names.message)).toStdString();
  QString text = QStringLiteral("Uncaught exception: ") + read(names.name) + QStringLiteral(": ") + read(names.message);
  if (!place.isEmpty()) text += QLatin1Char('\n') + place;
  return text.toStdString();
}

}  // namespace regmill::script
