#include "memorymap/memory_map.h"

#include <cstring>
#include <strings.h>
#include <string_view>

#include "base/log.h"
#include "xml/depth_first.h"
#include "xml/xml_string.h"

namespace regmill {

ElementKind elementKindOfTag(const char* tag) {
  // No two tags share both their length and their first byte, so a tag is compared
  // byte by byte with one name at most.
  struct Entry {
    std::string_view tag;
    ElementKind kind;
  };
  static constexpr Entry kKinds[] = {{"MemorySegment", ElementKind::MemorySegment}, {"Register", ElementKind::Register},
                                     {"ProgramSection", ElementKind::ProgramSection}, {"Root", ElementKind::Root},
                                     {"RegisterGroup", ElementKind::RegisterGroup}, {"BitField", ElementKind::BitField},
                                     {"Enum", ElementKind::Enum}, {"Processor", ElementKind::Processor}, {"Vector", ElementKind::Vector}};
  size_t length = std::strlen(tag);
  for (const Entry& entry : kKinds)
    if (entry.tag.size() == length && entry.tag[0] == tag[0] && std::memcmp(entry.tag.data(), tag, length) == 0)
      return entry.kind;
  return ElementKind::Other;
}

XMLElement* MemoryMap::createElement(char* tag) { return new MemoryMapElement(tag); }

void MemoryMap::reportError(const QString& message) {
  if (logMask() & kLogWarnings) logMessage("warning", kLogLineFeed, "%s", message.toUtf8().constData());
}

MemoryMapElement* MemoryMap::root() const { return dynamic_cast<MemoryMapElement*>(XMLPP2::root()); }

MemoryMapElement* MemoryMap::newElement(const char* tag) {
  return static_cast<MemoryMapElement*>(createElement(copyXmlString(tag, std::strlen(tag))));
}

namespace {

bool attributeMatches(const MemoryMapElement* element, const char* name, const char* value, bool caseSensitive) {
  if (name == nullptr || value == nullptr) return true;
  const char* own = element->getAttribute(name);
  if (own == nullptr) return false;
  return caseSensitive ? std::strcmp(own, value) == 0 : strcasecmp(own, value) == 0;
}

}  // namespace

MemoryMapElement* findElement(MemoryMapElement* start, ElementKind kind, const char* name, const char* value,
                              bool caseSensitive) {
  // Every element of a memory map is a MemoryMapElement; other nodes never match.
  return static_cast<MemoryMapElement*>(findDepthFirst(start, [&](XMLNode* node) {
    auto* element = dynamic_cast<MemoryMapElement*>(node);
    return element != nullptr && element->kind() == kind && attributeMatches(element, name, value, caseSensitive);
  }));
}

}  // namespace regmill
