// Readable failure output for Qt strings in GoogleTest assertions.
#pragma once
#include <QString>
#include <QStringList>
#include <ostream>

inline void PrintTo(const QString& text, std::ostream* out) { *out << '"' << text.toStdString() << '"'; }
inline void PrintTo(const QStringList& list, std::ostream* out) {
  *out << '{';
  for (const QString& text : list) *out << " \"" << text.toStdString() << '"';
  *out << " }";
}
