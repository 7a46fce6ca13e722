#include "editor/widgets/code_edit_window.h"

#include "editor/batch_edit.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QHash>
#include <QFontDatabase>
#include <QInputDialog>
#include <QKeyEvent>
#include <QLabel>
#include <QMenuBar>
#include <QMessageBox>
#include <QPainter>
#include <QPushButton>
#include <QResizeEvent>
#include <QStandardPaths>
#include <QStatusBar>
#include <QTimer>
#include <cstdio>

namespace regmill {

namespace {

// How often the recovery file is written while the document changes.
constexpr int kRecoveryMinutes = 2;

class SystemClipboard : public Clipboard {
 public:
  QString text() const override { return QGuiApplication::clipboard()->text(); }
  void setText(const QString& text) override { QGuiApplication::clipboard()->setText(text); }
};

}  // namespace

CodeEditView::CodeEditView(CodeEdit& editor, EditCommands& commands, QWidget* parent)
    : QWidget(parent), editor_(editor), commands_(commands) {
  setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  setFocusPolicy(Qt::StrongFocus);
  setAttribute(Qt::WA_InputMethodEnabled);
}

void CodeEditView::scrollToCaret() {
  const int rows = editor_.visibleLines();
  const int line = editor_.caret().line;
  if (line < editor_.topLine()) editor_.setTopLine(line);
  else if (line >= editor_.topLine() + rows) editor_.setTopLine(line - rows + 1);
}

void CodeEditView::resizeEvent(QResizeEvent* event) {
  editor_.setVisibleLines(event->size().height() / fontMetrics().height());
  QWidget::resizeEvent(event);
}

void CodeEditView::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.fillRect(rect(), palette().base());
  const QFontMetrics metrics = fontMetrics();
  const int rows = height() / metrics.height() + 1;
  const int charWidth = metrics.horizontalAdvance(u'x');
  auto record = editor_.buffer().lineAt(editor_.topLine());
  for (int row = 0; row < rows && record != editor_.buffer().end(); ++row, ++record) {
    const int line = editor_.topLine() + row;
    QString text = record->text;
    text.replace(u'\t', QString(std::max(1, editor_.settings().tabSize), u' '));
    painter.drawText(2, row * metrics.height() + metrics.ascent(), text);
    if (editor_.caret().line == line) {
      const int x = 2 + editor_.screenColumn(line, editor_.caret().column) * charWidth;
      painter.drawLine(x, row * metrics.height(), x, (row + 1) * metrics.height() - 1);
    }
  }
}

void CodeEditView::startIncrementalSearch() {
  incremental_ = true;
  incrementalText_.clear();
  commands_.findIncremental();
}

// Printable keys and backspace edit the search's text; return or escape end the
// search, and any other key ends it and does what it does.
bool CodeEditView::incrementalSearchKey(QKeyEvent* event) {
  const QString text = event->text();
  if (event->key() == Qt::Key_Backspace) {
    incrementalText_.chop(1);
  } else if (!text.isEmpty() && text[0].isPrint()) {
    incrementalText_ += text;
  } else {
    incremental_ = false;
    commands_.findIncrementalDialogClosed();
    return event->key() == Qt::Key_Escape || event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
  }
  commands_.searchIncrementally(incrementalText_);
  return true;
}

void CodeEditView::keyPressEvent(QKeyEvent* event) {
  if (incremental_ && incrementalSearchKey(event)) {
    scrollToCaret();
    return update();
  }
  const bool shift = event->modifiers() & Qt::ShiftModifier;
  const bool control = event->modifiers() & Qt::ControlModifier;
  // Shift extends the selection, Shift and Alt extend a block.
  const bool block = shift && (event->modifiers() & Qt::AltModifier);
  using Move = void (EditCommands::*)();
  auto move = [&](Move plain, Move extend, Move blockExtend = nullptr) {
    (commands_.*(block && blockExtend ? blockExtend : shift ? extend : plain))();
  };
  switch (event->key()) {
    case Qt::Key_Left:
      control ? move(&EditCommands::wordLeft, &EditCommands::wordLeftExtend)
              : move(&EditCommands::charLeft, &EditCommands::charLeftExtend, &EditCommands::charLeftBlockExtend);
      break;
    case Qt::Key_Right:
      control ? move(&EditCommands::wordRight, &EditCommands::wordRightExtend)
              : move(&EditCommands::charRight, &EditCommands::charRightExtend, &EditCommands::charRightBlockExtend);
      break;
    case Qt::Key_Up: move(&EditCommands::lineUp, &EditCommands::lineUpExtend, &EditCommands::lineUpBlockExtend); break;
    case Qt::Key_Down: move(&EditCommands::lineDown, &EditCommands::lineDownExtend, &EditCommands::lineDownBlockExtend); break;
    case Qt::Key_PageUp: move(&EditCommands::pageUp, &EditCommands::pageUpExtend); break;
    case Qt::Key_PageDown: move(&EditCommands::pageDown, &EditCommands::pageDownExtend); break;
    case Qt::Key_Home:
      control ? move(&EditCommands::documentStart, &EditCommands::documentStartExtend)
              : move(&EditCommands::lineStartToggle, &EditCommands::lineStartToggleExtend);
      break;
    case Qt::Key_End:
      control ? move(&EditCommands::documentEnd, &EditCommands::documentEndExtend)
              : move(&EditCommands::lineEnd, &EditCommands::lineEndExtend);
      break;
    case Qt::Key_Return:
    case Qt::Key_Enter: commands_.enter(); break;
    case Qt::Key_Backspace: commands_.deleteBack(); break;
    case Qt::Key_Delete: commands_.deleteForward(); break;
    case Qt::Key_Backtab: commands_.backtab(); break;
    case Qt::Key_Tab: shift ? commands_.backtab() : commands_.tab(); break;
    default: {
      const QString text = event->text();
      if (text.isEmpty() || !text[0].isPrint()) return QWidget::keyPressEvent(event);
      if (editor_.settings().overwrite) commands_.overwriteText(text);
      else commands_.typeText(text);
    }
  }
  scrollToCaret();
  update();
}

CodeEditWindow::CodeEditWindow(QWidget* parent)
    : QMainWindow(parent),
      clipboard_(std::make_unique<SystemClipboard>()),
      commands_(editor_, *clipboard_),
      view_(new CodeEditView(editor_, commands_, this)),
      status_(new QLabel(this)),
      backupDirectory_(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
                       QStringLiteral("/loom/backups")),
      recoveryTimer_(new QTimer(this)) {
  recoveryTimer_->setSingleShot(true);
  recoveryTimer_->setInterval(kRecoveryMinutes * 60 * 1000);
  connect(recoveryTimer_, &QTimer::timeout, this, &CodeEditWindow::autoRecoveryTimeout);
  setCentralWidget(view_);
  statusBar()->addWidget(status_);
  editor_.setMessageHandler(this);
  connect(&editor_, &CodeEdit::statusMessageChanged, status_, &QLabel::setText);
  buildMenus();
  resize(800, 600);
}

CodeEditWindow::~CodeEditWindow() = default;

QAction* CodeEditWindow::addCommand(QMenu* menu, const QString& name, const QString& text, const QKeySequence& keys,
                                    std::function<void()> run) {
  QAction* action = menu->addAction(text);
  action->setObjectName(name);
  action->setShortcut(keys);
  connect(action, &QAction::triggered, this, [this, run = std::move(run)] {
    run();
    view_->scrollToCaret();
    view_->update();
  });
  return action;
}

void CodeEditWindow::buildMenus() {
  QMenu* file = menuBar()->addMenu(tr("&File"));
  addCommand(file, "save", tr("&Save"), QKeySequence::Save, [this] { save(); });
  addCommand(file, "quit", tr("&Quit"), QKeySequence::Quit, [this] { close(); });

  QMenu* edit = menuBar()->addMenu(tr("&Edit"));
  addCommand(edit, "undo", tr("&Undo"), QKeySequence::Undo, [this] { commands_.undo(); });
  addCommand(edit, "redo", tr("&Redo"), QKeySequence::Redo, [this] { commands_.redo(); });
  addCommand(edit, "cut", tr("Cu&t"), QKeySequence::Cut, [this] { commands_.cut(); });
  addCommand(edit, "copy", tr("&Copy"), QKeySequence::Copy, [this] { commands_.copy(); });
  addCommand(edit, "paste", tr("&Paste"), QKeySequence::Paste, [this] { commands_.paste(); });
  addCommand(edit, "select-all", tr("Select &All"), QKeySequence::SelectAll, [this] { commands_.selectAll(); });
  addCommand(edit, "find", tr("&Find..."), QKeySequence::Find, [this] {
    if (auto request = findHandler_->askFind(false))
      commands_.finder().find(editor_.caret(), request->findText, *request);
  });
  addCommand(edit, "find-next", tr("Find &Next"), QKeySequence::FindNext, [this] { commands_.finder().findNext(); });
  addCommand(edit, "find-incremental", tr("&Incremental Search"), QKeySequence("Ctrl+I"),
             [this] { view_->startIncrementalSearch(); });
  addCommand(edit, "replace-all", tr("&Replace All..."), QKeySequence::Replace, [this] {
    if (auto request = findHandler_->askFind(true)) commands_.finder().replaceAll(*request, false);
  });

  // Every other command by its name, with the usual keys for the common ones.
  const QHash<QString, QKeySequence> keys = {
      {"commentSelection", QKeySequence("Ctrl+/")}, {"uncommentSelection", QKeySequence("Ctrl+Shift+/")},
      {"uppercase", QKeySequence("Ctrl+Shift+U")},  {"lowercase", QKeySequence("Ctrl+U")},
      {"deleteLine", QKeySequence("Ctrl+L")},       {"duplicateLine", QKeySequence("Ctrl+D")},
      {"transposeLines", QKeySequence("Ctrl+T")},   {"bookmarkToggle", QKeySequence("Ctrl+F2")},
      {"bookmarkNext", QKeySequence("F2")},         {"bookmarkPrev", QKeySequence("Shift+F2")},
      {"moveSelectedLineUp", QKeySequence("Alt+Up")}, {"moveSelectedLineDown", QKeySequence("Alt+Down")},
  };
  QMenu* commands = menuBar()->addMenu(tr("&Commands"));
  for (const QString& name : EditCommands::slotNames()) {
    if (action(kebabCase(name)) != nullptr) continue;  // already in the Edit menu
    const EditCommands::Slot slot = EditCommands::slotNamed(name);
    addCommand(commands, kebabCase(name), name, keys.value(name), [this, slot] { (commands_.*slot)(); });
  }
}

QAction* CodeEditWindow::action(const QString& name) const { return findChild<QAction*>(name); }

// A recovery file left by another session is offered before the user sees the text.
bool CodeEditWindow::open(const QString& path, const QString& encoding) {
  editor_.setEncodingName(encoding);
  if (!editor_.load(path)) return false;
  setWindowTitle(path);
  recovery_ = std::make_unique<RecoveryFile>(editor_, backupDirectory_);
  recovery_->offerRecovery(*recoverHandler_);
  recoveryTimer_->start();
  view_->update();
  return true;
}

void CodeEditWindow::autoRecoveryTimeout() {
  if (recovery_ != nullptr) recovery_->autoRecoveryTimeout();
  recoveryTimer_->start();
}

// The saved file makes the recovery file needless.
bool CodeEditWindow::save() {
  Status saved = editor_.save(editor_.path());
  if (!saved.ok()) messageHandler_->showMessage(tr("Can't save file"), QString::fromStdString(saved.message()));
  else if (recovery_ != nullptr) recovery_->remove();
  return saved.ok();
}

void CodeEditWindow::showMessage(const QString& title, const QString& text) {
  if (messageHandler_ != this) return messageHandler_->showMessage(title, text);
  QMessageBox::information(this, title, text);
}

std::optional<FindParameters> CodeEditWindow::askFind(bool replace) {
  bool ok = false;
  FindParameters parameters = commands_.finder().lastSearch();
  parameters.options |= kFindWrap | kFindReport;
  parameters.findText = QInputDialog::getText(this, tr("Find"), tr("Find:"), QLineEdit::Normal, parameters.findText, &ok);
  if (!ok) return std::nullopt;
  if (replace) {
    parameters.replacement =
        QInputDialog::getText(this, tr("Replace"), tr("Replace with:"), QLineEdit::Normal, parameters.replacement, &ok);
    if (!ok) return std::nullopt;
  }
  return parameters;
}

RecoverAnswer CodeEditWindow::askRecover(const QString& title, const QString& text) {
  QMessageBox box(QMessageBox::Question, title, text, QMessageBox::NoButton, this);
  QPushButton* recover = box.addButton(tr("Recover"), QMessageBox::AcceptRole);
  QPushButton* discard = box.addButton(tr("Discard"), QMessageBox::DestructiveRole);
  box.addButton(QMessageBox::Cancel);
  box.exec();
  if (box.clickedButton() == recover) return RecoverAnswer::Recover;
  if (box.clickedButton() == discard) return RecoverAnswer::Discard;
  return RecoverAnswer::Other;
}

int runCodeEditWindow(const QString& path, const QString& encoding) {
  int argc = 1;
  char name[] = "loom";
  char* argv[] = {name, nullptr};
  QApplication application(argc, argv);
  CodeEditWindow window;
  if (!window.open(path, encoding)) {
    std::fprintf(stderr, "loom: %s\n", window.editor().statusMessage().toLocal8Bit().constData());
    return 1;
  }
  window.show();
  return application.exec();
}

}  // namespace regmill
