// The commands by number, for playing recorded keystrokes, and by name, for batch runs.
#include <QHash>

#include "editor/edit_commands.h"

namespace regmill {

namespace {

struct NamedSlot {
  int number;  // 0: the command has no number and isn't recorded by one
  const char* name;
  EditCommands::Slot slot;
};

using E = EditCommands;
const NamedSlot kSlots[] = {
    {7, "deleteBack", &E::deleteBack},
    {8, "deleteForward", &E::deleteForward},
    {11, "cut", &E::cut},
    {12, "cutAppend", &E::cutAppend},
    {13, "cutLines", &E::cutLines},
    {14, "cutLinesAppend", &E::cutLinesAppend},
    {15, "cutMarked", &E::cutMarked},
    {16, "cutMarkedAppend", &E::cutMarkedAppend},
    {17, "copy", &E::copy},
    {18, "copyAppend", &E::copyAppend},
    {19, "copyLines", &E::copyLines},
    {20, "copyLinesAppend", &E::copyLinesAppend},
    {21, "copyMarked", &E::copyMarked},
    {22, "copyMarkedAppend", &E::copyMarkedAppend},
    {30, "paste", &E::paste},
    {31, "pasteAsString", &E::pasteAsString},
    {32, "pasteAsComment", &E::pasteAsComment},
    {33, "pasteAsHTML", &E::pasteAsHTML},
    {34, "pasteAll", &E::pasteAll},
    {35, "convertToString", &E::convertToString},
    {36, "convertToHTML", &E::convertToHTML},
    {37, "topOfWindow", &E::topOfWindow},
    {38, "topOfWindowExtend", &E::topOfWindowExtend},
    {39, "bottomOfWindow", &E::bottomOfWindow},
    {40, "bottomOfWindowExtend", &E::bottomOfWindowExtend},
    {9, "deleteWordLeft", &E::deleteWordLeft},
    {10, "deleteWordRight", &E::deleteWordRight},
    {41, "undo", &E::undo},
    {42, "redo", &E::redo},
    {43, "undoAll", &E::undoAll},
    {44, "redoAll", &E::redoAll},
    {45, "enter", &E::enter},
    {46, "breakLine", &E::breakLine},
    {47, "downLine", &E::downLine},
    {48, "charLeft", &E::charLeft},
    {49, "charLeftExtend", &E::charLeftExtend},
    {50, "charLeftBlockExtend", &E::charLeftBlockExtend},
    {51, "charRight", &E::charRight},
    {52, "charRightExtend", &E::charRightExtend},
    {53, "charRightBlockExtend", &E::charRightBlockExtend},
    {54, "wordLeft", &E::wordLeft},
    {55, "wordLeftExtend", &E::wordLeftExtend},
    {56, "wordRight", &E::wordRight},
    {57, "wordRightExtend", &E::wordRightExtend},
    {58, "lineUp", &E::lineUp},
    {59, "lineUpExtend", &E::lineUpExtend},
    {60, "lineUpBlockExtend", &E::lineUpBlockExtend},
    {61, "lineUpChunk", &E::lineUpChunk},
    {62, "lineDown", &E::lineDown},
    {63, "lineDownExtend", &E::lineDownExtend},
    {64, "lineDownBlockExtend", &E::lineDownBlockExtend},
    {65, "lineDownChunk", &E::lineDownChunk},
    {66, "lineStartToggle", &E::lineStartToggle},
    {67, "lineStartToggleExtend", &E::lineStartToggleExtend},
    {68, "lineEnd", &E::lineEnd},
    {69, "lineEndExtend", &E::lineEndExtend},
    {70, "lineIndent", &E::lineIndent},
    {71, "lineOutdent", &E::lineOutdent},
    {72, "lineNextEnd", &E::lineNextEnd},
    {73, "commentSelection", &E::commentSelection},
    {74, "uncommentSelection", &E::uncommentSelection},
    {75, "sortAscending", &E::sortAscending},
    {76, "sortDescending", &E::sortDescending},
    {77, "pageUp", &E::pageUp},
    {78, "pageUpExtend", &E::pageUpExtend},
    {79, "pageDown", &E::pageDown},
    {80, "pageDownExtend", &E::pageDownExtend},
    {81, "documentStart", &E::documentStart},
    {82, "documentStartExtend", &E::documentStartExtend},
    {83, "documentEndExtend", &E::documentEndExtend},
    {84, "documentEnd", &E::documentEnd},
    {85, "selectAll", &E::selectAll},
    {86, "selectLine", &E::selectLine},
    {87, "selectWord", &E::selectWord},
    {88, "tab", &E::tab},
    {89, "backtab", &E::backtab},
    {90, "tabify", static_cast<E::Slot>(&E::tabify)},
    {91, "untabify", static_cast<E::Slot>(&E::untabify)},
    {92, "uppercase", &E::uppercase},
    {93, "lowercase", &E::lowercase},
    {94, "uppercaseHex", &E::uppercaseHex},
    {95, "switchcase", &E::switchcase},
    {96, "alignLeft", &E::alignLeft},
    {97, "alignRight", &E::alignRight},
    {98, "center", &E::center},
    {99, "insertLineAbove", &E::insertLineAbove},
    {100, "insertLineBelow", &E::insertLineBelow},
    {101, "bookmarkToggle", &E::bookmarkToggle},
    {102, "bookmarkNext", &E::bookmarkNext},
    {103, "bookmarkPrev", &E::bookmarkPrev},
    {104, "bookmarkFirst", &E::bookmarkFirst},
    {105, "bookmarkLast", &E::bookmarkLast},
    {106, "bookmarkClearAll", &E::bookmarkClearAll},
    {107, "overwriteToggle", &E::overwriteToggle},
    {108, "matchDelimiter", &E::matchDelimiter},
    {109, "matchDelimiterExtend", &E::matchDelimiterExtend},
    {110, "deleteLine", &E::deleteLine},
    {111, "deleteWord", &E::deleteWord},
    {112, "deleteStartOfLine", &E::deleteStartOfLine},
    {113, "deleteEndOfLine", &E::deleteEndOfLine},
    {114, "deleteSentence", &E::deleteSentence},
    {116, "transposeLines", &E::transposeLines},
    {117, "transposeWords", &E::transposeWords},
    {0, "swapCommentSelection", &E::swapCommentSelection},
    {0, "camelcase", &E::camelcase},
    {0, "splitcase", &E::splitcase},
    {0, "duplicateLine", &E::duplicateLine},
    {0, "moveSelectedLineUp", &E::moveSelectedLineUp},
    {0, "moveSelectedLineDown", &E::moveSelectedLineDown},
    {0, "columnize", &E::columnize},
    {0, "columnTidy", &E::columnTidy},
    {0, "deleteTrailingWhitespace", &E::deleteTrailingWhitespace},
    {0, "cycleClipboardRing", &E::cycleClipboardRing},
    {0, "findNextFunction", &E::findNextFunction},
    {0, "findPrevFunction", &E::findPrevFunction},
    {0, "tidyDocument", &E::tidyDocument},
    {0, "findIncremental", &E::findIncremental},
    {0, "findIncrementalDialogClosed", &E::findIncrementalDialogClosed},
};

}  // namespace

bool EditCommands::runCommand(int number, const QString& text) {
  switch (number) {
    case 131: typeText(text); return true;
    case 132: overwriteText(text); return true;
  }
  for (const NamedSlot& entry : kSlots) {
    if (entry.number == number && number > 0) {
      (this->*entry.slot)();
      return true;
    }
  }
  return false;
}

EditCommands::Slot EditCommands::slotNamed(const QString& name) {
  for (const NamedSlot& entry : kSlots)
    if (name == QLatin1String(entry.name)) return entry.slot;
  return nullptr;
}

QStringList EditCommands::slotNames() {
  QStringList names;
  for (const NamedSlot& entry : kSlots) names.append(QString::fromLatin1(entry.name));
  return names;
}

}  // namespace regmill
