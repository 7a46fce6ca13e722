#include "readers/svd/svd_read_context.h"

namespace regmill {

SVDReadContext::SVDReadContext(SVDFile& target, const XMLNode* firstTopLevelNode, uint32_t readerFlags,
                               const char* ignoreName, size_t elementLimit)
    : file(target), flags(readerFlags), bases(firstTopLevelNode), output(target, elementLimit) {
  if (ignoreName != nullptr) ignoredPrefix.emplace(ignoreName);
}

std::string SVDReadContext::description(const TextValue& text) const {
  if (has(SVDReaderFlag::IgnoreDescription)) return {};
  return lineBreaksToMarkup(text.view());
}

bool SVDReadContext::ignoresField(std::string_view name) const {
  // An empty -ignore-name is a prefix of every name and drops every field.
  return ignoredPrefix && startsWithIgnoringCase(name, *ignoredPrefix);
}

}  // namespace regmill
