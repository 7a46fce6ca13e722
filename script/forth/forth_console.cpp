#include "script/forth/forth_console.h"

#include <utility>

namespace regmill::forth {

ForthConsole::ForthConsole(Sink sink) : words_(interpreter_) { interpreter_.output = std::move(sink); }

void ForthConsole::typeLine(std::string_view line) {
  if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
  const auto& print = interpreter_.output;  // the console's own text is not the program's output
  if (print) print(" ");
  QString failure;
  if (StringSource::fits(line)) {
    StringSource source(line);
    failure = interpreter_.interpret(source);
  } else {
    failure = interpreter_.report(ForthException{-17});
  }
  // A failure leaves the interpreter out of compile state, so " OK" follows it too.
  std::string tail = failure.toUtf8().toStdString();
  if (interpreter_.state == 0) tail += " OK";
  tail += '\n';
  if (print) print(tail);
}

Status ForthConsole::runText(std::string text, const QString& fileName) {
  TextSource source(std::move(text), fileName);
  const QString failure = interpreter_.interpret(source);
  if (failure.isEmpty()) return {};
  return Status::failure(failure.toStdString(), fileName.toStdString(), static_cast<uint32_t>(interpreter_.wordLine));
}

}  // namespace regmill::forth
