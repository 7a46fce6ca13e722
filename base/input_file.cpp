#include "base/input_file.h"

#include <limits.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <cstring>

namespace regmill {

namespace {

struct FileCloser {
  void operator()(std::FILE* file) const { std::fclose(file); }
};

// The absolute name of a path whose file need not exist: its folder resolved, the
// last part kept as written.
std::string absoluteName(const std::string& path) {
  size_t slash = path.rfind('/');
  std::string folder = slash == std::string::npos ? "." : (slash == 0 ? "/" : path.substr(0, slash));
  std::string last = slash == std::string::npos ? path : path.substr(slash + 1);
  char resolved[PATH_MAX];
  if (realpath(folder.c_str(), resolved) == nullptr) return path;
  return std::string(resolved) + "/" + last;
}

}  // namespace

Expected<std::string> readInputFile(const std::string& path, size_t limit) {
  std::unique_ptr<std::FILE, FileCloser> file(std::fopen(path.c_str(), "rb"));
  if (!file) return Status::failure(std::string("cannot open: ") + std::strerror(errno), path);
  return readInputStream(file.get(), path, limit);
}

Expected<std::string> readInputStream(std::FILE* stream, const std::string& name, size_t limit) {
  struct stat info;
  std::string contents;
  if (fstat(fileno(stream), &info) == 0) {
    if (S_ISDIR(info.st_mode)) return Status::failure("is a folder", name);
    if (S_ISREG(info.st_mode)) {
      if (static_cast<uint64_t>(info.st_size) > limit) return Status::failure("file too large", name);
      // A regular file is read straight into place, without a copy through a block;
      // should it have grown or shrunk since, the loop below sees to it.
      contents.resize(static_cast<size_t>(info.st_size));
      contents.resize(std::fread(contents.data(), 1, contents.size(), stream));
    }
  }
  char block[65536];
  size_t got;
  while ((got = std::fread(block, 1, sizeof block, stream)) > 0) {
    if (contents.size() + got > limit) return Status::failure("file too large", name);
    contents.append(block, got);
  }
  if (std::ferror(stream)) return Status::failure(std::string("read failed: ") + std::strerror(errno), name);
  return contents;
}

bool namesSameFile(const std::string& first, const std::string& second) {
  struct stat one, two;
  bool firstExists = stat(first.c_str(), &one) == 0;
  bool secondExists = stat(second.c_str(), &two) == 0;
  if (firstExists && secondExists) return one.st_dev == two.st_dev && one.st_ino == two.st_ino;
  if (firstExists != secondExists) return false;
  return absoluteName(first) == absoluteName(second);
}

}  // namespace regmill
