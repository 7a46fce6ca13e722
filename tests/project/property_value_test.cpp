// Property classes and values: how each way of declaring a class normalises it, the
// typed reads and writes by type with their warnings, and the value list.
#include "project/property_value.h"

#include <gtest/gtest.h>

#include <QMap>

#include "tests/project/captured_log.h"
#include "tests/project/qt_printers.h"

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

}  // namespace
}  // namespace regmill
