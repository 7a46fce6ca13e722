#include "base/atomic_file.h"

#include <fcntl.h>
#include <limits.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace regmill {

namespace {

std::string folderOf(const std::string& path) {
  size_t slash = path.rfind('/');
  if (slash == std::string::npos) return ".";
  if (slash == 0) return "/";
  return path.substr(0, slash);
}

std::string baseNameOf(const std::string& path) {
  size_t slash = path.rfind('/');
  return slash == std::string::npos ? path : path.substr(slash + 1);
}

// A symbolic link is written through: the file it points to gets the new bytes and
// the link stays a link.
std::string resolveLink(const std::string& path) {
  struct stat info;
  if (lstat(path.c_str(), &info) != 0 || !S_ISLNK(info.st_mode)) return path;
  char resolved[PATH_MAX];
  return realpath(path.c_str(), resolved) != nullptr ? std::string(resolved) : path;
}

// A file-size limit must fail the write with an error, not end the process by a
// signal while the temporary file still has a name.
void ignoreFileSizeSignal() {
  static std::atomic<bool> done{false};
  if (!done.exchange(true)) signal(SIGXFSZ, SIG_IGN);
}

// A named temporary file is removed when the process is told to stop while writing.
// The anonymous kind needs no such care: the system drops it with the process.
char gPendingTemporary[PATH_MAX];

void removePendingTemporary(int signalNumber) {
  if (gPendingTemporary[0] != '\0') unlink(gPendingTemporary);
  signal(signalNumber, SIG_DFL);
  raise(signalNumber);
}

void watchTemporary(const std::string& name) {
  if (name.size() >= sizeof gPendingTemporary) return;
  std::memcpy(gPendingTemporary, name.c_str(), name.size() + 1);
  for (int signalNumber : {SIGINT, SIGTERM, SIGHUP}) signal(signalNumber, removePendingTemporary);
}

void unwatchTemporary() { gPendingTemporary[0] = '\0'; }

// Gives the anonymous file behind `fd` the name `name` in the same folder.
bool nameAnonymousFile(int fd, const std::string& name) {
  std::string procPath = "/proc/self/fd/" + std::to_string(fd);
  if (linkat(AT_FDCWD, procPath.c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW) == 0) return true;
  return linkat(fd, "", AT_FDCWD, name.c_str(), AT_EMPTY_PATH) == 0;
}

}  // namespace

AtomicFileWriter::AtomicFileWriter(std::string target) : target_(resolveLink(target)) {}

AtomicFileWriter::~AtomicFileWriter() { discard(); }

Status AtomicFileWriter::fail(const char* what) {
  Status failure = Status::failure(std::string(what) + ": " + std::strerror(errno), target_);
  discard();
  return failure;
}

Status AtomicFileWriter::open() {
  discard();
  ignoreFileSizeSignal();
  struct stat info;
  if (stat(target_.c_str(), &info) == 0) {
    if (!S_ISREG(info.st_mode)) {
      direct_ = true;
      stream_ = std::fopen(target_.c_str(), "wb");
      return stream_ != nullptr ? Status() : fail("cannot open");
    }
    keptMode_ = info.st_mode & 07777;
    hasKeptMode_ = true;
  }
  std::string folder = folderOf(target_);
  int fd = ::open(folder.c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, 0666);
  anonymous_ = fd >= 0;
  if (!anonymous_) {
    // A file system without anonymous files: a named one, removed on the usual stops.
    temporaryName_ = folder + "/." + baseNameOf(target_) + ".XXXXXX";
    fd = mkostemp(temporaryName_.data(), O_CLOEXEC);
    if (fd < 0) {
      temporaryName_.clear();
      return fail("cannot create a temporary file");
    }
    watchTemporary(temporaryName_);
    if (!hasKeptMode_) {
      mode_t mask = umask(0);
      umask(mask);
      keptMode_ = 0666 & ~mask;
      hasKeptMode_ = true;
    }
  }
  if (hasKeptMode_ && fchmod(fd, keptMode_) != 0) {
    ::close(fd);
    return fail("cannot set the file's mode");
  }
  stream_ = fdopen(fd, "wb");
  if (stream_ == nullptr) {
    ::close(fd);
    return fail("cannot open");
  }
  return Status();
}

Status AtomicFileWriter::commit() {
  if (stream_ == nullptr) return Status::failure("not open", target_);
  if (std::fflush(stream_) != 0 || std::ferror(stream_) != 0) return fail("write failed");
  if (direct_) {
    std::FILE* stream = stream_;
    stream_ = nullptr;
    return std::fclose(stream) == 0 ? Status() : fail("close failed");
  }
  if (anonymous_) {
    // Named only now, once complete; a kill before this line leaves nothing behind.
    temporaryName_ = folderOf(target_) + "/." + baseNameOf(target_) + ".XXXXXX";
    int probe = mkostemp(temporaryName_.data(), O_CLOEXEC);
    if (probe < 0) {
      temporaryName_.clear();
      return fail("cannot name the temporary file");
    }
    ::close(probe);
    unlink(temporaryName_.c_str());
    if (!nameAnonymousFile(fileno(stream_), temporaryName_)) {
      temporaryName_.clear();
      return fail("cannot name the temporary file");
    }
    watchTemporary(temporaryName_);
  }
  std::FILE* stream = stream_;
  stream_ = nullptr;
  if (std::fclose(stream) != 0) return fail("close failed");
  if (std::rename(temporaryName_.c_str(), target_.c_str()) != 0) return fail("cannot replace the file");
  temporaryName_.clear();
  unwatchTemporary();
  return Status();
}

void AtomicFileWriter::discard() {
  if (stream_ != nullptr) std::fclose(stream_);
  stream_ = nullptr;
  if (!temporaryName_.empty()) unlink(temporaryName_.c_str());
  temporaryName_.clear();
  unwatchTemporary();
  anonymous_ = direct_ = false;
}

Status writeFileAtomically(const std::string& target, const std::function<void(std::FILE*)>& write) {
  AtomicFileWriter writer(target);
  if (Status opened = writer.open(); !opened) return opened;
  write(writer.stream());
  return writer.commit();
}

}  // namespace regmill
