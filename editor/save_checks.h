// What every editor does around writing a file: the check before a file is written
// (may an existing target be replaced, may a missing folder be made), asked of the
// user through an abstract handler, and the rotating backups kept beside the file.
#pragma once
#include <QString>

namespace regmill {

// The user's side of a save. The logic runs without a user interface: tests and the
// command line answer with an object of their own.
class SaveQuestions {
 public:
  virtual ~SaveQuestions() = default;
  // A yes/no question; true for yes.
  virtual bool ask(const QString& title, const QString& text) = 0;
  // A message box; `objectName` names the kind of box ("Save Warning", ...).
  virtual void warn(const QString& objectName, const QString& title, const QString& text) = 0;
};

// Asks before replacing an existing target and before making its missing folder;
// false when the user refuses or the folder cannot be made (told by an error box).
bool confirmWriteTarget(const QString& path, SaveQuestions& questions);

// How many backups of a saved file are kept; 0 keeps none. One by default, so that a
// save never drops the only copy of what was there before.
int backupCount();
void setBackupCount(int count);

// The i-th backup's name: the path with ".bak" for the first, ".bak.i" behind it.
QString backupName(const QString& path, int index);

// Drops the last of `count` backups, moves each of the others one number on, and
// renames the file itself to the first. Nothing with a count of 0.
void rotateBackups(const QString& path, int count);

}  // namespace regmill
