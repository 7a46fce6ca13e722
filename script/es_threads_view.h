// What the debugger's threads view shows, without its widget: the main view and
// the views a script names, each with column titles, the column that sorts by
// number, column colours, rows outside any queue and queues of rows. A script fills
// it through the `Threads` object; the view's widget, or a test, reads it.
#pragma once
#include <QString>
#include <QStringList>
#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <vector>

namespace regmill::script {

struct ThreadsRow {
  QStringList texts;                 // one per column
  std::optional<uint32_t> threadId;  // selects the thread in the debugger
  std::vector<int32_t> registers;    // the thread's register block, when the row carries it
};

// A group row under which the rows that follow it are shown.
struct ThreadsQueue {
  QString title;
  std::vector<ThreadsRow> rows;
};

struct ThreadsView {
  QStringList columns;
  QString sortByNumberColumn;  // compared as numbers rather than texts
  std::map<QString, std::array<QString, 3>> columnColors;
  std::vector<ThreadsRow> rows;  // before the first queue
  std::vector<ThreadsQueue> queues;

  // The rows of the last queue, or the view's own rows before any queue.
  std::vector<ThreadsRow>& currentRows() { return queues.empty() ? rows : queues.back().rows; }

  // Sorts the rows outside queues and those of each queue by one column, keeping
  // the order of equal rows; queues keep their places. The sort-by-number column
  // compares the texts' values, a text that is no number counting as 0; any other
  // column compares texts.
  void sortRows(int column);
};

class ThreadsViewModel {
 public:
  // `rowLimit` is the project's Thread Maximum: the most rows shown at once.
  explicit ThreadsViewModel(uint32_t rowLimit) : rowLimit_(rowLimit) {}

  ThreadsView& mainView() { return main_; }
  const ThreadsView& mainView() const { return main_; }
  // A named view, made empty on first use.
  ThreadsView& view(const QString& name) { return named_[name]; }
  const std::map<QString, ThreadsView>& namedViews() const { return named_; }

  // Whether the widget of a named view is on screen; the host keeps it current.
  void setShown(const QString& name, bool shown);
  bool isShown(const QString& name) const { return shown_.count(name) != 0; }

  // Empties every view's rows and queues; titles, sorting and colours stay.
  void clear();
  // Adds a row to the view's current queue. False, and nothing added, when the
  // limit of rows is reached.
  bool addRow(ThreadsView& view, ThreadsRow row);
  uint32_t rowLimit() const { return rowLimit_; }
  uint32_t rowCount() const { return rowCount_; }

  // A readable listing of every view, for logs and tests: the main view, then the
  // named views by name, each with its settings, rows and queues.
  QString dump() const;

 private:
  uint32_t rowLimit_;
  uint32_t rowCount_ = 0;
  ThreadsView main_;
  std::map<QString, ThreadsView> named_;
  std::set<QString> shown_;
};

}  // namespace regmill::script
