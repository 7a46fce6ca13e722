// Packs and unpacks a generated 50 MB tree of mixed files (source-like text, random
// bytes, repetitive binaries; a few large files and many small ones) as package
// archives with zlib and bzip2, and with tar + gzip and tar + bzip2 on the same tree
// in the same run. Prints seconds and sizes, and the ratios against tar.
// Usage: package_archive_bench [MEGABYTES]
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "base/hexception.h"
#include "bench/bench_support.h"
#include "packages/package_archive.h"

namespace {

namespace fs = std::filesystem;

std::string textLike(std::mt19937& random, size_t size) {
  static const char* const words[] = {"register", "uint32_t", "return", "volatile", "0x40021000", "if (", ") {",
                                      "}", "static", "const", "status", "= 0;", "->", "CR1", "while"};
  std::string text;
  while (text.size() < size) {
    text += words[random() % std::size(words)];
    text += random() % 7 == 0 ? "\n" : " ";
  }
  text.resize(size);
  return text;
}

std::string randomBytes(std::mt19937& random, size_t size) {
  std::string bytes(size, '\0');
  for (char& c : bytes) c = char(random());
  return bytes;
}

std::string repetitive(std::mt19937& random, size_t size) {
  std::string record = randomBytes(random, 64 + random() % 512);
  std::string bytes;
  while (bytes.size() < size) {
    bytes += record;
    record[random() % record.size()] = char(random());
  }
  bytes.resize(size);
  return bytes;
}

void makeTree(const fs::path& root, size_t totalBytes) {
  std::mt19937 random(42);
  size_t written = 0;
  for (int n = 0; written < totalBytes; ++n) {
    size_t size = n % 20 == 0 ? 1000000 + random() % 2000000 : 500 + random() % 60000;
    size = std::min(size, totalBytes - written);
    fs::path folder = root / ("dir" + std::to_string(n % 13)) / ("sub" + std::to_string(n % 5));
    fs::create_directories(folder);
    std::string bytes = n % 10 < 5 ? textLike(random, size) : n % 10 < 8 ? repetitive(random, size) : randomBytes(random, size);
    std::ofstream(folder / ("file" + std::to_string(n) + ".dat"), std::ios::binary) << bytes;
    written += size;
  }
}

double seconds(const std::function<void()>& action) {
  auto start = std::chrono::steady_clock::now();
  action();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

void pack(const fs::path& root, const fs::path& archivePath, uint32_t version, uint32_t algorithm, int level) {
  std::vector<QString> names;
  for (const auto& entry : fs::recursive_directory_iterator(root))
    if (entry.is_regular_file()) names.push_back(QString::fromStdString(entry.path().lexically_relative(root).string()));
  std::sort(names.begin(), names.end());
  regmill::PackageArchive archive;
  archive.setVersion(version);
  archive.setAlgorithm(algorithm);
  for (const QString& name : names) archive.addFile(QString::fromStdString(root.string()) + "/" + name, name);
  archive.save(QString::fromStdString(archivePath.string()), level);
}

void unpack(const fs::path& archivePath, const fs::path& target) {
  regmill::PackageArchive archive(QString::fromStdString(archivePath.string()));
  for (const auto& file : archive.files()) archive.extract(file.get(), QString::fromStdString(target.string()), false);
}

double runTar(const std::vector<std::string>& arguments) {
  long peak = 0;
  int status = 0;
  double time = seconds([&] { status = regmill::bench::runChild(arguments, peak); });
  if (status != 0) std::fprintf(stderr, "tar failed: %s\n", arguments[1].c_str());
  return time;
}

}  // namespace

int main(int argc, char** argv) {
  size_t megabytes = argc > 1 ? std::stoul(argv[1]) : 50;
  fs::path work = fs::temp_directory_path() / ("package_archive_bench." + std::to_string(getpid()));
  fs::create_directories(work);
  fs::path tree = work / "tree";
  makeTree(tree, megabytes << 20);
  std::printf("tree: %zu MB of mixed files\n\n%-28s %9s %9s %11s\n", megabytes, "", "pack s", "unpack s", "size MB");
  struct Row {
    std::string name;
    double pack, unpack;
    uintmax_t size;
  };
  std::vector<Row> rows;
  auto measure = [&](const std::string& name, const std::function<void(const fs::path&)>& packInto,
                     const std::function<void(const fs::path&, const fs::path&)>& unpackFrom) {
    fs::path archive = work / (name + ".out");
    fs::path out = work / (name + ".tree");
    fs::create_directories(out);
    Row row{name, seconds([&] { packInto(archive); }), seconds([&] { unpackFrom(archive, out); }), fs::file_size(archive)};
    std::printf("%-28s %9.2f %9.2f %11.2f\n", name.c_str(), row.pack, row.unpack, row.size / 1048576.0);
    rows.push_back(row);
    fs::remove_all(out);
  };
  try {
    auto tarPack = [&](const char* flag) {
      return [&, flag](const fs::path& archive) { runTar({"tar", "-C", tree.string(), flag, archive.string(), "."}); };
    };
    auto tarUnpack = [](const char* flag) {
      return [flag](const fs::path& archive, const fs::path& out) { runTar({"tar", "-C", out.string(), flag, archive.string()}); };
    };
    measure("tar + gzip (level 6)", tarPack("-czf"), tarUnpack("-xzf"));
    measure("tar + bzip2 (level 9)", tarPack("-cjf"), tarUnpack("-xjf"));
    auto ours = [&](uint32_t version, uint32_t algorithm, int level) {
      return [&, version, algorithm, level](const fs::path& archive) { pack(tree, archive, version, algorithm, level); };
    };
    measure("archive v1 zlib level 6", ours(1, 0, 6), unpack);
    measure("archive v2 zlib default (7)", ours(2, 0, -1), unpack);
    measure("archive v2 bzip2 level 9", ours(2, 1, 9), unpack);
  } catch (const regmill::HException& failure) {
    std::fprintf(stderr, "%s\n", failure.what());
    return 1;
  }
  std::printf("\nagainst tar + gzip: zlib level 6 pack %.2fx, unpack %.2fx, size %.3fx; default level pack %.2fx\n",
              rows[2].pack / rows[0].pack, rows[2].unpack / rows[0].unpack, double(rows[2].size) / rows[0].size,
              rows[3].pack / rows[0].pack);
  std::printf("against tar + bzip2: bzip2 pack %.2fx, unpack %.2fx, size %.3fx\n", rows[4].pack / rows[1].pack,
              rows[4].unpack / rows[1].unpack, double(rows[4].size) / rows[1].size);
  fs::remove_all(work);
  return 0;
}
