// The bytes a binary editor works on. BinaryEditInterface is all the editor knows of
// them; FileBinaryEdit holds a whole file in one byte array, with its path and the
// size rules: read-only (which is always fixed length too), fixed length, extendable.
#pragma once
#include <QByteArray>
#include <QString>
#include <cstdint>

namespace regmill {

class SaveQuestions;

class BinaryEditInterface {
 public:
  virtual ~BinaryEditInterface() = default;

  virtual uint32_t size() const = 0;
  // Out of range: value 0 and valid false.
  virtual void byteAt(uint32_t index, uint8_t& value, bool& valid) const = 0;
  virtual bool setByte(uint32_t index, uint8_t value) = 0;
  virtual bool insertByte(uint32_t index, uint8_t value) = 0;
  virtual bool deleteByte(uint32_t index) = 0;
  virtual bool save() = 0;
  virtual bool saveAs(const QString& path) = 0;
  virtual QString path() const = 0;
  virtual void setPath(const QString& path) = 0;
  virtual bool toggleReadOnly() = 0;
  virtual void setReadOnly(bool readOnly) = 0;
  virtual bool isReadOnly() const = 0;
  virtual void setFixedLength(bool fixedLength) = 0;
  virtual bool isFixedLength() const = 0;
  virtual bool resize(uint32_t size) = 0;
  virtual int32_t findByte(uint8_t value) const = 0;
  virtual int32_t findByteFrom(uint8_t value, uint32_t from) const = 0;
  virtual void setData(const QByteArray& bytes) = 0;
  virtual bool isModified() const = 0;
  virtual void clearModified() = 0;
};

class FileBinaryEdit : public BinaryEditInterface {
 public:
  // An empty path gives an empty, writable array. Otherwise a file that isn't
  // writable starts read-only, and an existing file is read whole.
  // `questions` answers the check before saveAs writes and must outlive this object;
  // without it saveAs refuses, as no one could be asked.
  FileBinaryEdit(const QString& path, SaveQuestions* questions);

  uint32_t size() const override { return uint32_t(bytes_.size()); }
  void byteAt(uint32_t index, uint8_t& value, bool& valid) const override;
  bool setByte(uint32_t index, uint8_t value) override;
  bool insertByte(uint32_t index, uint8_t value) override;
  bool deleteByte(uint32_t index) override;
  // False when read-only or the path isn't writable. Keeps the backups, then writes
  // the whole array; true when all of it went out.
  bool save() override;
  // The check before writing, then as save(); on success takes the path and is no
  // longer read-only.
  bool saveAs(const QString& path) override;
  QString path() const override { return path_; }
  void setPath(const QString& path) override { path_ = path; }
  bool toggleReadOnly() override;
  void setReadOnly(bool readOnly) override;
  bool isReadOnly() const override { return readOnly_; }
  void setFixedLength(bool fixedLength) override { fixedLength_ = fixedLength || readOnly_; }
  bool isFixedLength() const override { return fixedLength_; }
  bool resize(uint32_t size) override;
  int32_t findByte(uint8_t value) const override { return findByteFrom(value, 0); }
  int32_t findByteFrom(uint8_t value, uint32_t from) const override;
  void setData(const QByteArray& bytes) override { bytes_ = bytes; }
  bool isModified() const override { return modified_; }
  void clearModified() override { modified_ = false; }

  // Whether the file at the path could be read (a missing file counts as empty).
  bool readable() const { return readable_; }

 private:
  bool writeTo(const QString& path);

  QByteArray bytes_;
  QString path_;
  SaveQuestions* questions_;
  bool readOnly_ = false;
  bool fixedLength_ = false;
  bool modified_ = false;
  bool readable_ = true;
};

// Whether a file may be written at the path: an existing file that is writable, or a
// missing one in a writable folder.
bool pathIsWritable(const QString& path);

}  // namespace regmill
