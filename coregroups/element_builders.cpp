#include "coregroups/element_builders.h"

#include <cstdio>

namespace regmill {

namespace {

struct AttributeValue {
  const char* name;
  const char* value;
};

MemoryMapElement* addElement(MemoryMap& map, MemoryMapElement* parent, const char* tag,
                             std::initializer_list<AttributeValue> attributes) {
  MemoryMapElement* element = map.newElement(tag);
  for (const AttributeValue& attribute : attributes)
    if (attribute.value != nullptr) element->setAttributeCopy(attribute.name, attribute.value);
  parent->addChild(element);
  return element;
}

}  // namespace

MemoryMapElement* addGroupElement(MemoryMap& map, MemoryMapElement* parent, const char* start,
                                  const char* size, const char* name, const char* description) {
  return addElement(map, parent, "RegisterGroup",
                    {{"name", name}, {"start", start}, {"size", size}, {"description", description}});
}

MemoryMapElement* addRegisterElement(MemoryMap& map, MemoryMapElement* parent, const char* start,
                                     const char* size, const char* access, const char* name,
                                     const char* description) {
  return addElement(map, parent, "Register",
                    {{"name", name},
                     {"start", start},
                     {"size", size},
                     {"access", access},
                     {"description", description}});
}

MemoryMapElement* addFieldElement(MemoryMap& map, MemoryMapElement* parent, const char* start,
                                  const char* size, const char* name, const char* description) {
  return addElement(map, parent, "BitField",
                    {{"name", name}, {"start", start}, {"size", size}, {"description", description}});
}

std::string hexAddress(uint32_t address, bool nonSecure) {
  char text[16];
  std::snprintf(text, sizeof text, "0x%x", nonSecure ? address | kNonSecureAliasOffset : address);
  return text;
}

std::string paddedHexAddress(uint32_t address) {
  char text[16];
  std::snprintf(text, sizeof text, "0x%08X", address);
  return text;
}

std::string nonSecureName(const char* name, bool nonSecure) {
  std::string result = name;
  if (nonSecure) result += "_NS";
  return result;
}

}  // namespace regmill
