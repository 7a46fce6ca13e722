// Times the editor core on a file of 1,000,000 lines: load, one edit at the last line,
// replace-all of a common word, save; and the heap the loaded document takes per
// line. sed's replacement over the same file runs in the same run for comparison.
//
//   editor_bench [lines]
//
// Targets: load under 2 s, the edit under 50 ms, replace-all under 5 s, under 300
// bytes per line.
#include <malloc.h>

#include <QCoreApplication>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "editor/edit_commands.h"

namespace {

using Clock = std::chrono::steady_clock;

double millisecondsSince(Clock::time_point start) {
  return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

size_t heapInUse() { return mallinfo2().uordblks; }

// Lines of 4 to 12 words, "the" among them as often as in English prose.
void writeInput(const std::string& path, int lines) {
  const char* words[] = {"the", "register", "value", "of", "timer", "clock", "the", "enable", "bit", "is", "set", "and"};
  std::ofstream out(path, std::ios::binary);
  unsigned state = 1;
  for (int line = 0; line < lines; ++line) {
    for (int word = 0, count = 4 + int(line % 9); word < count; ++word) {
      state = state * 1103515245u + 12345u;
      out << (word ? " " : "") << words[(state >> 16) % 12];
    }
    out << '\n';
  }
}

}  // namespace

int main(int argc, char** argv) {
  const int lines = argc > 1 ? std::atoi(argv[1]) : 1000000;
  const auto folder = std::filesystem::temp_directory_path() / "regmill_editor_bench";
  std::filesystem::create_directories(folder);
  const std::string input = (folder / "input.txt").string(), output = (folder / "output.txt").string();
  writeInput(input, lines);
  std::printf("input: %d lines, %ju bytes\n", lines, std::uintmax_t(std::filesystem::file_size(input)));

  using namespace regmill;
  const size_t heapBefore = heapInUse();
  auto start = Clock::now();
  auto editor = std::make_unique<CodeEdit>();
  if (!editor->load(QString::fromStdString(input))) return 1;
  const double load = millisecondsSince(start);
  const size_t heapAfter = heapInUse();

  start = Clock::now();
  editor->insertText({editor->lineCount() - 2, 3}, QStringLiteral("edited "));
  const double edit = millisecondsSince(start);
  start = Clock::now();
  editor->insertText({editor->lineCount() / 2, 0}, QStringLiteral("middle "));  // the farthest walk
  const double middleEdit = millisecondsSince(start);

  MemoryClipboard clipboard;
  EditCommands commands(*editor, clipboard);
  start = Clock::now();
  const int replaced = commands.finder().replaceAll({kFindWholeWord | kFindCaseSensitive, "the", "THE"}, false);
  const double replace = millisecondsSince(start);

  start = Clock::now();
  if (!editor->save(QString::fromStdString(output)).ok()) return 1;
  const double save = millisecondsSince(start);

  start = Clock::now();
  const std::string sed = "sed 's/\\bthe\\b/THE/g' " + input + " > " + (folder / "sed.txt").string();
  const bool sedRan = std::system(sed.c_str()) == 0;
  const double sedTime = millisecondsSince(start);

  std::printf("load          %8.1f ms   (target 2000)\n", load);
  std::printf("edit          %8.1f ms   (target 50) at the last line, %.1f ms in the middle\n", edit, middleEdit);
  std::printf("replace-all   %8.1f ms   (target 5000), %d replaced\n", replace, replaced);
  std::printf("save          %8.1f ms\n", save);
  if (sedRan) std::printf("sed s///g     %8.1f ms   (peer, same replacement)\n", sedTime);
  std::printf("memory        %8.1f bytes per line (target 300)\n", double(heapAfter - heapBefore) / lines);
  std::filesystem::remove_all(folder);
  return 0;
}
