// Runs arbitrary text through the word interpreter, as a file or line by line as at
// the console (the first byte chooses), with a step budget and an output limit:
// every run ends without a crash.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "script/forth/forth_console.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0 || size > 16384) return 0;
  const bool asFile = (data[0] & 1) != 0;
  const std::string text(reinterpret_cast<const char*>(data) + 1, size - 1);
  size_t printed = 0;
  regmill::forth::ForthConsole console([&printed](std::string_view bytes) { printed += bytes.size(); });
  console.interpreter().setStepBudget(20000);
  console.interpreter().setOutputLimit(1 << 20);
  if (asFile) {
    console.runText(text, QStringLiteral("fuzz.fs")).ignore();
    return 0;
  }
  std::string_view rest = text;
  while (!rest.empty()) {
    const size_t end = rest.find('\n');
    console.typeLine(rest.substr(0, end));
    rest = end == std::string_view::npos ? std::string_view() : rest.substr(end + 1);
  }
  return 0;
}
