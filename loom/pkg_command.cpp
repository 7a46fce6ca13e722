// loom pkg: list, extract and create package archives, and fetch a file over HTTP.
#include <unistd.h>

#include <QCoreApplication>
#include <QStringList>
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <vector>

#include "base/hexception.h"
#include "base/input_file.h"
#include "base/parse_number.h"
#include "loom/command.h"
#include "packages/download_texts.h"
#include "packages/downloads_list.h"
#include "packages/package_archive.h"

namespace loom {

namespace {

using regmill::HException;
using regmill::PackageArchive;

QString qtText(const std::string& text) { return QString::fromStdString(text); }

int list(Arguments arguments) {
  if (arguments.size() != 1) return fail("usage: loom pkg list ARCHIVE");
  PackageArchive archive;
  archive.open(qtText(arguments[0]));
  for (const auto& file : archive.files())
    std::printf("%10u %s\n", file->size, file->name.toUtf8().constData());
  return 0;
}

int extract(Arguments arguments) {
  if (arguments.size() < 2) return fail("usage: loom pkg extract ARCHIVE DIR [NAME...]");
  PackageArchive archive;
  archive.open(qtText(arguments[0]), 0, true);
  const QString directory = qtText(arguments[1]);
  if (arguments.size() == 2) {
    // In table order: going back in a compressed stream decompresses it again.
    for (const auto& file : archive.files()) archive.extract(file.get(), directory, false);
    return 0;
  }
  std::vector<regmill::PackageArchiveFile*> chosen;
  for (const std::string& name : arguments.subspan(2)) {
    regmill::PackageArchiveFile* file = archive.findFile(qtText(name));
    if (file == nullptr) return fail("no file " + name + " in " + arguments[0]);
    chosen.push_back(file);
  }
  std::sort(chosen.begin(), chosen.end(), [](const auto* a, const auto* b) { return a->offset < b->offset; });
  for (auto* file : chosen) archive.extract(file, directory, false);
  return 0;
}

struct CreateOptions {
  uint32_t version = 1;
  uint32_t algorithm = 0;
  int level = -1;
};

std::optional<std::string> readCreateOptions(Arguments words, CreateOptions& options) {
  for (size_t i = 0; i < words.size(); i += 2) {
    if (i + 1 == words.size()) return words[i] + " needs a value";
    const std::string& value = words[i + 1];
    if (words[i] == "--format" && (value == "1" || value == "2")) {
      options.version = value == "1" ? 1 : 2;
    } else if (words[i] == "--compression" && (value == "zlib" || value == "bzip2")) {
      options.algorithm = value == "zlib" ? 0 : 1;
    } else if (words[i] == "--level") {
      std::optional<int32_t> level = regmill::decimalNumber(value);
      if (!level) return "--level takes a number, not '" + value + "'";
      options.level = *level;
    } else {
      return "unknown option or value: " + words[i] + " " + value;
    }
  }
  if (options.version == 1 && options.algorithm != 0) return "format 1 holds zlib streams only";
  return std::nullopt;
}

int create(Arguments arguments) {
  if (arguments.size() < 2)
    return fail("usage: loom pkg create ARCHIVE DIR [--format 1|2] [--compression zlib|bzip2] [--level N]");
  CreateOptions options;
  if (auto problem = readCreateOptions(arguments.subspan(2), options)) return fail(*problem);
  namespace fs = std::filesystem;
  const fs::path root = arguments[1];
  std::error_code error;
  if (!fs::is_directory(root, error)) return fail(arguments[1] + " is not a folder");
  // Regular files only, links not followed; sorted, so that the archive's name index
  // grows at its end.
  std::vector<QString> names;
  fs::recursive_directory_iterator walk(root, error), end;
  if (error) return fail("cannot read " + arguments[1] + ": " + error.message());
  for (; walk != end; walk.increment(error)) {
    if (error) return fail("cannot read " + arguments[1] + ": " + error.message());
    if (!walk->is_regular_file(error) || walk->is_symlink(error)) continue;
    if (regmill::namesSameFile(walk->path().string(), arguments[0])) continue;  // the archive itself
    names.push_back(qtText(walk->path().lexically_relative(root).generic_string()));
  }
  std::sort(names.begin(), names.end());
  PackageArchive archive;
  archive.setVersion(options.version);
  archive.setAlgorithm(options.algorithm);
  for (const QString& name : names) archive.addFile(qtText(arguments[1]) + "/" + name, name);
  archive.save(qtText(arguments[0]), options.level);
  return 0;
}

int fetch(Arguments arguments) {
  if (arguments.empty() || arguments.size() > 2) return fail("usage: loom pkg fetch URL [DIR]");
  QUrl url(qtText(arguments[0]), QUrl::StrictMode);
  if (!url.isValid() || (url.scheme() != "http" && url.scheme() != "https") || url.host().isEmpty())
    return fail("not an http or https URL: " + arguments[0]);
  int argc = 1;
  char name[] = "loom";
  char* argv[] = {name, nullptr};
  QCoreApplication application(argc, argv);
  regmill::DownloadSettings settings;
  settings.userAgent = regmill::userAgentText("loom");
  regmill::DownloadsListView downloads(settings);
  const bool terminal = isatty(STDERR_FILENO) != 0;
  regmill::DownloadsListViewItem* row =
      downloads.startDownload(url, arguments.size() == 2 ? qtText(arguments[1]) : QString("."), nullptr, 0);
  QObject::connect(row, &regmill::DownloadsListViewItem::progress, [row, terminal](const regmill::DownloadInfo& info) {
    if (!terminal || info.finished) return;
    QString line = regmill::progressLine(info, row->elapsedMilliseconds());
    std::fprintf(stderr, "\r%s\033[K", line.toUtf8().constData());
  });
  QObject::connect(row, &regmill::DownloadsListViewItem::finished, &application, &QCoreApplication::quit,
                   Qt::QueuedConnection);
  application.exec();
  if (terminal) std::fprintf(stderr, "\r\033[K");
  const regmill::DownloadInfo& info = row->info();
  if (!info.error.isEmpty()) return fail("cannot fetch " + arguments[0] + ": " + info.error.toStdString());
  std::printf("%s\n", info.file.toUtf8().constData());
  return 0;
}

}  // namespace

int runPkg(Arguments arguments) {
  if (arguments.empty()) return fail("usage: loom pkg list|extract|create|fetch ...");
  const std::string& action = arguments[0];
  try {
    if (action == "list") return list(arguments.subspan(1));
    if (action == "extract") return extract(arguments.subspan(1));
    if (action == "create") return create(arguments.subspan(1));
    if (action == "fetch") return fetch(arguments.subspan(1));
  } catch (const HException& failure) {
    return fail(failure.text());
  }
  return fail("unknown pkg action '" + action + "'; use list, extract, create or fetch");
}

}  // namespace loom
