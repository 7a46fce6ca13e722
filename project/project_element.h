// A node of the solution tree: a solution, configuration, project, folder or file,
// made by the parser for each tag of a solution file. Its attributes live in a
// sorted map of decoded strings once the tree is built; a configuration child holds
// property values as attributes named by the property class. Elements own their
// children as XML nodes do.
#pragma once
#include <QDateTime>
#include <QMap>
#include <QString>
#include <QStringList>
#include <vector>

#include "xml/xml_node.h"

namespace regmill {

enum class ProjectElementKind : int {
  Solution = 0,
  Configuration = 1,
  Project = 2,
  Folder = 3,
  File = 4,
  Other = 5,  // an import before it is replaced, or a tag of no meaning to the tree
};

class ProjectElement : public XMLElement {
 public:
  explicit ProjectElement(char* tag);
  ~ProjectElement() override = default;

  ProjectElementKind kind() const { return kind_; }
  bool is(ProjectElementKind kind) const { return kind_ == kind; }
  ProjectElement* parentElement() const;
  // The element children, in order.
  std::vector<ProjectElement*> childElements() const;
  // The nearest element at or above this one of the kind, or null.
  ProjectElement* enclosing(ProjectElementKind kind);

  // The Name attribute when not empty; else the file part of file_name; else "<NULL>".
  QString name() const;

  const QMap<QString, QString>& attributeMap() const { return attributes_; }
  // A null string when the attribute is not there.
  QString attribute(const QString& name) const { return attributes_.value(name, QString()); }
  bool hasAttribute(const QString& name) const { return attributes_.contains(name); }
  // Both mark the element modified.
  void setAttribute(const QString& name, const QString& value);
  void removeAttribute(const QString& name);
  // Takes the XML attributes into the map, decoded as UTF-8; the element is then
  // not modified.
  void takeXMLAttributes();

  // The configuration children by Name.
  const QMap<QString, ProjectElement*>& configurations() const { return configurations_; }
  ProjectElement* configuration(const QString& name) const { return configurations_.value(name); }
  void enterConfiguration(ProjectElement* configuration);
  void forgetConfiguration(const QString& name) { configurations_.remove(name); }

  bool isModified() const { return modified_; }
  void setModified(bool modified) { modified_ = modified; }

  // On a solution element.
  bool isLink() const { return isLink_; }
  void setLink(bool link) { isLink_ = link; }
  bool canModify() const { return canModify_; }
  void setCanModify(bool canModify) { canModify_ = canModify; }
  const QString& filePath() const { return filePath_; }  // the solution file, absolute
  void setFilePath(const QString& path) { filePath_ = path; }
  const QDateTime& fileTime() const { return fileTime_; }
  void setFileTime(const QDateTime& time) { fileTime_ = time; }
  // Configuration name to the names it inherits from, in order.
  const QMap<QString, QStringList>& inherited() const { return inherited_; }
  void rebuildInherited();
  QMap<QString, ProjectElement*>& projects() { return projects_; }
  const QMap<QString, ProjectElement*>& projects() const { return projects_; }

 private:
  ProjectElementKind kind_;
  bool modified_ = false;
  bool isLink_ = false;
  bool canModify_ = true;
  QMap<QString, QString> attributes_;
  QMap<QString, ProjectElement*> configurations_;
  QString filePath_;
  QDateTime fileTime_;
  QMap<QString, QStringList> inherited_;
  QMap<QString, ProjectElement*> projects_;
};

// Visits every element of the subtree, `top` first, in document order.
template <class Visit>
void forEachElement(ProjectElement* top, Visit&& visit) {
  std::vector<ProjectElement*> pending{top};
  while (!pending.empty()) {
    ProjectElement* element = pending.back();
    pending.pop_back();
    visit(element);
    std::vector<ProjectElement*> children = element->childElements();
    pending.insert(pending.end(), children.rbegin(), children.rend());
  }
}

}  // namespace regmill
