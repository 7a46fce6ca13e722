// Resolving a property over the element tree and the configurations: the element
// level as the outer loop, non-transitive inheritance, presence over text, the order
// in which string lists gather, the trace, configuration names and element macros.
#include <gtest/gtest.h>

#include "project/macro_expander.h"
#include "project/project_listing.h"
#include "project/project_property_value.h"
#include "project/project_system.h"
#include "tests/project/qt_printers.h"
#include "tests/support/scratch_folder.h"

namespace regmill {
namespace {

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

class ValueResolution : public ::testing::Test {
 protected:
  void SetUp() override {
    system.loadSolution(QString::fromStdString(folder.write("s.lkProject", kSolution)));
  }
  ProjectElement* find(const QString& path) { return findElementByPath(system.root(), path); }
  testing::ScratchFolder folder;
  StandardProjectSystem system;
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
    ProjectElement* element = find(c.element);
    ASSERT_NE(element, nullptr) << c.element;
    EXPECT_EQ(system.getValue(element, c.c, c.configuration), c.value) << c.element << " " << c.configuration;
  }
  EXPECT_TRUE(system.getLocalValue(find("App/Source/Deep/plain.c"), &level, "Debug").isNull());
  EXPECT_EQ(system.getLocalValue(find("App/Source/main.c"), &blocked, "Debug"), "");  // Common is not Debug
}

TEST_F(ValueResolution, StringListsGatherOutermostFirstWithATrace) {
  PropertyClass defines({.name = "defines", .type = PropertyType::StringList});
  std::vector<TraceEntry> trace;
  EXPECT_EQ(system.getValue(find("App/Source/main.c"), &defines, "Debug", &trace), "sol_common;sol_debug;file_common");
  QStringList where;
  for (const TraceEntry& entry : trace) where << entry.element->name() + "/" + entry.name + "=" + entry.text;
  EXPECT_EQ(where, (QStringList{"main.c/Common=file_common", "S/Debug=sol_debug", "S/Common=sol_common"}));
  EXPECT_EQ(system.getValue(find("App/Source/Deep/plain.c"), &defines, "Release"), "sol_common");
  trace.clear();
  PropertyClass missing({.name = "missing", .defaultValue = "d"});
  EXPECT_EQ(system.getValue(find("App/Source/Deep/plain.c"), &missing, "Debug", &trace), "d");
  EXPECT_TRUE(trace.size() == 1 && trace[0].element == nullptr);
  EXPECT_EQ(system.getList(find("App/Source/main.c"), &defines, "Debug", true, false, true, "-D"),
            (QStringList{"-D\"sol_common\"", "-D\"sol_debug\"", "-D\"file_common\""}));
}

TEST_F(ValueResolution, ConfigurationNamesBySelection) {
  EXPECT_EQ(system.configurationNames(nullptr, 1 | 2 | 4), (QStringList{"Base", "Common", "Debug", "Release", "Root"}));
  EXPECT_EQ(system.configurationNames(find("App/Source/main.c"), 4), (QStringList{"Debug", "Release"}));
  EXPECT_EQ(system.configurationNames(find("App/Source/main.c"), 2), (QStringList{"Base", "Root"}));
  EXPECT_EQ(system.configurationNames(nullptr, 0), (QStringList{"Common"}));
}

TEST_F(ValueResolution, ElementMacrosDescribeWhereTheElementIs) {
  const QString dir = QString::fromStdString(folder.path().string());
  const MacroMap macros = system.getMacros(find("App/Source/Deep/plain.c"), "Debug");
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
  EXPECT_EQ(system.expandFor(find("App/Source/main.c"), "$(ProjectName)/$(InputName).o $$(x)", "Debug"), "App/main.o $(x)");
  EXPECT_EQ(system.absolutePath(find("App/Source/main.c"), "Debug"), dir + "/app/main.c");
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
  ProjectPropertyValue fileLevel(system, &level, find("App/Source/main.c"), "Release");
  EXPECT_EQ(fileLevel.propertyValue(), "f_common");
  EXPECT_TRUE(fileLevel.isDefault());  // main.c has no Release configuration
  EXPECT_FALSE(ProjectPropertyValue(system, &level, find("App/Source/main.c"), "Debug").isDefault());
  EXPECT_EQ(ProjectPropertyValue(system, &shared, find("App/Source/main.c"), "Debug").configuration(), "Common");
  // A list shows only its own setting: what is gathered from above is not its to edit.
  EXPECT_EQ(ProjectPropertyValue(system, &defines, find("App/Source/main.c"), "Common").propertyValue(), "file_common");
  EXPECT_TRUE(ProjectPropertyValue(system, &defines, find("App/Source/main.c"), "Debug").propertyValue().isNull());

  PropertyClass flags({.name = "flags"});
  ImplyingClass optimize(&flags);
  ProjectPropertyValue(system, &optimize, find("App/Source/Deep/plain.c"), "Release").setPropertyValue("speed");
  EXPECT_EQ(system.getLocalValue(find("App/Source/Deep/plain.c"), &flags, "Release"), "-O3");
  EXPECT_EQ(system.changeRecords().size(), 2);

  QStringList changed;
  QObject::connect(&system, &ProjectSystem::projectChanged, [&](ProjectElement* p) { changed << p->name(); });
  PropertyClass directory({.name = "project_directory"}), include({.name = "include_directory"});
  ProjectDirectoryProjectPropertyValue(system, &directory, find("App"), "Common").setPropertyValue("elsewhere");
  ProjectDirectoryProjectPropertyValue(system, &include, find("App"), "Common").setPropertyValue("inc");
  ProjectMacrosProjectPropertyValue(system, &level, find("App/Source/main.c"), "Common").setPropertyValue("x");
  EXPECT_EQ(changed, (QStringList{"App", "App", "App"}));  // once for each write
  EXPECT_EQ(system.absolutePath(find("App/Source/main.c"), "Debug"),
            QString::fromStdString(folder.path().string()) + "/elsewhere/main.c");
}

}  // namespace
}  // namespace regmill
