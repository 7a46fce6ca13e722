#include "editor/binary_edit_model.h"

#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <algorithm>

#include "base/log.h"
#include "base/text.h"
#include "editor/save_checks.h"

namespace regmill {

namespace {

bool gInsertMode = false;

// Switches fixed length on for the time of a search or a go to, so that a caret
// behind the end can't extend the file.
class FixedLengthForNow {
 public:
  explicit FixedLengthForNow(BinaryEditInterface& file) : file_(file), was_(file.isFixedLength()) {
    file_.setFixedLength(true);
  }
  ~FixedLengthForNow() { file_.setFixedLength(was_); }

 private:
  BinaryEditInterface& file_;
  bool was_;
};

}  // namespace

bool BinaryEdit::insertMode() { return gInsertMode; }
void BinaryEdit::toggleOverwrite() { gInsertMode = !gInsertMode; }

BinaryEdit::BinaryEdit(std::unique_ptr<BinaryEditInterface> file, SaveQuestions* questions)
    : file_(std::move(file)), questions_(questions) {}

QByteArray BinaryEdit::bytes() const {
  QByteArray result;
  for (uint32_t address = 0; address < file_->size(); ++address) result.append(char(byteAt(address)));
  return result;
}

QString BinaryEdit::statusText() const {
  return QString::asprintf("At %08X", unsigned(caret_));
}

uint8_t BinaryEdit::byteAt(uint32_t address) const {
  uint8_t value = 0;
  bool valid = false;
  file_->byteAt(address, value, valid);
  return value;
}

void BinaryEdit::setData(const QByteArray& bytes) {
  file_->setData(bytes);
  caret_ = anchor_ = top_ = 0;
  highDigit_ = true;
}

void BinaryEdit::setCaret(uint32_t position) {
  if (file_->size() == 0) {
    file_->setData(QByteArray(1, '\0'));  // not undoable: there was nothing to keep
    top_ = 0;
  }
  // A position this close to the top of the 32-bit range is a move before address 0
  // that wrapped round.
  if (position > UINT32_MAX - (16 + 16 * rows_)) return;
  caret_ = position;
  if (caret_ < top_)
    top_ = caret_ & ~15u;
  else if (caret_ >= top_ + 16 * rows_)
    top_ = (caret_ - 16 * rows_ + 16) & ~15u;
  const uint32_t size = file_->size();
  if (file_->isFixedLength()) {
    if (caret_ >= size) {
      caret_ = size - 1;
      const uint32_t lastRow = caret_ & ~15u;
      top_ = size <= 16 * rows_ ? 0 : lastRow - (rows_ - 1) * 16;
    }
  } else if (caret_ >= size) {
    record(BinaryEditAction::Extend, caret_, size, caret_ + 1);
    file_->resize(caret_ + 1);
  }
  anchor_ = position;
}

void BinaryEdit::charLeft() {
  if (!highDigit_) {
    highDigit_ = true;
  } else if (caret_ != 0) {
    setCaret(caret_ - 1);
    highDigit_ = false;
  }
}

void BinaryEdit::charLeftExtend() {
  const uint32_t anchor = anchor_;
  if (caret_ != 0) setCaret(caret_ - 1);
  anchor_ = anchor;
}

void BinaryEdit::charRight() {
  if (highDigit_) {
    highDigit_ = false;
  } else if (caret_ + 1 < file_->size()) {
    setCaret(caret_ + 1);
    highDigit_ = true;
  }
}

// The mirror of charLeftExtend: one byte on, the digit unchanged.
void BinaryEdit::charRightExtend() {
  const uint32_t anchor = anchor_;
  if (caret_ + 1 < file_->size()) setCaret(caret_ + 1);
  anchor_ = anchor;
}

void BinaryEdit::lineStart() {
  setCaret(caret_ & ~15u);
  highDigit_ = true;
}

void BinaryEdit::lineEnd() {
  setCaret(caret_ | 15u);
  highDigit_ = false;
}

void BinaryEdit::lineUp() {
  if (caret_ >= 16) setCaret(caret_ - 16);
}

void BinaryEdit::lineDown() {
  if (uint64_t(caret_) + 16 < file_->size()) setCaret(caret_ + 16);
}

void BinaryEdit::pageDown() {
  if (file_->size() == 0) return setCaret(0);
  const uint32_t rowInWindow = caret_ >= top_ ? (caret_ - top_) / 16 : 0;
  const uint32_t target = uint32_t(std::min<uint64_t>(uint64_t(caret_) + rows_ * 16, file_->size() - 1));
  setCaret(target);
  const uint32_t row = target & ~15u;
  top_ = row >= rowInWindow * 16 ? row - rowInWindow * 16 : 0;
}

void BinaryEdit::documentStart() {
  setCaret(0);
  highDigit_ = true;
}

void BinaryEdit::documentEnd() {
  setCaret(file_->size() == 0 ? 0 : file_->size() - 1);
  highDigit_ = false;
}

void BinaryEdit::scrollWindow(int val) {
  const int64_t lastTop = int64_t(file_->size() / 16) * 16;
  top_ = uint32_t(std::clamp<int64_t>(int64_t(top_) + int64_t(val) * 16, 0, lastTop));
}

void BinaryEdit::setTopLine(int line) { scrollWindow(line - int(top_ / 16)); }

void BinaryEdit::selectAll() {
  setCaret(file_->size());
  anchor_ = 0;
}

void BinaryEdit::record(int32_t kind, uint32_t address, uint32_t oldValue, uint32_t newValue, int32_t flag) {
  const BinaryEditAction action{kind, address, oldValue, newValue, flag};
  if (actionIndex_ == -1) {
    actions_.assign(1, action);
    actionIndex_ = 0;
    return;
  }
  // A new action throws away all that could be redone.
  actions_.resize(size_t(actionIndex_) + 2);
  actions_[size_t(actionIndex_) + 1] = action;
  ++actionIndex_;
}

void BinaryEdit::clearActions() {
  actions_.clear();
  actionIndex_ = -1;
}

void BinaryEdit::writeByte(uint8_t value) {
  if (gInsertMode && !file_->isFixedLength()) {
    if (file_->insertByte(caret_, value)) record(BinaryEditAction::Insert, caret_, 0, value);
  } else {
    const uint8_t old = byteAt(caret_);
    if (file_->setByte(caret_, value)) record(BinaryEditAction::Overwrite, caret_, old, value);
  }
}

bool BinaryEdit::type(QChar character) {
  if (file_->isReadOnly()) return false;
  if (file_->size() == 0) setCaret(caret_);
  if (textInput_) {
    if (character.unicode() == 0 || character.unicode() >= 256) return false;
    writeByte(uint8_t(character.unicode()));
    setCaret(caret_ + 1);
    return true;
  }
  const int digit = character.unicode() < 128 && isHexDigitByte(uint8_t(character.unicode()))
                        ? digitValue(uint8_t(character.unicode()))
                        : -1;
  if (digit < 0) return false;
  const uint8_t old = byteAt(caret_);
  if (highDigit_) {
    if (gInsertMode && !file_->isFixedLength()) {
      if (file_->insertByte(caret_, uint8_t(digit * 16))) record(BinaryEditAction::Insert, caret_, 0, uint32_t(digit * 16));
    } else if (file_->setByte(caret_, uint8_t(digit * 16 + (old & 15)))) {
      record(BinaryEditAction::Overwrite, caret_, old, uint32_t(digit * 16 + (old & 15)));
    }
  } else if (file_->setByte(caret_, uint8_t((old & 0xF0) + digit))) {
    record(BinaryEditAction::Overwrite, caret_, old, uint32_t((old & 0xF0) + digit));
  }
  // On the low digit of the last byte the caret stays.
  if (!highDigit_ && caret_ + 1 >= file_->size()) return true;
  const bool wasLow = !highDigit_;
  highDigit_ = !highDigit_;
  if (wasLow) setCaret(caret_ + 1);
  return true;
}

void BinaryEdit::del() {
  if (file_->isReadOnly() || caret_ >= file_->size()) return;
  const uint8_t old = byteAt(caret_);
  if (file_->isFixedLength()) {
    if (file_->setByte(caret_, 0)) record(BinaryEditAction::Overwrite, caret_, old, 0);
    setCaret(caret_ + 1);
  } else if (file_->deleteByte(caret_)) {
    record(BinaryEditAction::Delete, caret_, old, 0);
    keepCaretInFile();
  }
}

void BinaryEdit::deleteBack() {
  if (file_->isReadOnly() || caret_ == 0) return;
  --caret_;
  const uint8_t old = byteAt(caret_);
  if (file_->isFixedLength()) {
    if (file_->setByte(caret_, 0)) record(BinaryEditAction::Overwrite, caret_, old, 0);
  } else if (file_->deleteByte(caret_)) {
    record(BinaryEditAction::Delete, caret_, old, 0);
    keepCaretInFile();
  }
  anchor_ = caret_;
}

void BinaryEdit::keepCaretInFile() {
  if (caret_ >= file_->size() && caret_ > 0) caret_ = file_->size() == 0 ? 0 : file_->size() - 1;
  anchor_ = caret_;
}

void BinaryEdit::paste(const QByteArray& bytes) {
  if (bytes.isEmpty() || file_->isReadOnly()) return;
  uint32_t at = caret_;
  for (char byte : bytes) {
    if (file_->isFixedLength()) {
      const uint8_t old = byteAt(at);
      if (!file_->setByte(at, uint8_t(byte))) break;
      record(BinaryEditAction::Overwrite, at, old, uint8_t(byte), 0);
    } else {
      if (!file_->insertByte(at, uint8_t(byte))) break;
      record(BinaryEditAction::Insert, at, 0, uint8_t(byte), 0);
    }
    ++at;
  }
  setCaret(at);
}

void BinaryEdit::undo() {
  if (actionIndex_ < 0) return;
  const BinaryEditAction& action = actions_[size_t(actionIndex_)];
  switch (action.kind) {
    case BinaryEditAction::Insert: file_->deleteByte(action.address); break;
    case BinaryEditAction::Overwrite: file_->setByte(action.address, uint8_t(action.oldValue)); break;
    case BinaryEditAction::Delete: file_->insertByte(action.address, uint8_t(action.oldValue)); break;
    case BinaryEditAction::Extend: file_->resize(action.oldValue); break;
  }
  caret_ = action.kind == BinaryEditAction::Extend ? action.oldValue - 1 : action.address;
  --actionIndex_;
  keepCaretInFile();
}

void BinaryEdit::redo() {
  if (actionIndex_ + 1 >= int32_t(actions_.size())) return;
  const BinaryEditAction& action = actions_[size_t(++actionIndex_)];
  switch (action.kind) {
    case BinaryEditAction::Insert: file_->insertByte(action.address, uint8_t(action.newValue)); break;
    case BinaryEditAction::Overwrite: file_->setByte(action.address, uint8_t(action.newValue)); break;
    case BinaryEditAction::Delete: file_->deleteByte(action.address); break;
    case BinaryEditAction::Extend: file_->resize(action.newValue); break;
  }
  caret_ = action.kind == BinaryEditAction::Extend ? action.newValue - 1 : action.address;
  keepCaretInFile();
}

void BinaryEdit::findNextValue(uint8_t value) {
  FixedLengthForNow fixed(*file_);
  searchText_ = QString(QChar(char16_t(value)));
  int32_t hit = file_->findByteFrom(value, caret_ + 1);
  if (hit < 0) {
    hit = file_->findByte(value);
    if (uint32_t(hit) >= caret_) hit = -1;  // back at the caret: no hit
  }
  if (hit >= 0) setCaret(uint32_t(hit));
}

void BinaryEdit::findNextValue(const QString& text) {
  if (!text.isNull()) searchText_ = text;
  if (searchText_.isEmpty() || searchText_[0].unicode() >= 256) return;
  const uint8_t first = uint8_t(searchText_[0].unicode());
  auto matchesAt = [&](uint32_t at) {
    for (qsizetype offset = 1; offset < searchText_.size(); ++offset) {
      uint8_t value = 0;
      bool valid = false;
      file_->byteAt(at + uint32_t(offset), value, valid);
      if (!valid || searchText_[offset].unicode() != value) return false;
    }
    return true;
  };
  // One full round: from behind the caret to the end, then from 0 up to the caret.
  uint32_t from = caret_ + 1;
  for (bool wrapped = false;;) {
    const int32_t candidate = file_->findByteFrom(first, from);
    if (candidate < 0 || (wrapped && uint32_t(candidate) > caret_)) {
      if (wrapped) return;
      wrapped = true;
      from = 0;
      continue;
    }
    if (matchesAt(uint32_t(candidate))) {
      FixedLengthForNow fixed(*file_);
      setCaret(uint32_t(candidate));
      return;
    }
    from = uint32_t(candidate) + 1;
  }
}

BinaryFindRequest parseFindInput(const QString& field, bool hexadecimal) {
  BinaryFindRequest request;
  if (!hexadecimal) {
    if (field.size() == 1 && field[0].unicode() < 256) {
      request.kind = BinaryFindRequest::Kind::Byte;
      request.value = uint8_t(field[0].unicode());
    } else if (!field.isEmpty()) {
      request.kind = BinaryFindRequest::Kind::Text;
      request.text = field;
    }
    return request;
  }
  QString digits = field;
  digits.remove(QRegularExpression(QStringLiteral("\\s")));
  if (digits.isEmpty()) return request;
  const bool allHex = std::all_of(digits.begin(), digits.end(), [](QChar c) {
    return c.unicode() < 128 && isHexDigitByte(uint8_t(c.unicode()));
  });
  if (digits.size() > 2 && digits.size() % 2 != 0) {
    request.kind = BinaryFindRequest::Kind::Warning;
    request.warning = QStringLiteral("Please enter an even length argument.");
  } else if (!allHex) {
    request.kind = BinaryFindRequest::Kind::Warning;
    request.warning = QStringLiteral("Invalid argument.");
    request.clearField = true;
  } else if (digits.size() <= 2) {
    request.kind = BinaryFindRequest::Kind::Byte;
    request.value = uint8_t(digits.toUInt(nullptr, 16));
  } else {
    request.kind = BinaryFindRequest::Kind::Text;
    for (qsizetype at = 0; at < digits.size(); at += 2)
      request.text.append(QChar(char16_t(digits.mid(at, 2).toUInt(nullptr, 16))));
  }
  return request;
}

BinaryFindRequest BinaryEdit::find(const QString& field, bool hexadecimal) {
  BinaryFindRequest request = parseFindInput(field, hexadecimal);
  if (request.kind == BinaryFindRequest::Kind::Byte) findNextValue(request.value);
  if (request.kind == BinaryFindRequest::Kind::Text) findNextValue(request.text);
  if (request.kind == BinaryFindRequest::Kind::Warning && questions_ != nullptr)
    questions_->warn(QStringLiteral("Input Warning"), QStringLiteral("Find"), request.warning);
  return request;
}

void BinaryEdit::goToAddressWithoutExtending(uint32_t address) {
  FixedLengthForNow fixed(*file_);
  setCaret(address);
}

void BinaryEdit::findAddress(uint32_t address) {
  if (file_->isFixedLength())
    setCaret(address);
  else
    goToAddressWithoutExtending(address);
}

void BinaryEdit::gotoLine(uint32_t line) {
  const uint32_t lines = file_->size() == 0 ? 1 : (file_->size() - 1) / 16 + 1;
  top_ = (std::clamp<uint32_t>(line, 1, lines) - 1) * 16;
}

void BinaryEdit::bookmarkToggle() {
  auto found = std::find(bookmarks_.begin(), bookmarks_.end(), caret_);
  if (found != bookmarks_.end())
    bookmarks_.erase(found);
  else
    bookmarks_.push_back(caret_);
}

void BinaryEdit::bookmarkNext() {
  if (bookmarks_.empty()) return;
  uint32_t best = *std::min_element(bookmarks_.begin(), bookmarks_.end());
  bool above = false;
  for (uint32_t mark : bookmarks_)
    if (mark > caret_ && (!above || mark < best)) {
      best = mark;
      above = true;
    }
  goToAddressWithoutExtending(best);
}

void BinaryEdit::bookmarkPrev() {
  if (bookmarks_.empty()) return;
  uint32_t best = *std::max_element(bookmarks_.begin(), bookmarks_.end());
  bool below = false;
  for (uint32_t mark : bookmarks_)
    if (mark < caret_ && (!below || mark > best)) {
      best = mark;
      below = true;
    }
  goToAddressWithoutExtending(best);
}

void BinaryEdit::bookmarkFirst() {
  if (!bookmarks_.empty()) goToAddressWithoutExtending(*std::min_element(bookmarks_.begin(), bookmarks_.end()));
}

void BinaryEdit::bookmarkLast() {
  if (!bookmarks_.empty()) goToAddressWithoutExtending(*std::max_element(bookmarks_.begin(), bookmarks_.end()));
}

void BinaryEdit::toggleReadOnly() {
  file_->toggleReadOnly();
  clearActions();
}

void BinaryEdit::toggleExtendFile() {
  file_->setFixedLength(!file_->isFixedLength());
  clearActions();
}

bool BinaryEdit::save() {
  if (file_->path().isEmpty() || !file_->save()) {
    if (questions_ != nullptr)
      questions_->warn(QStringLiteral("Save Warning"), QStringLiteral("Save"),
                       QStringLiteral("Can not save file!\nTry Save As."));
    return false;
  }
  clearActions();
  return true;
}

bool BinaryEdit::saveAs(const QString& path) {
  if (!file_->saveAs(path)) {
    if (questions_ != nullptr)
      questions_->warn(QStringLiteral("Save Warning"), QStringLiteral("Save"), QStringLiteral("Can not save file!"));
    return false;
  }
  clearActions();
  return true;
}

bool BinaryEdit::open(const QString& path) {
  auto file = std::make_unique<FileBinaryEdit>(path, questions_);
  if (!QFileInfo(path).isFile() || !file->readable()) {
    if (logMask() & kLogErrors)
      logMessage("error", kLogLineFeed, "Can't open %s for reading", QFile::encodeName(path).constData());
    return false;
  }
  if (file->size() == 0) return false;
  file_ = std::move(file);
  caret_ = anchor_ = top_ = 0;
  textInput_ = false;
  highDigit_ = true;
  clearActions();
  return true;
}

}  // namespace regmill
