// Times the line comparison against GNU diff on the same files in the same run:
// two files of 127,000 lines made of real vendor text, compared as identical files,
// with one changed block, and with scattered changes. Each figure is the best of 5.
// The search as written is timed once for the scattered changes, as the measure of
// what the fast search saves; a split of our time shows where it goes.
//
//   text_diff_bench [corpus folder]
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include <QStringList>

#include "base/input_file.h"
#include "bench_support.h"
#include "editor/text_diff.h"

namespace fs = std::filesystem;

using regmill::DiffHunk;
using regmill::TextDiff;
using regmill::bench::readFile;
using regmill::bench::runChild;

namespace {

constexpr int kLines = 127000;
constexpr int kRounds = 5;

using Clock = std::chrono::steady_clock;

double timeOnce(const std::function<void()>& work) {
  auto start = Clock::now();
  work();
  return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

double bestOf(const std::function<void()>& work) {
  double best = 1e300;
  for (int round = 0; round < kRounds; ++round) best = std::min(best, timeOnce(work));
  return best;
}

// 127,000 lines of the vendor files below `corpus`, largest first; generated
// register-like lines stand in when there is no corpus.
std::vector<std::string> baseLines(const fs::path& corpus) {
  std::vector<fs::path> files;
  std::error_code error;
  if (fs::is_directory(corpus, error))
    for (const auto& entry : fs::recursive_directory_iterator(corpus, error))
      if (entry.is_regular_file() && entry.path().extension() == ".svd") files.push_back(entry.path());
  std::sort(files.begin(), files.end(), [](const fs::path& a, const fs::path& b) {
    return fs::file_size(a) != fs::file_size(b) ? fs::file_size(a) > fs::file_size(b) : a < b;
  });
  std::vector<std::string> lines;
  for (const fs::path& file : files) {
    std::string text = readFile(file);
    for (size_t at = 0; at < text.size() && lines.size() < size_t(kLines);) {
      size_t end = text.find('\n', at);
      if (end == std::string::npos) end = text.size();
      lines.push_back(text.substr(at, end - at));
      at = end + 1;
    }
    if (lines.size() >= size_t(kLines)) return lines;
  }
  std::mt19937 random(1);
  while (lines.size() < size_t(kLines))
    lines.push_back("      <register><name>R" + std::to_string(random() % 5000) + "</name></register>");
  return lines;
}

void writeLines(const fs::path& path, const std::vector<std::string>& lines) {
  std::ofstream out(path, std::ios::binary);
  for (const std::string& line : lines) out << line << '\n';
}

QString readText(const fs::path& path) {
  regmill::Expected<std::string> bytes = regmill::readInputFile(path.string());
  if (!bytes.ok()) return {};
  return QString::fromLatin1(bytes->data(), qsizetype(bytes->size()));
}

QStringList splitFile(const fs::path& path) { return regmill::splitDiffLines(readText(path)); }

void compare(const char* name, const fs::path& left, const fs::path& right, bool asWritten) {
  std::vector<DiffHunk> hunks;
  const double ours = bestOf([&] { hunks = TextDiff().diffTexts(readText(left), readText(right)); });
  long ignored = 0;
  const double gnu = bestOf([&] { runChild({"diff", left.string(), right.string()}, ignored); });
  std::printf("%-18s %6zu hunks  ours %8.1f ms  GNU diff %7.1f ms  ratio %6.2f\n", name, hunks.size(), ours, gnu,
              ours / gnu);

  // Where our time goes: reading and splitting, hashing, and the rest of the diff.
  QStringList leftLines, rightLines;
  const double split = bestOf([&] {
    leftLines = splitFile(left);
    rightLines = splitFile(right);
  });
  int64_t sink = 0;
  const double hashing = bestOf([&] {
    for (const QString& line : leftLines) sink += regmill::diffLineHash(line);
    for (const QString& line : rightLines) sink += regmill::diffLineHash(line);
  });
  const double engine = bestOf([&] { hunks = TextDiff().diff(leftLines, rightLines); });
  std::printf("%-18s read and split %.1f ms, hashing %.1f ms, diff of split lines %.1f ms (%lld)\n", "", split,
              hashing, engine, (long long)(sink & 1));
  if (asWritten) {
    const double written = timeOnce([&] { TextDiff(TextDiff::Search::AsWritten).diff(leftLines, rightLines); });
    std::printf("%-18s search as written %.1f ms, ratio to GNU diff %.0f\n", "", written, written / gnu);
  }
}

}  // namespace

int main(int argc, char** argv) {
  const fs::path corpus = argc > 1 ? fs::path(argv[1]) : fs::path(REGMILL_SHARED_DIR) / "corpus" / "svd";
  const fs::path folder = fs::temp_directory_path() / ("text_diff_bench." + std::to_string(getpid()));
  fs::create_directories(folder);
  const std::vector<std::string> base = baseLines(corpus);
  writeLines(folder / "base", base);
  writeLines(folder / "copy", base);  // the same file would let diff answer from its inode

  std::vector<std::string> block = base;  // 2,000 lines in the middle replaced
  std::mt19937 random(5);
  for (int line = 60000; line < 62000; ++line) block[size_t(line)] = base[random() % base.size()] + " ";
  writeLines(folder / "block", block);

  std::vector<std::string> scattered = base;  // 1,000 edits of every kind, from its own lines
  for (int edit = 0; edit < 1000; ++edit) {
    const size_t at = random() % scattered.size();
    switch (edit % 3) {
      case 0: scattered.erase(scattered.begin() + long(at)); break;
      case 1: scattered.insert(scattered.begin() + long(at), base[random() % base.size()]); break;
      default: scattered[at] = base[random() % base.size()] + "x";
    }
  }
  writeLines(folder / "scattered", scattered);

  std::printf("%d lines from %s\n", kLines, corpus.c_str());
  compare("identical", folder / "base", folder / "copy", false);
  compare("one changed block", folder / "base", folder / "block", false);
  compare("scattered changes", folder / "base", folder / "scattered", true);
  fs::remove_all(folder);
  return 0;
}
