// Texts as the SVD reader sees them: the character data of an element joined in
// order, and the small rewrites the reader applies to a value before writing it
// (line-break markup, the "0X" prefix, the "%s" placeholder, decimal numbers).
#pragma once
#include <cstdint>
#include <string>
#include <string_view>

#include "xml/xml_node.h"

namespace regmill {

// The text of an element: its XMLData children joined in order, untrimmed; comments
// and CDATA sections don't count, and an absent element reads as empty. One data
// child, the usual case, is referred to without a copy, so a TextValue must not
// outlive the parsed document it was read from.
class TextValue {
 public:
  TextValue() = default;
  explicit TextValue(const XMLElement* element);

  std::string_view view() const { return joined_ ? std::string_view(text_) : single_; }
  bool empty() const { return view().empty(); }
  bool operator==(std::string_view other) const { return view() == other; }
  // Whether the view points into the document rather than into this object.
  bool refersToDocument() const { return !joined_; }

 private:
  std::string_view single_;
  std::string text_;
  bool joined_ = false;
};

// Every two-character sequence backslash and n becomes "<br/>"; real line feeds stay.
std::string lineBreaksToMarkup(std::string_view text);

// A text that begins with "0X" (exactly) gets "0x" in its place.
std::string fixHexPrefix(std::string_view text);

// The text with its first "%s" replaced; a text without one is returned as it is.
std::string replaceFirstPlaceholder(std::string_view text, std::string_view replacement);

void appendDecimal(std::string& out, int64_t value);
std::string decimalText(int64_t value);

// Whether `text` begins with `prefix`, comparing ASCII letters without regard to case.
bool startsWithIgnoringCase(std::string_view text, std::string_view prefix);

}  // namespace regmill
