// Loads arbitrary bytes as a solution file: a load either gives a tree or fails
// with a SolutionLoadError; it may not crash, hang or leak. A loaded tree is
// resolved, listed and saved again. Inputs that name other files (imports,
// includes, dynamic folders) or commands to run are left to the unit tests, which
// give them real files: here they would reach whatever the fuzzer makes up.
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <cstddef>
#include <cstdint>
#include <string>

#include "project/project_listing.h"
#include "project/project_system.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size > 32768) return 0;
  const std::string text(reinterpret_cast<const char*>(data), size);
  for (const char* word : {"import", "include", "path", "load_command"})
    if (text.find(word) != std::string::npos) return 0;
  static const QString folder = QDir::tempPath() + "/solution-fuzz-" + QString::number(getpid());
  QDir().mkpath(folder);
  const QString file = folder + "/fuzz.lkProject";
  {
    QFile out(file);
    if (!out.open(QIODevice::WriteOnly)) return 0;
    out.write(text.data(), qint64(text.size()));
  }
  regmill::StandardProjectSystem system;
  try {
    system.loadSolution(file);
  } catch (const regmill::SolutionLoadError&) {
    return 0;
  }
  regmill::elementTreeText(system.root());
  regmill::PropertyClass property(regmill::PropertyClassFields{.name = "x", .type = regmill::PropertyType::StringList});
  for (const QString& name : system.configurationNames(nullptr, 7)) {
    system.getValue(system.root(), &property, name);
    system.getMacros(system.root(), name);
  }
  system.setProperty(system.root(), &property, "Debug", "1");
  system.saveAll();
  return 0;
}
