// Property classes: the declaration of one setting (its key, captions, type,
// default and allowed values), made once and shared by every value of the class.
// A class never changes after construction; it outlives every value that refers to it.
#pragma once
#include <QString>
#include <QStringList>
#include <cstdint>

namespace regmill {

// The stored type code of a class. Everything is a string at the storage level; the
// type decides how a value is edited and converted. Codes 9 and 14 have no editor.
enum class PropertyType : int32_t {
  Boolean = 0,
  Integer = 1,
  HexInteger = 2,
  BoundedInteger = 3,
  String = 4,
  FileName = 5,
  ExistingFileName = 6,
  StringList = 7,
  DirectoryName = 8,
  Unnamed9 = 9,
  Enumeration = 10,
  Colour = 11,
  Font = 12,
  FixedPitchFont = 13,
  Unnamed14 = 14,
  ScriptText = 15,
  FreeText = 16,
  SerialPort = 17,
  NewFileName = 18,
};

class PropertyClass;

// Every field of a class, for the constructors and for classes declared inline.
struct PropertyClassFields {
  QString name{};  // the attribute name in a project file, or an environment option's settings path
  QString group{};
  QString shortCaption{};
  QString longCaption{};
  QString suffix{};
  QString defaultValue{};
  QString specialText{};
  QString page{};
  bool readOnly = false;
  bool perConfiguration = true;
  PropertyType type = PropertyType::String;
  QStringList enumerates{};  // entries may carry their family as "entry~~family"
  int32_t minimum = 0;
  int32_t maximum = 0;
  uint32_t flags = 0;
  const PropertyClass* linkedClass = nullptr;
};

// Answers the keys that describe a class declared by key: the name followed by
// ".page", ".group", ".short", ".long", ".default", ".enumerates", ".suffix",
// ".minimum" and ".maximum". Where its texts come from is up to the host.
class MessageCatalogue {
 public:
  virtual ~MessageCatalogue() = default;
  // An empty text when the key is unknown.
  virtual QString message(const QString& key) const = 0;
};

// The catalogue that classes declared by key ask; null (the default) asks none.
void installMessageCatalogue(const MessageCatalogue* catalogue);

class PropertyClass {
 public:
  // Declared inline, with every field given.
  explicit PropertyClass(PropertyClassFields fields);
  // A Boolean class with the default "Yes" or "No".
  PropertyClass(const QString& name, const QString& page, const QString& group, const QString& shortCaption,
                const QString& longCaption, bool defaultValue, uint32_t flags);
  // Declared by key: the other fields come from the installed catalogue.
  PropertyClass(const QString& name, PropertyType type, uint32_t flags);
  virtual ~PropertyClass() = default;
  PropertyClass(const PropertyClass&) = delete;
  PropertyClass& operator=(const PropertyClass&) = delete;

  virtual QString description() const { return fields_.longCaption; }
  // For a Boolean class without entries "No" and "Yes"; else the entries.
  virtual QStringList enumerates() const;
  // Computes the value that the linked class takes when this one is written to
  // `value`; false when there is none.
  virtual bool linkedValue(const QString& value, QString& out) const;

  const QString& name() const { return fields_.name; }
  const QString& group() const { return fields_.group; }
  const QString& shortCaption() const { return fields_.shortCaption; }
  const QString& longCaption() const { return fields_.longCaption; }
  const QString& suffix() const { return fields_.suffix; }
  const QString& defaultValue() const { return fields_.defaultValue; }
  const QString& specialText() const { return fields_.specialText; }
  const QString& page() const { return fields_.page; }
  bool isReadOnly() const { return fields_.readOnly; }
  bool isPerConfiguration() const { return fields_.perConfiguration; }
  PropertyType type() const { return fields_.type; }
  const QStringList& families() const { return fields_.families; }
  int32_t minimum() const { return fields_.minimum; }
  int32_t maximum() const { return fields_.maximum; }
  uint32_t flags() const { return fields_.flags; }
  const PropertyClass* linkedClass() const { return fields_.linkedClass; }

 private:
  struct Stored : PropertyClassFields {
    QStringList families;  // beside enumerates, when the entries name families
  };
  // What every constructor ends with: captions shortened, pages merged, families split.
  void normalise();

  Stored fields_;
};

}  // namespace regmill
