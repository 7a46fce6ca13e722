// An interpreter with the core words, as the console and the file runner use it.
// Everything the words print goes to the sink.
#pragma once
#include <QString>
#include <functional>
#include <string>
#include <string_view>

#include "base/status.h"
#include "script/forth/forth_interpreter.h"
#include "script/forth/forth_words.h"

namespace regmill::forth {

class ForthConsole {
 public:
  using Sink = std::function<void(std::string_view)>;
  explicit ForthConsole(Sink sink);

  // One line as typed: a blank, what the line prints, the failure's text if it
  // failed, " OK" unless a definition is still open, and a line feed.
  void typeLine(std::string_view line);

  // Runs a whole text; a failure names the file and the line of the failing word.
  Status runText(std::string text, const QString& fileName);

  ForthInterpreter& interpreter() { return interpreter_; }

 private:
  ForthInterpreter interpreter_;
  CoreWords words_;
};

}  // namespace regmill::forth
