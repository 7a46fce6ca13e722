// Readable forms of trees, so that expected trees and registers are written by hand:
// a one-line dump of any XML tree, listings of memory-map elements, the values of
// chosen attributes over a document, and the message of a failure.
#pragma once
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "memorymap/svd_file.h"

namespace regmill::testing {

// An element is "(tag @name=\"value\" @nullname child ...)", a text node "\"text\"",
// a comment "#\"text\"", a CDATA section "$\"text\"". Inside quotes '"' and '\' are
// escaped with a backslash, line feed and carriage return are \n and \r, any other
// byte outside 0x20-0x7E is \xNN (upper case).
std::string dumpTree(const XMLNode* node);
std::string dumpRoot(const XMLDocument& document);  // "null" without a root

char* owned(const char* text);  // an owned copy of a literal, for the node model

// For every element of the tag under the root, in document order, the values of the
// attributes joined by blanks, "-" for one that is absent.
std::vector<std::string> attributeValues(XMLNode* root, const char* tag, std::initializer_list<const char*> attributes);

// The memory-map children of an element, and the one of that exact name (or null).
std::vector<MemoryMapElement*> children(const MemoryMapElement* parent);
MemoryMapElement* child(const MemoryMapElement* parent, const std::string& name);
// The attribute's value, or "?" where it is missing.
std::string value(const MemoryMapElement* element, const char* name);
// Every attribute in its order: "name=NVIC start=0xE000E100 description=...".
std::string attributes(const MemoryMapElement* element);
// "NAME start[ size][ access]: FIELD start:size, ..." ("missing" for null): the
// register's attribute values but its description, then its fields.
std::string registerLine(const MemoryMapElement* registerElement);
// The names of the children, blank separated; the register lines joined by "; ".
std::string names(const MemoryMapElement* parent);
std::string listing(const MemoryMapElement* group);

// An SVDFile with a Processor root and an interrupt table of 256 entries that holds
// the given names at their interrupt numbers: the document the core groups go into.
struct CoreDocument {
  explicit CoreDocument(std::initializer_list<std::pair<int, const char*>> interrupts = {});
  SVDFile file;
};

// The message of the exception that `action` throws, or "<no error>".
template <class Exception, class Action>
std::string failureMessage(Action&& action) {
  try {
    action();
  } catch (const Exception& e) {
    return e.message().toStdString();
  }
  return "<no error>";
}

}  // namespace regmill::testing
