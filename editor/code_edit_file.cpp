// Loading and saving a document in the form its file had.
#include <sys/file.h>

#include <QFile>
#include <QFileInfo>

#include "base/atomic_file.h"
#include "base/input_file.h"
#include "editor/code_edit.h"
#include "editor/code_file.h"

namespace regmill {

bool CodeEdit::load(const QString& path) {
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly) || file.size() > qint64(kInputSizeLimit)) {
    showMessage(QStringLiteral("Can't read file"), QStringLiteral("Can't open %1 for reading").arg(path));
    return false;
  }
  // A shared lock: other readers may look, a writer holding the file keeps us out.
  if (::flock(file.handle(), LOCK_SH | LOCK_NB) != 0) {
    showMessage(QStringLiteral("Can't lock file"), QStringLiteral("Can't lock %1 for reading").arg(path));
    return false;
  }
  const QFileInfo info(path);
  path_ = path;
  fileTime_ = info.lastModified();
  editState_ = info.isWritable() ? Editable : AskToEdit;
  clearUndo();
  const QByteArray bytes = file.readAll();
  DecodedFile decoded = decodeFile(bytes, encodingName_, settings_);
  encodingName_ = decoded.encoding;
  byteOrderMark_ = decoded.byteOrderMark;
  lineEnding_ = decoded.lineEnding;
  lossyDecoding_ = decoded.lossy;
  if (decoded.inconsistentLineEndings) {
    showMessage(QStringLiteral("Inconsistent line endings"),
                QStringLiteral("This file %1 has inconsistent line endings; all line endings have been changed to "
                               "native line endings")
                    .arg(path));
    lineEnding_ = settings_.defaultLineEnding;
  } else if (lineEnding_ == UnknownEnding) {
    lineEnding_ = settings_.defaultLineEnding;
  }
  buffer_.assign(std::move(decoded.lines));
  buffer_.setModified(false);
  caret_ = {0, 0};
  clearSelection();
  fileSize_ = bytes.size();
  return true;
}

QByteArray CodeEdit::encodedText() const {
  return encodeFile(buffer_, encodingName_, byteOrderMark_, lineEnding_, settings_);
}

Status CodeEdit::save(const QString& path) {
  const QByteArray bytes = encodedText();
  Status written = writeFileAtomically(path.toStdString(), [&bytes](std::FILE* stream) {
    std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stream);
  });
  if (!written.ok()) return written;
  path_ = path;
  fileSize_ = bytes.size();
  buffer_.setModified(false);
  return Status();
}

}  // namespace regmill
