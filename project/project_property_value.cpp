#include "project/project_property_value.h"

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

}  // namespace regmill
