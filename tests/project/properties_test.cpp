// Property classes and values: how each way of declaring a class normalises it, the
// typed reads and writes by type with their warnings, and the value list. Property
// group files: the classes they declare, their cache, the classes found in the
// target folders, the macros an entry gives an element, and a group value that
// applies its entry.
#include "project/property_value.h"

#include <gtest/gtest.h>

#include <QMap>
#include <filesystem>

#include "project/macro_expander.h"
#include "project/project_property_value.h"
#include "project/project_system.h"
#include "tests/project/captured_log.h"
#include "tests/project/qt_printers.h"
#include "tests/support/scratch_folder.h"

namespace regmill {
namespace {

class Catalogue : public MessageCatalogue {
 public:
  QString message(const QString& key) const override { return texts.value(key); }
  QMap<QString, QString> texts;
};

TEST(PropertyClass, DeclarationsAreNormalisedAlikeAndEntriesSplitOffTheirFamilies) {
  PropertyClass boolean("build_debug", "Debugging", "Build Options", "Debug", "Build for debugging.", true, 5);
  EXPECT_EQ(boolean.type(), PropertyType::Boolean);
  EXPECT_EQ(QStringList({boolean.page(), boolean.group(), boolean.defaultValue(), boolean.enumerates().join(','),
                         QString::number(boolean.flags())}).join('|'), "Debug|Build|Yes|No,Yes|5");

  struct Case { const char* page; const char* group; const char* normalPage; const char* normalGroup; };
  const Case cases[] = {
      {"General", "Code Generation Options", "Code", "Code Generation"},
      {"C/C++", "Preprocessor Settings", "Code", "Preprocessor"},
      {"Linker", "Linker Options Settings", "Code", "Linker"},  // " Options" is looked for first
      {"Debugging", "Settings of Options", "Debug", "Settings of"},
      {"Build", "Plain", "Build", "Plain"},
  };
  for (const Case& c : cases) {
    PropertyClass declared({.name = "x", .group = c.group, .page = c.page});
    EXPECT_EQ(declared.page() + "|" + declared.group(), QString(c.normalPage) + "|" + c.normalGroup);
  }
  // Entries with families are split only when the first one has a family.
  PropertyClass withFamilies({.type = PropertyType::Enumeration, .enumerates = {"UTF-8~~Common", "Latin1~~Western", "Other"}});
  EXPECT_EQ(withFamilies.enumerates() + withFamilies.families(), (QStringList{"UTF-8", "Latin1", "Other", "Common", "Western", ""}));
  PropertyClass without({.type = PropertyType::Enumeration, .enumerates = {"Plain", "A~~B"}});
  EXPECT_EQ(without.enumerates() + without.families(), (QStringList{"Plain", "A~~B"}));
}

TEST(PropertyClass, ClassesDeclaredByKeyAskTheCatalogue) {
  testing::CapturedLog log;
  Catalogue catalogue;
  catalogue.texts = {{"opt.page", "Linker"}, {"opt.group", "Memory Options"}, {"opt.short", "Opt"},
                     {"opt.enumerates", "a;;b~~F"}, {"opt.minimum", "-3"}, {"opt.maximum", "0x10"}};
  installMessageCatalogue(&catalogue);
  PropertyClass byKey("opt", PropertyType::Enumeration, 0);
  PropertyClass missingPage("nopage", PropertyType::String, 0);
  installMessageCatalogue(nullptr);
  // The first entry names no family, so none are split off; the bounds are read as decimal only.
  EXPECT_EQ(QStringList({byKey.page(), byKey.group(), byKey.enumerates().join(','), QString::number(byKey.minimum()),
                         QString::number(byKey.maximum())}).join('|'), "Code|Memory|a,b~~F|-3|0");
  EXPECT_EQ(log.take(), "warning: PropertyClass::PropertyClass GUIBuilder message nopage.page not found\n");
}

// A value kept in the object, writable, for testing the typed access.
class PlainValue : public PropertyValue {
 public:
  PlainValue(const PropertyClass* propertyClass, QString text = {}) : PropertyValue(propertyClass), text_(text) {}
  PropertyValue* clone() const override { return new PlainValue(propertyClass(), text_); }
  void setPropertyValue(const QString& text) override { text_ = text; }
  QString propertyValue() const override { return text_; }

 private:
  QString text_;
};

TEST(PropertyValue, BooleansReadThroughTheEntriesThenTheFallbackWords) {
  PropertyClass plain("b", "", "", "", "", true, 0);
  PropertyClass onOff({.defaultValue = "Off", .type = PropertyType::Boolean, .enumerates = {"Off", "On", "Maybe"}});
  struct Case { const PropertyClass* c; const char* text; bool expected; };
  const Case cases[] = {
      {&plain, "Yes", true}, {&plain, "No", false}, {&plain, "TRUE", true}, {&plain, "yes", true},
      {&plain, "1", true},   {&plain, "2", false},  {&plain, "", true},     // empty reads the default
      {&onOff, "On", true},  {&onOff, "Off", false}, {&onOff, "Maybe", false}, {&onOff, "", false},
  };
  for (const Case& c : cases) EXPECT_EQ(PlainValue(c.c, c.text).boolValue(), c.expected) << c.text;
}

TEST(PropertyValue, IntegersReadByIndexForEnumerationsAndByPrefixOtherwise) {
  PropertyClass number({.defaultValue = "7", .type = PropertyType::Integer});
  PropertyClass choice({.defaultValue = "b", .type = PropertyType::Enumeration, .enumerates = {"a", "b", "c"}});
  struct Case { const PropertyClass* c; const char* text; int expected; };
  const Case cases[] = {
      {&number, "42", 42}, {&number, "0x1F", 31},   {&number, "010", 8},  {&number, "-12", -12},
      {&number, " 5 ", 5}, {&number, "", 7},        {&number, "x", 0},    {&number, "2147483648", 0},
      {&number, "-2147483648", -2147483647 - 1},
      {&number, "0b11", 0},  // no binary prefix in the stored form
      {&choice, "c", 2},   {&choice, "", 1},        {&choice, "z", 0},
  };
  for (const Case& c : cases) EXPECT_EQ(PlainValue(c.c, c.text).intValue(), c.expected) << c.text;
}

TEST(PropertyValue, IntegerWritesTakeTheFormOfTheType) {
  testing::CapturedLog log;
  struct Case { PropertyClassFields fields; int value; const char* stored; const char* warnings; };
  const Case cases[] = {
      {{.type = PropertyType::HexInteger, .maximum = 0xFFFF}, 255, "0x00ff", ""},
      {{.type = PropertyType::HexInteger, .maximum = 0xF}, 10, "0xa", ""},
      {{.type = PropertyType::HexInteger, .maximum = 0x10}, 10, "0x0a", ""},
      {{.type = PropertyType::HexInteger, .maximum = 0x7FFFFFFF}, -1, "0xffffffff", ""},
      {{.type = PropertyType::BoundedInteger}, -4, "-4", ""},
      {{.type = PropertyType::Enumeration, .enumerates = {"a", "b"}}, 1, "b", ""},
      {{.name = "flag", .type = PropertyType::Boolean}, 2, "",
       "warning: PropertyValue::setValue(int): Setting an enumeration to a value which isn't in its enumerates\n"
       "warning: --- setting flag to 2\n"},
      {{.type = PropertyType::String}, 3, "old", "warning: PropertyValue::setValue(int): Setting a non-integer property\n"},
  };
  for (const Case& c : cases) {
    PropertyClass declared(c.fields);
    PlainValue value(&declared, "old");
    value.setValue(c.value);
    EXPECT_EQ(value.propertyValue(), c.stored) << c.value;
    EXPECT_EQ(log.take(), c.warnings) << c.value;
  }
  PropertyClass boolean("b", "", "", "", "", false, 0);
  PropertyClass integer({.type = PropertyType::Integer});
  PlainValue flag(&boolean), count(&integer);
  flag.setValue(true);
  count.setValue(true);
  EXPECT_EQ(flag.propertyValue() + "|" + count.propertyValue(), "Yes|1");
  EXPECT_EQ(log.take(), "warning: PropertyValue::setValue(int): Setting a non-Boolean property\n");
}

TEST(PropertyValue, ListsAndRectanglesRoundTrip) {
  PropertyClass list({.defaultValue = "d1;d2", .type = PropertyType::StringList});
  EXPECT_EQ(PlainValue(&list, "a\\;b;;c").stringListValue(), (QStringList{"a;b", "c"}));
  EXPECT_EQ(PlainValue(&list).stringListValue(), (QStringList{"d1", "d2"}));
  PropertyClass geometry({.type = PropertyType::String});
  PlainValue rectangle(&geometry);
  rectangle.setValue(QRect(-1, 2, 30, 40));
  EXPECT_EQ(rectangle.propertyValue(), "-1,2,30,40");
  EXPECT_EQ(rectangle.rectValue(), QRect(-1, 2, 30, 40));
  for (const char* bad : {"1,2,3", "1,2,3,4,5", "1,2,x,4", ""}) EXPECT_TRUE(PlainValue(&geometry, bad).rectValue().isNull()) << bad;
}

TEST(PropertyValueList, AppendsOneValuePerClassAndSortsByShortCaption) {
  testing::CapturedLog log;
  PropertyClass b({.shortCaption = "b"}), a({.shortCaption = "a"}), upper({.shortCaption = "B"});
  PropertyValueList list;
  std::unique_ptr<SimplePropertyValue> duplicate(new SimplePropertyValue(&b, "2"));
  for (PropertyValue* value : {new SimplePropertyValue(&b, "1"), duplicate.get(), new SimplePropertyValue(&a, "3"),
                               new SimplePropertyValue(&upper, "4"), static_cast<SimplePropertyValue*>(nullptr)})
    list.appendUnique(value);
  list.sort();
  QStringList order;
  for (PropertyValue* value : list) order << value->propertyValue();
  EXPECT_EQ(order, (QStringList{"4", "3", "1"}));
  EXPECT_EQ(log.take(), "error: Bad property value in PropertyValueList::appendUnique\n");
  EXPECT_TRUE(list.at(0)->isReadOnly());
}

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
