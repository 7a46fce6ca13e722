#include "project/diagnostics.h"

#include "base/log.h"

namespace regmill {

void reportWarning(const QString& text) {
  if (logMask() & kLogWarnings) logMessage("warning", kLogLineFeed, "%s", text.toUtf8().constData());
}

void reportErrorMessage(const QString& text) {
  if (logMask() & kLogErrors) logMessage("error", kLogLineFeed, "%s", text.toUtf8().constData());
}

}  // namespace regmill
