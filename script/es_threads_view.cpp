#include "script/es_threads_view.h"

#include <algorithm>

namespace regmill::script {

namespace {

void dumpRow(const ThreadsRow& row, const QString& indent, QString& out) {
  out += indent + QStringLiteral("row ") + row.texts.join(QLatin1Char('|'));
  if (row.threadId) out += QStringLiteral(" id=") + QString::number(*row.threadId);
  if (!row.registers.empty()) {
    out += QStringLiteral(" registers=");
    for (size_t i = 0; i < row.registers.size(); ++i)
      out += (i > 0 ? QStringLiteral(",") : QString()) + QString::number(row.registers[i]);
  }
  out += QLatin1Char('\n');
}

void dumpView(const ThreadsView& view, const QString& indent, QString& out) {
  if (!view.columns.isEmpty()) out += indent + QStringLiteral("columns ") + view.columns.join(QLatin1Char('|')) + '\n';
  if (!view.sortByNumberColumn.isEmpty())
    out += indent + QStringLiteral("sort by number ") + view.sortByNumberColumn + '\n';
  for (const auto& [column, colors] : view.columnColors)
    out += indent + QStringLiteral("color ") + column + ' ' + colors[0] + ' ' + colors[1] + ' ' + colors[2] + '\n';
  for (const ThreadsRow& row : view.rows) dumpRow(row, indent, out);
  for (const ThreadsQueue& queue : view.queues) {
    out += indent + QStringLiteral("queue ") + queue.title + '\n';
    for (const ThreadsRow& row : queue.rows) dumpRow(row, indent + QStringLiteral("  "), out);
  }
}

}  // namespace

void ThreadsView::sortRows(int column) {
  if (column < 0 || column >= columns.size()) return;
  const bool byNumber = columns[column] == sortByNumberColumn;
  auto text = [column](const ThreadsRow& row) { return column < row.texts.size() ? row.texts[column] : QString(); };
  auto before = [&](const ThreadsRow& left, const ThreadsRow& right) {
    if (byNumber) return text(left).toDouble() < text(right).toDouble();
    return text(left) < text(right);
  };
  std::stable_sort(rows.begin(), rows.end(), before);
  for (ThreadsQueue& queue : queues) std::stable_sort(queue.rows.begin(), queue.rows.end(), before);
}

void ThreadsViewModel::setShown(const QString& name, bool shown) {
  if (shown)
    shown_.insert(name);
  else
    shown_.erase(name);
}

void ThreadsViewModel::clear() {
  auto empty = [](ThreadsView& view) {
    view.rows.clear();
    view.queues.clear();
  };
  empty(main_);
  for (auto& [name, view] : named_) empty(view);
  rowCount_ = 0;
}

bool ThreadsViewModel::addRow(ThreadsView& view, ThreadsRow row) {
  if (rowCount_ >= rowLimit_) return false;
  view.currentRows().push_back(std::move(row));
  ++rowCount_;
  return true;
}

QString ThreadsViewModel::dump() const {
  QString out;
  dumpView(main_, QString(), out);
  for (const auto& [name, view] : named_) {
    out += QStringLiteral("view ") + name + (isShown(name) ? QStringLiteral(" (shown)") : QString()) + '\n';
    dumpView(view, QStringLiteral("  "), out);
  }
  return out;
}

}  // namespace regmill::script
