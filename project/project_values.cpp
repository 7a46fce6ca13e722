// Resolution of property values over the element tree and the configurations, the
// macro map of an element, and the paths of projects and files.
#include <QDir>
#include <QFileInfo>
#include <algorithm>
#include <cstring>

#include "project/macro_expander.h"
#include "project/project_system.h"

namespace regmill {

namespace {

const QString kCommon = QStringLiteral("Common");

QString joined(const QString& directory, const QString& path) {
  return QFileInfo(path).isRelative() ? QDir::cleanPath(QDir(directory).filePath(path)) : QDir::cleanPath(path);
}

}  // namespace

QString ProjectSystem::solutionDirectory(ProjectElement* element) {
  ProjectElement* solution = element == nullptr ? root_.get() : element->enclosing(ProjectElementKind::Solution);
  return solution == nullptr ? QString() : QFileInfo(solution->filePath()).absolutePath();
}

QString ProjectSystem::projectDirectory(ProjectElement* element) {
  ProjectElement* project = element == nullptr ? nullptr : element->enclosing(ProjectElementKind::Project);
  if (project == nullptr) return solutionDirectory(root_.get());
  const QString given = macroExpander().expandGlobal(getLocalValue(project, ownClass(names_.projectDirectory), kCommon));
  if (given.isEmpty()) return solutionDirectory(project);
  return joined(solutionDirectory(project), given);
}

QString ProjectSystem::rawPath(ProjectElement* element, const QString& configuration) {
  const QString fileName = element->attribute("file_name");
  if (!fileName.contains(u'$')) return fileName;
  return expandFor(element->enclosing(ProjectElementKind::Project), fileName, configuration);
}

QString ProjectSystem::absolutePath(ProjectElement* element, const QString& configuration) {
  if (element->is(ProjectElementKind::Solution)) return element->filePath();
  if (!element->is(ProjectElementKind::File) && !element->is(ProjectElementKind::Folder)) return QString();
  const QString raw = rawPath(element, configuration);
  return raw.isEmpty() ? QString() : joined(projectDirectory(element), raw);
}

QString ProjectSystem::getLocalValue(ProjectElement* element, const PropertyClass* propertyClass,
                                     const QString& configuration) {
  ProjectElement* settings =
      element == nullptr ? nullptr : element->configuration(propertyClass->isPerConfiguration() ? configuration : kCommon);
  return settings == nullptr ? QString() : settings->attribute(propertyClass->name());
}

bool ProjectSystem::tryConfiguration(ProjectElement* element, const QString& name, const QString& attribute,
                                     std::vector<TraceEntry>* trace, QString& gathered) {
  ProjectElement* settings = element->configuration(name);
  // The attribute's presence counts, not its text: an empty attribute is a value.
  if (settings == nullptr || !settings->hasAttribute(attribute)) return false;
  const QString text = settings->attribute(attribute);
  if (trace != nullptr) trace->push_back({element, name, text});
  gathered = gathered.isEmpty() ? text : text + ";" + gathered;
  return true;
}

const QStringList* ProjectSystem::inheritanceList(ProjectElement* element, const QString& configuration) {
  // The nearest solution that gives a non-empty list for the configuration decides.
  for (ProjectElement* solution = element->enclosing(ProjectElementKind::Solution); solution != nullptr;
       solution = solution->parentElement() == nullptr ? nullptr
                                                       : solution->parentElement()->enclosing(ProjectElementKind::Solution)) {
    auto found = solution->inherited().constFind(configuration);
    if (found != solution->inherited().constEnd() && !found->isEmpty()) return &found.value();
  }
  return nullptr;
}

QString ProjectSystem::getValue(ProjectElement* element, const PropertyClass* propertyClass,
                                const QString& configuration, std::vector<TraceEntry>* trace) {
  const QString name = propertyClass->isPerConfiguration() ? configuration : kCommon;
  const QString& attribute = propertyClass->name();
  const bool common = name == kCommon;
  // A string list gathers the values of every level, outermost first; any other
  // type takes the first it finds. The element level is the outer loop, so a file's
  // "Common" beats its project's named configuration.
  const bool firstFindWins = propertyClass->type() != PropertyType::StringList;
  QString gathered;
  bool found = false;
  for (ProjectElement* level = element; level != nullptr; level = level->parentElement()) {
    if (level->configurations().isEmpty()) continue;
    found |= tryConfiguration(level, name, attribute, trace, gathered);
    if (found && firstFindWins) return gathered;
    if (common) continue;
    // Inheritance is not transitive: only the listed names are tried.
    if (const QStringList* inherited = inheritanceList(level, name)) {
      for (const QString& parent : *inherited) {
        found |= tryConfiguration(level, parent, attribute, trace, gathered);
        if (found && firstFindWins) return gathered;
      }
    }
    found |= tryConfiguration(level, kCommon, attribute, trace, gathered);
    if (found && firstFindWins) return gathered;
  }
  if (found) return gathered;
  if (trace != nullptr) trace->push_back({nullptr, QString(), propertyClass->defaultValue()});
  return propertyClass->defaultValue();
}

QString ProjectSystem::getExpandedValue(ProjectElement* element, const PropertyClass* propertyClass,
                                        const QString& configuration) {
  return expandFor(element, getValue(element, propertyClass, configuration), configuration);
}

QStringList ProjectSystem::getList(ProjectElement* element, const PropertyClass* propertyClass,
                                   const QString& configuration, bool keepEscapes, bool expand, bool quote,
                                   const QString& prefix) {
  const QString value = getValue(element, propertyClass, configuration);
  if (value.isEmpty()) return {};
  QStringList items = keepEscapes ? splitMacroString(value) : value.split(u';', Qt::SkipEmptyParts);
  if (expand && std::any_of(items.begin(), items.end(), [](const QString& item) { return item.contains(u'$'); })) {
    const MacroMap macros = getMacros(element, configuration);
    for (QString& item : items) item = macroExpander().expand(macros, item, true, true);
  }
  for (QString& item : items) item = quote ? prefix + "\"" + item + "\"" : prefix + item;
  return items;
}

QString ProjectSystem::expandFor(ProjectElement* element, const QString& text, const QString& configuration) {
  if (!text.contains(u'$')) return text;
  return macroExpander().expand(getMacros(element, configuration), text, true, true);
}

MacroMap ProjectSystem::getMacros(ProjectElement* element, const QString& configuration) {
  MacroExpander& expander = macroExpander();
  MacroMap macros = parseMacroString(expander.expandGlobal(getValue(element, ownClass(names_.projectMacros), configuration)));
  if (element != nullptr) {
    macros.insert("ElementName", element->name());
    ProjectElement* parent = element->parentElement();
    if (parent != nullptr && parent->is(ProjectElementKind::Folder)) macros.insert("FolderName", parent->name());
    QStringList folders;
    for (ProjectElement* level = parent; level != nullptr; level = level->parentElement())
      if (level->is(ProjectElementKind::Folder)) folders.prepend(level->name());
    macros.insert("FolderPath", folders.join(u'/'));
    if (ProjectElement* project = element->enclosing(ProjectElementKind::Project)) {
      macros.insert("ProjectDir", projectDirectory(project));
      macros.insert("ProjectName", project->name());
    }
    if (ProjectElement* solution = element->enclosing(ProjectElementKind::Solution)) {
      const QFileInfo file(solution->filePath());
      macros.insert("SolutionDir", file.absolutePath());
      macros.insert("SolutionName", file.fileName().section(u'.', 0, 0));
      macros.insert("SolutionFileName", file.fileName());
      macros.insert("SolutionPath", file.absoluteFilePath());
      macros.insert("SolutionExt", file.completeSuffix());
    }
    if ((element->is(ProjectElementKind::File) || element->is(ProjectElementKind::Folder)) &&
        element->hasAttribute("file_name")) {
      const QString raw = rawPath(element, configuration);
      const QFileInfo path(raw);
      macros.insert("InputDir", path.path());
      macros.insert("InputName", path.completeBaseName());
      macros.insert("InputFileName", path.fileName());
      macros.insert("InputExt", path.suffix());
      macros.insert("InputPath", absolutePath(element, configuration));
      macros.insert("RelInputPath", raw);
      macros.insert("RelInputDir", path.path());
    }
  }
  macros.insert("Configuration", configuration);
  macros.insert("TargetName", targetMacro(element, configuration));
  macros.insert("HostName", hostMacro(element, configuration));
  macros.insert("OutputMacro", outputMacro(element, configuration));
  macros.insert("PackageExtension", "lkPackage");
  addGroupMacros(element, configuration, macros);
  addProjectMacros(element, configuration, macros);
  addDirectoryMacros(element, configuration, macros);
  return macros;
}

void ProjectSystem::addGroupMacros(ProjectElement* element, const QString& configuration, MacroMap& macros) {
  const QString path = macroExpander().expandGlobal(getValue(element, ownClass(names_.groupFile), configuration));
  const PropertyValueGroupFile* file = groupFiles_.lookup(path);
  if (file == nullptr) return;
  const QStringList* inherited = element == nullptr ? nullptr : inheritanceList(element, configuration);
  auto text = [](const XMLElement* macro, const char* name) { return QString::fromUtf8(macro->getAttribute(name)); };
  for (const PropertyValueGroupClass* group : file->classes()) {
    const QString value = getValue(element, group, configuration);
    macros.insert(group->name(), value);
    const XMLElement* entry = group->entry(value);
    if (entry == nullptr) continue;
    for (const XMLNode* node = entry->firstChild(); node != nullptr; node = node->nextSibling()) {
      if (!node->isElement() || std::strcmp(node->getName(), "macro") != 0) continue;
      const auto* macro = static_cast<const XMLElement*>(node);
      if (macro->hasAttribute("configuration")) {
        const QString only = text(macro, "configuration");
        if (only != kCommon && only != configuration && (inherited == nullptr || !inherited->contains(only))) continue;
      }
      if (macro->hasAttribute("property") &&
          getValue(element, ownClass(text(macro, "property")), configuration) != text(macro, "property_value"))
        continue;
      macros.insert(text(macro, "name"), text(macro, "value"));
    }
  }
}

void ProjectSystem::addDirectoryMacros(ProjectElement* element, const QString& configuration, MacroMap& macros) {
  MacroExpander& expander = macroExpander();
  auto resolved = [&](const QString& name) {
    return expander.expand(macros, getValue(element, ownClass(name), configuration), true, true);
  };
  const QString output = resolved(names_.outputDirectory);
  macros.insert("OutDir", output.isEmpty() ? "." : output);
  const QString intermediate = resolved(names_.intermediateDirectory);
  macros.insert("IntDir", intermediate);
  const QString object = resolved(names_.objectDirectory);
  macros.insert("ObjDir", object.isEmpty() ? "." : object);
  if (!intermediate.isEmpty() && !object.isEmpty()) {
    const QString relative = QDir(intermediate).relativeFilePath(object);
    if (!QDir::isAbsolutePath(relative)) macros.insert("IntToOutDir", relative);
  }
  // The build macro property may hold several; the last one counts.
  const QStringList buildMacros = getValue(element, ownClass(names_.buildMacros), configuration).split(u';', Qt::SkipEmptyParts);
  macros.insert("BuildMacro", buildMacros.isEmpty() ? QString("") : expander.expand(macros, buildMacros.last(), true, true));
}

QStringList ProjectSystem::configurationNames(ProjectElement* element, int mode) {
  // The enclosing solution's configurations and those of every element above it.
  ProjectElement* start = element == nullptr ? root_.get() : element->enclosing(ProjectElementKind::Solution);
  QStringList names;
  auto take = [&](ProjectElement* configuration) {
    const QString name = configuration->attribute("Name");
    const bool isPrivate = configuration->attribute("hidden") == "Yes";
    bool wanted = name == kCommon ? (mode & 1) != 0 : isPrivate ? (mode & 2) != 0 : (mode & 4) != 0;
    if (wanted && name != kCommon && !isPrivate && !names_.configurationFilter.isEmpty())
      wanted = getExpandedValue(configuration->parentElement(), ownClass(names_.configurationFilter), name) ==
               configurationFilterValue();
    if (wanted && !names.contains(name)) names.append(name);
  };
  for (ProjectElement* level = start; level != nullptr; level = level->parentElement())
    for (ProjectElement* configuration : level->configurations()) take(configuration);
  names.sort();
  return names.isEmpty() ? QStringList{kCommon} : names;
}

}  // namespace regmill
