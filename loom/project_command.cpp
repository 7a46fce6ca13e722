// loom project: shows, reads, changes and expands the settings of a solution, and
// runs the conditional preprocessor over an XML file.
#include <cstdio>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "loom/command.h"
#include "project/project_listing.h"
#include "project/project_system.h"
#include "project/xml_preprocessor.h"

namespace loom {

namespace {

constexpr const char* kUsage =
    "usage: loom project show SOLUTION [--configuration NAME] [--element PATH]\n"
    "       loom project get SOLUTION ELEMENT PROPERTY [--configuration NAME] [--expanded]\n"
    "       loom project set SOLUTION ELEMENT PROPERTY VALUE [--configuration NAME]\n"
    "       loom project expand SOLUTION ELEMENT TEXT [--configuration NAME]\n"
    "       loom project preprocess FILE [-D NAME=VALUE]...\n"
    "ELEMENT is a path of names below the solution, such as App/Source/main.c; the\n"
    "configuration is Common unless one is named.\n";

int usage(const std::string& problem) {
  fail(problem);
  std::fputs(kUsage, stderr);
  return 1;
}

using regmill::ProjectElement;
using regmill::PropertyClass;
using regmill::PropertyClassFields;

// The words of the command line: positional ones in order, options by name.
struct Words {
  std::vector<std::string> positional;
  std::map<std::string, std::string> options;  // --configuration, --element
  bool expanded = false;
  std::vector<std::string> definitions;  // -D NAME=VALUE
};

std::optional<Words> readWords(Arguments arguments, std::string& error) {
  Words words;
  for (size_t i = 0; i < arguments.size(); ++i) {
    const std::string& word = arguments[i];
    if (word == "--configuration" || word == "--element" || word == "-D") {
      if (i + 1 >= arguments.size()) {
        error = word + " needs a value";
        return std::nullopt;
      }
      if (word == "-D")
        words.definitions.push_back(arguments[++i]);
      else
        words.options[word] = arguments[++i];
    } else if (word.starts_with("-D") && word.size() > 2) {
      words.definitions.push_back(word.substr(2));
    } else if (word == "--expanded") {
      words.expanded = true;
    } else if (word.starts_with("--")) {
      error = "unknown option '" + word + "'";
      return std::nullopt;
    } else {
      words.positional.push_back(word);
    }
  }
  return words;
}

QString text(const std::string& word) { return QString::fromLocal8Bit(word.c_str()); }

void print(const QString& line) { std::fputs(line.toUtf8().constData(), stdout); }

class QuietDocument : public regmill::XMLPP2 {
 public:
  QuietDocument() : XMLPP2(false) {}
  // The preprocessor's messages are not failures: they go to stderr as they come.
  void reportError(const QString& message) override { std::fprintf(stderr, "%s\n", message.toUtf8().constData()); }
};

int preprocess(const Words& words) {
  if (words.positional.size() != 2) return usage("wrong number of arguments");
  QuietDocument document;
  const QString file = text(words.positional[1]);
  if (!document.load(file).ok()) return fail(std::string(document.errorText()) + " in " + words.positional[1]);
  regmill::MacroMap macros;
  for (const std::string& definition : words.definitions) {
    const QString entry = text(definition);
    const qsizetype equals = entry.indexOf(u'=');
    macros.insert(equals < 0 ? entry : entry.left(equals), equals < 0 ? QString("") : entry.mid(equals + 1));
  }
  regmill::processConditionals(document, document.root(), file, macros, true);
  if (!document.write(stdout, 2, 0).ok()) return fail("could not write the output");
  return 0;
}

// The commands that work on a loaded solution.
int onSolution(const std::string& action, const Words& words) {
  static const std::map<std::string, size_t> kPositionals = {{"show", 2}, {"get", 4}, {"set", 5}, {"expand", 4}};
  auto expected = kPositionals.find(action);
  if (expected == kPositionals.end()) return usage("unknown project command '" + action + "'");
  if (words.positional.size() != expected->second) return usage("wrong number of arguments");
  regmill::StandardProjectSystem system;
  try {
    system.loadSolution(text(words.positional[1]));
  } catch (const regmill::SolutionLoadError& error) {
    return fail(regmill::loadErrorText(error).toStdString());
  }
  auto option = words.options.find("--configuration");
  const QString configuration = option == words.options.end() ? QString("Common") : text(option->second);
  const bool showsTree = action == "show" && !words.options.contains("--element");
  const std::string path = action == "show" ? (showsTree ? "" : words.options.at("--element")) : words.positional[2];
  ProjectElement* element = regmill::findElementByPath(system.root(), text(path));
  if (element == nullptr) return fail("unknown element '" + path + "'");
  if (showsTree) {
    print(regmill::elementTreeText(system.root()));
    return 0;
  }
  auto declared = [](const QString& name) { return PropertyClass(PropertyClassFields{.name = name}); };
  if (action == "show") {
    for (const QString& name : regmill::settingNames(element)) {
      const PropertyClass property = declared(name);
      print(name + " = " + system.getValue(element, &property, configuration) + "\n");
    }
  } else if (action == "get") {
    const PropertyClass property = declared(text(words.positional[3]));
    print((words.expanded ? system.getExpandedValue(element, &property, configuration)
                          : system.getValue(element, &property, configuration)) + "\n");
  } else if (action == "expand") {
    print(system.expandFor(element, text(words.positional[3]), configuration) + "\n");
  } else {
    const PropertyClass property = declared(text(words.positional[3]));
    system.setProperty(element, &property, configuration, text(words.positional[4]));
    try {
      system.saveAll();
    } catch (const regmill::SolutionSaveError& error) {
      return fail("cannot write " + error.element->filePath().toStdString());
    }
  }
  return 0;
}

}  // namespace

int runProject(Arguments arguments) {
  std::string error;
  std::optional<Words> words = readWords(arguments, error);
  if (!words) return usage(error);
  if (words->positional.empty()) return usage("a project command is needed");
  const std::string& action = words->positional.front();
  return action == "preprocess" ? preprocess(*words) : onSolution(action, *words);
}

}  // namespace loom
