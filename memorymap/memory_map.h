// The memory-map document and its elements: the tree of processor, register groups,
// registers, bit fields and enumerated values that every reader fills and the
// core group generators extend. Addresses stay attribute texts until
// computeAddresses fills the numeric members.
#pragma once
#include <cstdint>

#include "xml/qt_xml_document.h"
#include "xml/xml_node.h"

namespace regmill {

enum class ElementKind : uint32_t {
  MemorySegment = 0,
  Register = 1,
  ProgramSection = 2,
  Root = 3,
  RegisterGroup = 4,
  BitField = 5,
  Enum = 6,
  Processor = 7,
  Vector = 8,
  Other = 9,
};

// The kind of a tag, compared exactly and case-sensitively; an unlisted tag is Other.
ElementKind elementKindOfTag(const char* tag);

class MemoryMapElement : public XMLElement {
 public:
  explicit MemoryMapElement(char* tag) : XMLElement(tag), kind_(elementKindOfTag(tag)) {}

  ElementKind kind() const { return kind_; }

  uint32_t address = 0;  // written by computeAddresses only
  uint32_t size = 0;     // written by computeAddresses only

 private:
  ElementKind kind_;
};

// The elements are MemoryMapElements; the document starts with text nodes off and no root.
// The workbench's view state (flags, strings, view pointer, timestamp) is left out:
// the converter neither sets nor reads it.
class MemoryMap : public XMLPP2 {
 public:
  MemoryMap() = default;

  XMLElement* createElement(char* tag) override;
  // Sends the text to the library log as a warning when warnings are switched on;
  // in the converter they never are.
  void reportError(const QString& message) override;

  // The root as a MemoryMapElement, or null when there is none or it is of another class.
  MemoryMapElement* root() const;

  // Makes an element of the tag (copied) with createElement, not yet linked.
  MemoryMapElement* newElement(const char* tag);
};

// The first element, depth first in document order from `start` (itself included),
// of the kind whose attribute `name` equals `value` (exactly, or ignoring ASCII case
// when caseSensitive is false). With a null name or value the kind alone decides.
MemoryMapElement* findElement(MemoryMapElement* start, ElementKind kind, const char* name,
                              const char* value, bool caseSensitive);

}  // namespace regmill
