// A small window around the editor core: it shows the buffer, takes typing, runs the
// editing commands from a menu and their keys, undo and redo, find and replace, and
// saves. Questions to the user go through one-method handlers, so that the logic never
// depends on a dialog and a test can answer them.
#pragma once
#include <QMainWindow>
#include <QWidget>
#include <optional>

#include "editor/edit_commands.h"

class QAction;
class QLabel;

namespace regmill {

// What to find and what to put in its place; nothing when the user cancels.
class FindRequestHandler {
 public:
  virtual ~FindRequestHandler() = default;
  virtual std::optional<FindParameters> askFind(bool replace) = 0;
};

// Paints the visible lines and turns keys into commands.
class CodeEditView : public QWidget {
  Q_OBJECT

 public:
  CodeEditView(CodeEdit& editor, EditCommands& commands, QWidget* parent = nullptr);
  int topLine() const { return topLine_; }

 protected:
  void paintEvent(QPaintEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void scrollToCaret();

  CodeEdit& editor_;
  EditCommands& commands_;
  int topLine_ = 0;
};

class CodeEditWindow : public QMainWindow, private MessageHandler, private FindRequestHandler {
  Q_OBJECT

 public:
  explicit CodeEditWindow(QWidget* parent = nullptr);
  ~CodeEditWindow() override;

  bool open(const QString& path, const QString& encoding = {});
  bool save();
  CodeEdit& editor() { return editor_; }
  CodeEditView* view() { return view_; }
  // The menu action of that object name ("undo", "find", "sort-ascending", ...).
  QAction* action(const QString& name) const;
  // Handlers for tests and hosts; by default boxes and input dialogs ask.
  void setFindRequestHandler(FindRequestHandler* handler) { findHandler_ = handler; }
  void setMessageHandler(MessageHandler* handler) { messageHandler_ = handler; }

 private:
  void showMessage(const QString& title, const QString& text) override;
  std::optional<FindParameters> askFind(bool replace) override;
  QAction* addCommand(QMenu* menu, const QString& name, const QString& text, const QKeySequence& keys,
                      std::function<void()> run);
  void buildMenus();

  CodeEdit editor_;
  std::unique_ptr<Clipboard> clipboard_;
  EditCommands commands_;
  CodeEditView* view_;
  QLabel* status_;
  FindRequestHandler* findHandler_ = this;
  MessageHandler* messageHandler_ = this;
};

// Opens the file in a window and runs the application until it closes.
int runCodeEditWindow(const QString& path, const QString& encoding);

}  // namespace regmill
