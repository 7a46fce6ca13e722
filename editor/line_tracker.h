// Line numbers of the outside world (breakpoints, build messages) kept right while a
// file is edited: a tracker follows the numberOfLinesChanged signal of an editor.
#pragma once
#include <QList>
#include <QMap>
#include <QObject>
#include <QPair>
#include <QString>
#include <memory>
#include <vector>

namespace regmill {

class LineTracker : public QObject {
  Q_OBJECT

 public:
  explicit LineTracker(QObject* parent = nullptr);

  // The tracked line's current number, -1 once its line is gone, -2 if not tracked.
  int currentLine(int trackedLine) const { return lines_.value(trackedLine, -2); }
  void setKeepChanges(bool keep) { keepChanges_ = keep; }
  const QList<QPair<int, int>>& changes() const { return changes_; }

 public slots:
  void track(int line);
  // Lines added (positive delta) or removed (negative) at `line`.
  void changed(int line, int delta);
  void clear();

 private:
  QMap<int, int> lines_;  // tracked line -> current number
  QList<QPair<int, int>> changes_;
  bool keepChanges_ = false;
};

// One tracker per file, in a vector sorted by path.
class FileLineTracker : public QObject {
  Q_OBJECT

 public:
  explicit FileLineTracker(QObject* parent = nullptr);
  ~FileLineTracker() override;

  // The file's tracker, or null.
  LineTracker* trackerOf(const QString& path) const;

 public slots:
  void track(const QString& path, int line);
  void changed(const QString& path, int line, int delta);
  void clear();

 private:
  std::vector<std::pair<QString, std::unique_ptr<LineTracker>>>::const_iterator find(const QString& path) const;
  std::vector<std::pair<QString, std::unique_ptr<LineTracker>>> trackers_;
};

}  // namespace regmill
