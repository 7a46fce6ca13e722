// Readable forms of a solution tree for tools: the tree as text, elements found by a
// path of names, the names of the settings that apply to an element, and the one
// line that tells why a load failed.
#pragma once
#include <QString>
#include <QStringList>

#include "project/project_element.h"
#include "project/project_system.h"

namespace regmill {

// One line per element, configurations left out: two blanks per level, the kind
// ("solution", "project", "folder", "file") and the name.
QString elementTreeText(ProjectElement* root);

// The element reached from the root through the names separated by "/" (the root
// itself for an empty path or "."), or null.
ProjectElement* findElementByPath(ProjectElement* root, const QString& path);

// The names of the property values set in any configuration of the element or of
// an element above it, sorted; Name, hidden and inherited_configurations are none.
QStringList settingNames(ProjectElement* element);

// "FILE MESSAGE" for a message that stands behind the file's name, "FILE: MESSAGE"
// for one that doesn't, "FILE:LINE: MESSAGE" for a parse error.
QString loadErrorText(const SolutionLoadError& error);

}  // namespace regmill
