// The project system's messages on the library's diagnostic channel: warnings and
// errors, each one line, written only when the channel's mask selects them.
#pragma once
#include <QString>

namespace regmill {

void reportWarning(const QString& text);
void reportErrorMessage(const QString& text);

}  // namespace regmill
