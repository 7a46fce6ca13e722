#include "project/project_listing.h"

#include <QSet>

namespace regmill {

namespace {

const char* kindWord(ProjectElementKind kind) {
  switch (kind) {
    case ProjectElementKind::Solution: return "solution";
    case ProjectElementKind::Configuration: return "configuration";
    case ProjectElementKind::Project: return "project";
    case ProjectElementKind::Folder: return "folder";
    case ProjectElementKind::File: return "file";
    case ProjectElementKind::Other: break;
  }
  return "element";
}

}  // namespace

QString elementTreeText(ProjectElement* root) {
  QString text;
  std::vector<std::pair<ProjectElement*, int>> pending{{root, 0}};
  while (!pending.empty()) {
    auto [element, depth] = pending.back();
    pending.pop_back();
    text += QString(depth * 2, u' ') + kindWord(element->kind()) + " " + element->name() + "\n";
    std::vector<ProjectElement*> children = element->childElements();
    for (auto child = children.rbegin(); child != children.rend(); ++child)
      if (!(*child)->is(ProjectElementKind::Configuration)) pending.emplace_back(*child, depth + 1);
  }
  return text;
}

ProjectElement* findElementByPath(ProjectElement* root, const QString& path) {
  ProjectElement* element = root;
  for (const QString& name : path.split(u'/', Qt::SkipEmptyParts)) {
    if (name == ".") continue;
    ProjectElement* next = nullptr;
    for (ProjectElement* child : element->childElements())
      if (!child->is(ProjectElementKind::Configuration) && child->name() == name) {
        next = child;
        break;
      }
    if (next == nullptr) return nullptr;
    element = next;
  }
  return element;
}

QStringList settingNames(ProjectElement* element) {
  QSet<QString> names;
  for (ProjectElement* level = element; level != nullptr; level = level->parentElement())
    for (ProjectElement* configuration : level->configurations())
      for (auto attribute = configuration->attributeMap().constBegin(); attribute != configuration->attributeMap().constEnd(); ++attribute)
        names.insert(attribute.key());
  for (const char* reserved : {"Name", "hidden", "inherited_configurations"}) names.remove(reserved);
  QStringList sorted = names.values();
  sorted.sort();
  return sorted;
}

QString loadErrorText(const SolutionLoadError& error) {
  if (error.isParseError) return error.file + ":" + QString::number(error.line) + ": " + error.message;
  if (error.message.startsWith(u' ')) return error.file + error.message;
  return error.file + ": " + error.message;
}

}  // namespace regmill
