// Macro maps and macro strings. A macro string is the text form of a list and of a
// macro map: ";" ends an entry unless a "\" escapes it, a "\" takes the next
// character literally (one at the very end stays), and empty entries are dropped
// unless the caller keeps them. Read as a map, each entry is split at its first "=".
#pragma once
#include <QMap>
#include <QString>
#include <QStringList>

namespace regmill {

// Macro names to values; names are case-sensitive.
using MacroMap = QMap<QString, QString>;

QStringList splitMacroString(const QString& text, bool keepEmpty = false);

// Entry by entry: the name before the first "=", the value behind it (empty without
// "="); a later entry of the same name wins.
MacroMap parseMacroString(const QString& text);

// Each entry as its name with surrounding white space stripped, "=" and its value,
// joined by ";". A ";" or "\" in a name or value is escaped, so that the text reads
// back as the same map.
QString macroStringFromMap(const MacroMap& map);

// The entries joined by ";", each ";" and "\" in them escaped: the inverse of
// splitMacroString for entries that are not empty.
QString joinMacroString(const QStringList& entries);

}  // namespace regmill
