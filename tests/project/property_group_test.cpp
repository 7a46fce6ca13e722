// Property group files: the classes they declare, their cache, the classes found in
// the target folders, the macros an entry gives an element, and a group value that
// applies its entry.
#include <gtest/gtest.h>

#include <filesystem>

#include "project/macro_expander.h"
#include "project/project_property_value.h"
#include "project/project_system.h"
#include "tests/project/qt_printers.h"
#include "tests/support/scratch_folder.h"

namespace regmill {
namespace {

const char* kGroups = R"xml(<groups>
  <group name="board" short="Board" long="The board." group="Target Options" default="Small">
    <groupEntry name="Small" family="Eval">
      <property name="memory" value="64K" />
      <property name="speed" value="fast" configuration="Release" />
      <file name="startup.s" file_name="$(Board)/startup_small.s" folder="System" />
      <macro name="Flash" value="small" />
      <macro name="DebugOnly" value="yes" configuration="Debug" />
      <macro name="Inherited" value="yes" configuration="Base" />
      <macro name="WhenFast" value="yes" property="speed" property_value="fast" />
    </groupEntry>
    <groupEntry name="Large" family="Production">
      <file name="startup.s" file_name="startup_large.s" folder="System" />
      <macro name="Flash" value="large &amp; &#xc2;&#xb7;" />
    </groupEntry>
  </group>
  <ifndef name="anything"><group name="core" page="Debugging"><groupEntry name="M4" /></group></ifndef>
</groups>
)xml";

class PropertyGroups : public ::testing::Test {
 protected:
  QString write(const std::string& name, const std::string& text) { return QString::fromStdString(folder.write(name, text)); }
  testing::ScratchFolder folder;
  StandardProjectSystem system;
};

TEST_F(PropertyGroups, FilesDeclareClassesAndAreCachedByTime) {
  const QString path = write("propertyGroups.xml", kGroups);
  PropertyGroupFileCache& cache = system.groupFiles();
  const PropertyValueGroupFile* file = cache.lookup(path);
  ASSERT_NE(file, nullptr);
  ASSERT_EQ(file->classes().size(), 2u);
  const PropertyValueGroupClass* board = file->findClass("board");
  EXPECT_EQ(board->enumerates(), (QStringList{"Small", "Large"}));
  EXPECT_EQ(board->families(), (QStringList{"Eval", "Production"}));
  EXPECT_EQ(board->page() + "|" + board->group(), "Code|Target");  // no page reads as General
  EXPECT_EQ(file->findClass("core")->page(), "Debug");
  EXPECT_EQ(cache.lookup(path), file);

  folder.touchLater("propertyGroups.xml");
  const PropertyValueGroupFile* again = cache.lookup(path);
  ASSERT_NE(again, nullptr);
  EXPECT_NE(again, file);
  EXPECT_EQ(board->entry("Large") != nullptr, true);  // the stale file's classes stay usable
  EXPECT_EQ(cache.lookup(QString::fromStdString(folder.file("none.xml"))), nullptr);
  EXPECT_EQ(cache.lookup("None"), cache.lookup(""));
}

TEST_F(PropertyGroups, TargetFoldersAddTheirClassesBehindTheFilesOwn) {
  std::filesystem::create_directories(folder.path() / "loom/targets/chip");
  folder.write("loom/targets/chip/propertyGroups.xml", "<groups><group name=\"chip\" /></groups>");
  macroExpander().globalMacros().insert("LoomDir", QString::fromStdString(folder.file("loom")));
  PropertyGroupFileCache cache;
  const PropertyValueGroupFile* file = cache.lookup(write("propertyGroups.xml", kGroups));
  const PropertyValueGroupFile* shared = cache.lookup("None");
  macroExpander().globalMacros().remove("LoomDir");
  ASSERT_NE(file, nullptr);
  ASSERT_EQ(file->classes().size(), 3u);
  EXPECT_EQ(file->classes()[2]->name(), "chip");
  ASSERT_EQ(shared->classes().size(), 1u);
  EXPECT_EQ(shared->classes()[0]->name(), "chip");
}

TEST_F(PropertyGroups, AnEntryGivesMacrosForTheConfigurationAndItsInheritance) {
  write("propertyGroups.xml", kGroups);
  system.loadSolution(write("s.lkProject", "<!DOCTYPE Larkloom_Project_File>\n<solution>"
                                           "<configuration Name=\"Common\" property_groups_file_path=\"$(SolutionDir)/propertyGroups.xml\" />"
                                           "<configuration Name=\"Debug\" inherited_configurations=\"Base\" />"
                                           "<configuration Name=\"Release\" speed=\"fast\" />"
                                           "<project Name=\"P\"><configuration Name=\"Release\" board=\"Large\" /></project></solution>"));
  ProjectElement* project = system.root()->childElements().back();
  // The group file's path is expanded with the global maps only, so SolutionDir comes from there.
  macroExpander().globalMacros().insert("SolutionDir", QString::fromStdString(folder.path().string()));
  const MacroMap debug = system.getMacros(project, "Debug");
  const MacroMap release = system.getMacros(project, "Release");
  const MacroMap other = system.getMacros(project, "Other");
  macroExpander().globalMacros().remove("SolutionDir");
  auto show = [](const MacroMap& map) {
    QStringList shown;
    for (const char* name : {"board", "core", "Flash", "DebugOnly", "Inherited", "WhenFast"})
      shown << QString(name) + "=" + map.value(name, "-");
    return shown.join(' ');
  };
  EXPECT_EQ(show(debug), "board=Small core= Flash=small DebugOnly=yes Inherited=yes WhenFast=-");
  EXPECT_EQ(show(release), QString::fromUtf8("board=Large core= Flash=large & \xC2\xB7 DebugOnly=- Inherited=- WhenFast=-"));
  EXPECT_EQ(show(other), "board=Small core= Flash=small DebugOnly=- Inherited=- WhenFast=-");
}

TEST_F(PropertyGroups, AGroupValueAppliesItsEntryAndDescribesIt) {
  const PropertyValueGroupFile* file = system.groupFiles().lookup(write("propertyGroups.xml", kGroups));
  ASSERT_NE(file, nullptr);
  system.loadSolution(write("s.lkProject", "<!DOCTYPE Larkloom_Project_File>\n<solution><project Name=\"P\">"
                                           "<folder Name=\"Src\"><folder Name=\"System\"><file file_name=\"startup.s\" /></folder></folder>"
                                           "</project></solution>"));
  PropertyClass memory({.name = "memory"}), speed({.name = "speed"});
  system.registerClass(&memory);
  system.registerClass(&speed);
  ProjectElement* project = system.root()->childElements().back();
  PropertyValueGroupValue value(system, file->findClass("board"), project, "Debug");
  value.setPropertyValue("Small");
  EXPECT_EQ(system.getLocalValue(project, &memory, "Debug"), "64K");
  EXPECT_EQ(system.getLocalValue(project, &speed, "Release"), "fast");
  EXPECT_EQ(value.propertyValue(), "Small");
  EXPECT_EQ(system.absolutePath(project, "Debug"), QString());  // a project has no file path
  QStringList files;
  for (ProjectElement* folder : project->childElements())
    for (ProjectElement* inner : folder->childElements())
      for (ProjectElement* leaf : inner->childElements()) files << inner->name() + "/" + leaf->attribute("file_name");
  EXPECT_EQ(files, QStringList{"System/$(Board)/startup_small.s"});  // the existing file got the new path
  EXPECT_EQ(value.description(),
            "The board.<ul><li><b>property</b> memory=64K</li><li><b>property</b> speed=fast (Release)</li>"
            "<li><b>file</b> startup.s</li><li><b>macro</b> Flash=small</li><li><b>macro</b> DebugOnly=yes (Debug)</li>"
            "<li><b>macro</b> Inherited=yes (Base)</li><li><b>macro</b> WhenFast=yes</li></ul>");
  value.setPropertyValue("Unknown");  // no such entry: the default's entry is applied, the name stored
  EXPECT_EQ(value.propertyValue(), "Unknown");
  PropertyValueGroupValue large(system, file->findClass("board"), project, "Release");
  large.setPropertyValue("Large");
  EXPECT_EQ(large.description(), "The board.<ul><li><b>file</b> startup.s</li><li><b>macro</b> Flash=large &amp; &middot;</li></ul>");
}

}  // namespace
}  // namespace regmill
