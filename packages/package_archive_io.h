// The streams a package archive is read from and written to: a plain stream over a
// file handle, and the zlib and bzip2 forms that compress everything behind the
// archive's short plain header. Every failure throws HException with its text.
#pragma once
#include <bzlib.h>
#include <zlib.h>

#include <cstdint>
#include <cstdio>
#include <vector>

namespace regmill {

class PackageArchiveIOFileInterface {
 public:
  virtual ~PackageArchiveIOFileInterface() = default;
  // Both give the number of bytes done.
  virtual uint32_t read(void* buffer, uint32_t size) = 0;
  virtual uint32_t write(const void* buffer, uint32_t size) = 0;
  virtual void seek(uint32_t offset) = 0;
};

// The plain stream over a file handle. `origin` is where the stream starts in the
// file, so that a raw archive behind other bytes still seeks right. The handle
// belongs to whoever opened it (the archive, or the atomic writer of a save), which
// closes it after the stream is gone, so no stream can ever close it twice.
class PackageArchiveIOFile : public PackageArchiveIOFileInterface {
 public:
  explicit PackageArchiveIOFile(std::FILE* file, long origin = 0);
  PackageArchiveIOFile(const PackageArchiveIOFile&) = delete;
  PackageArchiveIOFile& operator=(const PackageArchiveIOFile&) = delete;

  uint32_t read(void* buffer, uint32_t size) override;
  uint32_t write(const void* buffer, uint32_t size) override;
  void seek(uint32_t offset) override;

 protected:
  std::FILE* file() const { return file_; }

 private:
  std::FILE* file_;
  long origin_;
};

// A decompressing reader. Seeking ahead reads and drops; seeking back starts the
// decompression again from the stream's start, so readers go in table order.
class PackageArchiveCompressedInputFile : public PackageArchiveIOFile {
 public:
  static constexpr uint32_t kBlockSize = 16384;

  // Takes the file's current position as the start of the compressed stream.
  explicit PackageArchiveCompressedInputFile(std::FILE* file);

  uint32_t read(void* buffer, uint32_t size) override;
  void seek(uint32_t offset) override;
  uint32_t position() const { return position_; }

 protected:
  virtual void open() = 0;
  virtual void close() = 0;
  virtual uint32_t readRaw(void* buffer, uint32_t size) = 0;

 private:
  long streamStart_;
  uint32_t position_ = 0;
};

// A compressing writer. `close` ends the compressed
// stream and must be called explicitly: the destructor only releases the
// compressor, so a stream dropped by an exception leaves an unfinished file that the
// caller discards.
class PackageArchiveCompressedOutputFile : public PackageArchiveIOFile {
 public:
  PackageArchiveCompressedOutputFile(std::FILE* file, int level);

  uint32_t write(const void* buffer, uint32_t size) override;
  virtual void close() = 0;

 protected:
  virtual uint32_t writeRaw(const void* buffer, uint32_t size) = 0;
  virtual void open() = 0;
  int level() const { return level_; }

 private:
  int level_;
};

class PackageArchiveCompressedGzInputFile : public PackageArchiveCompressedInputFile {
 public:
  explicit PackageArchiveCompressedGzInputFile(std::FILE* file);
  ~PackageArchiveCompressedGzInputFile() override;

 protected:
  void open() override;
  void close() override;
  uint32_t readRaw(void* buffer, uint32_t size) override;

 private:
  z_stream stream_{};
  bool isOpen_ = false;
  bool ended_ = false;  // the zlib stream is complete: nothing more comes
  std::vector<unsigned char> block_;
};

class PackageArchiveCompressedGzOutputFile : public PackageArchiveCompressedOutputFile {
 public:
  PackageArchiveCompressedGzOutputFile(std::FILE* file, int level);
  ~PackageArchiveCompressedGzOutputFile() override;
  void close() override;

 protected:
  uint32_t writeRaw(const void* buffer, uint32_t size) override;
  void open() override;

 private:
  void writeBlock(size_t size);

  z_stream stream_{};
  bool isOpen_ = false;
  std::vector<unsigned char> block_;
};

class PackageArchiveCompressedBzInputFile : public PackageArchiveCompressedInputFile {
 public:
  explicit PackageArchiveCompressedBzInputFile(std::FILE* file);
  ~PackageArchiveCompressedBzInputFile() override;

 protected:
  void open() override;
  void close() override;
  uint32_t readRaw(void* buffer, uint32_t size) override;

 private:
  BZFILE* stream_ = nullptr;
  bool ended_ = false;
};

class PackageArchiveCompressedBzOutputFile : public PackageArchiveCompressedOutputFile {
 public:
  // The level is bzip2's block size, 1 to 9.
  PackageArchiveCompressedBzOutputFile(std::FILE* file, int level);
  ~PackageArchiveCompressedBzOutputFile() override;
  void close() override;

 protected:
  uint32_t writeRaw(const void* buffer, uint32_t size) override;
  void open() override;

 private:
  BZFILE* stream_ = nullptr;
};

}  // namespace regmill
