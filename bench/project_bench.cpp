// Times the project system's whole cycle on a generated solution: load, resolve one
// property for every file in one configuration, save. The solution holds N files in
// 100 folders of one project, with 4 configurations (one of them private and
// inherited) and settings on the solution, the project, the folders and every tenth
// file. Each size runs in a child process, whose peak memory is taken when it ends;
// the 4N run against the N run shows how each step grows. Each figure is the best of
// three cycles.
//
//   project_bench [N]   (default 10000)
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "project/project_system.h"

namespace {

std::string generatedSolution(int files) {
  std::string text = "<!DOCTYPE Larkloom_Project_File>\n<solution Name=\"Bench\">\n";
  text += "  <configuration Name=\"Common\" defines=\"ALL\" />\n";
  text += "  <configuration Name=\"Base\" hidden=\"Yes\" defines=\"BASE\" />\n";
  text += "  <configuration Name=\"Debug\" inherited_configurations=\"Base\" defines=\"DEBUG\" />\n";
  text += "  <configuration Name=\"Release\" defines=\"NDEBUG\" />\n";
  text += "  <project Name=\"App\">\n    <configuration Name=\"Debug\" defines=\"APP\" />\n";
  const int folders = 100;
  for (int folder = 0; folder < folders; ++folder) {
    text += "    <folder Name=\"Folder" + std::to_string(folder) + "\">\n";
    text += "      <configuration Name=\"Common\" defines=\"F" + std::to_string(folder) + "\" />\n";
    for (int file = folder; file < files; file += folders) {
      text += "      <file file_name=\"src/f" + std::to_string(folder) + "/file" + std::to_string(file) + ".c\"";
      if (file % 10 == 0)
        text += ">\n        <configuration Name=\"Debug\" defines=\"FILE" + std::to_string(file) + "\" />\n      </file>\n";
      else
        text += " />\n";
    }
    text += "    </folder>\n";
  }
  return text + "  </project>\n</solution>\n";
}

struct Times {
  qint64 load, resolve, save;
};

// One cycle on the file.
Times runCycle(const QString& path) {
  regmill::StandardProjectSystem system;
  regmill::PropertyClass defines(regmill::PropertyClassFields{.name = "defines", .type = regmill::PropertyType::StringList});
  QElapsedTimer timer;
  timer.start();
  system.loadSolution(path);
  const qint64 load = timer.restart();
  size_t resolved = 0;
  std::vector<regmill::ProjectElement*> pending{system.root()};
  while (!pending.empty()) {
    regmill::ProjectElement* element = pending.back();
    pending.pop_back();
    if (element->is(regmill::ProjectElementKind::File)) resolved += system.getValue(element, &defines, "Debug").size();
    for (regmill::ProjectElement* child : element->childElements()) pending.push_back(child);
  }
  const qint64 resolve = timer.restart();
  system.root()->setModified(true);
  system.saveAll();
  const qint64 save = timer.restart();
  if (resolved == 0) std::exit(1);
  return {load, resolve, save};
}

// The best of three cycles for each step; prints them on one line.
void measure(int files) {
  const QString folder = QDir::tempPath() + "/project-bench-" + QString::number(getpid());
  QDir().mkpath(folder);
  const QString path = folder + "/bench.lkProject";
  {
    QFile out(path);
    if (!out.open(QIODevice::WriteOnly)) std::exit(1);
    out.write(QByteArray::fromStdString(generatedSolution(files)));
  }
  Times best = runCycle(path);
  for (int round = 1; round < 3; ++round) {
    const Times times = runCycle(path);
    best = {std::min(best.load, times.load), std::min(best.resolve, times.resolve), std::min(best.save, times.save)};
  }
  std::printf("%6d files: load %5lld ms, resolve %5lld ms, save %5lld ms, whole %5lld ms", files, best.load,
              best.resolve, best.save, best.load + best.resolve + best.save);
  std::fflush(stdout);
  QDir(folder).removeRecursively();
}

}  // namespace

int main(int argc, char** argv) {
  const int files = argc > 1 ? std::atoi(argv[1]) : 10000;
  if (files <= 0) return 1;
  for (int size : {files, files * 4}) {
    std::fflush(stdout);
    pid_t child = fork();
    if (child == 0) {
      measure(size);
      _exit(0);
    }
    int status = 0;
    rusage usage{};
    if (child < 0 || wait4(child, &status, 0, &usage) < 0 || !WIFEXITED(status) || WEXITSTATUS(status) != 0) return 1;
    std::printf(", peak %ld MB\n", usage.ru_maxrss / 1024);
  }
  return 0;
}
