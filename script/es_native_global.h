// The native class of the global object: its value properties and functions
// (eval, parseInt, parseFloat, isNaN, isFinite, load), and the list of directories
// in which `load` looks for a file that does not open under its own name.
#pragma once
#include <QStringList>

#include "script/es_object.h"

namespace regmill::script {

class ESNativeGlobal : public ESClass {
 public:
  ESNativeGlobal() : ESClass("global") {}
  // Defines NaN, Infinity, undefined and the global functions.
  void initialise(ESContext& context);

  // Appended last: directories are tried in the order they were added.
  void addSearchDirectory(const QString& directory) { searchDirectories_ << directory; }
  const QStringList& searchDirectories() const { return searchDirectories_; }

  void call(ESContext& context, ESObject* function, ESObject* thisObject, int32_t argumentCount,
            ESValue* arguments) override;

 private:
  ESValue load(ESContext& context, const QString& name);

  QStringList searchDirectories_;
};

}  // namespace regmill::script
