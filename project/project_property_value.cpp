#include "project/project_property_value.h"

#include <cstring>

#include "project/xml_text.h"
#include "xml/xml_string.h"

namespace regmill {

ProjectPropertyValue::ProjectPropertyValue(ProjectSystem& system, const PropertyClass* propertyClass,
                                           ProjectElement* element, const QString& configuration)
    : PropertyValue(propertyClass),
      system_(system),
      element_(element),
      configuration_(propertyClass->isPerConfiguration() ? configuration : QString("Common")) {}

PropertyValue* ProjectPropertyValue::clone() const {
  return new ProjectPropertyValue(system_, propertyClass(), element_, configuration_);
}

bool ProjectPropertyValue::isDefault() const {
  ProjectElement* settings = element_->configuration(configuration_);
  return settings == nullptr || !settings->hasAttribute(propertyClass()->name());
}

QString ProjectPropertyValue::propertyValue() const {
  if (propertyClass()->type() == PropertyType::StringList)
    return system_.getLocalValue(element_, propertyClass(), configuration_);
  return system_.getValue(element_, propertyClass(), configuration_);
}

void ProjectPropertyValue::setPropertyValue(const QString& text) {
  system_.setProperty(element_, propertyClass(), configuration_, text);
  QString linked;
  if (propertyClass()->linkedClass() != nullptr && propertyClass()->linkedValue(text, linked))
    system_.setProperty(element_, propertyClass()->linkedClass(), configuration_, linked);
}

PropertyValue* ProjectDirectoryProjectPropertyValue::clone() const {
  return new ProjectDirectoryProjectPropertyValue(system_, propertyClass(), element(), configuration());
}

void ProjectDirectoryProjectPropertyValue::setPropertyValue(const QString& text) {
  ProjectPropertyValue::setPropertyValue(text);
  // setProperty announces a write to the classes it knows by name; a class of
  // another name that the host made a directory value is announced here.
  const ProjectPropertyNames& names = system_.propertyNames();
  const QString& name = propertyClass()->name();
  ProjectElement* project = element()->enclosing(ProjectElementKind::Project);
  if (project != nullptr && (project != element() || (name != names.projectDirectory && name != names.projectMacros)))
    system_.announceProjectChange(project);
}

PropertyValue* ProjectMacrosProjectPropertyValue::clone() const {
  return new ProjectMacrosProjectPropertyValue(system_, propertyClass(), element(), configuration());
}

DynamicFolderPropertyValue::DynamicFolderPropertyValue(const PropertyClass* propertyClass, ProjectElement* folder)
    : SimplePropertyValue(propertyClass, folder->attribute(propertyClass->name())), folder_(folder) {}

PropertyValue* DynamicFolderPropertyValue::clone() const {
  return new DynamicFolderPropertyValue(propertyClass(), folder_);
}

void DynamicFolderPropertyValue::setPropertyValue(const QString& text) {
  SimplePropertyValue::setPropertyValue(text);
  folder_->setAttribute(propertyClass()->name(), text);
}

namespace {

// Attribute texts as the description's HTML shows them.
QString escapedForDisplay(const QString& text) {
  QString out;
  for (QChar c : text) {
    switch (c.unicode()) {
      case u'&': out += "&amp;"; break;
      case u'>': out += "&gt;"; break;
      case u'<': out += "&lt;"; break;
      case u'"': out += "&quot;"; break;
      case u'\'': out += "&apos;"; break;
      case 0x00B7: out += "&middot;"; break;
      default: out += c;
    }
  }
  return out;
}

// The first folder of that name in the subtree, in document order.
ProjectElement* findFolder(ProjectElement* top, const QString& name) {
  std::vector<ProjectElement*> pending{top};
  while (!pending.empty()) {
    ProjectElement* element = pending.back();
    pending.pop_back();
    if (element != top && element->is(ProjectElementKind::Folder) && element->name() == name) return element;
    std::vector<ProjectElement*> children = element->childElements();
    pending.insert(pending.end(), children.rbegin(), children.rend());
  }
  return nullptr;
}

ProjectElement* findFileNamed(ProjectElement* folder, const QString& name) {
  std::vector<ProjectElement*> pending{folder};
  while (!pending.empty()) {
    ProjectElement* element = pending.back();
    pending.pop_back();
    if (element->is(ProjectElementKind::File) && element->name() == name) return element;
    for (ProjectElement* child : element->childElements())
      if (child->is(ProjectElementKind::Folder) || child->is(ProjectElementKind::File)) pending.push_back(child);
  }
  return nullptr;
}

}  // namespace

PropertyValueGroupValue::PropertyValueGroupValue(ProjectSystem& system, const PropertyValueGroupClass* groupClass,
                                                 ProjectElement* element, const QString& configuration)
    : ProjectPropertyValue(system, groupClass, element, configuration), groupClass_(groupClass) {}

PropertyValue* PropertyValueGroupValue::clone() const {
  return new PropertyValueGroupValue(system_, groupClass_, element(), configuration());
}

QString PropertyValueGroupValue::description() const {
  QString text = groupClass_->description();
  const XMLElement* entry = groupClass_->entry(propertyValue());
  if (entry == nullptr || entry->firstChild() == nullptr) return text;
  text += "<ul>";
  for (const XMLNode* node = entry->firstChild(); node != nullptr; node = node->nextSibling()) {
    if (!node->isElement()) continue;
    const auto& child = static_cast<const XMLElement&>(*node);
    text += QString("<li><b>") + child.getName() + "</b> ";
    if (child.hasAttribute("name")) text += escapedForDisplay(attributeText(&child, "name"));
    if (child.hasAttribute("name") && child.hasAttribute("value")) text += "=";
    if (child.hasAttribute("value")) text += escapedForDisplay(attributeText(&child, "value"));
    if (child.hasAttribute("configuration")) text += " (" + escapedForDisplay(attributeText(&child, "configuration")) + ")";
    text += "</li>";
  }
  return text + "</ul>";
}

void PropertyValueGroupValue::setPropertyValue(const QString& name) {
  const XMLElement* entry = groupClass_->entry(name);
  if (entry == nullptr) entry = groupClass_->entry(groupClass_->defaultValue());
  if (entry != nullptr) {
    for (const XMLNode* node = entry->firstChild(); node != nullptr; node = node->nextSibling()) {
      if (!node->isElement()) continue;
      const auto& child = static_cast<const XMLElement&>(*node);
      if (std::strcmp(child.getName(), "property") == 0) {
        const PropertyClass* target = system_.findClass(attributeText(&child, "name"));
        const QString where = child.hasAttribute("configuration") ? attributeText(&child, "configuration") : configuration();
        if (target != nullptr) system_.setProperty(element(), target, where, attributeText(&child, "value"));
      } else if (std::strcmp(child.getName(), "file") == 0) {
        applyFile(child);
      }
    }
  }
  ProjectPropertyValue::setPropertyValue(name);
}

void PropertyValueGroupValue::applyFile(const XMLElement& file) {
  ProjectElement* project = element()->enclosing(ProjectElementKind::Project);
  if (project == nullptr) return;
  const QString folderName = attributeText(&file, "folder");
  ProjectElement* folder = findFolder(project, folderName);
  if (folder == nullptr) {
    folder = new ProjectElement(copyXmlString("folder"));
    project->addChild(folder);
    folder->setAttribute("Name", folderName);
    project->setModified(true);
  }
  const QString name = attributeText(&file, "name");
  const QString fileName = attributeText(&file, "file_name");
  if (ProjectElement* existing = findFileNamed(folder, name)) {
    if (existing->attribute("file_name") != fileName) existing->setAttribute("file_name", fileName);
    return;
  }
  ProjectElement* added = system_.addFile(folder, fileName);
  added->setAttribute("Name", name);
}

}  // namespace regmill
