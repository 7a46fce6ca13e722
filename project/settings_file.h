// The text of a settings file: a DOCTYPE line, a <settings> line, one line for each
// setting with its name in an attribute and its value as text, and </settings>.
// Values are escaped with the five XML entities and "&middot;"; reading also takes
// "&nbsp;" as a blank and numeric references, in one pass, so that "&amp;lt;" reads
// as "&lt;" and never as "<".
#pragma once
#include <QString>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace regmill {

using SettingEntries = std::vector<std::pair<QString, QString>>;  // name and value, in file order

std::string settingsFileText(const SettingEntries& entries);

// Every <setting> element with a non-empty name, its value the text of its first
// child; nothing when the text holds no <settings> element.
std::optional<SettingEntries> readSettingsText(std::string_view text);

}  // namespace regmill
