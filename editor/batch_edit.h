// Editing a file without a window: load it through the editor (in a named codec or
// with its encoding detected), run commands and replacements in order, each on the
// whole text selected with the caret at the start, and save it through a temporary
// file and a rename.
#pragma once
#include <QString>
#include <vector>

#include "base/status.h"

namespace regmill {

struct BatchStep {
  QString command;              // a command's name in kebab case, e.g. "sort-ascending"
  QString findText, replacement;  // for a replace-all step, when `command` is empty
};

struct BatchEdit {
  QString file;
  QString encoding;  // empty: detected
  std::vector<BatchStep> steps;
  QString saveAs;    // empty: back over the file
};

// "sortAscending" -> "sort-ascending", "pasteAsHTML" -> "paste-as-html".
QString kebabCase(const QString& name);
// The kebab names of the commands a batch can run.
QStringList batchCommandNames();

// Fails, with nothing written, for an unknown command or codec and a file that can't
// be read or written. `notice` receives what the editor would show in a box (mixed
// line ends).
Status runBatchEdit(const BatchEdit& edit, QString* notice = nullptr);

}  // namespace regmill
