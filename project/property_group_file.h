// Property group files (propertyGroups.xml): each `group` child of the root declares
// a group property, an enumeration whose entries (`groupEntry`) each stand for a
// bundle of property values, files and macros. Files are read through the
// conditional preprocessor and kept in a cache by path.
#pragma once
#include <QDateTime>
#include <QString>
#include <memory>
#include <vector>

#include "project/property_class.h"
#include "xml/qt_xml_document.h"

namespace regmill {

class PropertyValueGroupClass : public PropertyClass {
 public:
  // Made from a `group` element, which must outlive the class.
  PropertyValueGroupClass(const XMLElement* declaration, bool loaderFlag);

  const XMLElement* declaration() const { return declaration_; }
  bool loaderFlag() const { return loaderFlag_; }
  // The `groupEntry` child of that name, or null.
  const XMLElement* entry(const QString& name) const;

 private:
  const XMLElement* declaration_;
  bool loaderFlag_;
};

// One group file: its document and the classes it declares, followed by those of
// the group files found in the package and target folders.
class PropertyValueGroupFile : public XMLPP2 {
 public:
  // The preprocessor's messages go to the warning channel.
  void reportError(const QString& message) override;

  // Reads and preprocesses the file and makes its classes; false when it cannot be read.
  bool read(const QString& path);
  const QString& path() const { return path_; }
  const QDateTime& fileTime() const { return fileTime_; }

  // Own classes first, then those appended from other files, in order.
  const std::vector<const PropertyValueGroupClass*>& classes() const { return classes_; }
  void appendClasses(const PropertyValueGroupFile& other);
  // The first class whose declaring element's `name` is the name.
  const PropertyValueGroupClass* findClass(const QString& name) const;

 private:
  QString path_;
  QDateTime fileTime_;
  std::vector<std::unique_ptr<PropertyValueGroupClass>> ownClasses_;
  std::vector<const PropertyValueGroupClass*> classes_;
};

// Group files by path. A file whose time stamp has moved on is read anew; its old
// object stays alive, since values may still point to its classes.
class PropertyGroupFileCache {
 public:
  // The file object for the path; one shared object without a file of its own for
  // an empty path or "None"; null for a file that cannot be read.
  const PropertyValueGroupFile* lookup(const QString& path);

 private:
  // Appends the classes of every propertyGroups.xml one level below the package
  // libraries and the workbench's targets and samples; a folder that is missing
  // adds nothing.
  void appendScannedClasses(PropertyValueGroupFile& file);

  std::vector<std::unique_ptr<PropertyValueGroupFile>> cached_;
  std::vector<std::unique_ptr<PropertyValueGroupFile>> stale_;
  std::vector<std::unique_ptr<PropertyValueGroupFile>> scanned_;
  std::unique_ptr<PropertyValueGroupFile> shared_;
};

}  // namespace regmill
