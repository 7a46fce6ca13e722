// The settings store and its file: the text written byte for byte and read back
// without loss, the order of the files on a write, the lock file, the merge of
// changes on synchronising, and the environment values that live in a store.
#include "project/settings_store.h"

#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QLockFile>

#include "project/environment.h"
#include "tests/project/qt_printers.h"
#include "tests/support/scratch_folder.h"

namespace regmill {
namespace {

using testing::ScratchFolder;

TEST(SettingsFile, WritesOneLinePerSettingWithItsEntitiesAndReadsItBack) {
  const std::string text = settingsFileText(
      {{"a&b", QString::fromUtf8("x < y > z & \"q\" 'p' \xC2\xB7 \xE2\x82\xAC")}, {"Empty", ""}});
  EXPECT_EQ(text,
            "<!DOCTYPE Larkfield_Settings_File>\n<settings>\n"
            "  <setting name=\"a&amp;b\">x &lt; y &gt; z &amp; &quot;q&quot; &apos;p&apos; &middot; \xE2\x82\xAC</setting>\n"
            "  <setting name=\"Empty\"></setting>\n"
            "</settings>\n");
  // What it wrote reads back the same; each reference is decoded once.
  const SettingEntries written{{"Path", "C:\\a;b"}, {"Blank", "   "}, {"Dot", QString::fromUtf8("a\xC2\xB7" "b")},
                               {"Escaped", "&lt; stays &amp;lt;"}, {"Lines", "one\r\ntwo"},
                               {"Wide", QString::fromUtf8("\xF0\xA0\xAA\xAC")}};  // outside the 16-bit range
  std::optional<SettingEntries> read = readSettingsText(settingsFileText(written));
  ASSERT_TRUE(read);
  EXPECT_EQ(*read, written);

  const char* handWritten =
      "<?xml version=\"1.0\"?>\n<!DOCTYPE Larkfield_Settings_File>\n<settings>\n"
      "<!-- <setting name=\"Commented\">x</setting> -->\n"
      "  <setting name='Single' other=\"1\">a&nbsp;b&#33;&#x20AC;&bogus;&#xD800;</setting>\n"
      "  <setting name=\"\">no name</setting><setting>no name either</setting>\n"
      "  <setting name=\"Nested\"><b>bold</b></setting>\n"
      "  <setting name=\"Data\"><![CDATA[<raw> &amp;]]></setting>\n"
      "  <setting name=\"Closed\"/>\n"
      "</settings>\n";
  std::optional<SettingEntries> hand = readSettingsText(handWritten);
  ASSERT_TRUE(hand);
  EXPECT_EQ(*hand, (SettingEntries{{"Single", QString::fromUtf8("a b!\xE2\x82\xAC&bogus;&#xD800;")},
                                   {"Nested", ""}, {"Data", "<raw> &amp;"}, {"Closed", ""}}));
  EXPECT_FALSE(readSettingsText("<setting name=\"x\">1</setting>"));
}

class SettingsStoreFiles : public ::testing::Test {
 protected:
  QString path(const char* name) const { return QString::fromStdString(folder.file(name)); }
  ScratchFolder folder;
};

TEST_F(SettingsStoreFiles, WritingKeepsThePreviousFileAsBackupAndLeavesNoNewFile) {
  SettingsStore store(path("sub/dir/settings.xml"));
  store.setValue("A", "1");
  ASSERT_TRUE(store.write());  // the folders are made
  EXPECT_FALSE(store.isDirty());
  store.setValue("A", "2");
  store.setValue("B", "x");
  store.remove("B");
  ASSERT_TRUE(store.write());
  EXPECT_EQ(folder.read("sub/dir/settings.xml"),
            "<!DOCTYPE Larkfield_Settings_File>\n<settings>\n  <setting name=\"A\">2</setting>\n</settings>\n");
  EXPECT_EQ(folder.read("sub/dir/settings.xml.bak"),
            "<!DOCTYPE Larkfield_Settings_File>\n<settings>\n  <setting name=\"A\">1</setting>\n</settings>\n");
  EXPECT_FALSE(folder.exists("sub/dir/settings.xml.new") || folder.exists("sub/dir/settings.xml.lck"));
}

TEST_F(SettingsStoreFiles, ReadingReplacesTheMapOnlyWhenTheFileIsThere) {
  SettingsStore store(path("settings.xml"));
  store.setValue("Kept", "1");
  EXPECT_FALSE(store.read());
  EXPECT_EQ(store.value("Kept"), "1");
  EXPECT_TRUE(store.isDirty());
  folder.write("settings.xml", settingsFileText({{"Other", "2"}}));
  ASSERT_TRUE(store.read());
  EXPECT_EQ(store.value("Kept", "fallback") + store.value("Other"), "fallback2");
  EXPECT_FALSE(store.isDirty());
}

TEST_F(SettingsStoreFiles, AHeldLockMakesReadAndWriteFailAfterTheWait) {
  folder.write("settings.xml", settingsFileText({{"A", "1"}}));
  SettingsStore store(path("settings.xml"));
  store.setValue("A", "2");
  // A lock file naming another live process, as that process would leave it.
  folder.write("settings.xml.lck", std::to_string(getppid()) + "\nother\nelsewhere\n");
  QElapsedTimer timer;
  timer.start();
  EXPECT_FALSE(store.write());
  EXPECT_GE(timer.elapsed(), SettingsStore::kLockWait - 50);
  EXPECT_FALSE(store.read());
  EXPECT_EQ(store.value("A"), "2");
  EXPECT_EQ(folder.read("settings.xml"), settingsFileText({{"A", "1"}}));
  EXPECT_FALSE(folder.exists("settings.xml.new"));
}

TEST_F(SettingsStoreFiles, SynchronisingMergesOwnChangesOverAnotherWriter) {
  SettingsStore store(path("settings.xml"));
  store.setValue("Mine", "1");
  store.setValue("Doomed", "1");
  ASSERT_TRUE(store.synchronise());  // no file yet: written
  // Not dirty, file changed: read again.
  folder.write("settings.xml", settingsFileText({{"Mine", "1"}, {"Doomed", "1"}, {"Theirs", "1"}}));
  folder.touchLater("settings.xml");
  ASSERT_TRUE(store.synchronise());
  EXPECT_EQ(store.value("Theirs"), "1");
  // Dirty and changed: their file with our changes applied.
  store.setValue("Mine", "2");
  store.remove("Doomed");
  folder.write("settings.xml", settingsFileText({{"Mine", "1"}, {"Doomed", "1"}, {"Theirs", "2"}, {"New", "x"}}));
  folder.touchLater("settings.xml");
  ASSERT_TRUE(store.synchronise());
  EXPECT_EQ(folder.read("settings.xml"), settingsFileText({{"Mine", "2"}, {"New", "x"}, {"Theirs", "2"}}));
  EXPECT_FALSE(store.isDirty());
  // Unchanged file and a clean store: nothing to do, nothing written.
  folder.write("settings.xml.bak", "untouched");
  ASSERT_TRUE(store.synchronise());
  EXPECT_EQ(folder.read("settings.xml.bak"), "untouched");
}

TEST_F(SettingsStoreFiles, EnvironmentValuesRegisterByPageAndRemoveTheirDefault) {
  Environment environment(path("first.xml"), path("second.xml"));
  PropertyClass tabs({.name = "Editor/Tabs", .shortCaption = "Tabs", .defaultValue = "4", .page = "Editor"});
  PropertyClass hidden({.name = "Internal/X", .page = "(Internal)"});
  EnvironmentPropertyValue first(&tabs, environment);
  EnvironmentPropertyValue internal(&hidden, environment);
  {
    std::unique_ptr<PropertyValue> second(first.clone());
    EXPECT_TRUE(environment.page("Editor")->size() == 1 && environment.page("Editor")->at(0) == &first);
    EXPECT_EQ(environment.value("Editor/Tabs"), second.get());
  }
  EXPECT_EQ(environment.value("Editor/Tabs"), nullptr);
  EXPECT_EQ(environment.pageNames(), QStringList{"Editor"});

  QStringList events;
  QObject::connect(&environment, &Environment::keyChanged, [&](const QString& name) { events << "key " + name; });
  QObject::connect(&first, &EnvironmentPropertyValue::changed,
                   [&](EnvironmentPropertyValue* value) { events << "changed " + value->propertyValue(); });
  EXPECT_EQ(first.propertyValue(), "4");
  first.setPropertyValue("8");
  first.setPropertyValue("8");  // no change, no signal
  EXPECT_EQ(environment.store(1).value("Editor/Tabs"), "8");
  first.setPropertyValue("4");
  EXPECT_EQ(environment.store(1).value("Editor/Tabs", "none"), "none");
  EXPECT_EQ(events, (QStringList{"key Editor/Tabs", "changed 8", "key Editor/Tabs", "changed 4"}));
  ASSERT_TRUE(environment.store(1).write());
  EXPECT_EQ(folder.read("second.xml"), settingsFileText({}));
}

}  // namespace
}  // namespace regmill
