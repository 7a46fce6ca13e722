#include "project/project_element.h"

#include <QFileInfo>
#include <cstring>

#include "project/macro_map.h"

namespace regmill {

namespace {

ProjectElementKind kindOfTag(const char* tag) {
  static const struct {
    const char* tag;
    ProjectElementKind kind;
  } kKinds[] = {{"solution", ProjectElementKind::Solution}, {"configuration", ProjectElementKind::Configuration},
                {"project", ProjectElementKind::Project},   {"folder", ProjectElementKind::Folder},
                {"file", ProjectElementKind::File}};
  for (const auto& entry : kKinds)
    if (std::strcmp(tag, entry.tag) == 0) return entry.kind;
  return ProjectElementKind::Other;
}

}  // namespace

ProjectElement::ProjectElement(char* tag) : XMLElement(tag), kind_(kindOfTag(tag)) {}

ProjectElement* ProjectElement::parentElement() const {
  XMLNode* node = parent();
  return node != nullptr && node->isElement() ? dynamic_cast<ProjectElement*>(node) : nullptr;
}

std::vector<ProjectElement*> ProjectElement::childElements() const {
  std::vector<ProjectElement*> children;
  for (XMLNode* node = firstChild(); node != nullptr; node = node->nextSibling())
    if (node->isElement()) children.push_back(static_cast<ProjectElement*>(node));
  return children;
}

ProjectElement* ProjectElement::enclosing(ProjectElementKind kind) {
  for (ProjectElement* element = this; element != nullptr; element = element->parentElement())
    if (element->kind_ == kind) return element;
  return nullptr;
}

QString ProjectElement::name() const {
  const QString given = attribute("Name");
  if (!given.isEmpty()) return given;
  const QString fileName = attribute("file_name");
  if (!fileName.isEmpty()) return QFileInfo(fileName).fileName();
  return "<NULL>";
}

void ProjectElement::setAttribute(const QString& name, const QString& value) {
  attributes_.insert(name, value);
  modified_ = true;
}

void ProjectElement::removeAttribute(const QString& name) {
  attributes_.remove(name);
  modified_ = true;
}

void ProjectElement::takeXMLAttributes() {
  for (const XMLAttribute* attribute = attributes(); attribute != nullptr; attribute = attribute->next)
    attributes_.insert(QString::fromLatin1(attribute->name),
                       QString::fromUtf8(attribute->value == nullptr ? "" : attribute->value));
  modified_ = false;
}

void ProjectElement::enterConfiguration(ProjectElement* configuration) {
  configurations_.insert(configuration->attribute("Name"), configuration);
}

void ProjectElement::rebuildInherited() {
  inherited_.clear();
  for (ProjectElement* configuration : configurations_) {
    const QString list = configuration->attribute("inherited_configurations");
    if (!list.isNull()) inherited_.insert(configuration->attribute("Name"), list.split(u';', Qt::SkipEmptyParts));
  }
}

}  // namespace regmill
