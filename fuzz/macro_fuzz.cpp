// Feeds arbitrary text to the macro expander: the part before the first line feed
// is read as a macro string for the map, the rest is expanded with it and with the
// global and system maps; nothing may crash, hang or grow without bound.
#include <cstddef>
#include <cstdint>

#include "project/macro_expander.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size > 8192) return 0;
  const QString input = QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
  const qsizetype lineFeed = input.indexOf(u'\n');
  const regmill::MacroMap map = regmill::parseMacroString(lineFeed < 0 ? QString() : input.left(lineFeed));
  const QString text = lineFeed < 0 ? input : input.mid(lineFeed + 1);
  regmill::MacroExpander& expander = regmill::macroExpander();
  expander.expand(map, text, true, true);
  expander.expand(map, text, false, false);
  regmill::macroStringFromMap(map);
  return 0;
}
