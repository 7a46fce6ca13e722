#include "project/macro_expander.h"

#include <QDir>
#include <QFileInfo>
#include <QLocale>
#include <vector>

namespace regmill {

namespace {

struct DateMacro {
  const char16_t* name;
  const char16_t* format;  // empty for the seconds since the epoch
};

// Month names are those of the C locale, whatever the user's locale is, so that a
// date written into a file does not depend on where it was built.
constexpr DateMacro kDateMacros[] = {
    {u"Date", u"d MMMM yyyy"}, {u"DateYear", u"yyyy"},   {u"DateMonth", u"MM"},
    {u"DateDay", u"dd"},       {u"Time", u"hh:mm:ss"},   {u"TimeHour", u"hh"},
    {u"TimeMinute", u"mm"},    {u"TimeSecond", u"ss"},   {u"UnixTime", u""},
};

// A default that holds a macro asks for another pass; a text that keeps changing
// without end (two macros that name each other) stops after this many passes or
// once the passes together have read this many characters, and an expansion that
// grows past the size limit stops with the text of the pass before.
constexpr int kMaximumPasses = 64;
constexpr qsizetype kMaximumExpansionLength = qsizetype{1} << 18;
constexpr qsizetype kMaximumCharactersRead = qsizetype{1} << 20;

}  // namespace

MacroExpander::MacroExpander() : clock_([] { return QDateTime::currentDateTime(); }) {
  // The date and time macros are system macros: they expand wherever the system
  // macros are looked at, with the value of the moment.
  for (const DateMacro& macro : kDateMacros) systemMacros_.insert(QString::fromUtf16(macro.name), QString(""));
}

MacroExpander& macroExpander() {
  static MacroExpander expander;
  return expander;
}

QString MacroExpander::dateMacroValue(const QString& name) const {
  // Every date macro's name begins with one of these; most names are passed over here.
  if (!name.startsWith(u"Date") && !name.startsWith(u"Time") && name != u"UnixTime") return QString();
  for (const DateMacro& macro : kDateMacros) {
    if (name != QStringView(macro.name)) continue;
    const QDateTime now = clock_();
    if (macro.format[0] == u'\0') return QString::number(now.toSecsSinceEpoch());
    return QLocale::c().toString(now, QString::fromUtf16(macro.format));
  }
  return QString();
}

QString MacroExpander::macroValue(const QString& name) const {
  auto global = globalMacros_.constFind(name);
  if (global != globalMacros_.constEnd()) return global.value();
  auto system = systemMacros_.constFind(name);
  if (system != systemMacros_.constEnd()) return system.value();
  return QString();
}

QString MacroExpander::lookUp(const MacroMap& map, const QString& name, bool useGlobal, bool useSystem) const {
  QString value;
  auto local = map.constFind(name);
  if (local != map.constEnd()) {
    value = local.value();
  } else if (auto global = globalMacros_.constFind(name); useGlobal && global != globalMacros_.constEnd()) {
    value = global.value();
  } else if (auto system = systemMacros_.constFind(name); useSystem && system != systemMacros_.constEnd()) {
    value = system.value();
  } else {
    return QString();
  }
  // A date or time macro that was found is computed now, whatever the map holds.
  QString date = dateMacroValue(name);
  if (!date.isNull()) return date;
  return value.isNull() ? QString("") : value;
}

namespace {

// For each "(" the position of its matching ")", or -1; and the count of macro
// characters before each position. Both are made in one pass, so that a pass over
// a text with many unclosed references stays linear.
struct Parentheses {
  std::vector<qsizetype> closing;
  std::vector<qsizetype> macrosBefore;
};

Parentheses matchParentheses(const QString& text, QChar macroCharacter) {
  const qsizetype length = text.size();
  Parentheses result{std::vector<qsizetype>(size_t(length), -1), std::vector<qsizetype>(size_t(length) + 1, 0)};
  std::vector<qsizetype> open;
  for (qsizetype at = 0; at < length; ++at) {
    const QChar c = text[at];
    result.macrosBefore[size_t(at) + 1] = result.macrosBefore[size_t(at)] + (c == macroCharacter ? 1 : 0);
    if (c == u'(') {
      open.push_back(at);
    } else if (c == u')' && !open.empty()) {
      result.closing[size_t(open.back())] = at;
      open.pop_back();
    }
  }
  return result;
}

}  // namespace

bool MacroExpander::expandOnce(const MacroMap& map, const QString& text, bool useGlobal, bool useSystem,
                               QString& output, bool& sawNestedMacro) const {
  const qsizetype length = text.size();
  const Parentheses parentheses = matchParentheses(text, macroCharacter_);
  output.clear();
  output.reserve(length);
  sawNestedMacro = false;
  qsizetype at = 0;
  while (at < length) {
    const QChar c = text[at];
    if (c != macroCharacter_) {
      output += c;
      ++at;
      continue;
    }
    if (at + 1 >= length || text[at + 1] != u'(') {
      output += c;
      // "$$" gives one "$".
      at += (at + 1 < length && text[at + 1] == macroCharacter_) ? 2 : 1;
      continue;
    }
    const qsizetype close = parentheses.closing[size_t(at) + 1];
    if (close < 0) {
      // No ")": the macro character is dropped and the "(" read as plain text.
      ++at;
      continue;
    }
    const qsizetype referenceStart = at + 2;
    const QString reference = text.mid(referenceStart, close - referenceStart);
    if (parentheses.macrosBefore[size_t(close)] > parentheses.macrosBefore[size_t(referenceStart)]) sawNestedMacro = true;
    QString name = reference;
    QString fallback;
    const qsizetype colon = reference.indexOf(u':');
    if (colon < 0) {
      // An unknown macro stays in the text, so that another map may replace it later.
      fallback = text.mid(at, close + 1 - at);
    } else {
      name = reference.left(colon);
      if (colon + 1 < reference.size() && reference[colon + 1] == u':') {
        // "::" makes the default a literal: no further pass for what was seen so far.
        fallback = reference.mid(colon + 2);
        sawNestedMacro = false;
      } else {
        fallback = reference.mid(colon + 1);
      }
    }
    const QString value = lookUp(map, name, useGlobal, useSystem);
    output += value.isNull() ? fallback : value;
    if (output.size() > kMaximumExpansionLength) return false;
    at = close + 1;
  }
  return true;
}

QString MacroExpander::expand(const MacroMap& map, const QString& text, bool useGlobal, bool useSystem) const {
  if (!text.contains(macroCharacter_)) return text;
  QString input = text;
  QString output;
  qsizetype read = 0;
  for (int pass = 0; pass < kMaximumPasses && read <= kMaximumCharactersRead; ++pass) {
    read += input.size();
    bool sawNestedMacro = false;
    if (!expandOnce(map, input, useGlobal, useSystem, output, sawNestedMacro)) return input;
    // A pass that leaves the text as it was has reached the fixed point.
    if (!sawNestedMacro || output == input) return output;
    std::swap(input, output);
  }
  return input;
}

bool MacroExpander::abbreviatePath(const QString& name, QString& path, bool isFile) const {
  const QString base = macroValue(name);
  if (base.isEmpty()) return false;
  const QFileInfo target(path);
  const QString compared = isFile ? target.absolutePath() : target.absoluteFilePath();
  QString relative = QDir(base).relativeFilePath(compared);
  if (relative == ".") relative.clear();
  if (relative.startsWith("..") || QDir::isAbsolutePath(relative)) return false;
  QString result = QString("$(") + name + ")";
  if (!relative.isEmpty()) result += "/" + relative;
  if (isFile) result += "/" + target.fileName();
  path = result;
  return true;
}

}  // namespace regmill
