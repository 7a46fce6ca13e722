// The two ways out of the script engine. ESException carries a script-level error
// value (an error object) to evaluate; ESFatalError reports a fault of the engine
// itself and is deliberately not related to it, so a handler of one never
// swallows the other.
#pragma once
#include <QString>

#include "script/es_value.h"

namespace regmill::script {

struct ESException {
  ESValue value;
};

struct ESFatalError {
  QString message;
};

}  // namespace regmill::script
