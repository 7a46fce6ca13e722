#include "loom/module_loader.h"

#include <dlfcn.h>
#include <unistd.h>

#include <filesystem>
#include <system_error>

namespace loom {
namespace {

std::filesystem::path programFolder() {
  std::error_code error;
  std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", error);
  return error ? std::filesystem::path() : program.parent_path();
}

}  // namespace

int runInModule(std::string_view command, Arguments arguments) {
  const std::string fileName = "loom-" + std::string(command) + ".so";
  const std::filesystem::path folder = programFolder();
  // Never a path relative to the working folder: that would load whatever lies there.
  if (folder.empty()) return fail("cannot load " + fileName + ": the program's own folder is unknown");
  std::string lastError = "not found beside the program";
  for (const std::filesystem::path& candidate : {folder / fileName, folder / "../lib/loom" / fileName}) {
    if (access(candidate.c_str(), R_OK) != 0) continue;
    // The module stays loaded until the process ends: the toolkit it brings keeps
    // global state that must outlive the command.
    void* module = dlopen(candidate.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (module == nullptr) {
      lastError = dlerror();
      continue;
    }
    auto entry = reinterpret_cast<LoomModuleEntry>(dlsym(module, "loom_run_command"));
    if (entry == nullptr) {
      lastError = candidate.string() + " has no entry point";
      continue;
    }
    return entry(arguments.data(), arguments.size());
  }
  return fail("cannot load " + fileName + ": " + lastError);
}

}  // namespace loom
