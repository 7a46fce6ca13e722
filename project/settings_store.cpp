#include "project/settings_store.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLockFile>

#include "base/atomic_file.h"
#include "base/input_file.h"

namespace regmill {

namespace {

// Settings files are small; a larger one is no settings file.
constexpr size_t kSettingsSizeLimit = size_t{64} << 20;

}  // namespace

QString SettingsStore::value(const QString& name, const QString& fallback) const {
  auto found = entries_.constFind(name);
  if (found == entries_.constEnd() || found->state == EntryState::Removed) return fallback;
  return found->value;
}

void SettingsStore::setValue(const QString& name, const QString& value) {
  entries_.insert(name, {value, EntryState::Changed});
  dirty_ = true;
}

void SettingsStore::remove(const QString& name) {
  auto found = entries_.find(name);
  if (found != entries_.end()) {
    found->state = EntryState::Removed;
  } else {
    entries_.insert(name, {QString(), EntryState::Removed});
  }
  dirty_ = true;
}

QDateTime SettingsStore::currentFileTime() const { return QFileInfo(path_).lastModified(); }

std::optional<SettingsStore::Entries> SettingsStore::readFile() const {
  Expected<std::string> contents = readInputFile(QFile::encodeName(path_).toStdString(), kSettingsSizeLimit);
  if (!contents.ok()) return std::nullopt;
  std::optional<SettingEntries> settings = readSettingsText(*contents);
  if (!settings) return std::nullopt;
  Entries entries;
  for (auto& [name, value] : *settings) entries.insert(name, {value, EntryState::Unchanged});
  return entries;
}

bool SettingsStore::read() {
  if (!QFileInfo::exists(path_)) return false;
  QLockFile lock(path_ + ".lck");
  if (!lock.tryLock(kLockWait)) return false;
  std::optional<Entries> entries = readFile();
  if (!entries) return false;
  entries_ = std::move(*entries);
  fileTime_ = currentFileTime();
  dirty_ = false;
  return true;
}

bool SettingsStore::write() {
  // The folder is made before the lock, since the lock file lives in it.
  if (!QDir().mkpath(QFileInfo(path_).absolutePath())) return false;
  QLockFile lock(path_ + ".lck");
  if (!lock.tryLock(kLockWait)) return false;
  return writeLocked();
}

bool SettingsStore::writeLocked() {
  SettingEntries kept;
  for (auto entry = entries_.constBegin(); entry != entries_.constEnd(); ++entry)
    if (entry->state != EntryState::Removed) kept.emplace_back(entry.key(), entry->value);
  const QString fresh = path_ + ".new";
  const QString backup = path_ + ".bak";
  const std::string text = settingsFileText(kept);
  Status written = writeFileAtomically(QFile::encodeName(fresh).toStdString(), [&](std::FILE* stream) {
    std::fwrite(text.data(), 1, text.size(), stream);
  });
  if (!written.ok()) return false;
  QFile::remove(backup);
  if (QFileInfo::exists(path_) && !QFile::rename(path_, backup)) return false;
  if (!QFile::rename(fresh, path_)) return false;
  // What is in the file now is the state every entry is measured against.
  Entries settled;
  for (const auto& [name, value] : kept) settled.insert(name, {value, EntryState::Unchanged});
  entries_ = std::move(settled);
  fileTime_ = currentFileTime();
  dirty_ = false;
  return true;
}

bool SettingsStore::synchronise() {
  if (currentFileTime() == fileTime_) return dirty_ ? write() : true;
  if (!dirty_) return read();
  // Both changed: our changes go over what the file holds now.
  if (!QDir().mkpath(QFileInfo(path_).absolutePath())) return false;
  QLockFile lock(path_ + ".lck");
  if (!lock.tryLock(kLockWait)) return false;
  std::optional<Entries> merged = QFileInfo::exists(path_) ? readFile() : Entries();
  if (!merged) return false;
  for (auto entry = entries_.constBegin(); entry != entries_.constEnd(); ++entry) {
    if (entry->state == EntryState::Changed) merged->insert(entry.key(), {entry->value, EntryState::Changed});
    if (entry->state == EntryState::Removed) merged->remove(entry.key());
  }
  entries_ = std::move(*merged);
  return writeLocked();
}

}  // namespace regmill
