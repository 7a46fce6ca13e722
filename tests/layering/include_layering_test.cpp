// Every library may include only its own headers and those of the targets it names
// under DEPS: the build's dependency graph and the code's include graph are the same
// graph. A file belongs to the target that lists it (a header goes with its .cpp);
// a header without one belongs to the first target of its folder. A new folder joins
// the check by declaring its library with regmill_library.
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
  std::string folder;                  // relative to the source root, e.g. "readers/svd"
  std::set<std::string> stems;         // of its SOURCES, e.g. "svd_reader"
  std::set<std::string> dependencies;  // target names
};

std::set<std::string> wordsBetween(const std::string& arguments, const std::string& from, const std::string& to) {
  size_t start = arguments.find(from);
  if (start == std::string::npos) return {};
  start += from.size();
  size_t end = arguments.find(to, start);
  std::istringstream words(arguments.substr(start, end == std::string::npos ? std::string::npos : end - start));
  std::set<std::string> found;
  for (std::string word; words >> word;) found.insert(fs::path(word).stem().string());
  return found;
}

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
      std::string arguments = (*match)[2];
      libraries[(*match)[1]] = {folder, wordsBetween(arguments, "SOURCES", "DEPS"),
                                wordsBetween(arguments, "DEPS", ")")};
    }
  }
  return libraries;
}

// The target a project file belongs to, by its path from the source root; empty
// for a file of no library.
std::string targetOfFile(const std::string& path, const std::map<std::string, Library>& libraries) {
  fs::path file(path);
  std::string folder = file.parent_path().generic_string();
  std::string firstOfFolder;
  for (const auto& [target, library] : libraries) {
    if (library.folder != folder) continue;
    if (library.stems.count(file.stem().string())) return target;
    if (firstOfFolder.empty()) firstOfFolder = target;
  }
  return firstOfFolder;
}

TEST(IncludeLayering, FoldersIncludeOnlyWhatTheirTargetsDeclare) {
  std::map<std::string, Library> libraries = declaredLibraries();
  ASSERT_GE(libraries.size(), 7u) << "the library folders were not found under " << kSource;
  const std::regex include(R"(#include\s+\"([^\"]+)\")");
  for (const auto& [target, library] : libraries) {
    for (const auto& entry : fs::directory_iterator(kSource / library.folder)) {
      std::string extension = entry.path().extension().string();
      std::string path = library.folder + "/" + entry.path().filename().string();
      if ((extension != ".h" && extension != ".cpp") || targetOfFile(path, libraries) != target) continue;
      std::string text = contentsOf(entry.path());
      for (std::sregex_iterator match(text.begin(), text.end(), include), end; match != end; ++match) {
        std::string included = targetOfFile((*match)[1], libraries);
        if (included.empty() || included == target) continue;
        EXPECT_TRUE(library.dependencies.count(included))
            << path << " of " << target << " includes " << (*match)[1] << ", but " << target
            << " does not declare " << included;
      }
    }
  }
}

}  // namespace
