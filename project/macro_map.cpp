#include "project/macro_map.h"

namespace regmill {

QStringList splitMacroString(const QString& text, bool keepEmpty) {
  QStringList entries;
  QString entry;
  const qsizetype length = text.size();
  for (qsizetype at = 0; at < length; ++at) {
    const QChar c = text[at];
    if (c == u'\\') {
      if (at + 1 < length)
        entry += text[++at];
      else
        entry += c;  // a backslash at the very end stays as it is
    } else if (c == u';') {
      if (keepEmpty || !entry.isEmpty()) entries.append(entry);
      entry.clear();
    } else {
      entry += c;
    }
  }
  if (keepEmpty || !entry.isEmpty()) entries.append(entry);
  return entries;
}

MacroMap parseMacroString(const QString& text) {
  MacroMap map;
  for (const QString& entry : splitMacroString(text)) {
    const qsizetype equals = entry.indexOf(u'=');
    if (equals < 0)
      map.insert(entry, QString(""));
    else
      map.insert(entry.left(equals), entry.mid(equals + 1));
  }
  return map;
}

namespace {

void appendEscaped(QString& out, const QString& text) {
  for (QChar c : text) {
    if (c == u';' || c == u'\\') out += u'\\';
    out += c;
  }
}

}  // namespace

QString macroStringFromMap(const MacroMap& map) {
  QString out;
  for (auto entry = map.constBegin(); entry != map.constEnd(); ++entry) {
    if (!out.isEmpty()) out += u';';
    appendEscaped(out, entry.key().trimmed());
    out += u'=';
    appendEscaped(out, entry.value());
  }
  return out;
}

QString joinMacroString(const QStringList& entries) {
  QString out;
  for (qsizetype index = 0; index < entries.size(); ++index) {
    if (index != 0) out += u';';
    appendEscaped(out, entries[index]);
  }
  return out;
}

}  // namespace regmill
