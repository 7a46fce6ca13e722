#include "packages/package_archive_io.h"

#include <algorithm>
#include <climits>

#include "base/hexception.h"

namespace regmill {

PackageArchiveIOFile::PackageArchiveIOFile(std::FILE* file, long origin) : file_(file), origin_(origin) {}

uint32_t PackageArchiveIOFile::read(void* buffer, uint32_t size) {
  return uint32_t(std::fread(buffer, 1, size, file_));
}

uint32_t PackageArchiveIOFile::write(const void* buffer, uint32_t size) {
  return uint32_t(std::fwrite(buffer, 1, size, file_));
}

void PackageArchiveIOFile::seek(uint32_t offset) { std::fseek(file_, origin_ + long(offset), SEEK_SET); }

PackageArchiveCompressedInputFile::PackageArchiveCompressedInputFile(std::FILE* file)
    : PackageArchiveIOFile(file), streamStart_(std::ftell(file)) {}

uint32_t PackageArchiveCompressedInputFile::read(void* buffer, uint32_t size) {
  if (size < 1) return 0;
  uint32_t done = readRaw(buffer, size);
  position_ += done;
  return done;
}

void PackageArchiveCompressedInputFile::seek(uint32_t offset) {
  if (offset < position_) {
    close();
    std::fseek(file(), streamStart_, SEEK_SET);
    position_ = 0;
    open();
  }
  unsigned char dropped[kBlockSize];
  while (position_ < offset) {
    uint32_t piece = std::min<uint32_t>(kBlockSize, offset - position_);
    if (read(dropped, piece) != piece) return;  // the read that follows comes up short
  }
}

PackageArchiveCompressedOutputFile::PackageArchiveCompressedOutputFile(std::FILE* file, int level)
    : PackageArchiveIOFile(file), level_(level) {}

uint32_t PackageArchiveCompressedOutputFile::write(const void* buffer, uint32_t size) {
  if (size < 1) return 0;
  return writeRaw(buffer, size);
}

// zlib

PackageArchiveCompressedGzInputFile::PackageArchiveCompressedGzInputFile(std::FILE* file)
    : PackageArchiveCompressedInputFile(file), block_(kBlockSize) {
  open();
}

PackageArchiveCompressedGzInputFile::~PackageArchiveCompressedGzInputFile() { close(); }

void PackageArchiveCompressedGzInputFile::open() {
  stream_ = z_stream{};
  if (inflateInit(&stream_) != Z_OK) throw HException("cannot initialise inflate");
  isOpen_ = true;
  ended_ = false;
}

void PackageArchiveCompressedGzInputFile::close() {
  if (isOpen_) inflateEnd(&stream_);
  isOpen_ = false;
}

uint32_t PackageArchiveCompressedGzInputFile::readRaw(void* buffer, uint32_t size) {
  stream_.next_out = static_cast<Bytef*>(buffer);
  stream_.avail_out = size;
  while (stream_.avail_out > 0 && !ended_) {
    if (stream_.avail_in == 0) {
      size_t got = std::fread(block_.data(), 1, block_.size(), file());
      if (got == 0) throw HException("error reading stream");
      stream_.next_in = block_.data();
      stream_.avail_in = uInt(got);
    }
    int result = inflate(&stream_, Z_NO_FLUSH);
    if (result == Z_STREAM_END) ended_ = true;
    else if (result != Z_OK) throw HException("error reading from compressed stream");
  }
  return size - stream_.avail_out;
}

PackageArchiveCompressedGzOutputFile::PackageArchiveCompressedGzOutputFile(std::FILE* file, int level)
    : PackageArchiveCompressedOutputFile(file, level), block_(PackageArchiveCompressedInputFile::kBlockSize) {
  open();
}

PackageArchiveCompressedGzOutputFile::~PackageArchiveCompressedGzOutputFile() {
  if (isOpen_) deflateEnd(&stream_);
}

void PackageArchiveCompressedGzOutputFile::open() {
  if (deflateInit(&stream_, level()) != Z_OK) throw HException("cannot initialise deflate");
  isOpen_ = true;
}

void PackageArchiveCompressedGzOutputFile::writeBlock(size_t size) {
  if (size > 0 && std::fwrite(block_.data(), 1, size, file()) != size)
    throw HException("error writing to compressed stream");
}

uint32_t PackageArchiveCompressedGzOutputFile::writeRaw(const void* buffer, uint32_t size) {
  stream_.next_in = static_cast<Bytef*>(const_cast<void*>(buffer));
  stream_.avail_in = size;
  while (stream_.avail_in > 0) {
    stream_.next_out = block_.data();
    stream_.avail_out = uInt(block_.size());
    if (deflate(&stream_, Z_NO_FLUSH) == Z_STREAM_ERROR) throw HException("error compressing stream");
    writeBlock(block_.size() - stream_.avail_out);
  }
  return size;
}

void PackageArchiveCompressedGzOutputFile::close() {
  if (!isOpen_) return;
  int result = Z_OK;
  while (result == Z_OK || result == Z_BUF_ERROR) {
    stream_.next_out = block_.data();
    stream_.avail_out = uInt(block_.size());
    result = deflate(&stream_, Z_FINISH);
    writeBlock(block_.size() - stream_.avail_out);
  }
  isOpen_ = false;
  if (deflateEnd(&stream_) != Z_OK || result != Z_STREAM_END) throw HException("error compressing stream");
}

// bzip2

PackageArchiveCompressedBzInputFile::PackageArchiveCompressedBzInputFile(std::FILE* file)
    : PackageArchiveCompressedInputFile(file) {
  open();
}

PackageArchiveCompressedBzInputFile::~PackageArchiveCompressedBzInputFile() {
  int error = BZ_OK;
  if (stream_ != nullptr) BZ2_bzReadClose(&error, stream_);
}

void PackageArchiveCompressedBzInputFile::open() {
  int error = BZ_OK;
  stream_ = BZ2_bzReadOpen(&error, file(), 0, 0, nullptr, 0);
  if (error != BZ_OK) {
    stream_ = nullptr;
    throw HException("cannot initialise inflate");
  }
  ended_ = false;
}

void PackageArchiveCompressedBzInputFile::close() {
  int error = BZ_OK;
  BZFILE* stream = stream_;
  stream_ = nullptr;
  if (stream != nullptr) BZ2_bzReadClose(&error, stream);
  if (error != BZ_OK) throw HException("error decompressing stream");
}

uint32_t PackageArchiveCompressedBzInputFile::readRaw(void* buffer, uint32_t size) {
  uint32_t done = 0;
  while (done < size && !ended_ && stream_ != nullptr) {
    int error = BZ_OK;
    int piece = int(std::min<uint32_t>(size - done, INT_MAX));
    int got = BZ2_bzRead(&error, stream_, static_cast<char*>(buffer) + done, piece);
    if (error != BZ_OK && error != BZ_STREAM_END) throw HException("error reading from compressed stream");
    done += uint32_t(got);
    ended_ = error == BZ_STREAM_END;
  }
  return done;
}

PackageArchiveCompressedBzOutputFile::PackageArchiveCompressedBzOutputFile(std::FILE* file, int level)
    : PackageArchiveCompressedOutputFile(file, level) {
  open();
}

PackageArchiveCompressedBzOutputFile::~PackageArchiveCompressedBzOutputFile() {
  int error = BZ_OK;
  if (stream_ != nullptr) BZ2_bzWriteClose(&error, stream_, 1, nullptr, nullptr);
}

void PackageArchiveCompressedBzOutputFile::open() {
  int error = BZ_OK;
  stream_ = BZ2_bzWriteOpen(&error, file(), level(), 0, 30);
  if (error != BZ_OK) {
    stream_ = nullptr;
    throw HException("cannot initialise deflate");
  }
}

uint32_t PackageArchiveCompressedBzOutputFile::writeRaw(const void* buffer, uint32_t size) {
  uint32_t done = 0;
  while (done < size) {
    int error = BZ_OK;
    int piece = int(std::min<uint32_t>(size - done, INT_MAX));
    BZ2_bzWrite(&error, stream_, const_cast<char*>(static_cast<const char*>(buffer)) + done, piece);
    if (error != BZ_OK) throw HException("error writing to compressed stream");
    done += uint32_t(piece);
  }
  return size;
}

void PackageArchiveCompressedBzOutputFile::close() {
  if (stream_ == nullptr) return;
  int error = BZ_OK;
  BZFILE* stream = stream_;
  stream_ = nullptr;
  BZ2_bzWriteClose(&error, stream, 0, nullptr, nullptr);
  if (error != BZ_OK) throw HException("error compressing stream");
}

}  // namespace regmill
