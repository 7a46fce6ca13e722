// Attribute values of the library's XML tree as QStrings: the tree holds UTF-8.
#pragma once
#include <QString>

#include "xml/xml_node.h"
#include "xml/xml_string.h"

namespace regmill {

// A null string when the attribute is not there.
inline QString attributeText(const XMLElement* element, const char* name) {
  const char* value = element->getAttribute(name);
  return value == nullptr ? QString() : QString::fromUtf8(value);
}

inline void setAttributeText(XMLElement* element, const char* name, const QString& value) {
  element->setAttribute(copyXmlString(name), copyXmlString(value.toUtf8().toStdString()));
}

}  // namespace regmill
