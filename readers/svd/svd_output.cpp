#include "readers/svd/svd_output.h"

#include <cstring>

#include "xml/xml_string.h"

namespace regmill {

MemoryMapElement* OutputTree::append(XMLNode* parent, const char* tag) {
  MemoryMapElement* element = document_.newElement(tag);
  parent->addChild(element);
  return element;
}

void setText(XMLElement* element, const char* name, std::string_view value) {
  element->setAttribute(copyXmlString(name, std::strlen(name)), copyXmlString(value));
}

uint64_t cappedProduct(uint64_t a, uint64_t b) {
  uint64_t product;
  return __builtin_mul_overflow(a, b, &product) ? UINT64_MAX : product;
}

uint64_t cappedSum(uint64_t a, uint64_t b) {
  uint64_t sum;
  return __builtin_add_overflow(a, b, &sum) ? UINT64_MAX : sum;
}

}  // namespace regmill
