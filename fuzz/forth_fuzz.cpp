// Runs arbitrary text through the word interpreter, both as a file and line by line
// as at the console, with a step budget: every run ends without a crash.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "script/forth/forth_console.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size > 16384) return 0;
  const std::string text(reinterpret_cast<const char*>(data), size);
  size_t printed = 0;
  const auto sink = [&printed](std::string_view bytes) { printed += bytes.size(); };

  regmill::forth::ForthConsole file(sink);
  file.interpreter().setStepBudget(200000);
  file.interpreter().setOutputLimit(1 << 20);
  file.runText(text, QStringLiteral("fuzz.fs")).ignore();

  regmill::forth::ForthConsole console(sink);
  console.interpreter().setStepBudget(200000);
  console.interpreter().setOutputLimit(1 << 20);
  std::string_view rest = text;
  while (!rest.empty()) {
    const size_t end = rest.find('\n');
    console.typeLine(rest.substr(0, end));
    rest = end == std::string_view::npos ? std::string_view() : rest.substr(end + 1);
  }
  return 0;
}
