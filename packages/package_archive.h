// A package archive: named files with size, mode and time in one compressed stream
// behind a short plain header, in layout 1 (zlib) or 2 (zlib or bzip2). The archive
// owns its table of contents and the open input; a new archive is written from a mix
// of entries still in the old archive, on disk and in memory. Failures throw
// HException with the archive's own texts.
#pragma once
#include <QByteArray>
#include <QDateTime>
#include <QObject>
#include <QString>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <vector>

#include "packages/package_archive_io.h"

namespace regmill {

struct PackageArchiveFile {
  enum State : uint32_t { New = 0, InArchive = 1, OnDisk = 2, InMemory = 3 };

  uint32_t state = New;
  QString name;        // relative, "/" between folders
  QString sourcePath;  // the disk file of an OnDisk entry
  uint32_t offset = 0; // in the plain stream, for an InArchive entry
  uint32_t size = 0;
  uint32_t mode = 0;   // the file's status mode masked by 0xE1FF
  QDateTime time;
  QByteArray bytes;    // the content of an InMemory entry
};

struct FileCloser {
  void operator()(std::FILE* file) const { std::fclose(file); }
};

struct PackageArchiveData {
  std::unique_ptr<std::FILE, FileCloser> inputFile;       // outlives the stream over it
  std::unique_ptr<PackageArchiveIOFileInterface> input;
  std::vector<std::unique_ptr<PackageArchiveFile>> files;  // table order, then order of adding
  std::vector<PackageArchiveFile*> sortedFiles;             // by name, when asked for
  uint32_t version = 1;
  uint32_t algorithm = 0;  // 0 zlib, 1 bzip2
};

class PackageArchive : public QObject {
  Q_OBJECT

 public:
  static constexpr uint32_t kMagic1 = 0xB231F47A;
  static constexpr uint32_t kStreamMagic1 = 0x4152C3C8;
  static constexpr uint32_t kMagic2 = 0x71F5C6B1;

  // An empty path gives an empty archive; any other is opened unsorted.
  explicit PackageArchive(const QString& path = QString());
  ~PackageArchive() override;

  // Reads the table of contents of the archive that starts at `offset` in the file.
  // With `sort`, findFile searches by name in logarithmic time.
  void open(const QString& path, uint32_t offset = 0, bool sort = false);
  bool isPackageFile(const QString& path);

  const std::vector<std::unique_ptr<PackageArchiveFile>>& files() const { return data_.files; }
  PackageArchiveFile* findFile(const QString& name) const;
  PackageArchiveFile* findPackageDescription() const;
  PackageArchiveFile* addFile(const QString& diskPath, const QString& archiveName);
  // An entry whose bytes are given rather than read from disk.
  PackageArchiveFile* addFileContents(const QString& archiveName, const QByteArray& bytes, uint32_t mode,
                                      const QDateTime& time);

  QByteArray fileContents(PackageArchiveFile* file);
  void extract(PackageArchiveFile* file, const QString& directory, bool overwrite);
  // A negative level means 7 and one above 9 means 9. The archive is written beside
  // the target and renamed over it, so saving onto the open archive loses nothing.
  void save(const QString& path, int level);

  uint32_t version() const { return data_.version; }
  void setVersion(uint32_t version) { data_.version = version; }
  uint32_t algorithm() const { return data_.algorithm; }
  void setAlgorithm(uint32_t algorithm) { data_.algorithm = algorithm; }

 protected:
  virtual std::unique_ptr<PackageArchiveCompressedInputFile> createInputStream(uint32_t algorithm,
                                                                               std::FILE* file);
  virtual std::unique_ptr<PackageArchiveCompressedOutputFile> createOutputStream(uint32_t algorithm,
                                                                                 std::FILE* file, int level);
  // A subclass may write or read bytes of its own in front of the archive.
  virtual void afterOpenForWriting(std::FILE* file) {}
  virtual void beforeReading(std::FILE* file) {}

 private:
  struct HeaderTest;
  bool runHeaderTest(const QString& path, uint32_t offset, HeaderTest& result);
  void readTableOfContents(uint32_t count, bool sort);
  void insertSorted(PackageArchiveFile* file);
  PackageArchiveFile* entryFor(const QString& name);
  void writeTableOfContents(PackageArchiveIOFileInterface& stream);
  void writeContents(PackageArchiveIOFileInterface& stream);

  PackageArchiveData data_;
};

}  // namespace regmill
