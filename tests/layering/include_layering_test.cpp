// Every library folder may include only its own headers and those of the folders
// its CMake target names under DEPS: the build's dependency graph and the code's
// include graph are the same graph. A new folder joins the check by declaring its
// library with regmill_library.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>

namespace {

namespace fs = std::filesystem;
const fs::path kSource = REGMILL_SOURCE_DIR;

std::string contentsOf(const fs::path& file) {
  std::ifstream stream(file);
  std::stringstream text;
  text << stream.rdbuf();
  return text.str();
}

struct Library {
  std::string folder;                 // relative to the source root, e.g. "readers/svd"
  std::set<std::string> dependencies;  // target names
};

// Target name to its folder and declared dependencies, from every regmill_library call.
std::map<std::string, Library> declaredLibraries() {
  std::map<std::string, Library> libraries;
  const std::regex call(R"(regmill_library\(\s*(\w+)([^)]*)\))");
  for (const auto& entry : fs::recursive_directory_iterator(kSource)) {
    if (entry.path().filename() != "CMakeLists.txt") continue;
    std::string folder = fs::relative(entry.path().parent_path(), kSource).generic_string();
    if (folder.starts_with("out") || folder.starts_with("tests") || folder.starts_with("cmake")) continue;
    std::string text = contentsOf(entry.path());
    for (std::sregex_iterator match(text.begin(), text.end(), call), end; match != end; ++match) {
      Library library{folder, {}};
      std::string arguments = (*match)[2];
      size_t deps = arguments.find("DEPS");
      std::istringstream words(deps == std::string::npos ? "" : arguments.substr(deps + 4));
      for (std::string word; words >> word;) library.dependencies.insert(word);
      libraries[(*match)[1]] = library;
    }
  }
  return libraries;
}

// The library folder a project include names: the longest folder that prefixes it.
std::string folderOfInclude(const std::string& include, const std::map<std::string, std::string>& folders) {
  std::string best;
  for (const auto& [folder, target] : folders)
    if (include.starts_with(folder + "/") && folder.size() > best.size()) best = folder;
  return best;
}

TEST(IncludeLayering, FoldersIncludeOnlyWhatTheirTargetsDeclare) {
  std::map<std::string, Library> libraries = declaredLibraries();
  ASSERT_GE(libraries.size(), 7u) << "the library folders were not found under " << kSource;
  std::map<std::string, std::string> targetOfFolder;
  for (const auto& [target, library] : libraries) targetOfFolder[library.folder] = target;

  const std::regex include(R"(#include\s+\"([^\"]+)\")");
  for (const auto& [target, library] : libraries) {
    for (const auto& entry : fs::directory_iterator(kSource / library.folder)) {
      std::string extension = entry.path().extension().string();
      if (extension != ".h" && extension != ".cpp") continue;
      std::string text = contentsOf(entry.path());
      for (std::sregex_iterator match(text.begin(), text.end(), include), end; match != end; ++match) {
        std::string folder = folderOfInclude((*match)[1], targetOfFolder);
        if (folder.empty() || folder == library.folder) continue;
        EXPECT_TRUE(library.dependencies.count(targetOfFolder[folder]))
            << entry.path().filename() << " of " << target << " includes " << (*match)[1] << ", but "
            << target << " does not declare " << targetOfFolder[folder];
      }
    }
  }
}

}  // namespace
