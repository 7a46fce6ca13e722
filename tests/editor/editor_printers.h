// Readable failures for the editor's value types.
#pragma once
#include <QString>
#include <ostream>

#include "editor/code_buffer_position.h"

inline void PrintTo(const QString& text, std::ostream* stream) {
  QString shown = text;
  shown.replace(u'\\', QStringLiteral("\\\\")).replace(u'\n', QStringLiteral("\\n")).replace(u'\t', QStringLiteral("\\t"));
  *stream << '"' << shown.toStdString() << '"';
}

namespace regmill {
inline void PrintTo(const CodeBufferPosition& position, std::ostream* stream) {
  *stream << "(" << position.line << "," << position.column << ")";
}
}  // namespace regmill
