// A small window around the editor core: it shows the buffer, takes typing, runs the
// editing commands from a menu and their keys, undo and redo, find and replace, and
// saves. Questions to the user go through one-method handlers, so that the logic never
// depends on a dialog and a test can answer them.
#pragma once
#include <QMainWindow>
#include <QWidget>
#include <optional>

#include "editor/edit_commands.h"
#include "editor/recovery_file.h"

class QAction;
class QLabel;
class QTimer;

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
  // Keys go to the incremental search's text until it ends.
  void startIncrementalSearch();
  // Scrolls as little as brings the caret's line into view.
  void scrollToCaret();

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  // True when the key was the search's.
  bool incrementalSearchKey(QKeyEvent* event);

  CodeEdit& editor_;
  EditCommands& commands_;
  bool incremental_ = false;
  QString incrementalText_;
};

class CodeEditWindow : public QMainWindow,
                       private MessageHandler,
                       private FindRequestHandler,
                       private RecoverFileHandler {
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
  void setRecoverFileHandler(RecoverFileHandler* handler) { recoverHandler_ = handler; }
  // Where recovery files live; by default "backups" in the user's data folder.
  void setBackupDirectory(const QString& directory) { backupDirectory_ = directory; }
  // Writes the recovery file now, as the timer does every few minutes.
  void autoRecoveryTimeout();

 private:
  void showMessage(const QString& title, const QString& text) override;
  std::optional<FindParameters> askFind(bool replace) override;
  RecoverAnswer askRecover(const QString& title, const QString& text) override;
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
  RecoverFileHandler* recoverHandler_ = this;
  QString backupDirectory_;
  std::unique_ptr<RecoveryFile> recovery_;
  QTimer* recoveryTimer_;
};

// Opens the file in a window and runs the application until it closes.
int runCodeEditWindow(const QString& path, const QString& encoding);

}  // namespace regmill
