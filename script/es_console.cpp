#include "script/es_console.h"

#include "script/es_host_binding.h"

namespace regmill::script {

ESConsoleContext::ESConsoleContext(std::FILE* output, std::shared_ptr<ESEngine> engine)
    : MyESContext2(
          [output](const QString& text) {
            QByteArray bytes = text.toUtf8();
            std::fwrite(bytes.constData(), 1, size_t(bytes.size()), output);
          },
          std::move(engine)) {
  running = true;
}

void ESConsoleContext::setStepBudget(uint64_t steps) {
  stepBudget_ = steps;
  steps_ = 0;
  updatePolling(steps != 0);
}

bool ESConsoleContext::runFile(const QString& fileName, const QString& source, std::string& diagnostic) {
  running = true;
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
  if (!isError(error)) return ("Uncaught exception: " + reportText(*this, error)).toStdString();
  const ESEngine::Names& names = engine().names();
  ESObject* object = error.object;
  QString place = errorField(*this, object, names.fileName);
  QString line = errorField(*this, object, names.lineNumber);
  if (!line.isEmpty()) place += QLatin1Char(':') + line;
  if (compiling) return (place + QStringLiteral(": ") + errorField(*this, object, names.message)).toStdString();
  QString text = QStringLiteral("Uncaught exception: ") + errorField(*this, object, names.name) + QStringLiteral(": ") +
                 errorField(*this, object, names.message);
  if (!place.isEmpty()) text += QLatin1Char('\n') + place;
  return text.toStdString();
}

}  // namespace regmill::script
