#include "readers/svd/svd_text.h"

#include <charconv>

namespace regmill {

TextValue::TextValue(const XMLElement* element) {
  if (element == nullptr) return;
  const XMLNode* firstData = nullptr;
  for (const XMLNode* node = element->firstChild(); node != nullptr; node = node->nextSibling()) {
    if (node->nodeType() != XMLNodeType::Data) continue;
    if (firstData == nullptr) {
      firstData = node;
      single_ = node->getName();
      continue;
    }
    // A second piece of character data (behind a comment or CDATA section): join them all.
    joined_ = true;
    appendElementText(element, text_);
    return;
  }
}

std::string lineBreaksToMarkup(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (size_t at; (at = text.find("\\n")) != std::string_view::npos; text.remove_prefix(at + 2))
    out.append(text.substr(0, at)).append("<br/>");
  return out.append(text);
}

std::string fixHexPrefix(std::string_view text) {
  std::string out(text);
  if (out.size() >= 2 && out[0] == '0' && out[1] == 'X') out[1] = 'x';
  return out;
}

std::string replaceFirstPlaceholder(std::string_view text, std::string_view replacement) {
  size_t at = text.find("%s");
  if (at == std::string_view::npos) return std::string(text);
  std::string out;
  out.reserve(text.size() + replacement.size());
  out.append(text.substr(0, at)).append(replacement).append(text.substr(at + 2));
  return out;
}

void appendDecimal(std::string& out, int64_t value) {
  char digits[24];
  auto result = std::to_chars(digits, digits + sizeof digits, value);
  out.append(digits, result.ptr);
}

std::string decimalText(int64_t value) {
  std::string out;
  appendDecimal(out, value);
  return out;
}

bool startsWithIgnoringCase(std::string_view text, std::string_view prefix) {
  if (text.size() < prefix.size()) return false;
  auto upper = [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; };
  for (size_t i = 0; i < prefix.size(); ++i)
    if (upper(text[i]) != upper(prefix[i])) return false;
  return true;
}

}  // namespace regmill
