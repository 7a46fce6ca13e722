// The list of values that the property grid shows for one element.
#include <QFileInfo>

#include "project/project_property_value.h"
#include "project/project_system.h"

namespace regmill {

namespace {

// The read-only facts shown above an element's settings; made once, shared.
const PropertyClass* factClass(const char* name, const char* caption) {
  static std::map<QString, std::unique_ptr<PropertyClass>> classes;
  std::unique_ptr<PropertyClass>& declared = classes[name];
  if (declared == nullptr) {
    PropertyClassFields fields;
    fields.name = name;
    fields.shortCaption = caption;
    fields.group = "File";
    fields.readOnly = true;
    declared = std::make_unique<PropertyClass>(fields);
  }
  return declared.get();
}

}  // namespace

PropertyValueList ProjectSystem::propertyList(ProjectElement* element, const QString& configuration) {
  const bool dynamic = element->is(ProjectElementKind::Folder) && element->hasAttribute(names_.dynamicFolderPath);
  PropertyValueList list = dynamic ? PropertyValueList() : baseProperties(element, configuration);
  if (dynamic)
    for (const QString* name : {&names_.dynamicFolderPath, &names_.dynamicFolderFilter, &names_.dynamicFolderRecurse,
                                &names_.dynamicFolderExclude})
      list.append(new DynamicFolderPropertyValue(ownClass(*name), element));
  auto fact = [&](const char* name, const char* caption, const QString& value) {
    list.append(new SimplePropertyValue(factClass(name, caption), value));
  };
  const QString path = absolutePath(element, configuration);
  if (element->is(ProjectElementKind::File) || element->is(ProjectElementKind::Solution)) {
    const QFileInfo file(path);
    fact("full_path", "Full Path", path);
    fact("file_name", "File Name", file.fileName());
    fact("file_size", "Size", file.exists() ? QString::number(file.size()) : QString());
    fact("file_modified", "Modified", file.exists() ? file.lastModified().toString(Qt::ISODate) : QString());
  }
  if (element->is(ProjectElementKind::Project)) fact("project_directory_path", "Directory", projectDirectory(element));
  for (const PropertyClass* propertyClass : kindClasses_.value(int(element->kind()))) {
    const QString& name = propertyClass->name();
    if (name == names_.projectDirectory)
      list.append(new ProjectDirectoryProjectPropertyValue(*this, propertyClass, element, configuration));
    else if (name == names_.projectMacros)
      list.append(new ProjectMacrosProjectPropertyValue(*this, propertyClass, element, configuration));
    else if (const auto* group = dynamic_cast<const PropertyValueGroupClass*>(propertyClass))
      list.append(new PropertyValueGroupValue(*this, group, element, configuration));
    else
      list.append(new ProjectPropertyValue(*this, propertyClass, element, configuration));
  }
  return list;
}

}  // namespace regmill
