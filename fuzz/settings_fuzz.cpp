// Feeds arbitrary bytes to the settings file reader and writes what it read back;
// the second reading must give the same settings.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "project/settings_file.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size > 65536) return 0;
  std::optional<regmill::SettingEntries> entries =
      regmill::readSettingsText(std::string_view(reinterpret_cast<const char*>(data), size));
  if (!entries) return 0;
  std::optional<regmill::SettingEntries> again = regmill::readSettingsText(regmill::settingsFileText(*entries));
  if (!again || *again != *entries) std::abort();
  return 0;
}
