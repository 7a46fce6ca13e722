// Feeds arbitrary XML text to the DOM reader and the DOM form of the preprocessor;
// nothing may crash, hang or leak. Inputs that name an include are left to the unit
// tests, which give them real files.
#include <cstddef>
#include <cstdint>
#include <string>

#include "project/dom_preprocessor.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size > 16384) return 0;
  const QByteArray text(reinterpret_cast<const char*>(data), qsizetype(size));
  if (text.contains("include")) return 0;
  regmill::XmlPP pp;
  QString error;
  int line = 0;
  int column = 0;
  if (!regmill::readDomDocument(text, pp.document(), error, line, column)) return 0;
  regmill::MacroMap macros = pp.macros();
  pp.processConditionals(pp.document().documentElement(), "/nonexistent/fuzz.xml", macros, true);
  pp.document().toString(1);
  return 0;
}
