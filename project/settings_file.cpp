#include "project/settings_file.h"

#include <cstring>

#include "base/text.h"

namespace regmill {

namespace {

void appendEscaped(std::string& out, const QString& text) {
  QString escaped;
  escaped.reserve(text.size());
  for (QChar c : text) {
    switch (c.unicode()) {
      case u'&': escaped += u"&amp;"; break;
      case u'>': escaped += u"&gt;"; break;
      case u'<': escaped += u"&lt;"; break;
      case u'"': escaped += u"&quot;"; break;
      case u'\'': escaped += u"&apos;"; break;
      case 0x00B7: escaped += u"&middot;"; break;
      default: escaped += c;  // surrogate pairs stay together for the conversion below
    }
  }
  out += escaped.toUtf8().toStdString();
}

struct Entity {
  std::string_view name;
  const char* text;  // UTF-8
};
constexpr Entity kEntities[] = {{"amp", "&"},      {"gt", ">"},   {"lt", "<"},      {"quot", "\""},
                                {"apos", "'"},     {"nbsp", " "}, {"middot", "\xC2\xB7"}};

// Appends the code point as UTF-8; false for one that is no character.
bool appendCodePoint(std::string& out, uint32_t code) {
  if (code == 0 || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF)) return false;
  const char32_t character = code;
  out += QString::fromUcs4(&character, 1).toUtf8().toStdString();
  return true;
}

// Decodes references in one pass; a "&" that starts none stays as it is.
std::string decoded(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (size_t at = 0; at < text.size();) {
    const size_t end = text[at] == '&' ? text.find(';', at) : std::string_view::npos;
    if (end == std::string_view::npos || end - at > 12) {
      out += text[at++];
      continue;
    }
    const std::string_view name = text.substr(at + 1, end - at - 1);
    bool done = false;
    for (const Entity& entity : kEntities) {
      if (name != entity.name) continue;
      out += entity.text;
      done = true;
      break;
    }
    if (!done && name.size() > 1 && name[0] == '#') {
      const bool hex = name[1] == 'x' || name[1] == 'X';
      const std::string_view digits = name.substr(hex ? 2 : 1);
      uint32_t code = 0;
      bool valid = !digits.empty();
      for (char d : digits) {
        const int value = digitValue(static_cast<unsigned char>(d));
        valid = valid && value >= 0 && value < (hex ? 16 : 10) && code <= 0x10FFFF;
        if (valid) code = code * (hex ? 16 : 10) + uint32_t(value);
      }
      done = valid && appendCodePoint(out, code);
    }
    if (!done) {
      out += text[at++];
      continue;
    }
    at = end + 1;
  }
  return out;
}

// The value of the attribute in a start tag's text, or nothing.
std::optional<std::string_view> attributeValue(std::string_view tag, std::string_view name) {
  for (size_t at = 0; (at = tag.find(name, at)) != std::string_view::npos; at += name.size()) {
    if (at == 0 || !isSpaceByte(static_cast<unsigned char>(tag[at - 1]))) continue;
    size_t cursor = at + name.size();
    while (cursor < tag.size() && isSpaceByte(static_cast<unsigned char>(tag[cursor]))) ++cursor;
    if (cursor >= tag.size() || tag[cursor] != '=') continue;
    ++cursor;
    while (cursor < tag.size() && isSpaceByte(static_cast<unsigned char>(tag[cursor]))) ++cursor;
    if (cursor >= tag.size() || (tag[cursor] != '"' && tag[cursor] != '\'')) continue;
    const size_t close = tag.find(tag[cursor], cursor + 1);
    if (close == std::string_view::npos) return std::nullopt;
    return tag.substr(cursor + 1, close - cursor - 1);
  }
  return std::nullopt;
}

// Whether the text at `at` opens an element of that tag ("<tag" then a blank, "/" or ">").
bool opensTag(std::string_view text, size_t at, std::string_view tag) {
  if (text.compare(at + 1, tag.size(), tag) != 0 || at + 1 + tag.size() >= text.size()) return false;
  const char after = text[at + 1 + tag.size()];
  return after == '>' || after == '/' || isSpaceByte(static_cast<unsigned char>(after));
}

// The text of the first child node that starts at `at`: character data up to the
// next tag, or a CDATA section; empty when an element or the end tag comes first.
std::string firstChildText(std::string_view text, size_t at) {
  if (text.compare(at, 9, "<![CDATA[") == 0) {
    const size_t end = text.find("]]>", at + 9);
    return std::string(text.substr(at + 9, end == std::string_view::npos ? std::string_view::npos : end - at - 9));
  }
  const size_t end = text.find('<', at);
  return decoded(text.substr(at, end == std::string_view::npos ? std::string_view::npos : end - at));
}

}  // namespace

std::string settingsFileText(const SettingEntries& entries) {
  std::string out = "<!DOCTYPE Larkfield_Settings_File>\n<settings>\n";
  for (const auto& [name, value] : entries) {
    out += "  <setting name=\"";
    appendEscaped(out, name);
    out += "\">";
    appendEscaped(out, value);
    out += "</setting>\n";
  }
  out += "</settings>\n";
  return out;
}

std::optional<SettingEntries> readSettingsText(std::string_view text) {
  size_t at = 0;
  bool sawSettings = false;
  SettingEntries entries;
  while ((at = text.find('<', at)) != std::string_view::npos) {
    if (text.compare(at, 4, "<!--") == 0) {
      const size_t end = text.find("-->", at + 4);
      if (end == std::string_view::npos) break;
      at = end + 3;
      continue;
    }
    if (opensTag(text, at, "settings")) sawSettings = true;
    if (!opensTag(text, at, "setting")) {
      ++at;
      continue;
    }
    const size_t tagEnd = text.find('>', at);
    if (tagEnd == std::string_view::npos) break;
    const std::string_view tag = text.substr(at, tagEnd - at);
    at = tagEnd + 1;
    const std::optional<std::string_view> name = attributeValue(tag, "name");
    if (!name || name->empty()) continue;
    const bool empty = tag.ends_with('/');
    const std::string value = empty ? std::string() : firstChildText(text, at);
    const std::string decodedName = decoded(*name);
    entries.emplace_back(QString::fromUtf8(decodedName.data(), qsizetype(decodedName.size())),
                         QString::fromUtf8(value.data(), qsizetype(value.size())));
  }
  if (!sawSettings) return std::nullopt;
  return entries;
}

}  // namespace regmill
