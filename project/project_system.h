// The project system: the one open solution, a tree of projects, folders, files and
// configurations read from a solution file and the files it links, edited through
// setProperty and removeProperty (each change recorded and signalled), and saved
// file by file. It also resolves property values over the tree and the inheriting
// configurations and builds the macro map of an element. The host makes one object
// and reaches it through projectSystem(); the hooks that only the host knows are
// virtual.
#pragma once
#include <QDateTime>
#include <QList>
#include <QMap>
#include <QObject>
#include <QString>
#include <QStringList>
#include <map>
#include <memory>
#include <vector>

#include "project/macro_map.h"
#include "project/project_element.h"
#include "project/property_group_file.h"
#include "project/property_value.h"
#include "project/property_class.h"

namespace regmill {

// Why a load failed. Texts that begin with a blank stand behind the file's name.
struct SolutionLoadError {
  QString file;
  bool isParseError = false;
  QString message;
  int line = 0;
  int column = 0;
};

// A solution file that could not be written.
struct SolutionSaveError {
  ProjectElement* element;
};

class ProjectFileNotFoundErrorHandler {
 public:
  virtual ~ProjectFileNotFoundErrorHandler() = default;
  // True when the load should go on because the file now exists.
  virtual bool fileNotFound(const QString& file) = 0;
};

class ProjectFileSaveErrorHandler {
 public:
  virtual ~ProjectFileSaveErrorHandler() = default;
  // True when the save should be tried again.
  virtual bool saveFailed(ProjectElement* solution) = 0;
};

class ProjectLoadProgressInterface {
 public:
  virtual void beginStep(const QString& text, int style) = 0;  // style 0, 2 or 3
  virtual void endStep() = 0;
  virtual void addLine(const QString& text) = 0;
  virtual int depth() = 0;
  virtual void setProgress(int done, int total) = 0;
  virtual void processEvents() = 0;
  virtual ~ProjectLoadProgressInterface() = default;
};

// The names of the property classes the system itself reads; the host may choose
// others.
struct ProjectPropertyNames {
  QString projectDirectory = "project_directory";
  QString projectMacros = "macros";
  QString environment = "environment_variables";
  QString dynamicFolderPath = "path";
  QString dynamicFolderFilter = "filter";
  QString dynamicFolderRecurse = "recurse";
  QString dynamicFolderExclude = "exclude";
  QString folderFilter = "filter";
  QString outputDirectory = "build_output_directory";
  QString intermediateDirectory = "build_intermediate_directory";
  QString objectDirectory = "build_object_directory";
  QString buildMacros = "build_macros";
  QString groupFile = "property_groups_file_path";
  QString configurationFilter;  // none: every public configuration is offered
};

// One property change since the last load or save.
struct ChangeRecord {
  ProjectElement* element;
  const PropertyClass* propertyClass;
  QString configuration;
  QDateTime time;
  QString oldValue;  // null when there was none
  bool elementWasModified;
  bool configurationWasModified;
};

// Where a value came from: the element (null for the class default), the
// configuration's name, and the text found.
struct TraceEntry {
  ProjectElement* element;
  QString name;
  QString text;
};

class ProjectSystem : public QObject {
  Q_OBJECT

 public:
  explicit ProjectSystem(ProjectPropertyNames names = {});
  ~ProjectSystem() override;

  ProjectElement* root() const { return root_.get(); }
  const ProjectPropertyNames& propertyNames() const { return names_; }
  const QMap<QString, ProjectElement*>& solutions() const { return solutions_; }
  const QStringList& projectNames() const { return projectNames_; }
  const QStringList& solutionNames() const { return solutionNames_; }
  const QList<ChangeRecord>& changeRecords() const { return changes_; }

  // Replaces what is loaded; throws SolutionLoadError, and leaves no root then.
  void loadSolution(const QString& file, ProjectFileNotFoundErrorHandler* fileNotFound = nullptr,
                    ProjectLoadProgressInterface* progress = nullptr, bool checkTarget = true);
  // Writes one solution file; false when it cannot be written.
  bool saveSolutionFile(ProjectElement* solution);
  // Writes every modified solution; throws SolutionSaveError when one cannot be
  // written and the handler gives up (or there is none).
  void saveAll(ProjectFileSaveErrorHandler* handler = nullptr);

  ProjectElement* addConfiguration(ProjectElement* element, const QString& name);
  // Removes the configuration of that name from the element and every element below it.
  void removeConfiguration(ProjectElement* element, const QString& name);
  // A solution's configuration by a name the user typed: blanks are simplified;
  // a refused character, "Common" or a name that exists gives the message and null.
  ProjectElement* addSolutionConfiguration(ProjectElement* solution, const QString& name, bool isPrivate,
                                           QString& message);
  // Renames it in the solution and below, and in every inherited list that names it;
  // the same refusals as above.
  bool renameConfiguration(ProjectElement* solution, const QString& from, const QString& to, QString& message);
  // A file element for the path, in the child folder whose filter names the file's
  // extension when the parent is no folder, else in the parent.
  ProjectElement* addFile(ProjectElement* parent, const QString& path);
  // Links another solution file under the parent; null when the parent already has
  // it. Throws SolutionLoadError as loading does, for a loop among others.
  ProjectElement* linkSolution(ProjectElement* parent, const QString& file);
  void setProperty(ProjectElement* element, const PropertyClass* propertyClass, const QString& configuration,
                   const QString& text);
  void removeProperty(ProjectElement* element, const PropertyClass* propertyClass, const QString& configuration);
  // The property classes of the host, by name; not owned.
  void registerClass(const PropertyClass* propertyClass) { classes_.insert(propertyClass->name(), propertyClass); }
  const PropertyClass* findClass(const QString& name) const { return classes_.value(name); }
  PropertyGroupFileCache& groupFiles() { return groupFiles_; }

  // The solutions whose files have been written by someone else since they were
  // read or saved here: their file's time differs from the one remembered.
  QList<ProjectElement*> externallyChangedSolutions() const;
  // What the user is asked about such a change, with or without unsaved changes here.
  QString externalChangeQuestion(const QString& applicationName) const;
  // Takes the files' present times as known, so that the question waits for the
  // next change.
  void acceptExternalChanges();

  // The classes the property grid shows for elements of a kind; not owned.
  void setKindClasses(ProjectElementKind kind, QList<const PropertyClass*> classes) { kindClasses_[int(kind)] = classes; }
  // A new list for the property grid: a dynamic folder's own attributes, or the
  // concrete system's base list; then the facts of the element (paths, size,
  // dates) and a value for each class of its kind, in the configuration.
  PropertyValueList propertyList(ProjectElement* element, const QString& configuration);

  // Tells that the project's structure or paths have changed.
  void announceProjectChange(ProjectElement* project) { emit projectChanged(project); }
  // Undoes the recorded changes made at or after `since`, newest first.
  void forgetChanges(const QDateTime& since);

  // Paths, computed on demand. The directory of the enclosing project, or of the
  // root solution's file when there is none.
  QString projectDirectory(ProjectElement* element);
  // The directory of the nearest solution's file, absolute.
  QString solutionDirectory(ProjectElement* element);
  // A file's or folder's file_name, expanded when it holds a macro...
  QString rawPath(ProjectElement* element, const QString& configuration);
  // ...and joined to the project directory when relative.
  QString absolutePath(ProjectElement* element, const QString& configuration);

  // Value resolution over the tree and the configurations, unexpanded.
  QString getValue(ProjectElement* element, const PropertyClass* propertyClass, const QString& configuration,
                   std::vector<TraceEntry>* trace = nullptr);
  QString getExpandedValue(ProjectElement* element, const PropertyClass* propertyClass,
                           const QString& configuration);
  // Only this element's own setting in that configuration; null when there is none.
  QString getLocalValue(ProjectElement* element, const PropertyClass* propertyClass, const QString& configuration);
  QStringList getList(ProjectElement* element, const PropertyClass* propertyClass, const QString& configuration,
                      bool keepEscapes, bool expand, bool quote, const QString& prefix);
  MacroMap getMacros(ProjectElement* element, const QString& configuration);
  QString expandFor(ProjectElement* element, const QString& text, const QString& configuration);
  // Bits of `mode`: 1 "Common", 2 private configurations, 4 public ones.
  QStringList configurationNames(ProjectElement* element, int mode);

  // The build's own target code.
  static constexpr int kOwnTarget = 8;

 signals:
  void solutionLoaded();
  void fileSaved(const QString& filename);
  void configurationsChanged(ProjectElement* solution);
  void projectChanged(ProjectElement* project);
  void propertyChanged(ProjectElement* element, const QString& configuration, const PropertyClass* propertyClass);

 protected:
  // Hooks of the concrete system.
  virtual void beginLoad(const QString& file) {}
  virtual PropertyValueList baseProperties(ProjectElement* element, const QString& configuration) {
    return PropertyValueList();
  }
  virtual void finishLoad(ProjectElement* root) {}
  virtual QString outputMacro(ProjectElement* element, const QString& configuration) = 0;
  virtual QString hostMacro(ProjectElement* element, const QString& configuration) = 0;
  virtual QString targetMacro(ProjectElement* element, const QString& configuration) = 0;
  virtual void addProjectMacros(ProjectElement* element, const QString& configuration, MacroMap& macros) {}
  // What the configuration filter class must expand to for a public configuration
  // to be offered in this run.
  virtual QString configurationFilterValue() { return QString(); }

 private:
  class Loader;
  void clear();
  void mapProjects(ProjectLoadProgressInterface* progress);
  void populateDynamicFolders(ProjectLoadProgressInterface* progress);
  void populateFolder(ProjectElement* folder, const QString& path, int depth);
  void applyEnvironment();
  // For each group class of the element's group file: its value, and the macros of
  // the entry it names that apply to the configuration.
  void addGroupMacros(ProjectElement* element, const QString& configuration, MacroMap& macros);
  // OutDir, IntDir, ObjDir, IntToOutDir and BuildMacro, each expanded with the map so far.
  void addDirectoryMacros(ProjectElement* element, const QString& configuration, MacroMap& macros);
  // The class of that name made on demand for the system's own reads: a string,
  // not per configuration unless asked.
  const PropertyClass* ownClass(const QString& name, PropertyType type = PropertyType::String);
  // Finds the value on one configuration of the element; see getValue.
  bool tryConfiguration(ProjectElement* element, const QString& name, const QString& attribute,
                        std::vector<TraceEntry>* trace, QString& gathered);
  const QStringList* inheritanceList(ProjectElement* element, const QString& configuration);
  void buildSaveTree(ProjectElement* solution, XMLElement* into);

  ProjectPropertyNames names_;
  std::unique_ptr<ProjectElement> root_;
  QMap<QString, ProjectElement*> solutions_;
  QStringList projectNames_;
  QStringList solutionNames_;
  QList<ChangeRecord> changes_;
  QString templatesFile_;
  std::vector<ProjectElement*> templatedProjects_;
  std::vector<ProjectElement*> dynamicFolders_;
  std::map<QString, std::unique_ptr<PropertyClass>> ownClasses_;
  QMap<QString, const PropertyClass*> classes_;
  QMap<int, QList<const PropertyClass*>> kindClasses_;
  PropertyGroupFileCache groupFiles_;
};

// The application's project system; null until one is made.
ProjectSystem* projectSystem();

// The system with the hooks filled in plainly: no output or host macros, the
// target macro of the build's own target.
class StandardProjectSystem : public ProjectSystem {
  Q_OBJECT

 public:
  using ProjectSystem::ProjectSystem;

 protected:
  QString outputMacro(ProjectElement*, const QString&) override { return QString(""); }
  QString hostMacro(ProjectElement*, const QString&) override { return QString(""); }
  QString targetMacro(ProjectElement*, const QString&) override { return "ARM"; }
};

}  // namespace regmill
