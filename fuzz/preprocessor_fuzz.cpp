// Feeds arbitrary XML text to the conditional preprocessor's node form with a small
// macro map and attribute expansion on, then writes the result; nothing may crash,
// hang or leak. Inputs that name an include are left to the unit tests, which give
// them real files: here they would read whatever path the fuzzer makes up.
#include <cstddef>
#include <cstdint>
#include <string>

#include "project/xml_preprocessor.h"
#include "xml/xml_writer.h"

namespace {

class QuietDocument : public regmill::XMLPP2 {
 public:
  QuietDocument() : XMLPP2(true) {}
  void reportError(const QString&) override {}
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size > 16384) return 0;
  const std::string text(reinterpret_cast<const char*>(data), size);
  if (text.find("include") != std::string::npos) return 0;
  QuietDocument document;
  if (!document.parse(text.c_str()).ok()) return 0;
  regmill::processConditionals(document, document.root(), "/nonexistent/fuzz.xml", {{"m", "a"}, {"n", "3"}}, true);
  std::FILE* sink = std::fopen("/dev/null", "wb");
  if (sink != nullptr) {
    document.write(sink, 2, 75).ignore();
    std::fclose(sink);
  }
  return 0;
}
