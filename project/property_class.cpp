#include "project/property_class.h"

#include "project/diagnostics.h"

namespace regmill {

namespace {

const MessageCatalogue* installedCatalogue = nullptr;

}  // namespace

void installMessageCatalogue(const MessageCatalogue* catalogue) { installedCatalogue = catalogue; }

PropertyClass::PropertyClass(PropertyClassFields fields) {
  static_cast<PropertyClassFields&>(fields_) = std::move(fields);
  normalise();
}

PropertyClass::PropertyClass(const QString& name, const QString& page, const QString& group,
                             const QString& shortCaption, const QString& longCaption, bool defaultValue,
                             uint32_t flags) {
  fields_.name = name;
  fields_.page = page;
  fields_.group = group;
  fields_.shortCaption = shortCaption;
  fields_.longCaption = longCaption;
  fields_.defaultValue = defaultValue ? "Yes" : "No";
  fields_.type = PropertyType::Boolean;
  fields_.flags = flags;
  normalise();
}

PropertyClass::PropertyClass(const QString& name, PropertyType type, uint32_t flags) {
  fields_.name = name;
  fields_.type = type;
  fields_.flags = flags;
  if (installedCatalogue != nullptr) {
    auto message = [&](const char* suffix) { return installedCatalogue->message(name + suffix); };
    fields_.page = message(".page");
    if (fields_.page.isEmpty())
      reportWarning(QString("PropertyClass::PropertyClass GUIBuilder message %1 not found").arg(name + ".page"));
    fields_.group = message(".group");
    fields_.shortCaption = message(".short");
    fields_.longCaption = message(".long");
    fields_.defaultValue = message(".default");
    fields_.enumerates = message(".enumerates").split(u';', Qt::SkipEmptyParts);
    fields_.suffix = message(".suffix");
    fields_.minimum = message(".minimum").toInt();
    fields_.maximum = message(".maximum").toInt();
  }
  normalise();
}

void PropertyClass::normalise() {
  qsizetype cut = fields_.group.indexOf(" Options");
  if (cut < 0) cut = fields_.group.indexOf(" Settings");
  if (cut >= 0) fields_.group.truncate(cut);
  if (fields_.page == "General" || fields_.page == "C/C++" || fields_.page == "Linker")
    fields_.page = "Code";
  else if (fields_.page == "Debugging")
    fields_.page = "Debug";
  // "UTF-8~~Common" is the entry UTF-8 in the family Common; the first entry decides.
  if (!fields_.enumerates.isEmpty() && fields_.enumerates.first().contains("~~")) {
    QStringList entries;
    for (const QString& entry : fields_.enumerates) {
      const qsizetype split = entry.indexOf("~~");
      entries.append(split < 0 ? entry : entry.left(split));
      fields_.families.append(split < 0 ? QString() : entry.mid(split + 2));
    }
    fields_.enumerates = entries;
  }
}

QStringList PropertyClass::enumerates() const {
  if (fields_.type == PropertyType::Boolean && fields_.enumerates.isEmpty()) return {"No", "Yes"};
  return fields_.enumerates;
}

bool PropertyClass::linkedValue(const QString&, QString&) const { return false; }

}  // namespace regmill
