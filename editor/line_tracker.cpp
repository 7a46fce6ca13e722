#include "editor/line_tracker.h"

#include <algorithm>

namespace regmill {

LineTracker::LineTracker(QObject* parent) : QObject(parent) { setObjectName(QStringLiteral("line-tracker")); }

void LineTracker::track(int line) { lines_.insert(line, line); }

void LineTracker::changed(int line, int delta) {
  if (keepChanges_) changes_.append({line, delta});
  for (int& current : lines_) {
    if (current == -1) continue;
    if (delta < 0 && current < line) continue;
    if (delta < 0 && current < line - delta) current = -1;  // the line was removed
    else if (current >= line) current += delta;
  }
}

void LineTracker::clear() {
  lines_.clear();
  changes_.clear();
}

FileLineTracker::FileLineTracker(QObject* parent) : QObject(parent) { setObjectName(QStringLiteral("line-tracker")); }
FileLineTracker::~FileLineTracker() = default;

std::vector<std::pair<QString, std::unique_ptr<LineTracker>>>::const_iterator FileLineTracker::find(
    const QString& path) const {
  return std::lower_bound(trackers_.begin(), trackers_.end(), path,
                          [](const auto& entry, const QString& key) { return entry.first < key; });
}

LineTracker* FileLineTracker::trackerOf(const QString& path) const {
  auto place = find(path);
  return place != trackers_.end() && place->first == path ? place->second.get() : nullptr;
}

void FileLineTracker::track(const QString& path, int line) {
  LineTracker* tracker = trackerOf(path);
  if (tracker == nullptr) {
    auto place = trackers_.begin() + (find(path) - trackers_.cbegin());
    tracker = trackers_.emplace(place, path, std::make_unique<LineTracker>())->second.get();
  }
  tracker->track(line);
}

void FileLineTracker::changed(const QString& path, int line, int delta) {
  if (LineTracker* tracker = trackerOf(path)) tracker->changed(line, delta);
}

void FileLineTracker::clear() { trackers_.clear(); }

}  // namespace regmill
