// Property values that live in a configuration of a project element: what the
// property grid shows for an element and a configuration. Reads resolve over the
// tree and the configurations; writes go through the project system, which records
// and signals them.
#pragma once
#include <QString>

#include "project/project_element.h"
#include "project/project_system.h"
#include "project/property_group_file.h"
#include "project/property_value.h"

namespace regmill {

class ProjectPropertyValue : public PropertyValue {
 public:
  // A class that is not per configuration is always stored under "Common".
  ProjectPropertyValue(ProjectSystem& system, const PropertyClass* propertyClass, ProjectElement* element,
                       const QString& configuration);

  PropertyValue* clone() const override;
  // False when this element's configuration of that name sets the attribute.
  bool isDefault() const override;
  // The resolved value; for a string list only the setting on this very element and
  // configuration, a null string when there is none.
  QString propertyValue() const override;
  // Stores the text, and the linked class's value when the class computes one.
  void setPropertyValue(const QString& text) override;

  ProjectElement* element() const { return element_; }
  const QString& configuration() const { return configuration_; }

 protected:
  ProjectSystem& system_;

 private:
  ProjectElement* element_;
  QString configuration_;
};

// A value that decides where a project's files are (its directory, its macros):
// after a write the enclosing project is announced as changed.
class ProjectDirectoryProjectPropertyValue : public ProjectPropertyValue {
 public:
  using ProjectPropertyValue::ProjectPropertyValue;
  PropertyValue* clone() const override;
  void setPropertyValue(const QString& text) override;
};

class ProjectMacrosProjectPropertyValue : public ProjectDirectoryProjectPropertyValue {
 public:
  using ProjectDirectoryProjectPropertyValue::ProjectDirectoryProjectPropertyValue;
  PropertyValue* clone() const override;
};

// One of the attributes that make a folder dynamic (path, filter, recurse,
// exclude): read from the folder element and written back to it.
class DynamicFolderPropertyValue : public SimplePropertyValue {
 public:
  DynamicFolderPropertyValue(const PropertyClass* propertyClass, ProjectElement* folder);
  PropertyValue* clone() const override;
  bool isReadOnly() const override { return false; }
  void setPropertyValue(const QString& text) override;

 private:
  ProjectElement* folder_;
};

// The value of a group property: choosing an entry applies the entry's property
// values and files to the element, then stores the entry's name.
class PropertyValueGroupValue : public ProjectPropertyValue {
 public:
  PropertyValueGroupValue(ProjectSystem& system, const PropertyValueGroupClass* groupClass, ProjectElement* element,
                          const QString& configuration);
  PropertyValue* clone() const override;
  // The class's long text, then an HTML list of what the chosen entry sets.
  QString description() const override;
  void setPropertyValue(const QString& name) override;

 private:
  void applyFile(const XMLElement& file);

  const PropertyValueGroupClass* groupClass_;
};

}  // namespace regmill
