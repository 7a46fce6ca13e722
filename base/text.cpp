#include "base/text.h"

namespace regmill {

std::string_view trimmed(std::string_view text) {
  while (!text.empty() && isSpaceByte(static_cast<unsigned char>(text.front()))) text.remove_prefix(1);
  while (!text.empty() && isSpaceByte(static_cast<unsigned char>(text.back()))) text.remove_suffix(1);
  return text;
}

std::vector<std::string_view> splitSkippingEmpty(std::string_view text, char separator) {
  std::vector<std::string_view> parts;
  while (!text.empty()) {
    size_t at = text.find(separator);
    std::string_view part = text.substr(0, at);
    if (!part.empty()) parts.push_back(part);
    if (at == std::string_view::npos) break;
    text.remove_prefix(at + 1);
  }
  return parts;
}

}  // namespace regmill
