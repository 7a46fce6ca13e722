// The settings store: the user's settings as a map from name to value, kept in a
// settings file. Changes are made in memory and marked; synchronise brings memory
// and file together, merging the marked changes into what another process may have
// written meanwhile. Every read and write of the file holds its lock file.
#pragma once
#include <QDateTime>
#include <QMap>
#include <QString>
#include <optional>

#include "project/settings_file.h"

namespace regmill {

class SettingsStore {
 public:
  explicit SettingsStore(QString path) : path_(std::move(path)) {}

  const QString& path() const { return path_; }
  bool isDirty() const { return dirty_; }

  // The value, or `fallback` for a name that is not there or has been removed.
  QString value(const QString& name, const QString& fallback = QString()) const;
  void setValue(const QString& name, const QString& value);
  // Marks the name removed; the file loses it at the next write.
  void remove(const QString& name);

  // Replaces the map with the file's settings. False for a missing or unreadable
  // file, or when the lock cannot be had; the store then stays as it was.
  bool read();
  // Writes the file through "<file>.new", keeping the former file as "<file>.bak".
  // False when the lock cannot be had or a step fails.
  bool write();
  // Reads, writes or merges, whichever brings memory and file together.
  bool synchronise();

  // How long a read or write waits for the lock file, in milliseconds.
  static constexpr int kLockWait = 1000;

 private:
  enum class EntryState : uint8_t { Unchanged = 0, Changed = 1, Removed = 2 };
  struct Entry {
    QString value;
    EntryState state;
  };
  using Entries = QMap<QString, Entry>;

  // The file's settings, all unchanged; nothing when it cannot be read. The caller
  // holds the lock.
  std::optional<Entries> readFile() const;
  bool writeLocked();
  QDateTime currentFileTime() const;

  QString path_;
  Entries entries_;
  QDateTime fileTime_;  // when the file was last read or written
  bool dirty_ = false;
};

}  // namespace regmill
