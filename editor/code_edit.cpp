#include "editor/code_edit.h"

namespace regmill {

namespace {

// Flags of beginEdit and endEdit that change the selection.
constexpr int kExtendSelection = 8;
constexpr int kClearSelection = 16;

}  // namespace

CodeEdit::CodeEdit(QObject* parent) : QObject(parent) {}
CodeEdit::~CodeEdit() = default;

QString CodeEdit::text() const { return buffer_.textOf({0, 0}, buffer_.endPosition()); }

void CodeEdit::setText(const QString& text) {
  buffer_.assign({});
  buffer_.insert({0, 0}, text);
  buffer_.setModified(false);
  caret_ = {0, 0};
  clearSelection();
  clearUndo();
}

void CodeEdit::clearUndo() {
  done_.clear();
  undone_.clear();
}

uint32_t CodeEdit::lineFlags(int index) const {
  auto record = buffer_.lineAt(index);
  return record == buffer_.end() ? 0 : record->flags;
}

void CodeEdit::setLineFlags(int index, uint32_t flags) {
  auto record = buffer_.lineAt(index);
  if (record != buffer_.end()) record->flags = flags;
}

void CodeEdit::clearLineFlagEverywhere(uint32_t flag) {
  for (CodeLine& record : buffer_) record.flags &= ~flag;
}

bool CodeEdit::canEdit() {
  if (editState_ == Editable) return true;
  if (editState_ == ReadOnly || readOnlyHandler_ == nullptr) return false;
  if (!readOnlyHandler_->makeEditable(path_)) return false;
  editState_ = Editable;
  return true;
}

void CodeEdit::showStatus(const QString& text) {
  statusMessage_ = text;
  emit statusMessageChanged(text);
}

void CodeEdit::showMessage(const QString& title, const QString& text) {
  showStatus(text);
  if (messageHandler_ != nullptr) messageHandler_->showMessage(title, text);
}

bool CodeEdit::hasSelection() const {
  if (!anchor_.isValid() || !selectionEnd_.isValid()) return false;
  if (selectionMode_ == SelectionMode::Block) return blockAnchorColumn_ != blockEndColumn_;
  return true;
}

void CodeEdit::setSelection(CodeBufferPosition anchor, CodeBufferPosition end, SelectionMode mode) {
  anchor_ = anchor;
  selectionEnd_ = end;
  selectionMode_ = mode;
  blockAnchorColumn_ = anchor.isValid() ? screenColumn(anchor.line, anchor.column) : -1;
  blockEndColumn_ = end.isValid() ? screenColumn(end.line, end.column) : -1;
}

void CodeEdit::clearSelection() { setSelection({}, {}, selectionMode_); }

std::pair<CodeBufferPosition, CodeBufferPosition> CodeEdit::wordAt(CodeBufferPosition position) const {
  const QString text = buffer_.line(position.line);
  int column = std::clamp(position.column, 0, int(text.size()));
  if (column == text.size() || !isWordCharacter(text[column])) {
    if (column == 0 || !isWordCharacter(text[column - 1])) return {position, position};
    --column;
  }
  int from = column, to = column;
  while (from > 0 && isWordCharacter(text[from - 1])) --from;
  while (to < text.size() && isWordCharacter(text[to])) ++to;
  return {{position.line, from}, {position.line, to}};
}

int CodeEdit::screenColumn(int line, int column) const {
  const QString text = buffer_.line(line);
  const int tabSize = std::max(1, settings_.tabSize);
  int screen = 0;
  for (int index = 0; index < column; ++index)
    screen = index < text.size() && text[index] == u'\t' ? (screen / tabSize + 1) * tabSize : screen + 1;
  return screen;
}

CodeBufferPosition CodeEdit::endOf(CodeBufferPosition position, const QString& text) {
  const qsizetype lastBreak = text.lastIndexOf(u'\n');
  if (lastBreak < 0) return {position.line, position.column + int(text.size())};
  int breaks = int(text.count(u'\n'));
  int column = int(text.size() - lastBreak - 1);
  if (text.endsWith(u'\r')) --column;  // "\r\n" enters as a plain line end
  return {position.line + breaks, column};
}

void CodeEdit::signalLineChange(int linesBefore, int line) {
  const int delta = buffer_.lineCount() - linesBefore;
  if (delta > 0) emit numberOfLinesChanged(line + 1, delta);
  if (delta < 0) emit numberOfLinesChanged(line + 2, delta);
}

void CodeEdit::ensurePosition(CodeBufferPosition position) {
  if (!canEdit() || !position.isValid()) return;
  beginEdit(0, 0);
  auto append = [this](CodeBufferPosition at, const QString& filler) {
    const int linesBefore = buffer_.lineCount();
    CodeBufferPosition end = buffer_.insert(at, filler);
    signalLineChange(linesBefore, at.line);
    if (!replaying_) recordAction(std::make_unique<CodeEditInsertAction>(filler, at, end));
  };
  const int lastLine = buffer_.lineCount() - 1;
  if (position.line > lastLine)
    append({lastLine, buffer_.lineLength(lastLine)}, QString(position.line - lastLine, u'\n'));
  const int length = buffer_.lineLength(position.line);
  if (position.column > length) append({position.line, length}, QString(position.column - length, u' '));
  endEdit(0);
}

void CodeEdit::insertText(CodeBufferPosition position, const QString& text, bool record) {
  if (!canEdit() || !position.isValid()) return;
  beginEdit(0, 0);
  ensurePosition(position);
  ++editCounter_;
  const int linesBefore = buffer_.lineCount();
  const CodeBufferPosition end = buffer_.insert(position, text);
  signalLineChange(linesBefore, position.line);
  caret_ = end;
  // An empty insert changes no line and so records nothing.
  if (record && !replaying_ && !text.isEmpty())
    recordAction(std::make_unique<CodeEditInsertAction>(text, position, end));
  endEdit(130);
}

void CodeEdit::deleteRange(CodeBufferPosition from, CodeBufferPosition to, bool record) {
  if (!canEdit()) return;
  if (to < from) std::swap(from, to);
  // Only real text can be deleted, so that undo puts back exactly what was there.
  from = buffer_.clamp(from);
  to = buffer_.clamp(to);
  beginEdit(0, 0);
  ++editCounter_;
  if (record && !replaying_ && from != to)
    recordAction(std::make_unique<CodeEditDeleteAction>(buffer_.textOf(from, to), from, to));
  const int linesBefore = buffer_.lineCount();
  buffer_.remove(from, to);
  signalLineChange(linesBefore, from.line);
  endEdit(130);
}

void CodeEdit::swapText(CodeBufferPosition position, const QString& current, const QString& replacement) {
  const int linesBefore = buffer_.lineCount();
  buffer_.remove(position, endOf(position, current));
  caret_ = buffer_.insert(position, replacement);
  signalLineChange(linesBefore, position.line);
}

void CodeEdit::replaceText(CodeBufferPosition position, const QString& oldText, const QString& newText, bool record) {
  if (!canEdit() || !position.isValid()) return;
  beginEdit(0, 0);
  ensurePosition(position);
  ++editCounter_;
  swapText(position, oldText, newText);
  if (record && !replaying_ && oldText != newText)
    recordAction(std::make_unique<CodeEditReplaceAction>(oldText, newText, position));
  endEdit(130);
}

void CodeEdit::recordAction(std::unique_ptr<CodeEditAction> action) {
  if (current_ != nullptr && !replaying_) current_->actions.push_back(std::move(action));
}

void CodeEdit::beginEdit(int flags, int kind) {
  if (depth_++ > 0) return;
  current_ = std::make_unique<CodeEditTransaction>();
  current_->kind = kind;
  current_->caretBefore = caret_;
  if (flags & kClearSelection) clearSelection();
  if ((flags & kExtendSelection) && !hasSelection()) setSelection(caret_, caret_, selectionMode_);
  pendingFlags_ = flags;
}

void CodeEdit::endEdit(int flags) {
  pendingFlags_ |= flags;
  if (depth_ == 0 || --depth_ > 0) return;
  if (!current_->actions.empty()) {
    current_->caretAfter = caret_;
    undone_.clear();
    done_.push_front(std::move(current_));
  }
  current_.reset();
  // The selection follows the closing bracket's own flags; the pending ones only ask
  // for painting. So undo's opening flag 16 does not undo a restored selection.
  if (flags & kExtendSelection) setSelection(anchor_, caret_, selectionMode_);
  if (flags & kClearSelection) clearSelection();
  pendingFlags_ = 0;
}

// Undo puts the caret back where it stood before the transaction, and redo where it
// stood after it, whatever the single actions did with it.
void CodeEdit::undo() {
  if (!canEdit() || done_.empty()) return;
  beginEdit(2064, 0);
  replaying_ = true;
  undone_.push_front(std::move(done_.front()));
  done_.pop_front();
  CodeEditTransaction& transaction = *undone_.front();
  for (auto action = transaction.actions.rbegin(); action != transaction.actions.rend(); ++action)
    (*action)->undo(*this);
  if (transaction.caretBefore.isValid()) caret_ = transaction.caretBefore;
  replaying_ = false;
  endEdit(1026);
}

void CodeEdit::redo() {
  if (!canEdit() || undone_.empty()) return;
  beginEdit(0, 0);
  replaying_ = true;
  done_.push_front(std::move(undone_.front()));
  undone_.pop_front();
  CodeEditTransaction& transaction = *done_.front();
  for (auto& action : transaction.actions) action->redo(*this);
  if (transaction.caretAfter.isValid()) caret_ = transaction.caretAfter;
  replaying_ = false;
  endEdit(3090);
}

// Both run in one bracket until their list is empty, and say how many steps they took.
void CodeEdit::repeatAll(void (CodeEdit::*step)(), bool (CodeEdit::*more)() const, const char* message) {
  int count = 0;
  beginEdit(0, 0);
  while ((this->*more)() && canEdit()) {
    (this->*step)();
    ++count;
  }
  endEdit(0);
  showStatus(QString::fromLatin1(message).arg(count));
}

void CodeEdit::undoAll() { repeatAll(&CodeEdit::undo, &CodeEdit::canUndo, "Undone %1 actions"); }
void CodeEdit::redoAll() { repeatAll(&CodeEdit::redo, &CodeEdit::canRedo, "Redone %1 actions"); }

}  // namespace regmill
