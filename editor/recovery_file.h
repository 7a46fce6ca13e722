// The recovery file of a document: an unsaved copy written now and then beside the
// workbench's data, found again when the document is next loaded. A recovery file is
// locked while an editor holds it, so that two running editors never share one.
#pragma once
#include <QDateTime>
#include <QFile>
#include <QString>
#include <cstdint>

namespace regmill {

class CodeEdit;

enum class RecoverAnswer { Recover, Discard, Other };

class RecoverFileHandler {
 public:
  virtual ~RecoverFileHandler() = default;
  virtual RecoverAnswer askRecover(const QString& title, const QString& text) = 0;
};

class RecoveryFile {
 public:
  // `backupDirectory` is the "backups" folder under the workbench's data folder.
  RecoveryFile(CodeEdit& editor, QString backupDirectory);
  ~RecoveryFile();

  // A document with an absolute path: the folder named by the MD5 digest of its
  // directory, then its name; with a relative one: "unsaved/" and its name.
  static QString pathFor(const QString& documentPath, const QString& backupDirectory);

  // Run by the host's timer: opens and locks the file the first time, and afterwards
  // writes the document to it when it changed since the last run.
  void autoRecoveryTimeout();
  // Run after loading: offers a recovery file that no other editor holds.
  void offerRecovery(RecoverFileHandler& handler);
  // After a save: the recovery file is no longer needed.
  void remove();
  bool isOpen() const { return file_.isOpen(); }

  // Removes the files under the backup folder last changed more than `days` days
  // before `now`; 0 days removes nothing. Gives the count removed.
  static int removeExpiredAutoRecoveryFiles(const QString& backupDirectory, int days, const QDateTime& now);

 private:
  bool openLocked();
  void closeAndRemove();

  CodeEdit& editor_;
  QString backupDirectory_;
  QFile file_;
  uint32_t recoveredState_ = 0;
};

}  // namespace regmill
