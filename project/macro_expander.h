// The macro expander: the one application-wide object that replaces references of
// the form $(name), $(name:default) and $(name::literal) in a text. It holds the
// system macros (filled at start-up) and the global macros (set by the user and by
// packages; an entry there hides the system macro of the same name). The date and
// time macros are computed at the moment they are expanded.
#pragma once
#include <QDateTime>
#include <QString>
#include <functional>

#include "project/macro_map.h"

namespace regmill {

class MacroExpander {
 public:
  MacroExpander();

  MacroMap& systemMacros() { return systemMacros_; }
  MacroMap& globalMacros() { return globalMacros_; }
  const MacroMap& systemMacros() const { return systemMacros_; }
  const MacroMap& globalMacros() const { return globalMacros_; }
  QChar macroCharacter() const { return macroCharacter_; }

  // Replaces every reference: a name is looked up in `map`, then in the global
  // macros when `useGlobal`, then in the system macros when `useSystem`. An unknown
  // macro gives its default, or stays in the text when it has none. "$$" gives "$".
  QString expand(const MacroMap& map, const QString& text, bool useGlobal, bool useSystem) const;
  QString expandGlobal(const QString& text) const { return expand({}, text, true, true); }
  QString expandSystem(const QString& text) const { return expand({}, text, false, true); }

  // Global macros first, then system macros; a null string if neither has it.
  QString macroValue(const QString& name) const;

  // The value of a date or time macro now; a null string for any other name.
  QString dateMacroValue(const QString& name) const;

  // The path written as "$(name)/relative", or "$(name)" for the macro's own
  // directory, when the path lies at or below the macro's value. For a file the
  // directory is compared and the file name put behind. False, with the path left
  // as it is, when the macro is unknown or the path lies elsewhere.
  bool abbreviatePath(const QString& name, QString& path, bool isFile = false) const;

  // Where "now" comes from; tests fix it.
  void setClock(std::function<QDateTime()> clock) { clock_ = std::move(clock); }

 private:
  // One pass over the text. `sawNestedMacro` tells whether a reference held a
  // macro character that a further pass might expand; false is returned, and the
  // output is not to be used, when the output outgrew the expansion limit.
  bool expandOnce(const MacroMap& map, const QString& text, bool useGlobal, bool useSystem, QString& output,
                  bool& sawNestedMacro) const;
  // The value of a name in the maps chosen, or a null string.
  QString lookUp(const MacroMap& map, const QString& name, bool useGlobal, bool useSystem) const;

  MacroMap systemMacros_;
  MacroMap globalMacros_;
  QChar macroCharacter_ = u'$';
  std::function<QDateTime()> clock_;
};

// The application's expander, made at first use.
MacroExpander& macroExpander();

}  // namespace regmill
