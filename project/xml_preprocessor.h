// The conditional preprocessor in its node form: it walks the library's own XML tree
// of a solution, property group or template file and carries out the directives
// written as elements (if, ifnot, ifdef, ifndef, ifex, switch, define, for,
// foreach, xmldef, xmlput, include), so that a plain tree without directives is
// left. Messages go to the document's reportError; no directive stops the walk.
#pragma once
#include <QString>

#include "project/macro_map.h"
#include "xml/qt_xml_document.h"

namespace regmill {

// Walks the sibling list from `first` on. The map is the walk's own: what a define
// adds holds for the following siblings and their descendants only. With
// `expandAttributes` every attribute value is macro-expanded before its element is
// looked at. A `first` without a parent must be the document's root; whatever
// element stands first in its place afterwards becomes the root.
void processConditionals(XMLPP2& document, XMLNode* first, const QString& fileName, MacroMap macros,
                         bool expandAttributes);

}  // namespace regmill
