// Editing the structure of a solution: its configurations, added, renamed and
// removed, and files added to the right folder.
#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>

#include "project/project_system.h"
#include "xml/xml_string.h"

namespace regmill {

namespace {

// The reason a name cannot be a new configuration of the solution, or an empty text.
QString refusal(ProjectElement* solution, const QString& name) {
  for (QChar c : QStringLiteral("/<>:\\|?*\""))
    if (name.contains(c)) return QString("The character '%1' is not allowed in configuration names").arg(c);
  if (name == "Common" || solution->configuration(name) != nullptr)
    return QString("The configuration '%1' already exists in solution %2").arg(name, solution->name());
  return QString();
}

}  // namespace

void ProjectSystem::removeConfiguration(ProjectElement* element, const QString& name) {
  forEachElement(element, [&](ProjectElement* level) {
    ProjectElement* configuration = level->configuration(name);
    if (configuration == nullptr) return;
    level->forgetConfiguration(name);
    level->detachChild(configuration);
    delete configuration;
    level->setModified(true);
  });
  if (ProjectElement* solution = element->enclosing(ProjectElementKind::Solution)) {
    solution->rebuildInherited();
    emit configurationsChanged(solution);
  }
}

ProjectElement* ProjectSystem::addSolutionConfiguration(ProjectElement* solution, const QString& name,
                                                        bool isPrivate, QString& message) {
  const QString simplified = name.simplified();
  message = refusal(solution, simplified);
  if (!message.isEmpty()) return nullptr;
  ProjectElement* configuration = addConfiguration(solution, simplified);
  if (isPrivate) configuration->setAttribute("hidden", "Yes");
  return configuration;
}

bool ProjectSystem::renameConfiguration(ProjectElement* solution, const QString& from, const QString& to,
                                        QString& message) {
  const QString simplified = to.simplified();
  message = refusal(solution, simplified);
  if (!message.isEmpty()) return false;
  forEachElement(solution, [&](ProjectElement* level) {
    for (ProjectElement* configuration : level->configurations()) {
      const QString inherited = configuration->attribute("inherited_configurations");
      QStringList names = inherited.split(u';');
      if (inherited.isNull() || !names.contains(from)) continue;
      names.replaceInStrings(QRegularExpression("^" + QRegularExpression::escape(from) + "$"), simplified);
      configuration->setAttribute("inherited_configurations", names.join(u';'));
    }
    if (ProjectElement* configuration = level->configuration(from)) {
      level->forgetConfiguration(from);
      configuration->setAttribute("Name", simplified);
      level->enterConfiguration(configuration);
    }
  });
  forEachElement(solution, [](ProjectElement* level) {
    if (level->is(ProjectElementKind::Solution)) level->rebuildInherited();
  });
  emit configurationsChanged(solution);
  return true;
}

ProjectElement* ProjectSystem::addFile(ProjectElement* parent, const QString& path) {
  ProjectElement* target = parent;
  if (!parent->is(ProjectElementKind::Folder)) {
    const QString extension = QFileInfo(path).suffix().toLower();
    for (ProjectElement* folder : parent->childElements()) {
      if (!folder->is(ProjectElementKind::Folder)) continue;
      QString filter = folder->attribute("filter");
      if (filter.isNull()) filter = getLocalValue(folder, ownClass(names_.folderFilter), "Common");
      if (filter.split(QRegularExpression("[,;]")).contains(extension)) {
        target = folder;
        break;
      }
    }
  }
  auto* file = new ProjectElement(copyXmlString("file"));
  target->addChild(file);
  file->setAttribute("file_name", path);
  target->setModified(true);
  if (ProjectElement* project = target->enclosing(ProjectElementKind::Project)) emit projectChanged(project);
  return file;
}

}  // namespace regmill
