#include "editor/file_binary_edit.h"

#include <QFile>
#include <QFileInfo>
#include <cstring>

#include "base/atomic_file.h"
#include "base/input_file.h"
#include "base/log.h"
#include "editor/save_checks.h"

namespace regmill {

bool pathIsWritable(const QString& path) {
  const QFileInfo file(path);
  if (file.exists()) return file.isWritable() && !file.isDir();
  return QFileInfo(file.absolutePath()).isWritable();
}

FileBinaryEdit::FileBinaryEdit(const QString& path, SaveQuestions* questions) : path_(path), questions_(questions) {
  if (path.isEmpty()) return;
  readOnly_ = fixedLength_ = !pathIsWritable(path);
  if (!QFileInfo::exists(path)) return;
  // The caret and the undo records count bytes in 32 bits: that bounds the file too.
  Expected<std::string> contents = readInputFile(QFile::encodeName(path).toStdString(), kInputSizeLimit);
  readable_ = contents.ok();
  if (readable_) bytes_ = QByteArray(contents->data(), qsizetype(contents->size()));
}

void FileBinaryEdit::byteAt(uint32_t index, uint8_t& value, bool& valid) const {
  valid = index < size();
  value = valid ? uint8_t(bytes_[qsizetype(index)]) : 0;
}

bool FileBinaryEdit::setByte(uint32_t index, uint8_t value) {
  if (readOnly_ || index >= size()) return false;
  bytes_[qsizetype(index)] = char(value);
  modified_ = true;
  return true;
}

bool FileBinaryEdit::insertByte(uint32_t index, uint8_t value) {
  if (fixedLength_ || index == UINT32_MAX) return false;
  if (index >= size())
    bytes_.resize(qsizetype(index) + 1, '\0');
  else
    bytes_.insert(qsizetype(index), char(value));
  bytes_[qsizetype(index)] = char(value);
  modified_ = true;
  return true;
}

bool FileBinaryEdit::deleteByte(uint32_t index) {
  if (index >= size()) return false;
  if (fixedLength_)
    bytes_[qsizetype(index)] = '\0';  // the file keeps its length
  else
    bytes_.remove(qsizetype(index), 1);
  modified_ = true;
  return true;
}

bool FileBinaryEdit::resize(uint32_t size) {
  if (fixedLength_) return false;
  bytes_.resize(qsizetype(size), '\0');
  modified_ = true;
  return true;
}

int32_t FileBinaryEdit::findByteFrom(uint8_t value, uint32_t from) const {
  if (from >= size()) return -1;
  const void* hit = std::memchr(bytes_.constData() + from, value, size() - from);
  return hit == nullptr ? -1 : int32_t(static_cast<const char*>(hit) - bytes_.constData());
}

bool FileBinaryEdit::toggleReadOnly() {
  setReadOnly(!readOnly_);
  return readOnly_;
}

void FileBinaryEdit::setReadOnly(bool readOnly) {
  readOnly_ = readOnly;
  if (readOnly) fixedLength_ = true;
}

bool FileBinaryEdit::save() {
  if (readOnly_ || !pathIsWritable(path_)) return false;
  return writeTo(path_);
}

bool FileBinaryEdit::saveAs(const QString& path) {
  if (questions_ == nullptr || !confirmWriteTarget(path, *questions_)) return false;
  if (!pathIsWritable(path) || !writeTo(path)) return false;
  path_ = path;
  readOnly_ = false;
  return true;
}

// The new bytes are complete in a temporary file before the backups turn; a failure
// after that puts the first backup back, so the file's old bytes are never lost.
bool FileBinaryEdit::writeTo(const QString& path) {
  const std::string target = QFile::encodeName(path).toStdString();
  AtomicFileWriter writer(target);
  if (!writer.open().ok()) {
    if (logMask() & kLogErrors) logMessage("error", kLogLineFeed, "Can't open %s for writing", target.c_str());
    return false;
  }
  if (std::fwrite(bytes_.constData(), 1, size_t(bytes_.size()), writer.stream()) != size_t(bytes_.size())) return false;
  const bool existed = QFileInfo::exists(path);
  rotateBackups(path, existed ? backupCount() : 0);
  if (!writer.commit().ok()) {
    if (existed && backupCount() > 0 && !QFileInfo::exists(path)) QFile::rename(backupName(path, 1), path);
    return false;
  }
  modified_ = false;
  return true;
}

}  // namespace regmill
