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
#include <QStatusBar>
#include <cstdio>

namespace regmill {

namespace {

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
  const int rows = std::max(1, height() / fontMetrics().height());
  const int line = editor_.caret().line;
  if (line < topLine_) topLine_ = line;
  else if (line >= topLine_ + rows) topLine_ = line - rows + 1;
}

void CodeEditView::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.fillRect(rect(), palette().base());
  const QFontMetrics metrics = fontMetrics();
  const int rows = height() / metrics.height() + 1;
  const int charWidth = metrics.horizontalAdvance(u'x');
  auto record = editor_.buffer().lineAt(topLine_);
  for (int row = 0; row < rows && record != editor_.buffer().end(); ++row, ++record) {
    const int line = topLine_ + row;
    QString text = record->text;
    text.replace(u'\t', QString(std::max(1, editor_.settings().tabSize), u' '));
    painter.drawText(2, row * metrics.height() + metrics.ascent(), text);
    if (editor_.caret().line == line) {
      const int x = 2 + editor_.screenColumn(line, editor_.caret().column) * charWidth;
      painter.drawLine(x, row * metrics.height(), x, (row + 1) * metrics.height() - 1);
    }
  }
}

void CodeEditView::keyPressEvent(QKeyEvent* event) {
  const bool shift = event->modifiers() & Qt::ShiftModifier;
  switch (event->key()) {
    case Qt::Key_Left: commands_.charLeft(); break;
    case Qt::Key_Right: commands_.charRight(); break;
    case Qt::Key_Up: commands_.lineUp(); break;
    case Qt::Key_Down: commands_.lineDown(); break;
    case Qt::Key_End: commands_.lineEnd(); break;
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
      status_(new QLabel(this)) {
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

bool CodeEditWindow::open(const QString& path, const QString& encoding) {
  editor_.setEncodingName(encoding);
  if (!editor_.load(path)) return false;
  setWindowTitle(path);
  view_->update();
  return true;
}

bool CodeEditWindow::save() {
  Status saved = editor_.save(editor_.path());
  if (!saved.ok()) messageHandler_->showMessage(tr("Can't save file"), QString::fromStdString(saved.message()));
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
