#include "packages/package_archive.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDir>
#include <QFileInfo>
#include <algorithm>
#include <cerrno>
#include <cstring>

#include "base/atomic_file.h"
#include "base/hexception.h"
#include "base/input_file.h"

namespace regmill {

namespace {

constexpr uint32_t kEntrySize1 = 1040;
constexpr uint32_t kNameField1 = 1024;
constexpr uint32_t kEntryHead2 = 18;
constexpr uint32_t kStreamHeader1 = 8;
constexpr uint32_t kStreamHeader2 = 20;
// A table longer than this is taken for a damaged one rather than filling memory.
constexpr uint32_t kMaximumEntries = 1u << 24;
// Contents are read in pieces, so that a size in a damaged table costs no more memory
// than the bytes that are really there.
constexpr uint32_t kReadPiece = 1u << 20;

uint32_t readLittle32(const unsigned char* bytes) {
  return uint32_t(bytes[0]) | uint32_t(bytes[1]) << 8 | uint32_t(bytes[2]) << 16 | uint32_t(bytes[3]) << 24;
}
uint16_t readLittle16(const unsigned char* bytes) { return uint16_t(bytes[0] | bytes[1] << 8); }

void putLittle32(unsigned char* bytes, uint32_t value) {
  for (int i = 0; i < 4; ++i) bytes[i] = uint8_t(value >> (8 * i));
}
void putLittle16(unsigned char* bytes, uint16_t value) {
  bytes[0] = uint8_t(value);
  bytes[1] = uint8_t(value >> 8);
}
void putBig32(unsigned char* bytes, uint32_t value) {
  for (int i = 0; i < 4; ++i) bytes[i] = uint8_t(value >> (24 - 8 * i));
}

std::string localPath(const QString& path) { return QFile::encodeName(path).toStdString(); }

uint32_t secondsOf(const QDateTime& time) { return time.isValid() ? uint32_t(time.toSecsSinceEpoch()) : 0; }

// A name must stay below the target folder: no absolute name, no ".." part, no NUL
// (which the system would cut the path at), and no symbolic link on the way, which
// could lead anywhere. The folder given by the caller may itself be a link.
void checkStaysInside(const QString& directory, const QString& name) {
  if (name.isEmpty() || name.startsWith('/') || name.contains(QChar(0)))
    throw HException("refusing to write outside the target folder: " + name.toStdString());
  const QStringList parts = name.split('/');
  if (parts.contains(".."))
    throw HException("refusing to write outside the target folder: " + name.toStdString());
  QString path = directory;
  for (const QString& part : parts) {
    path += "/" + part;
    struct stat info;
    if (lstat(localPath(path).c_str(), &info) != 0) return;  // the rest is made fresh
    if (S_ISLNK(info.st_mode))
      throw HException("refusing to write through the symbolic link " + localPath(path));
  }
}

// Writes all of `bytes` to the new file at `target`, or throws with nothing left behind.
void writeNewFile(const std::string& target, const QByteArray& bytes) {
  int fd = ::open(target.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
  if (fd < 0) throw HException("cannot create output file " + target);
  const char* data = bytes.constData();
  qsizetype left = bytes.size();
  bool written = true;
  while (left > 0) {
    ssize_t done = ::write(fd, data, size_t(left));
    if (done < 0 && errno == EINTR) continue;
    if (done <= 0) {
      written = false;
      break;
    }
    data += done;
    left -= done;
  }
  if (::close(fd) != 0) written = false;
  if (!written) {
    ::unlink(target.c_str());
    throw HException("cannot write to output file " + target);
  }
}

}  // namespace

struct PackageArchive::HeaderTest {
  std::unique_ptr<std::FILE, FileCloser> file;
  std::unique_ptr<PackageArchiveIOFileInterface> stream;
  uint32_t version = 0;
  uint32_t algorithm = 0;
  uint32_t count = 0;
};

PackageArchive::PackageArchive(const QString& path) {
  if (!path.isEmpty()) open(path, 0, false);
}

PackageArchive::~PackageArchive() = default;

std::unique_ptr<PackageArchiveCompressedInputFile> PackageArchive::createInputStream(uint32_t algorithm,
                                                                                     std::FILE* file) {
  if (algorithm == 0) return std::make_unique<PackageArchiveCompressedGzInputFile>(file);
  if (algorithm == 1) return std::make_unique<PackageArchiveCompressedBzInputFile>(file);
  throw HException("unsupported compression algorithm");
}

std::unique_ptr<PackageArchiveCompressedOutputFile> PackageArchive::createOutputStream(uint32_t algorithm,
                                                                                       std::FILE* file, int level) {
  if (algorithm == 0) return std::make_unique<PackageArchiveCompressedGzOutputFile>(file, level);
  if (algorithm == 1) return std::make_unique<PackageArchiveCompressedBzOutputFile>(file, level);
  throw HException("unsupported compression algorithm");
}

// Recognises the three forms by their first bytes and leaves `result` with the plain
// stream positioned behind the part of its header that the test consumed.
bool PackageArchive::runHeaderTest(const QString& path, uint32_t offset, HeaderTest& result) {
  result.file.reset(std::fopen(localPath(path).c_str(), "rb"));
  std::FILE* file = result.file.get();
  if (file == nullptr || std::fseek(file, long(offset), SEEK_SET) != 0) return false;
  beforeReading(file);
  unsigned char head[8];
  if (std::fread(head, 1, 8, file) != 8) return false;
  uint32_t magic = readLittle32(head);
  if (magic == kMagic2) {
    uint16_t word = readLittle16(head + 4);
    result.version = word & 0xFFF;
    result.algorithm = word >> 12;
    // Only the plain stream of layout 1 says how many files there are, so a layout-2
    // header that names another version is no archive.
    if (result.version != 2) return false;
    result.stream = createInputStream(result.algorithm, file);
    return true;
  }
  if (magic == kMagic1) {
    unsigned char estimate[4];
    if (std::fread(estimate, 1, 4, file) != 4) return false;
    result.stream = createInputStream(0, file);
    try {
      if (result.stream->read(head, 8) != 8) return false;
    } catch (const HException&) {
      return false;
    }
  } else {
    result.stream = std::make_unique<PackageArchiveIOFile>(file, long(offset));
  }
  if (readLittle32(head) != kStreamMagic1) return false;
  result.version = 1;
  result.count = readLittle32(head + 4);
  return true;
}

bool PackageArchive::isPackageFile(const QString& path) {
  HeaderTest test;
  try {
    return runHeaderTest(path, 0, test);
  } catch (const HException&) {
    return false;
  }
}

void PackageArchive::open(const QString& path, uint32_t offset, bool sort) {
  data_.files.clear();
  data_.sortedFiles.clear();
  data_.input.reset();
  data_.inputFile.reset();
  try {
    if (!QFileInfo::exists(path)) throw HException(localPath(path) + " does not exist");
    HeaderTest test;
    if (!runHeaderTest(path, offset, test)) throw HException("unsupported package file format");
    data_.inputFile = std::move(test.file);
    data_.input = std::move(test.stream);
    data_.version = test.version;
    if (test.version == 2) {
      data_.algorithm = test.algorithm;
      unsigned char header[kStreamHeader2];
      if (data_.input->read(header, kStreamHeader2) != kStreamHeader2) throw HException("bad header");
      test.count = readLittle32(header);
    }
    readTableOfContents(test.count, sort);
  } catch (...) {
    data_.files.clear();
    data_.sortedFiles.clear();
    data_.input.reset();
    data_.inputFile.reset();
    throw;
  }
}

void PackageArchive::readTableOfContents(uint32_t count, bool sort) {
  if (count > kMaximumEntries) throw HException("bad table of contents");
  PackageArchiveIOFileInterface& stream = *data_.input;
  for (uint32_t i = 0; i < count; ++i) {
    auto file = std::make_unique<PackageArchiveFile>();
    file->state = PackageArchiveFile::InArchive;
    if (data_.version == 1) {
      unsigned char entry[kEntrySize1];
      if (stream.read(entry, kEntrySize1) != kEntrySize1) throw HException("bad table of contents");
      const char* name = reinterpret_cast<const char*>(entry);
      file->name = QString::fromUtf8(name, qsizetype(strnlen(name, kNameField1)));
      file->offset = readLittle32(entry + 1024);
      file->size = readLittle32(entry + 1028);
      file->mode = (readLittle32(entry + 1032) & 0xFFFF) != 0 ? 0444 : 0666;
      file->time = QDateTime::fromSecsSinceEpoch(readLittle32(entry + 1036));
    } else {
      unsigned char entry[kEntryHead2];
      if (stream.read(entry, kEntryHead2) != kEntryHead2) throw HException("bad table of contents");
      uint16_t length = readLittle16(entry);
      QByteArray name(length, Qt::Uninitialized);
      if (stream.read(name.data(), length) != length) throw HException("bad table of contents");
      file->name = QString::fromUtf8(name);
      file->offset = readLittle32(entry + 2);
      file->size = readLittle32(entry + 6);
      file->mode = readLittle32(entry + 10);
      file->time = QDateTime::fromSecsSinceEpoch(readLittle32(entry + 14));
    }
    data_.files.push_back(std::move(file));
    if (sort) insertSorted(data_.files.back().get());
  }
}

void PackageArchive::insertSorted(PackageArchiveFile* file) {
  auto place = std::lower_bound(data_.sortedFiles.begin(), data_.sortedFiles.end(), file->name,
                                [](const PackageArchiveFile* entry, const QString& name) { return entry->name < name; });
  data_.sortedFiles.insert(place, file);
}

PackageArchiveFile* PackageArchive::findFile(const QString& name) const {
  if (!data_.sortedFiles.empty()) {
    auto place = std::lower_bound(data_.sortedFiles.begin(), data_.sortedFiles.end(), name,
                                  [](const PackageArchiveFile* entry, const QString& key) { return entry->name < key; });
    return place != data_.sortedFiles.end() && (*place)->name == name ? *place : nullptr;
  }
  for (const auto& file : data_.files)
    if (file->name == name) return file.get();
  return nullptr;
}

// The description is the first file whose whole name matches "*_package.xml", case
// and all; the star matches folders too.
PackageArchiveFile* PackageArchive::findPackageDescription() const {
  for (const auto& file : data_.files)
    if (file->name.endsWith("_package.xml", Qt::CaseSensitive)) return file.get();
  return nullptr;
}

// The entry of that name, or a new one at the end. A sorted index that covers every
// entry (always so for a new archive) is kept covering them; one that doesn't is
// left alone, and findFile then searches in order.
PackageArchiveFile* PackageArchive::entryFor(const QString& name) {
  if (PackageArchiveFile* existing = findFile(name)) return existing;
  bool indexCoversAll = data_.sortedFiles.size() == data_.files.size();
  data_.files.push_back(std::make_unique<PackageArchiveFile>());
  PackageArchiveFile* file = data_.files.back().get();
  file->name = name;
  if (indexCoversAll) insertSorted(file);
  return file;
}

PackageArchiveFile* PackageArchive::addFile(const QString& diskPath, const QString& archiveName) {
  struct stat info;
  std::string path = localPath(diskPath);
  if (::stat(path.c_str(), &info) != 0 || !S_ISREG(info.st_mode)) throw HException("cannot read " + path);
  if (uint64_t(info.st_size) > UINT32_MAX) throw HException("file too large for an archive: " + path);
  PackageArchiveFile* file = entryFor(archiveName);
  file->state = PackageArchiveFile::OnDisk;
  file->sourcePath = diskPath;
  file->size = uint32_t(info.st_size);
  file->mode = info.st_mode & 0xE1FF;
  file->time = QDateTime::fromSecsSinceEpoch(info.st_mtime);
  file->bytes.clear();
  return file;
}

// The archive gives no operation that puts an entry in memory; this is that
// operation, for callers that make a file's bytes themselves.
PackageArchiveFile* PackageArchive::addFileContents(const QString& archiveName, const QByteArray& bytes,
                                                    uint32_t mode, const QDateTime& time) {
  if (uint64_t(bytes.size()) > UINT32_MAX) throw HException("file too large for an archive: " + archiveName.toStdString());
  PackageArchiveFile* file = entryFor(archiveName);
  file->state = PackageArchiveFile::InMemory;
  file->sourcePath.clear();
  file->bytes = bytes;
  file->size = uint32_t(bytes.size());
  file->mode = mode & 0xE1FF;
  file->time = time;
  return file;
}

QByteArray PackageArchive::fileContents(PackageArchiveFile* file) {
  switch (file->state) {
    case PackageArchiveFile::InArchive: {
      const std::string failure = "cannot read file " + file->name.toStdString() + " from archive";
      if (!data_.input) throw HException(failure);
      data_.input->seek(file->offset);
      QByteArray bytes;
      bytes.reserve(std::min(file->size, kReadPiece));
      for (uint32_t done = 0; done < file->size;) {
        uint32_t piece = std::min(file->size - done, kReadPiece);
        bytes.resize(qsizetype(done) + piece);
        if (data_.input->read(bytes.data() + done, piece) != piece) throw HException(failure);
        done += piece;
      }
      return bytes;
    }
    case PackageArchiveFile::OnDisk: {
      Expected<std::string> contents = readInputFile(localPath(file->sourcePath), UINT32_MAX);
      if (!contents) throw HException("cannot read file " + file->name.toStdString());
      return QByteArray(contents->data(), qsizetype(contents->size()));
    }
    case PackageArchiveFile::InMemory:
      return file->bytes;
    default:
      return QByteArray();
  }
}

void PackageArchive::extract(PackageArchiveFile* file, const QString& directory, bool overwrite) {
  checkStaysInside(directory, file->name);
  const QString target = directory + "/" + file->name;
  const std::string path = localPath(target);
  QByteArray bytes = fileContents(file);
  struct stat existing;
  if (lstat(path.c_str(), &existing) == 0) {
    if (!overwrite || ::unlink(path.c_str()) != 0) throw HException("cannot overwrite file " + path);
  } else {
    QDir().mkpath(QFileInfo(target).absolutePath());
  }
  writeNewFile(path, bytes);
  struct timespec times[2];
  times[0].tv_sec = times[1].tv_sec = time_t(secondsOf(file->time));
  times[0].tv_nsec = times[1].tv_nsec = 0;
  utimensat(AT_FDCWD, path.c_str(), times, AT_SYMLINK_NOFOLLOW);
  // The set-id and sticky bits stay as the new file has them; the rest comes from
  // the archive.
  struct stat created;
  if (::stat(path.c_str(), &created) != 0 ||
      ::chmod(path.c_str(), ((file->mode & ~0x1E00u) | (created.st_mode & 0x1E00u)) & 07777) != 0)
    throw HException("cannot set mode of output file " + path);
}

void PackageArchive::writeTableOfContents(PackageArchiveIOFileInterface& stream) {
  const uint32_t count = uint32_t(data_.files.size());
  uint64_t offset = data_.version == 1 ? uint64_t(kEntrySize1) * count + kStreamHeader1
                                       : uint64_t(kStreamHeader2) + uint64_t(kEntryHead2) * count;
  std::vector<QByteArray> names;
  names.reserve(count);
  for (const auto& file : data_.files) {
    names.push_back(file->name.toUtf8());
    if (data_.version == 2) offset += uint64_t(names.back().size());
  }
  for (size_t i = 0; i < data_.files.size(); ++i) {
    const PackageArchiveFile& file = *data_.files[i];
    const QByteArray& name = names[i];
    if (offset + file.size > UINT32_MAX) throw HException("archive too large");
    if (data_.version == 1) {
      if (name.size() >= qsizetype(kNameField1)) throw HException("filename too long");
      unsigned char entry[kEntrySize1] = {};
      std::copy(name.begin(), name.end(), entry);
      putLittle32(entry + 1024, uint32_t(offset));
      putLittle32(entry + 1028, file.size);
      putLittle32(entry + 1032, (file.mode & 0222) == 0 ? 1 : 0);
      putLittle32(entry + 1036, secondsOf(file.time));
      if (stream.write(entry, kEntrySize1) != kEntrySize1) throw HException("cannot write table of contents");
    } else {
      if (name.size() > 65535) throw HException("filename too long");
      unsigned char entry[kEntryHead2];
      putLittle16(entry, uint16_t(name.size()));
      putLittle32(entry + 2, uint32_t(offset));
      putLittle32(entry + 6, file.size);
      putLittle32(entry + 10, file.mode);
      putLittle32(entry + 14, secondsOf(file.time));
      if (stream.write(entry, kEntryHead2) != kEntryHead2) throw HException("cannot write table of contents");
      if (stream.write(name.constData(), uint32_t(name.size())) != uint32_t(name.size()))
        throw HException("cannot write table of contents filename");
    }
    offset += file.size;
  }
}

void PackageArchive::writeContents(PackageArchiveIOFileInterface& stream) {
  for (const auto& file : data_.files) {
    QByteArray bytes = fileContents(file.get());
    // The table already promised this size: a disk file that changed since it was
    // added would shift every later entry.
    if (uint64_t(bytes.size()) != file->size) throw HException("cannot read file " + file->name.toStdString());
    if (stream.write(bytes.constData(), file->size) != file->size) throw HException("cannot write file");
  }
}

void PackageArchive::save(const QString& path, int level) {
  if (level < 0) level = 7;
  if (level > 9) level = 9;
  if (data_.version != 1 && data_.version != 2) throw HException("unsupported package file version");
  const uint32_t count = uint32_t(data_.files.size());

  unsigned char header[12] = {};
  size_t headerSize = 8;
  unsigned char streamHeader[kStreamHeader2] = {};
  uint32_t streamHeaderSize = kStreamHeader2;
  if (data_.version == 2) {
    putLittle32(header, kMagic2);
    putLittle16(header + 4, uint16_t(2 | (data_.algorithm & 0xF) << 12));
    putLittle32(streamHeader, count);
  } else {
    uint64_t estimate = uint64_t(kEntrySize1 * 2) * count;  // 2080 per file
    for (const auto& file : data_.files) estimate += file->size;
    estimate += estimate / 100 + 13;
    putLittle32(header, kMagic1);
    putLittle32(header + 4, 1);
    putBig32(header + 8, uint32_t(estimate));
    headerSize = 12;
    putLittle32(streamHeader, kStreamMagic1);
    putLittle32(streamHeader + 4, count);
    streamHeaderSize = kStreamHeader1;
  }

  AtomicFileWriter writer(localPath(path));
  if (!writer.open().ok()) throw HException("cannot open output file");
  std::FILE* file = writer.stream();
  afterOpenForWriting(file);
  if (std::fwrite(header, 1, headerSize, file) != headerSize) throw HException("cannot write header");
  std::unique_ptr<PackageArchiveCompressedOutputFile> stream =
      createOutputStream(data_.version == 1 ? 0 : data_.algorithm, file, level);
  if (stream->write(streamHeader, streamHeaderSize) != streamHeaderSize) throw HException("cannot write header2");
  writeTableOfContents(*stream);
  writeContents(*stream);
  stream->close();
  stream.reset();
  if (!writer.commit().ok()) throw HException("error writing to compressed stream");
}

}  // namespace regmill
