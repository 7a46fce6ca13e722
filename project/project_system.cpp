#include "project/project_system.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>

#include "project/macro_expander.h"
#include "project/xml_preprocessor.h"
#include "xml/qt_xml_document.h"
#include "xml/xml_string.h"

namespace regmill {

namespace {

ProjectSystem* currentSystem = nullptr;

const QString kCommon = QStringLiteral("Common");

// The document a solution file is parsed into: every element is a ProjectElement
// from the moment it is parsed, and a malformed directive never stops the load.
class ProjectSystemXMLPP2 : public XMLPP2 {
 public:
  XMLElement* createElement(char* tag) override { return new ProjectElement(tag); }
  void reportError(const QString&) override {}
};

[[noreturn]] void fail(const QString& file, const QString& message) { throw SolutionLoadError{file, false, message}; }

// A progress step that ends when the scope does.
class ProgressStep {
 public:
  ProgressStep(ProjectLoadProgressInterface* progress, const QString& text, int style) : progress_(progress) {
    if (progress_ != nullptr) progress_->beginStep(text, style);
  }
  ~ProgressStep() {
    if (progress_ != nullptr) progress_->endStep();
  }
  ProgressStep(const ProgressStep&) = delete;
  ProgressStep& operator=(const ProgressStep&) = delete;

 private:
  ProjectLoadProgressInterface* progress_;
};

// The target code's name where the build knows one.
QString targetName(const QString& code) { return code.toInt() == ProjectSystem::kOwnTarget ? QString("ARM") : code; }

}  // namespace

ProjectSystem* projectSystem() { return currentSystem; }

ProjectSystem::ProjectSystem(ProjectPropertyNames names) : names_(std::move(names)) { currentSystem = this; }

ProjectSystem::~ProjectSystem() {
  if (currentSystem == this) currentSystem = nullptr;
}

const PropertyClass* ProjectSystem::ownClass(const QString& name, PropertyType type) {
  std::unique_ptr<PropertyClass>& declared = ownClasses_[name + "\n" + QString::number(int(type))];
  if (declared == nullptr) declared = std::make_unique<PropertyClass>(PropertyClassFields{.name = name, .type = type});
  return declared.get();
}

void ProjectSystem::clear() {
  root_.reset();
  solutions_.clear();
  projectNames_.clear();
  solutionNames_.clear();
  changes_.clear();
  templatesFile_.clear();
  templatedProjects_.clear();
  dynamicFolders_.clear();
}

// Reads solution files, the root and those it links, into project elements.
class ProjectSystem::Loader {
 public:
  Loader(ProjectSystem& system, ProjectFileNotFoundErrorHandler* handler, ProjectLoadProgressInterface* progress)
      : system_(system), handler_(handler), progress_(progress) {}

  // The file's solution element, owned by the caller. `macroString` is null when
  // the file is not linked with macros.
  ProjectElement* readFile(const QString& directory, QString path, const QString& macroString);
  // Counts the file as being loaded, so that a link back to it fails as a loop.
  void markLoading(const QString& file) { loading_.append(QFileInfo(file).absoluteFilePath()); }

 private:
  std::unique_ptr<ProjectElement> parse(const QString& path, const QString& macroString);
  void runLoadCommands(ProjectElement* solution, const QString& path);
  void buildTree(ProjectElement* solution);
  void replaceImport(ProjectElement* import, const QString& directory);

  ProjectSystem& system_;
  ProjectFileNotFoundErrorHandler* handler_;
  ProjectLoadProgressInterface* progress_;
  QStringList loading_;
  std::vector<std::unique_ptr<ProjectElement>> replacedImports_;
};

ProjectElement* ProjectSystem::Loader::readFile(const QString& directory, QString path, const QString& macroString) {
  if (!QFileInfo::exists(path) && !directory.isEmpty() && QFileInfo(path).isRelative())
    path = QDir(directory).filePath(path);
  if (!QFileInfo::exists(path) && (handler_ == nullptr || !handler_->fileNotFound(path)))
    fail(path, " does not exist");
  QFile file(path);
  if (QFileInfo(path).isDir() || !file.open(QIODevice::ReadOnly)) fail(path, " cannot access");
  file.close();
  ProgressStep step(progress_, "Loading solution " + QFileInfo(path).fileName(), 2);
  const QString absolute = QFileInfo(path).absoluteFilePath();
  // A link may not lead back to a solution being loaded; two links may reach one file.
  if (loading_.contains(absolute)) fail(path, " solution already loaded");
  std::unique_ptr<ProjectElement> solution = parse(path, macroString);
  loading_.append(absolute);
  runLoadCommands(solution.get(), absolute);
  const QString templates = macroExpander().expandGlobal(QString::fromUtf8(solution->getAttribute("templates_file")));
  if (!templates.isEmpty()) system_.templatesFile_ = templates;
  solution->setFilePath(absolute);
  buildTree(solution.get());
  solution->setFileTime(QFileInfo(absolute).lastModified());
  loading_.removeAll(absolute);
  if (solution->attribute("version") != "2") {
    // Older files read as version 2 without counting as a change.
    solution->setAttribute("version", "2");
    forEachElement(solution.get(), [](ProjectElement* element) { element->setModified(false); });
    system_.changes_.clear();
  }
  replacedImports_.clear();
  return solution.release();
}

std::unique_ptr<ProjectElement> ProjectSystem::Loader::parse(const QString& path, const QString& macroString) {
  ProjectSystemXMLPP2 document;
  Status loaded = document.load(path);
  if (!loaded.ok()) throw SolutionLoadError{path, true, QString::fromUtf8(document.errorText()), int(loaded.line()), 0};
  processConditionals(document, document.root(), path, parseMacroString(macroString), !macroString.isNull());
  const char* type = document.documentType();
  if (type == nullptr || std::strcmp(type, "Larkloom_Project_File") != 0) fail(path, " not a solution file");
  XMLNode* root = document.releaseRoot();
  if (root == nullptr || !root->isElement()) {
    delete root;
    fail(path, " is a malformed solution file (bad XML)");
  }
  auto* solution = static_cast<ProjectElement*>(root);
  if (!solution->is(ProjectElementKind::Solution)) {
    delete solution;
    fail(path, " not a solution file");
  }
  return std::unique_ptr<ProjectElement>(solution);
}

void ProjectSystem::Loader::runLoadCommands(ProjectElement* solution, const QString& path) {
  MacroExpander& expander = macroExpander();
  const QString commands = expander.expandGlobal(QString::fromUtf8(solution->getAttribute("load_command")));
  if (commands.isEmpty()) return;
  ProgressStep step(progress_, "Executing load commands", 0);
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  const QString settings = expander.expandGlobal(QString::fromUtf8(solution->getAttribute("load_command_environment")));
  for (const QString& entry : settings.split(u';')) {
    const qsizetype equals = entry.indexOf(u'=');
    if (equals <= 0) continue;
    environment.insert(entry.left(equals), entry.mid(equals + 1));
    qputenv(entry.left(equals).toLocal8Bit().constData(), entry.mid(equals + 1).toLocal8Bit());
  }
  // One after the other, in the solution's folder; the first that fails ends the load.
  for (const QString& command : commands.split("&&", Qt::SkipEmptyParts)) {
    QStringList words = QProcess::splitCommand(command);
    int code = -1;
    if (!words.isEmpty()) {
      QProcess process;
      process.setProcessEnvironment(environment);
      process.setWorkingDirectory(QFileInfo(path).absolutePath());
      process.setProcessChannelMode(QProcess::MergedChannels);
      process.start(words.takeFirst(), words);
      if (process.waitForStarted() && process.waitForFinished(-1) && process.exitStatus() == QProcess::NormalExit)
        code = process.exitCode();
      else if (process.error() != QProcess::FailedToStart)
        code = process.exitCode() == 0 ? 1 : process.exitCode();
      if (progress_ != nullptr)
        for (const QString& line : QString::fromLocal8Bit(process.readAll()).split(u'\n', Qt::SkipEmptyParts)) progress_->addLine(line);
    }
    if (code == -1) fail(path, "solution load command \"" + command.trimmed() + "\" not found");
    if (code != 0) fail(path, "solution load command failed (" + QString::number(code) + ") ");
  }
}

void ProjectSystem::Loader::buildTree(ProjectElement* solution) {
  const QString directory = QFileInfo(solution->filePath()).absolutePath();
  std::vector<ProjectElement*> pending{solution};
  while (!pending.empty()) {
    ProjectElement* element = pending.back();
    pending.pop_back();
    if (std::strcmp(element->getName(), "import") == 0 && element->parentElement() != nullptr &&
        element->parentElement()->is(ProjectElementKind::Solution)) {
      replaceImport(element, directory);
      continue;
    }
    element->takeXMLAttributes();
    if (element->hasAttribute("template_name")) system_.templatedProjects_.push_back(element);
    if (element->is(ProjectElementKind::Folder) && element->hasAttribute(system_.names_.dynamicFolderPath))
      system_.dynamicFolders_.push_back(element);
    std::vector<ProjectElement*> children = element->childElements();
    for (ProjectElement* child : children) {
      if (!child->is(ProjectElementKind::Configuration)) continue;
      child->takeXMLAttributes();
      element->enterConfiguration(child);
    }
    pending.insert(pending.end(), children.rbegin(), children.rend());
  }
}

void ProjectSystem::Loader::replaceImport(ProjectElement* import, const QString& directory) {
  import->takeXMLAttributes();
  const QString fileName = import->attribute("file_name");
  const QString macros = import->hasAttribute("macros") ? macroExpander().expandGlobal(import->attribute("macros")) : QString();
  ProjectElement* linked = readFile(directory, macroExpander().expandGlobal(fileName), macros);
  linked->setAttribute("file_name", fileName);
  linked->setLink(true);
  linked->setCanModify(import->attribute("can_modify_solution") != "No");
  linked->setModified(false);
  import->parent()->replaceChild(import, linked);
  replacedImports_.emplace_back(import);
}

void ProjectSystem::loadSolution(const QString& file, ProjectFileNotFoundErrorHandler* fileNotFound,
                                 ProjectLoadProgressInterface* progress, bool checkTarget) {
  beginLoad(file);
  clear();
  Loader loader(*this, fileNotFound, progress);
  root_.reset(loader.readFile(QString(), file, QString()));
  try {
    const QString target = root_->attribute("target");
    if (checkTarget && !target.isNull() && target.toInt() != 0 && target.toInt() != kOwnTarget)
      fail(root_->filePath(), "invalid solution target (" + targetName(target) + ")");
    if (!templatedProjects_.empty()) {
      ProgressStep step(progress, "Expanding templated projects", 0);
      // The collection of project templates is empty: no template can be found.
      ProjectElement* project = templatedProjects_.front();
      const QString name = project->attribute("template_name");
      if (name.isEmpty()) fail(root_->filePath(), "no template for project " + project->name());
      fail(root_->filePath(), "project template not found" + name);
    }
    forEachElement(root_.get(), [](ProjectElement* element) { element->setModified(false); });
    changes_.clear();
    mapProjects(progress);
    populateDynamicFolders(progress);
    applyEnvironment();
  } catch (...) {
    clear();
    throw;
  }
  finishLoad(root_.get());
  emit solutionLoaded();
}

ProjectElement* ProjectSystem::linkSolution(ProjectElement* parent, const QString& file) {
  Loader loader(*this, nullptr, nullptr);
  for (ProjectElement* level = parent; level != nullptr; level = level->parentElement())
    if (level->is(ProjectElementKind::Solution)) loader.markLoading(level->filePath());
  const bool hasMacros = file.contains(u'$');
  const QString absolute = hasMacros ? macroExpander().expandGlobal(file)
                                     : QDir::cleanPath(QDir(solutionDirectory(parent)).absoluteFilePath(file));
  for (ProjectElement* child : parent->childElements())
    if (child->is(ProjectElementKind::Solution) && (child->attribute("file_name") == file ||
                                                    child->attribute("file_name") == absolute))
      return nullptr;
  ProjectElement* linked = loader.readFile(QString(), absolute, QString());
  linked->setAttribute("file_name", hasMacros ? file : absolute);
  linked->setLink(true);
  linked->setCanModify(true);
  linked->setModified(true);
  parent->addChild(linked);
  parent->setModified(true);  // its file gains the import
  mapProjects(nullptr);
  return linked;
}

void ProjectSystem::mapProjects(ProjectLoadProgressInterface* progress) {
  ProgressStep step(progress, "Mapping project information", 0);
  solutions_.clear();
  forEachElement(root_.get(), [&](ProjectElement* element) {
    if (element->is(ProjectElementKind::Solution)) element->projects().clear();
  });
  forEachElement(root_.get(), [&](ProjectElement* element) {
    if (element->is(ProjectElementKind::Project)) {
      ProgressStep projectStep(progress, "Mapping project " + element->name(), 0);
      // P in Sub is P there, P(Sub) one level up, P(Mid,Sub) two levels up.
      QString suffix;
      for (ProjectElement* solution = element->enclosing(ProjectElementKind::Solution); solution != nullptr;
           solution = solution->parentElement() ? solution->parentElement()->enclosing(ProjectElementKind::Solution) : nullptr) {
        solution->projects().insert(suffix.isEmpty() ? element->name() : element->name() + "(" + suffix + ")", element);
        suffix = suffix.isEmpty() ? solution->name() : solution->name() + "," + suffix;
      }
    }
    if (element->is(ProjectElementKind::Solution)) {
      solutions_.insert(element->name(), element);
      element->rebuildInherited();
    }
  });
  projectNames_ = root_->projects().keys();
  solutionNames_ = solutions_.keys();
}

void ProjectSystem::populateDynamicFolders(ProjectLoadProgressInterface* progress) {
  if (dynamicFolders_.empty()) return;
  ProgressStep step(progress, "Populating dynamic folders", 0);
  for (ProjectElement* folder : dynamicFolders_) {
    ProjectElement* project = folder->enclosing(ProjectElementKind::Project);
    QString text = "Populating folder " + folder->name();
    if (project != nullptr) text += " in project " + project->name();
    ProgressStep folderStep(progress, text, 0);
    for (const QString& part : folder->attribute(names_.dynamicFolderPath).split(u';', Qt::SkipEmptyParts)) {
      QString path = macroExpander().expandGlobal(part);
      if (QFileInfo(path).isRelative()) path = QDir(projectDirectory(folder)).filePath(path);
      populateFolder(folder, QDir::cleanPath(path), 0);
    }
  }
  forEachElement(root_.get(), [](ProjectElement* element) { element->setModified(false); });
  changes_.clear();
}

namespace {

QList<QRegularExpression> wildcards(const QString& list) {
  QList<QRegularExpression> patterns;
  for (const QString& pattern : list.split(u';', Qt::SkipEmptyParts))
    patterns.append(QRegularExpression(QRegularExpression::wildcardToRegularExpression(pattern)));
  return patterns;
}

bool matchesAny(const QList<QRegularExpression>& patterns, const QString& name) {
  for (const QRegularExpression& pattern : patterns)
    if (pattern.match(name).hasMatch()) return true;
  return false;
}

ProjectElement* newElement(const char* tag, ProjectElement* parent) {
  auto* element = new ProjectElement(copyXmlString(tag));
  parent->addChild(element);
  return element;
}

// Directory links may form a cycle; a dynamic folder goes this deep at most.
constexpr int kMaximumDynamicDepth = 32;

}  // namespace

void ProjectSystem::populateFolder(ProjectElement* folder, const QString& path, int depth) {
  const QFileInfo info(path);
  if (info.isFile()) {
    ProjectElement* file = newElement("file", folder);
    file->setAttribute("file_name", path);
    file->setCanModify(false);
    return;
  }
  if (!info.isDir() || depth > kMaximumDynamicDepth) return;
  const QList<QRegularExpression> filter = wildcards(folder->attribute(names_.dynamicFolderFilter));
  const QList<QRegularExpression> exclude = wildcards(folder->attribute(names_.dynamicFolderExclude));
  const bool recurse = folder->attribute(names_.dynamicFolderRecurse) == "Yes";
  // Entries come in name order, so that a folder lists alike on every host.
  for (const QFileInfo& entry : QDir(path).entryInfoList(QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot | QDir::Hidden, QDir::Name)) {
    if (matchesAny(exclude, entry.fileName())) continue;
    if (entry.isDir()) {
      if (!recurse) continue;
      ProjectElement* sub = newElement("folder", folder);
      sub->setAttribute("Name", entry.fileName());
      sub->setAttribute(names_.dynamicFolderPath, entry.filePath());
      for (const QString* name : {&names_.dynamicFolderFilter, &names_.dynamicFolderExclude, &names_.dynamicFolderRecurse})
        if (folder->hasAttribute(*name)) sub->setAttribute(*name, folder->attribute(*name));
      sub->setCanModify(false);
      populateFolder(sub, entry.filePath(), depth + 1);
    } else if (filter.isEmpty() || matchesAny(filter, entry.fileName())) {
      ProjectElement* file = newElement("file", folder);
      file->setAttribute("file_name", entry.filePath());
      file->setCanModify(false);
    }
  }
}

void ProjectSystem::applyEnvironment() {
  const PropertyClass* environment = ownClass(names_.environment, PropertyType::StringList);
  for (const QString& entry : getList(root_.get(), environment, kCommon, true, true, false, QString())) {
    const qsizetype equals = entry.indexOf(u'=');
    if (equals > 0) qputenv(entry.left(equals).toLocal8Bit().constData(), entry.mid(equals + 1).toLocal8Bit());
  }
}

ProjectElement* ProjectSystem::addConfiguration(ProjectElement* element, const QString& name) {
  ProjectElement* configuration = newElement("configuration", element);
  configuration->setAttribute("Name", name);
  element->enterConfiguration(configuration);
  element->setModified(true);
  if (ProjectElement* solution = element->enclosing(ProjectElementKind::Solution)) emit configurationsChanged(solution);
  return configuration;
}

void ProjectSystem::setProperty(ProjectElement* element, const PropertyClass* propertyClass,
                                const QString& configuration, const QString& text) {
  const QString name = propertyClass->isPerConfiguration() ? configuration : kCommon;
  ProjectElement* target = element->configuration(name);
  const bool elementWasModified = element->isModified();
  const bool configurationWasModified = target != nullptr && target->isModified();
  const QString old = target == nullptr ? QString() : target->attribute(propertyClass->name());
  if (target == nullptr) target = addConfiguration(element, name);
  target->setAttribute(propertyClass->name(), text);
  element->setModified(true);
  changes_.append({element, propertyClass, name, QDateTime::currentDateTimeUtc(), old, elementWasModified,
                   configurationWasModified});
  emit propertyChanged(element, name, propertyClass);
  if (element->is(ProjectElementKind::Project) &&
      (propertyClass->name() == names_.projectDirectory || propertyClass->name() == names_.projectMacros))
    emit projectChanged(element);
}

void ProjectSystem::removeProperty(ProjectElement* element, const PropertyClass* propertyClass,
                                   const QString& configuration) {
  const QString name = propertyClass->isPerConfiguration() ? configuration : kCommon;
  ProjectElement* target = element->configuration(name);
  if (target == nullptr || !target->hasAttribute(propertyClass->name())) return;
  changes_.append({element, propertyClass, name, QDateTime::currentDateTimeUtc(),
                   target->attribute(propertyClass->name()), element->isModified(), target->isModified()});
  target->removeAttribute(propertyClass->name());
  element->setModified(true);
  // A configuration left with its Name alone goes, except on a solution.
  if (!element->is(ProjectElementKind::Solution) && target->attributeMap().size() == 1 && target->hasAttribute("Name")) {
    element->forgetConfiguration(name);
    element->detachChild(target);
    delete target;
  }
  emit propertyChanged(element, name, propertyClass);
}

void ProjectSystem::forgetChanges(const QDateTime& since) {
  while (!changes_.isEmpty() && changes_.last().time >= since) {
    const ChangeRecord record = changes_.takeLast();
    ProjectElement* target = record.element->configuration(record.configuration);
    if (record.oldValue.isNull()) {
      if (target != nullptr) target->removeAttribute(record.propertyClass->name());
    } else {
      if (target == nullptr) target = addConfiguration(record.element, record.configuration);
      target->setAttribute(record.propertyClass->name(), record.oldValue);
    }
    record.element->setModified(record.elementWasModified);
    if (target != nullptr) target->setModified(record.configurationWasModified);
    emit propertyChanged(record.element, record.configuration, record.propertyClass);
  }
}

void ProjectSystem::buildSaveTree(ProjectElement* solution, XMLElement* into) {
  struct Pending {
    ProjectElement* element;
    XMLElement* copy;
  };
  std::vector<Pending> pending{{solution, into}};
  while (!pending.empty()) {
    auto [element, copy] = pending.back();
    pending.pop_back();
    const bool dynamic = element->is(ProjectElementKind::Folder) && element->hasAttribute(names_.dynamicFolderPath);
    for (auto attribute = element->attributeMap().constBegin(); attribute != element->attributeMap().constEnd(); ++attribute) {
      if (attribute.key() == "Name" && attribute.value().isEmpty()) continue;
      if (element == solution && attribute.key() == "file_name") continue;  // a link writes as a solution of its own
      if (element->is(ProjectElementKind::Folder) && !dynamic && attribute.key() == "file_name") continue;
      copy->setAttribute(copyXmlString(attribute.key().toLatin1().toStdString()),
                         copyXmlString(attribute.value().toUtf8().toStdString()));
    }
    std::vector<ProjectElement*> children = element->childElements();
    std::vector<Pending> next;
    for (ProjectElement* child : children) {
      if (dynamic && !child->is(ProjectElementKind::Configuration)) continue;
      if (!child->canModify() && !child->is(ProjectElementKind::Solution)) continue;
      auto* childCopy = new XMLElement(copyXmlString(child->is(ProjectElementKind::Solution) ? "import" : child->getName()));
      copy->addChild(childCopy);
      if (child->is(ProjectElementKind::Solution) && child->isLink()) {
        childCopy->setAttributeCopy("file_name", child->attribute("file_name").toUtf8().constData());
        if (!child->canModify()) childCopy->setAttributeCopy("can_modify_solution", "No");
        continue;
      }
      next.push_back({child, childCopy});
    }
    pending.insert(pending.end(), next.rbegin(), next.rend());
  }
}

bool ProjectSystem::saveSolutionFile(ProjectElement* solution) {
  if (!solution->hasAttribute("target")) solution->setAttribute("target", QString::number(kOwnTarget));
  QXMLDocument document(false);
  document.setVersion(copyXmlString("1.0"));
  document.setEncoding(copyXmlString("UTF-8"));
  document.setDocumentType(copyXmlString("Larkloom_Project_File"));
  auto* top = new XMLElement(copyXmlString("solution"));
  document.setRoot(top);
  buildSaveTree(solution, top);
  if (!document.save(solution->filePath(), 2, 75).ok()) return false;
  solution->setFileTime(QFileInfo(solution->filePath()).lastModified());
  forEachElement(solution, [solution](ProjectElement* element) {
    if (element == solution || !element->is(ProjectElementKind::Solution)) element->setModified(false);
  });
  emit fileSaved(solution->filePath());
  return true;
}

QList<ProjectElement*> ProjectSystem::externallyChangedSolutions() const {
  QList<ProjectElement*> changed;
  for (ProjectElement* solution : solutions_) {
    const QFileInfo file(solution->filePath());
    if (file.exists() && file.lastModified() != solution->fileTime()) changed.append(solution);
  }
  return changed;
}

void ProjectSystem::acceptExternalChanges() {
  for (ProjectElement* solution : solutions_)
    if (QFileInfo::exists(solution->filePath())) solution->setFileTime(QFileInfo(solution->filePath()).lastModified());
}

namespace {

// A solution counts as modified when it or an element of its own (not of a linked
// solution) is.
bool solutionModified(ProjectElement* solution) {
  std::vector<ProjectElement*> pending{solution};
  while (!pending.empty()) {
    ProjectElement* element = pending.back();
    pending.pop_back();
    if (element->isModified()) return true;
    for (ProjectElement* child : element->childElements())
      if (!child->is(ProjectElementKind::Solution)) pending.push_back(child);
  }
  return false;
}

}  // namespace

QString ProjectSystem::externalChangeQuestion(const QString& applicationName) const {
  bool unsaved = false;
  for (ProjectElement* solution : solutions_) unsaved |= solutionModified(solution);
  if (unsaved)
    return "The project file been modified within " + applicationName +
           " and has also been modified externally.\n\nDo you want to re-load the project?";
  return "The project file been modified externally.\n\nDo you want to re-load the project?";
}

void ProjectSystem::saveAll(ProjectFileSaveErrorHandler* handler) {
  for (ProjectElement* solution : solutions_) {
    if (!solutionModified(solution) || saveSolutionFile(solution)) continue;
    if (handler == nullptr || !handler->saveFailed(solution) || !saveSolutionFile(solution))
      throw SolutionSaveError{solution};
  }
  changes_.clear();
}

}  // namespace regmill
