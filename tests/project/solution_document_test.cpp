// Solution files: load failures with their texts, byte-stable saving of realistic
// solutions (links with macros, nested and dynamic folders, inherited
// configurations, non-ASCII values), edits recorded and signalled in order, and
// links that meet; session files, whose paths stay relative below their folder; and
// values resolved over the element tree and the configurations: the element level
// as the outer loop, non-transitive inheritance, presence over text, the order in
// which string lists gather, the trace, configuration names and element macros.
#include <gtest/gtest.h>

#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <filesystem>

#include "project/macro_expander.h"
#include "project/project_listing.h"
#include "project/project_property_value.h"
#include "project/project_system.h"
#include "project/session_file.h"
#include "tests/project/qt_printers.h"
#include "tests/support/scratch_folder.h"
#include "xml/xml_string.h"

namespace regmill {
namespace {

using testing::ScratchFolder;

#define DOC "<!DOCTYPE Larkloom_Project_File>\n"
const std::string kHeader = "<?xml  version=\"1.0\" encoding=\"UTF-8\" ?>\n" DOC;

class SolutionFiles : public ::testing::Test {
 protected:
  QString write(const std::string& name, const std::string& text) {
    return QString::fromStdString(folder.write(name, text));
  }
  // The load failure as "file|message|line", or "loaded".
  std::string loadFailure(const QString& path) {
    try {
      system.loadSolution(path);
      return "loaded";
    } catch (const SolutionLoadError& error) {
      EXPECT_EQ(system.root(), nullptr);
      QString file = error.file;
      file.replace(QString::fromStdString(folder.path().string()) + "/", "");
      return (file + "|" + error.message + "|" + QString::number(error.line)).toStdString();
    }
  }
  ProjectElement* at(const QString& path) { return findElementByPath(system.root(), path); }
  ScratchFolder folder;
  StandardProjectSystem system;
};

TEST_F(SolutionFiles, LoadFailuresCarryTheirTexts) {
  std::filesystem::create_directory(folder.path() / "dir.lkProject");
  struct Case { const char* name; const char* text; const char* failure; };
  const Case cases[] = {
      {"dir.lkProject", nullptr, "dir.lkProject| cannot access|0"},
      {"other.lkProject", "<!DOCTYPE Other>\n<solution/>", "other.lkProject| not a solution file|0"},
      {"untyped.lkProject", "<solution/>", "untyped.lkProject| not a solution file|0"},
      {"project.lkProject", DOC "<project/>", "project.lkProject| not a solution file|0"},
      {"empty.lkProject", DOC, "empty.lkProject| is a malformed solution file (bad XML)|0"},
      {"self.lkProject", DOC "<solution><import file_name=\"self.lkProject\"/></solution>", "self.lkProject| solution already loaded|0"},
      {"target.lkProject", DOC "<solution target=\"3\"/>", "target.lkProject|invalid solution target (3)|0"},
      {"zero.lkProject", DOC "<solution target=\"0\"/>", "loaded"}, {"own.lkProject", DOC "<solution target=\"8\"/>", "loaded"},
      {"templated.lkProject", DOC "<solution><project Name=\"P\" template_name=\"T\"/></solution>",
       "templated.lkProject|project template not foundT|0"},
      {"unnamed.lkProject", DOC "<solution><project Name=\"P\" template_name=\"\"/></solution>",
       "unnamed.lkProject|no template for project P|0"},
  };
  for (const Case& c : cases) {
    const QString path = c.text == nullptr ? QString::fromStdString(folder.file(c.name)) : write(c.name, c.text);
    EXPECT_EQ(loadFailure(path), c.failure) << c.name;
  }
}

TEST_F(SolutionFiles, LoadCommandsRunInTheSolutionFolderAndStopTheLoadOnFailure) {
  const std::string head = DOC "<solution load_command_environment=\"WHO=loom;;\" load_command=\"";
  EXPECT_EQ(loadFailure(write("ok.lkProject", head + "sh -c &quot;echo $WHO &gt; made.txt&quot; &amp;&amp; true\"/>")), "loaded");
  EXPECT_EQ(folder.read("made.txt"), "loom\n");
  EXPECT_EQ(loadFailure(write("code.lkProject", head + "true &amp;&amp; sh -c &quot;exit 3&quot; &amp;&amp; touch never\"/>")),
            "code.lkProject|solution load command failed (3) |0");
  EXPECT_FALSE(folder.exists("never"));
  EXPECT_EQ(loadFailure(write("none.lkProject", head + "no-such-program-here\"/>")),
            "none.lkProject|solution load command \"no-such-program-here\" not found|0");
}

TEST_F(SolutionFiles, TwoLinksToOneFileLoadUnderDistinctNames) {
  write("top.lkProject", DOC "<solution Name=\"Top\"><import file_name=\"l.lkProject\"/>"
                         "<import file_name=\"r.lkProject\"/><project Name=\"P\"/></solution>");
  write("l.lkProject", DOC "<solution Name=\"L\"><import file_name=\"leaf.lkProject\"/></solution>");
  write("r.lkProject", DOC "<solution Name=\"R\"><import file_name=\"leaf.lkProject\"/></solution>");
  write("leaf.lkProject", DOC "<solution Name=\"Leaf\"><project Name=\"P\"/></solution>");
  ASSERT_EQ(loadFailure(QString::fromStdString(folder.file("top.lkProject"))), "loaded");
  EXPECT_EQ(system.projectNames(), (QStringList{"P", "P(L,Leaf)", "P(R,Leaf)"}));
  EXPECT_EQ(system.solutionNames(), (QStringList{"L", "Leaf", "R", "Top"}));
  EXPECT_EQ(system.solutions().value("L")->projects().keys(), (QStringList{"P(Leaf)"}));
}

// A solution as the writer prints it: attributes sorted, two blanks of indentation,
// attributes spread over lines past 75 columns, non-ASCII bytes as references.
const std::string kMain = kHeader + R"(<solution Name="Main" target="8" version="2">
  <configuration Name="Common" c_preprocessor_definitions="TOP" />
  <configuration Name="Debug" inherited_configurations="Base" />
  <configuration
    Name="Base"
    c_preprocessor_definitions="DEBUG;LEVEL=2"
    hidden="Yes" />
  <project Name="App">
    <configuration
      Name="Common"
      project_directory="app"
      title="Caf&#xc3;&#xa9; &amp; &quot;B&#xc3;&#xa4;r&quot;" />
    <folder Name="Source">
      <file file_name="main.c">
        <configuration Name="Debug" level="3" />
      </file>
      <folder Name="Drivers">
        <file file_name="$(DriverDir)/uart.c" />
      </folder>
    </folder>
    <folder Name="Generated" filter="*.c" path="gen" recurse="Yes" />
    <file Name="Readme" file_name="README.txt" hidden="Yes" />
  </project>
  <import file_name="lib/$(LibName).lkProject" />
</solution>
)";

const std::string kLibrary = kHeader + R"(<solution Name="Lib" target="8" version="2">
  <project Name="Lib">
    <configuration Name="Common" project_directory="." />
    <file file_name="lib.c" />
  </project>
</solution>
)";

class SolutionRoundTrip : public SolutionFiles {
 protected:
  void SetUp() override {
    macroExpander().globalMacros().insert("LibName", "core");
    std::filesystem::create_directories(folder.path() / "lib");
    std::filesystem::create_directories(folder.path() / "app/gen/deeper");
    folder.write("app/gen/a.c", "");
    folder.write("app/gen/b.h", "");
    folder.write("app/gen/deeper/c.c", "");
    main = write("main.lkProject", kMain);
    write("lib/core.lkProject", kLibrary);
    system.loadSolution(main);
  }
  void TearDown() override { macroExpander().globalMacros().remove("LibName"); }
  QString main;
};

TEST_F(SolutionRoundTrip, SavingAnUnchangedSolutionGivesItsBytesBack) {
  QStringList listed;
  for (ProjectElement* element : at("App/Generated")->childElements()) {
    listed << element->name();
    for (ProjectElement* inner : element->childElements()) listed << " " + inner->name();
  }
  EXPECT_EQ(listed, (QStringList{"a.c", "deeper", " c.c"}));
  ProjectElement* lib = at("Lib");
  ASSERT_TRUE(lib != nullptr && lib->isLink());
  PropertyClass title({.name = "title"});
  EXPECT_EQ(system.getValue(at("App/Readme"), &title, "Debug"),
            QString::fromUtf8("Caf\xC3\xA9 & \"B\xC3\xA4r\""));
  ASSERT_TRUE(system.saveSolutionFile(system.root()));
  ASSERT_TRUE(system.saveSolutionFile(lib));
  EXPECT_EQ(folder.read("main.lkProject"), kMain);
  EXPECT_EQ(folder.read("lib/core.lkProject"), kLibrary);
}

TEST_F(SolutionRoundTrip, AnEditedPropertyIsSavedAloneAndReadsBack) {
  PropertyClass level({.name = "level"});
  ProjectElement* mainFile = at("App/Source/main.c");
  system.setProperty(mainFile, &level, "Debug", "4");
  system.saveAll();
  std::string expected = kMain;
  expected.replace(expected.find("level=\"3\""), 9, "level=\"4\"");
  EXPECT_EQ(folder.read("main.lkProject"), expected);
  EXPECT_EQ(folder.read("lib/core.lkProject"), kLibrary);
  system.loadSolution(main);
  mainFile = at("App/Source/main.c");
  EXPECT_EQ(system.getValue(mainFile, &level, "Debug"), "4");
  const QString xmllint = QStandardPaths::findExecutable("xmllint");
  if (xmllint.isEmpty()) GTEST_SKIP() << "xmllint is not installed (libxml2-utils); the saved file was not checked by it";
  QProcess check;
  check.start(xmllint, {"--noout", main});
  ASSERT_TRUE(check.waitForFinished());
  EXPECT_EQ(check.exitCode(), 0) << check.readAllStandardError().toStdString();
}

TEST_F(SolutionRoundTrip, ThePropertyGridGetsFactsAndAValueForEachClassOfTheKind) {
  PropertyClass level({.name = "level", .shortCaption = "Level"});
  PropertyClass directory({.name = "project_directory"});
  system.setKindClasses(ProjectElementKind::File, {&level});
  system.setKindClasses(ProjectElementKind::Project, {&directory, &level});
  auto describe = [](const PropertyValueList& list) {
    QStringList shown;
    for (PropertyValue* value : list)
      shown << value->propertyClass()->name() + "=" + value->propertyValue().section(u'/', -1) + (value->isReadOnly() ? " (fact)" : "");
    return shown;
  };
  ProjectElement* app = at("App");
  folder.write("app/main.c", "int main;");
  EXPECT_EQ(describe(system.propertyList(at("App/Source/main.c"), "Debug")),
            (QStringList{"full_path=main.c (fact)", "file_name=main.c (fact)", "file_size=9 (fact)",
                         "file_modified=" + QFileInfo(QString::fromStdString(folder.file("app/main.c"))).lastModified().toString(Qt::ISODate) + " (fact)",
                         "level=3"}));
  PropertyValueList projectList = system.propertyList(app, "Debug");
  EXPECT_EQ(describe(projectList), (QStringList{"project_directory_path=app (fact)", "project_directory=app", "level="}));
  EXPECT_NE(dynamic_cast<ProjectDirectoryProjectPropertyValue*>(projectList.at(1)), nullptr);
  PropertyValueList dynamicList = system.propertyList(at("App/Generated"), "Debug");
  EXPECT_EQ(describe(dynamicList), (QStringList{"path=gen", "filter=*.c", "recurse=Yes", "exclude="}));
  dynamicList.at(3)->setPropertyValue("*.h");
  EXPECT_EQ(at("App/Generated")->attribute("exclude"), "*.h");
}

TEST_F(SolutionFiles, OldVersionsLoadAsVersionTwoWithoutAChange) {
  const std::string text = DOC "<solution Name=\"Old\" version=\"1\"><project Name=\"P\"/></solution>";
  system.loadSolution(write("old.lkProject", text));
  EXPECT_EQ(system.root()->attribute("version"), "2");
  EXPECT_FALSE(system.root()->isModified());
  system.saveAll();
  EXPECT_EQ(folder.read("old.lkProject"), text);
  system.root()->setAttribute("Name", "");
  system.saveAll();
  EXPECT_EQ(folder.read("old.lkProject"), kHeader + "<solution target=\"8\" version=\"2\">\n  <project Name=\"P\" />\n</solution>\n");
}

TEST_F(SolutionFiles, OutsideWritesAreNoticedUntilAccepted) {
  const QString path = write("s.lkProject", DOC "<solution Name=\"S\"><project Name=\"P\"/></solution>");
  system.loadSolution(path);
  EXPECT_TRUE(system.externallyChangedSolutions().isEmpty());
  folder.touchLater("s.lkProject");
  EXPECT_EQ(system.externallyChangedSolutions(), QList<ProjectElement*>{system.root()});
  EXPECT_EQ(system.externalChangeQuestion("Loom"), "The project file been modified externally.\n\nDo you want to re-load the project?");
  system.root()->setAttribute("x", "1");
  EXPECT_EQ(system.externalChangeQuestion("Loom"),
            "The project file been modified within Loom and has also been modified externally.\n\nDo you want to re-load the project?");
  system.acceptExternalChanges();
  EXPECT_TRUE(system.externallyChangedSolutions().isEmpty());
}

TEST_F(SolutionFiles, ChangesAreRecordedSignalledAndForgotten) {
  system.loadSolution(write("s.lkProject", DOC "<solution Name=\"S\"><configuration Name=\"Debug\" x=\"s\"/><project Name=\"P\" />"
                                           "</solution>"));
  QStringList events;
  QObject::connect(&system, &ProjectSystem::propertyChanged, [&](ProjectElement* e, const QString& configuration, const PropertyClass* c) {
    events << "property " + e->name() + " " + configuration + " " + c->name();
  });
  QObject::connect(&system, &ProjectSystem::configurationsChanged, [&](ProjectElement* s) { events << "configurations " + s->name(); });
  QObject::connect(&system, &ProjectSystem::projectChanged, [&](ProjectElement* p) { events << "project " + p->name(); });
  QObject::connect(&system, &ProjectSystem::fileSaved, [&](const QString& file) { events << "saved " + QFileInfo(file).fileName(); });
  ProjectElement* project = at("P");
  PropertyClass x({.name = "x"}), directory({.name = "project_directory"});
  const QDateTime start = QDateTime::currentDateTimeUtc();
  system.setProperty(project, &x, "Debug", "p");
  system.setProperty(project, &directory, "Common", "d");
  system.setProperty(system.root(), &x, "Debug", "s2");
  ASSERT_EQ(system.changeRecords().size(), 3);
  EXPECT_TRUE(system.changeRecords()[0].oldValue.isNull());
  EXPECT_EQ(system.changeRecords()[2].oldValue, "s");
  system.removeProperty(project, &x, "Debug");
  EXPECT_EQ(project->configuration("Debug"), nullptr);  // only its Name was left
  system.removeProperty(system.root(), &x, "Debug");
  EXPECT_NE(system.root()->configuration("Debug"), nullptr);  // a solution keeps it
  EXPECT_EQ(events, (QStringList{"configurations S", "property P Debug x", "configurations S", "property P Common project_directory",
                                 "project P", "property S Debug x", "property P Debug x", "property S Debug x"}));
  events.clear();
  system.forgetChanges(start);
  EXPECT_TRUE(system.changeRecords().isEmpty());
  EXPECT_EQ(system.getLocalValue(system.root(), &x, "Debug"), "s");
  EXPECT_TRUE(system.getLocalValue(project, &x, "Debug").isNull());
  // Newest first; the project's Debug configuration, gone with its last value, comes back.
  EXPECT_EQ(events, (QStringList{"property S Debug x", "configurations S", "property P Debug x", "property S Debug x",
                                 "property P Common project_directory", "property P Debug x"}));
  EXPECT_FALSE(system.root()->isModified());
  system.setProperty(project, &x, "Debug", "kept");
  events.clear();
  system.saveAll();
  EXPECT_EQ(events, QStringList{"saved s.lkProject"});
  EXPECT_TRUE(system.changeRecords().isEmpty());
}

TEST_F(SolutionFiles, ConfigurationsAreNamedRenamedAndRemovedAcrossTheTree) {
  system.loadSolution(write("s.lkProject", DOC "<solution Name=\"S\"><configuration Name=\"Base\" hidden=\"Yes\" />"
                                           "<configuration Name=\"Debug\" inherited_configurations=\"Base;X\" />"
                                           "<project Name=\"P\"><configuration Name=\"Base\" v=\"1\" />"
                                           "<file file_name=\"a.c\"><configuration Name=\"Base\" v=\"2\" /></file></project>"
                                           "</solution>"));
  ProjectElement* solution = system.root();
  QString message;
  struct Case { const char* name; const char* message; };
  const Case refused[] = {
      {"A/B", "The character '/' is not allowed in configuration names"},
      {"say \"hi\"", "The character '\"' is not allowed in configuration names"},
      {"a*", "The character '*' is not allowed in configuration names"},
      {"Common", "The configuration 'Common' already exists in solution S"},
      {"  Debug ", "The configuration 'Debug' already exists in solution S"},
  };
  for (const Case& c : refused) {
    EXPECT_EQ(system.addSolutionConfiguration(solution, c.name, false, message), nullptr) << c.name;
    EXPECT_EQ(message, c.message);
  }
  ProjectElement* added = system.addSolutionConfiguration(solution, "  Flash   Release ", true, message);
  EXPECT_EQ(added ? added->attribute("Name") + "|" + added->attribute("hidden") : "", "Flash Release|Yes");

  ASSERT_TRUE(system.renameConfiguration(solution, "Base", "Shared", message));
  EXPECT_EQ(solution->configuration("Debug")->attribute("inherited_configurations"), "Shared;X");
  EXPECT_EQ(solution->inherited().value("Debug"), (QStringList{"Shared", "X"}));
  PropertyClass v({.name = "v"});
  ProjectElement* file = at("P/a.c");
  EXPECT_EQ(system.getValue(file, &v, "Debug"), "2");
  system.removeConfiguration(solution, "Shared");
  EXPECT_EQ(system.getValue(file, &v, "Debug"), "");
  EXPECT_EQ(system.configurationNames(nullptr, 7), (QStringList{"Debug", "Flash Release"}));
}

TEST_F(SolutionFiles, AddedFilesGoToTheFolderThatFiltersTheirExtension) {
  system.loadSolution(write("s.lkProject", DOC "<solution><project Name=\"P\"><folder Name=\"Headers\" filter=\"h;hpp\" />"
                                           "<folder Name=\"Sources\"><configuration Name=\"Common\" filter=\"c,s\" /></folder>"
                                           "</project></solution>"));
  ProjectElement* project = at("P");
  EXPECT_EQ(system.addFile(project, "src/Main.C")->parentElement()->name(), "Sources");
  EXPECT_EQ(system.addFile(project, "inc/a.hpp")->parentElement()->name(), "Headers");
  EXPECT_EQ(system.addFile(project, "notes.txt")->parentElement()->name(), "P");
  EXPECT_EQ(system.addFile(at("P/Headers"), "x.c")->parentElement()->name(), "Headers");
}

TEST_F(SolutionFiles, LinkingASolutionMapsItsProjectsAndRefusesALoop) {
  system.loadSolution(write("top.lkProject", DOC "<solution Name=\"Top\" />"));
  write("sub.lkProject", DOC "<solution Name=\"Sub\"><project Name=\"P\" /></solution>");
  write("back.lkProject", DOC "<solution Name=\"Back\"><import file_name=\"top.lkProject\" /></solution>");
  ProjectElement* linked = system.linkSolution(system.root(), "sub.lkProject");
  ASSERT_NE(linked, nullptr);
  EXPECT_EQ(system.linkSolution(system.root(), "sub.lkProject"), nullptr);
  EXPECT_EQ(system.projectNames(), (QStringList{"P(Sub)"}));
  EXPECT_EQ(linked->attribute("file_name"), QString::fromStdString(folder.file("sub.lkProject")));
  EXPECT_THROW(system.linkSolution(system.root(), "back.lkProject"), SolutionLoadError);
  system.saveAll();
  EXPECT_EQ(folder.read("top.lkProject"), kHeader + "<solution Name=\"Top\" target=\"8\" version=\"2\">\n  <import file_name=\"" +
                                             folder.file("sub.lkProject") + "\" />\n</solution>\n");
}

class Window : public SessionParticipant {
 public:
  QString sessionName() const override { return "MainWindow"; }
  void saveSession(XMLElement& element) override { element.setAttributeCopy("geometry", geometry.toUtf8().constData()); }
  void loadSession(const XMLElement& element) override { geometry = QString::fromUtf8(element.getAttribute("geometry")); }
  QString geometry;
};

TEST(SessionFile, SavesAndLoadsParticipantsAndOpenFiles) {
  testing::ScratchFolder folder;
  const QString base = QString::fromStdString(folder.path().string());
  Window window;
  window.geometry = "10,20,800,600";
  SessionFile session;
  session.addParticipant(&window);
  session.openFiles() = {{base + "/src/main.c", "UTF-8"}, {"/elsewhere/x.h", "Latin1"}};
  ASSERT_TRUE(session.save(base + "/app.lkSession").ok());
  EXPECT_EQ(folder.read("app.lkSession"),
            "<?xml  version=\"1.0\" encoding=\"UTF-8\" ?>\n<!DOCTYPE Larkloom_Session_File>\n<session>\n"
            "  <MainWindow geometry=\"10,20,800,600\" />\n  <Files>\n"
            "    <File codec=\"UTF-8\" path=\"src/main.c\" />\n    <File codec=\"Latin1\" path=\"/elsewhere/x.h\" />\n"
            "  </Files>\n</session>\n");

  Window restored;
  SessionFile reread;
  reread.addParticipant(&restored);
  ASSERT_TRUE(reread.load(base + "/app.lkSession").ok());
  EXPECT_EQ(restored.geometry, "10,20,800,600");
  EXPECT_EQ(reread.openFiles(), session.openFiles());

  folder.write("other.xml", "<!DOCTYPE Larkloom_Project_File>\n<solution/>\n");
  EXPECT_FALSE(reread.load(base + "/other.xml").ok());
  EXPECT_EQ(reread.openFiles(), session.openFiles());
}

const char* kSolution = R"(<!DOCTYPE Larkloom_Project_File>
<solution Name="S">
  <configuration Name="Common" defines="sol_common" />
  <configuration Name="Debug" defines="sol_debug" inherited_configurations="Base" />
  <configuration Name="Base" hidden="Yes" inherited_configurations="Root" />
  <configuration Name="Root" hidden="Yes" only_root="root" />
  <configuration Name="Release" />
  <project Name="App">
    <configuration Name="Common" level="p_common" blocked="project" project_directory="app" />
    <configuration Name="Debug" level="p_debug" />
    <folder Name="Source">
      <file file_name="main.c">
        <configuration Name="Debug" level="f_debug" />
        <configuration Name="Common" level="f_common" defines="file_common" blocked="" />
      </file>
      <file file_name="only_common.c"><configuration Name="Common" level="fc" /></file>
      <file file_name="in_base.c"><configuration Name="Base" level="from_base" /></file>
      <folder Name="Deep"><file file_name="sub/plain.c" /></folder>
    </folder>
  </project>
</solution>
)";

class ValueResolution : public SolutionFiles {
 protected:
  void SetUp() override { system.loadSolution(write("s.lkProject", kSolution)); }
};

TEST_F(ValueResolution, ElementLevelIsTheOuterLoopAndInheritanceIsNotTransitive) {
  PropertyClass level({.name = "level", .defaultValue = "dflt"});
  PropertyClass onlyRoot({.name = "only_root", .defaultValue = "dflt"});
  PropertyClass blocked({.name = "blocked", .defaultValue = "dflt"});
  PropertyClass shared({.name = "level", .perConfiguration = false});
  struct Case { const char* element; const PropertyClass* c; const char* configuration; const char* value; };
  const Case cases[] = {
      {"App/Source/main.c", &level, "Debug", "f_debug"},
      {"App/Source/only_common.c", &level, "Debug", "fc"},       // the file's Common beats the project's Debug
      {"App/Source/in_base.c", &level, "Debug", "from_base"},    // Debug inherits Base
      {"App/Source/Deep/plain.c", &level, "Debug", "p_debug"},
      {"App/Source/Deep/plain.c", &level, "Release", "p_common"},
      {"App/Source/Deep/plain.c", &level, "Other", "p_common"},
      {"App/Source/main.c", &level, "Common", "f_common"},
      {"App/Source/in_base.c", &level, "Common", "p_common"},     // Common alone looks at nothing inherited
      {"App/Source/Deep/plain.c", &onlyRoot, "Debug", "dflt"},         // Base inherits Root, but Debug only names Base
      {"App/Source/Deep/plain.c", &onlyRoot, "Base", "root"},
      {"App/Source/main.c", &blocked, "Debug", ""},               // an empty attribute is a value
      {"App/Source/Deep/plain.c", &blocked, "Debug", "project"},
      {"App/Source/main.c", &shared, "Debug", "f_common"},        // not per configuration: always Common
      {".", &level, "Debug", "dflt"},
  };
  for (const Case& c : cases) {
    ProjectElement* element = at(c.element);
    ASSERT_NE(element, nullptr) << c.element;
    EXPECT_EQ(system.getValue(element, c.c, c.configuration), c.value) << c.element << " " << c.configuration;
  }
  EXPECT_TRUE(system.getLocalValue(at("App/Source/Deep/plain.c"), &level, "Debug").isNull());
  EXPECT_EQ(system.getLocalValue(at("App/Source/main.c"), &blocked, "Debug"), "");  // Common is not Debug
}

TEST_F(ValueResolution, StringListsGatherOutermostFirstWithATrace) {
  PropertyClass defines({.name = "defines", .type = PropertyType::StringList});
  std::vector<TraceEntry> trace;
  EXPECT_EQ(system.getValue(at("App/Source/main.c"), &defines, "Debug", &trace), "sol_common;sol_debug;file_common");
  QStringList where;
  for (const TraceEntry& entry : trace) where << entry.element->name() + "/" + entry.name + "=" + entry.text;
  EXPECT_EQ(where, (QStringList{"main.c/Common=file_common", "S/Debug=sol_debug", "S/Common=sol_common"}));
  EXPECT_EQ(system.getValue(at("App/Source/Deep/plain.c"), &defines, "Release"), "sol_common");
  trace.clear();
  PropertyClass missing({.name = "missing", .defaultValue = "d"});
  EXPECT_EQ(system.getValue(at("App/Source/Deep/plain.c"), &missing, "Debug", &trace), "d");
  EXPECT_TRUE(trace.size() == 1 && trace[0].element == nullptr);
  EXPECT_EQ(system.getList(at("App/Source/main.c"), &defines, "Debug", true, false, true, "-D"),
            (QStringList{"-D\"sol_common\"", "-D\"sol_debug\"", "-D\"file_common\""}));
}

TEST_F(ValueResolution, ConfigurationNamesBySelection) {
  EXPECT_EQ(system.configurationNames(nullptr, 1 | 2 | 4), (QStringList{"Base", "Common", "Debug", "Release", "Root"}));
  EXPECT_EQ(system.configurationNames(at("App/Source/main.c"), 4), (QStringList{"Debug", "Release"}));
  EXPECT_EQ(system.configurationNames(at("App/Source/main.c"), 2), (QStringList{"Base", "Root"}));
  EXPECT_EQ(system.configurationNames(nullptr, 0), (QStringList{"Common"}));
}

TEST_F(ValueResolution, ElementMacrosDescribeWhereTheElementIs) {
  const QString dir = QString::fromStdString(folder.path().string());
  const MacroMap macros = system.getMacros(at("App/Source/Deep/plain.c"), "Debug");
  const QStringList expected{
      "Configuration=Debug", "ElementName=plain.c", "FolderName=Deep", "FolderPath=Source/Deep",
      "InputDir=sub", "InputExt=c", "InputFileName=plain.c", "InputName=plain", "InputPath=" + dir + "/app/sub/plain.c",
      "ObjDir=.", "OutDir=.", "IntDir=", "PackageExtension=lkPackage", "ProjectDir=" + dir + "/app",
      "ProjectName=App", "RelInputDir=sub", "RelInputPath=sub/plain.c", "SolutionDir=" + dir,
      "SolutionExt=lkProject", "SolutionFileName=s.lkProject", "SolutionName=s",
      "SolutionPath=" + dir + "/s.lkProject", "TargetName=ARM"};
  for (const QString& entry : expected) {
    const QString name = entry.section(u'=', 0, 0);
    EXPECT_EQ(name + "=" + macros.value(name, "<none>"), entry);
  }
  EXPECT_EQ(system.expandFor(at("App/Source/main.c"), "$(ProjectName)/$(InputName).o $$(x)", "Debug"), "App/main.o $(x)");
  EXPECT_EQ(system.absolutePath(at("App/Source/main.c"), "Debug"), dir + "/app/main.c");
}

// A class whose writes also set a second class, as an option that implies another.
class ImplyingClass : public PropertyClass {
 public:
  ImplyingClass(const PropertyClass* implied) : PropertyClass({.name = "optimize", .linkedClass = implied}) {}
  bool linkedValue(const QString& value, QString& out) const override {
    out = value == "speed" ? "-O3" : "-O0";
    return true;
  }
};

TEST_F(ValueResolution, ProjectValuesReadResolvedAndWriteThroughTheSystem) {
  PropertyClass level({.name = "level"});
  PropertyClass defines({.name = "defines", .type = PropertyType::StringList});
  PropertyClass shared({.name = "level", .perConfiguration = false});
  ProjectPropertyValue fileLevel(system, &level, at("App/Source/main.c"), "Release");
  EXPECT_EQ(fileLevel.propertyValue(), "f_common");
  EXPECT_TRUE(fileLevel.isDefault());  // main.c has no Release configuration
  EXPECT_FALSE(ProjectPropertyValue(system, &level, at("App/Source/main.c"), "Debug").isDefault());
  EXPECT_EQ(ProjectPropertyValue(system, &shared, at("App/Source/main.c"), "Debug").configuration(), "Common");
  // A list shows only its own setting: what is gathered from above is not its to edit.
  EXPECT_EQ(ProjectPropertyValue(system, &defines, at("App/Source/main.c"), "Common").propertyValue(), "file_common");
  EXPECT_TRUE(ProjectPropertyValue(system, &defines, at("App/Source/main.c"), "Debug").propertyValue().isNull());

  PropertyClass flags({.name = "flags"});
  ImplyingClass optimize(&flags);
  ProjectPropertyValue(system, &optimize, at("App/Source/Deep/plain.c"), "Release").setPropertyValue("speed");
  EXPECT_EQ(system.getLocalValue(at("App/Source/Deep/plain.c"), &flags, "Release"), "-O3");
  EXPECT_EQ(system.changeRecords().size(), 2);

  QStringList changed;
  QObject::connect(&system, &ProjectSystem::projectChanged, [&](ProjectElement* p) { changed << p->name(); });
  PropertyClass directory({.name = "project_directory"}), include({.name = "include_directory"});
  ProjectDirectoryProjectPropertyValue(system, &directory, at("App"), "Common").setPropertyValue("elsewhere");
  ProjectDirectoryProjectPropertyValue(system, &include, at("App"), "Common").setPropertyValue("inc");
  ProjectMacrosProjectPropertyValue(system, &level, at("App/Source/main.c"), "Common").setPropertyValue("x");
  EXPECT_EQ(changed, (QStringList{"App", "App", "App"}));  // once for each write
  EXPECT_EQ(system.absolutePath(at("App/Source/main.c"), "Debug"),
            QString::fromStdString(folder.path().string()) + "/elsewhere/main.c");
}

}  // namespace
}  // namespace regmill
