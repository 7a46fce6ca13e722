// The find engine of a text editor: a find text becomes an expression, matched line
// by line forwards or backwards with whole words, wrap and status reports; replace and
// mark walk a scope once. The last search's settings stay for findNext and replaceNext.
#pragma once
#include <QRegExp>
#include <QString>
#include <cstdint>
#include <utility>
#include <vector>

#include "editor/code_buffer_position.h"

namespace regmill {

class CodeEdit;

enum FindOption : uint32_t {
  kFindRegularExpression = 1,
  kFindWholeWord = 2,
  kFindCaseSensitive = 4,
  kFindBackwards = 8,
  kFindReport = 16,   // report in the status line
  kFindWrap = 32,     // go on from the other end of the document
  kFindFromGivenPosition = 64,
  kFindGreedy = 256,  // with a regular expression: match greedily
};

struct FindParameters {
  uint32_t options = 0;
  QString findText;
  QString replacement;
};

// One match on one line.
struct LineMatch {
  int column = -1;
  int length = 0;
  bool found() const { return column >= 0; }
};

class TextFinder {
 public:
  explicit TextFinder(CodeEdit& editor) : editor_(editor) {}

  // Without the regular-expression option the find text matches literally; matching is
  // minimal unless the expression is asked to be greedy.
  static QRegExp buildExpression(const QString& findText, uint32_t options);
  // The first match from `from` in the search's direction; an empty match doesn't
  // count, and with the whole-word option neither does one with a letter, digit or
  // "_" just before or behind it. `expression` keeps the match's captures.
  static LineMatch matchInLine(QRegExp& expression, const QString& line, int from, uint32_t options);
  // The replacement with "\0" to "\9" taken from the captures (regular expressions only).
  static QString expandReplacement(const QString& replacement, const QRegExp& expression, uint32_t options);

  // Selects the match, caret at its end; false when there is none.
  bool find(CodeBufferPosition start, const QString& findText, const FindParameters& parameters);
  bool findNext() { return findAgain(false); }
  bool findPrev() { return findAgain(true); }
  bool findNextSelected();
  bool findPrevSelected();
  void replaceNext();
  // The count of replacements; the scope is the selection when `selectionOnly`.
  int replaceAll(const FindParameters& parameters, bool selectionOnly);
  // Lines (counted from 0) with a match, once per match, for the bookmark list.
  std::vector<int> markAll(const FindParameters& parameters, bool selectionOnly);

  const FindParameters& lastSearch() const { return last_; }

  // Incremental search: each text searches again, forwards with wrap, from where the
  // search started, and a text that isn't found puts the caret back there. Ending it
  // keeps the last text for findNext.
  void startIncremental();
  bool searchIncrementally(const QString& text);
  void endIncremental() { incremental_ = false; }
  bool isIncremental() const { return incremental_; }

 private:
  bool findAgain(bool backwards);
  // Scrolls the view so that a found line shows.
  void bringIntoView(int line);
  bool selectedAsFindText();
  // Calls `onMatch(line, match)` for each match in the scope from left to right; it
  // gives the column where the search goes on.
  template <class OnMatch>
  int walkScope(const FindParameters& parameters, bool selectionOnly, OnMatch onMatch);

  CodeEdit& editor_;
  FindParameters last_;
  QRegExp expression_;
  bool incremental_ = false;
  CodeBufferPosition incrementalOrigin_;
};

}  // namespace regmill
