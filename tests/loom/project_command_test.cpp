// loom project as a user runs it: the tree, the settings of an element, one value
// read, expanded and changed, the preprocessor's output, and the failures with their
// exit code and nothing saved.
#include <gtest/gtest.h>

#include "tests/support/regmill_process.h"
#include "tests/support/scratch_folder.h"

namespace loom {
namespace {

using regmill::testing::runLoom;
using regmill::testing::ScratchFolder;

const char* kSolution = R"xml(<!DOCTYPE Larkloom_Project_File>
<solution Name="S">
  <configuration Name="Debug" defines="D" level="s" />
  <project Name="App">
    <configuration Name="Common" defines="A" opt="2" out="$(ProjectName)/$(Configuration)" />
    <folder Name="Source">
      <file file_name="main.c"><configuration Name="Debug" opt="0" /></file>
    </folder>
  </project>
</solution>
)xml";

struct Run {
  std::vector<std::string> arguments;
  int exitCode;
  std::string out;
  std::string err;
};

void expectRuns(const ScratchFolder& folder, std::initializer_list<Run> runs) {
  for (const Run& run : runs) {
    auto result = runLoom(run.arguments, folder.path());
    EXPECT_EQ(std::to_string(result.exitCode) + "|" + result.out + "|" + result.err,
              std::to_string(run.exitCode) + "|" + run.out + "|" + run.err) << ::testing::PrintToString(run.arguments);
  }
}

TEST(LoomProject, ShowsReadsExpandsAndPreprocesses) {
  ScratchFolder folder;
  folder.write("s.lkProject", kSolution);
  folder.write("t.xml", "<r><if target=\"arm,riscv\"><a v=\"$(target)\"/></if><ifdef name=\"none\"><b/></ifdef>"
                        "<for index=\"i\" start=\"0\" end=\"2\" incr=\"1\"><c n=\"$(i)\"/></for><xmlput name=\"x\"/></r>");
  expectRuns(folder, {
      {{"project", "show", "s.lkProject"}, 0, "solution S\n  project App\n    folder Source\n      file main.c\n", ""},
      {{"project", "show", "s.lkProject", "--element", "App/Source/main.c", "--configuration", "Debug"}, 0,
       "defines = A\nlevel = s\nopt = 0\nout = $(ProjectName)/$(Configuration)\n", ""},
      {{"project", "get", "s.lkProject", "App", "out", "--configuration", "Debug", "--expanded"}, 0, "App/Debug\n", ""},
      {{"project", "expand", "s.lkProject", "App/Source/main.c", "$(InputName).o $$(x) $(None:n) $(Configuration)"}, 0,
       "main.o $(x) n Common\n", ""},
      {{"project", "preprocess", "t.xml", "-D", "target=arm"}, 0,
       "<r>\n  <a v=\"arm\" />\n  <c n=\"0\" />\n  <c n=\"1\" />\n  <xmlput name=\"x\" />\n</r>\n",
       "XmlPP::processConditionals(): xmlput cannot fine xmldef named x\n"},
  });
}

TEST(LoomProject, SetSavesTheSolutionAndFailuresSaveNothing) {
  ScratchFolder folder;
  folder.write("s.lkProject", kSolution);
  folder.write("broken.lkProject", "<!DOCTYPE Larkloom_Project_File>\n<solution>\n</project>\n");
  expectRuns(folder, {
      {{"project", "set", "s.lkProject", "App/Source/x.c", "opt", "1"}, 1, "", "loom: unknown element 'App/Source/x.c'\n"},
      {{"project", "get", "missing.lkProject", "App", "opt"}, 1, "", "loom: missing.lkProject does not exist\n"},
      {{"project", "show", "broken.lkProject"}, 1, "", "loom: broken.lkProject:3: tagName mismatch\n"},
  });
  EXPECT_EQ(folder.read("s.lkProject"), kSolution);
  expectRuns(folder, {{{"project", "set", "s.lkProject", "App/Source/main.c", "opt", "caf\xC3\xA9", "--configuration", "Debug"}, 0, "", ""},
                      {{"project", "get", "s.lkProject", "App/Source/main.c", "opt", "--configuration", "Debug"}, 0, "caf\xC3\xA9\n", ""}});
  auto wrong = runLoom({"project", "get", "s.lkProject"}, folder.path());
  EXPECT_EQ(wrong.exitCode, 1);
  EXPECT_EQ(wrong.err.substr(0, wrong.err.find('\n')), "loom: wrong number of arguments");
}

}  // namespace
}  // namespace loom
