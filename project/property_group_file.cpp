#include "project/property_group_file.h"

#include <QDir>
#include <QFileInfo>
#include <cstring>

#include "project/diagnostics.h"
#include "project/macro_expander.h"
#include "project/xml_text.h"
#include "project/xml_preprocessor.h"

namespace regmill {

namespace {

std::vector<const XMLElement*> childElementsNamed(const XMLElement* parent, const char* tag) {
  std::vector<const XMLElement*> found;
  for (const XMLNode* node = parent->firstChild(); node != nullptr; node = node->nextSibling())
    if (node->isElement() && std::strcmp(node->getName(), tag) == 0) found.push_back(static_cast<const XMLElement*>(node));
  return found;
}

PropertyClassFields groupFields(const XMLElement* declaration) {
  PropertyClassFields fields;
  fields.name = attributeText(declaration, "name");
  fields.group = attributeText(declaration, "group");
  fields.shortCaption = attributeText(declaration, "short");
  fields.longCaption = attributeText(declaration, "long");
  fields.page = declaration->hasAttribute("page") ? attributeText(declaration, "page") : QString("General");
  fields.defaultValue = attributeText(declaration, "default");
  fields.type = PropertyType::Enumeration;
  for (const XMLElement* entry : childElementsNamed(declaration, "groupEntry")) {
    QString text = attributeText(entry, "name");
    if (entry->hasAttribute("family")) text += "~~" + attributeText(entry, "family");
    fields.enumerates.append(text);
  }
  return fields;
}

}  // namespace

PropertyValueGroupClass::PropertyValueGroupClass(const XMLElement* declaration, bool loaderFlag)
    : PropertyClass(groupFields(declaration)), declaration_(declaration), loaderFlag_(loaderFlag) {}

const XMLElement* PropertyValueGroupClass::entry(const QString& name) const {
  for (const XMLElement* entry : childElementsNamed(declaration_, "groupEntry"))
    if (attributeText(entry, "name") == name) return entry;
  return nullptr;
}

void PropertyValueGroupFile::reportError(const QString& message) { reportWarning(message); }

bool PropertyValueGroupFile::read(const QString& path) {
  if (!load(path).ok() || root() == nullptr) return false;
  path_ = path;
  fileTime_ = QFileInfo(path).lastModified();
  processConditionals(*this, root(), path, {}, false);
  if (root() == nullptr || !root()->isElement()) return true;
  for (const XMLElement* group : childElementsNamed(static_cast<const XMLElement*>(root()), "group")) {
    ownClasses_.push_back(std::make_unique<PropertyValueGroupClass>(group, false));
    classes_.push_back(ownClasses_.back().get());
  }
  return true;
}

void PropertyValueGroupFile::appendClasses(const PropertyValueGroupFile& other) {
  classes_.insert(classes_.end(), other.classes_.begin(), other.classes_.end());
}

const PropertyValueGroupClass* PropertyValueGroupFile::findClass(const QString& name) const {
  for (const PropertyValueGroupClass* declared : classes_)
    if (attributeText(declared->declaration(), "name") == name) return declared;
  return nullptr;
}

const PropertyValueGroupFile* PropertyGroupFileCache::lookup(const QString& path) {
  if (path.isEmpty() || path == "None") {
    if (shared_ == nullptr) {
      shared_ = std::make_unique<PropertyValueGroupFile>();
      appendScannedClasses(*shared_);
    }
    return shared_.get();
  }
  const QString absolute = QFileInfo(path).absoluteFilePath();
  for (auto file = cached_.begin(); file != cached_.end(); ++file) {
    if ((*file)->path() != absolute) continue;
    if ((*file)->fileTime() == QFileInfo(absolute).lastModified()) return file->get();
    stale_.push_back(std::move(*file));
    cached_.erase(file);
    break;
  }
  auto file = std::make_unique<PropertyValueGroupFile>();
  if (!file->read(absolute)) return nullptr;
  appendScannedClasses(*file);
  cached_.push_back(std::move(file));
  return cached_.back().get();
}

void PropertyGroupFileCache::appendScannedClasses(PropertyValueGroupFile& file) {
  MacroExpander& expander = macroExpander();
  for (const char* folder : {"$(PackagesDir)/libraries", "$(LoomDir)/targets", "$(LoomDir)/samples"}) {
    const QString expanded = expander.expandGlobal(folder);
    if (expanded.contains("$(")) continue;  // the macro is not set: nothing to scan
    for (const QFileInfo& sub : QDir(expanded).entryInfoList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name)) {
      const QString groups = sub.absoluteFilePath() + "/propertyGroups.xml";
      if (!QFileInfo::exists(groups)) continue;
      auto scanned = std::make_unique<PropertyValueGroupFile>();
      if (!scanned->read(groups)) continue;
      file.appendClasses(*scanned);
      scanned_.push_back(std::move(scanned));
    }
  }
}

}  // namespace regmill
