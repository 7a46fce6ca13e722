// Third-party conformance files run through `loom script`, one process per file, and
// judged by what they print. Every file's outcome must match the committed list
// conformance/expected.tsv, where each expected failure names the rule of this
// language that causes it; a file that passes or fails against the list fails the
// test. The actual outcomes of a set are written to conformance-SET.tsv in the
// working folder, so that a changed engine's list can be reviewed with a diff.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/regmill_process.h"
#include "tests/support/scratch_folder.h"

namespace regmill::script {
namespace {

namespace fs = std::filesystem;

const fs::path kConformance = fs::path(REGMILL_SHARED_DIR) / "conformance";
const fs::path kExpectedList = fs::path(REGMILL_SOURCE_DIR) / "tests/script/conformance/expected.tsv";
const fs::path kMozillaHarness = fs::path(REGMILL_SOURCE_DIR) / "tests/script/conformance/mozilla-harness.js";
// A file that loops for ever is a failure, not a hung test.
constexpr rlim_t kCpuSecondsPerFile = 60;

struct Outcome {
  bool passed = false;
  std::string detail;  // for a failure: the first failing check or the error
  bool engineFault = false;  // a crash, a sanitizer report or an internal error: never listed
};

std::vector<std::string> splitLines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

// The expected outcome of each listed file; an expected failure's detail names its rule.
std::map<std::string, Outcome> readExpectations() {
  std::map<std::string, Outcome> list;
  for (const std::string& line : splitLines(testing::readFile(kExpectedList))) {
    if (line.empty() || line[0] == '#') continue;
    std::istringstream fields(line);
    std::string file, outcome, reason;
    std::getline(std::getline(std::getline(fields, file, '\t'), outcome, '\t'), reason);
    list[file] = {outcome == "pass", reason, false};
  }
  return list;
}

// Runs `loom script` on the files from the conformance folder under a CPU limit. The
// time zone is pinned by the fixture, for all children at once.
testing::ProcessResult runScripts(const std::vector<std::string>& files) {
  std::vector<std::string> arguments{"script"};
  arguments.insert(arguments.end(), files.begin(), files.end());
  return testing::runProgram(LOOM_BINARY, arguments, kConformance, [] {
    rlimit limit{kCpuSecondsPerFile, kCpuSecondsPerFile};
    setrlimit(RLIMIT_CPU, &limit);
  });
}

// Two files at a time, one per core.
template <typename Runner>
std::vector<Outcome> runAll(const std::vector<std::string>& files, Runner runFile) {
  std::vector<Outcome> outcomes(files.size());
  std::atomic<size_t> next{0};
  auto work = [&] {
    for (size_t i; (i = next++) < files.size();) outcomes[i] = runFile(files[i]);
  };
  std::thread helper(work);
  work();
  helper.join();
  return outcomes;
}

std::string firstLineOf(const std::string& text) { return text.substr(0, text.find('\n')); }

// A file that stops the engine itself fails the test whatever the list says, since no
// rule of the language explains it.
std::optional<Outcome> engineFaultOf(const testing::ProcessResult& run) {
  for (const char* sign : {"Sanitizer", "runtime error:", "internal error of the script engine"}) {
    if (run.err.find(sign) != std::string::npos) return Outcome{false, firstLineOf(run.err.substr(run.err.find(sign))), true};
  }
  if (run.killedBySignal) return Outcome{false, "killed by a signal (CPU limit or crash)", true};
  return std::nullopt;
}

std::string failureOf(const testing::ProcessResult& run) {
  if (!run.err.empty()) return firstLineOf(run.err);
  return "exit code " + std::to_string(run.exitCode);
}

// A self-checking file passes when it prints "<dir>/<file>: OK" and ends normally. It
// reports through console.log; the shared prelude binds that to print where the host
// has not bound it already.
Outcome runSelfChecking(const std::string& file) {
  testing::ProcessResult run = runScripts({"prelude-print.js", file});
  if (std::optional<Outcome> fault = engineFaultOf(run)) return *fault;
  std::vector<std::string> lines = splitLines(run.out);
  if (run.exitCode != 0) return {false, failureOf(run)};
  if (std::find(lines.begin(), lines.end(), file + ": OK") != lines.end()) return {true, ""};
  for (const std::string& line : lines) {
    if (line.rfind(file + ": ", 0) == 0) return {false, line};
  }
  return {false, "no OK line"};
}

bool startsWith(const std::string& line, const char* prefix) { return line.rfind(prefix, 0) == 0; }

// An ECMA test passes when it ends normally with at least one " PASSED! " line and no
// " FAILED! " line; a negative test (name ending in "-n.js") passes when it ends in an
// uncaught error at run time, which a syntax error is not.
Outcome runMozilla(const std::string& file) {
  fs::path folder = fs::path(file).parent_path();
  testing::ProcessResult run =
      runScripts({kMozillaHarness.string(), "mozilla-ecma/shell.js", (folder / "shell.js").string(), file});
  if (std::optional<Outcome> fault = engineFaultOf(run)) return *fault;
  if (file.size() > 5 && file.compare(file.size() - 5, 5, "-n.js") == 0) {
    if (run.exitCode == 1 && startsWith(run.err, "Uncaught exception: ")) return {true, ""};
    return {false, run.exitCode == 0 ? "ended normally" : failureOf(run)};
  }
  if (run.exitCode != 0) return {false, failureOf(run)};
  bool anyPassed = false;
  for (const std::string& line : splitLines(run.out)) {
    if (startsWith(line, " FAILED! ")) return {false, line.substr(1)};
    anyPassed = anyPassed || startsWith(line, " PASSED! ");
  }
  return anyPassed ? Outcome{true, ""} : Outcome{false, "no PASSED line"};
}

std::vector<std::string> subsetFiles(const std::string& folder) {
  std::vector<std::string> files;
  for (const std::string& name : splitLines(testing::readFile(kConformance / (folder + "-subset.txt")))) {
    if (!name.empty()) files.push_back(folder + "/" + name);
  }
  return files;
}

std::vector<std::string> mozillaFiles() {
  std::vector<std::string> files;
  for (const fs::directory_entry& entry : fs::recursive_directory_iterator(kConformance / "mozilla-ecma")) {
    if (entry.path().extension() != ".js" || entry.path().filename() == "shell.js") continue;
    if (entry.path().parent_path() == kConformance / "mozilla-ecma") continue;
    files.push_back(fs::relative(entry.path(), kConformance).string());
  }
  std::sort(files.begin(), files.end());
  return files;
}

// Runs every file of one set, compares each outcome with the list, prints the counts
// and writes the outcomes to conformance-SET.tsv.
template <typename Runner>
void checkSet(const std::string& setName, const std::vector<std::string>& files, Runner runFile) {
  std::map<std::string, Outcome> expected = readExpectations();
  std::ofstream actual("conformance-" + setName + ".tsv");
  std::vector<Outcome> outcomes = runAll(files, runFile);
  int passed = 0, pending = 0;
  for (size_t i = 0; i < files.size(); ++i) {
    const std::string& file = files[i];
    const Outcome& outcome = outcomes[i];
    passed += outcome.passed;
    actual << file << '\t' << (outcome.passed ? "pass" : "fail") << '\t' << outcome.detail << '\n';
    if (outcome.engineFault) {
      ADD_FAILURE() << file << " stops the engine: " << outcome.detail;
      continue;
    }
    auto entry = expected.find(file);
    if (entry == expected.end()) {
      ADD_FAILURE() << file << " is not in the expectation list; it " << (outcome.passed ? "passes" : "fails: ")
                    << outcome.detail;
      continue;
    }
    pending += startsWith(entry->second.detail, "pending:");
    if (entry->second.passed != outcome.passed) {
      ADD_FAILURE() << file << (outcome.passed ? " passes, but the list expects it to fail: " + entry->second.detail
                                               : " fails, but the list expects it to pass: " + outcome.detail);
    }
    EXPECT_TRUE(entry->second.passed || !entry->second.detail.empty()) << file << ": the failure names no rule";
  }
  std::printf("%s: %d of %zu files pass; %d listed failures wait on a fix of the engine\n", setName.c_str(), passed,
              files.size(), pending);
}

class Conformance : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!fs::is_directory(kConformance)) GTEST_SKIP() << kConformance << " is missing; set REGMILL_SHARED_DIR";
    setenv("TZ", "UTC", 1);
  }
};

TEST_F(Conformance, Es1SubsetMatchesTheList) { checkSet("es1-subset", subsetFiles("es1"), runSelfChecking); }

TEST_F(Conformance, Es3SubsetMatchesTheList) { checkSet("es3-subset", subsetFiles("es3"), runSelfChecking); }

TEST_F(Conformance, MozillaEcmaMatchesTheList) { checkSet("mozilla-ecma", mozillaFiles(), runMozilla); }

TEST(ConformanceList, NamesOnlyFilesThatExist) {
  if (!fs::is_directory(kConformance)) GTEST_SKIP() << kConformance << " is missing; set REGMILL_SHARED_DIR";
  std::vector<std::string> all = mozillaFiles();
  for (const char* set : {"es1", "es3"})
    for (const std::string& file : subsetFiles(set)) all.push_back(file);
  std::sort(all.begin(), all.end());
  for (const auto& [file, expectation] : readExpectations())
    EXPECT_TRUE(std::binary_search(all.begin(), all.end(), file)) << file << " is listed but not run";
}

}  // namespace
}  // namespace regmill::script
