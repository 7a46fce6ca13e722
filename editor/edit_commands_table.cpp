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
    {17, "copy", &E::copy},
    {18, "copyAppend", &E::copyAppend},
    {19, "copyLines", &E::copyLines},
    {20, "copyLinesAppend", &E::copyLinesAppend},
    {30, "paste", &E::paste},
    {31, "pasteAsString", &E::pasteAsString},
    {32, "pasteAsComment", &E::pasteAsComment},
    {33, "pasteAsHTML", &E::pasteAsHTML},
    {34, "pasteAll", &E::pasteAll},
    {35, "convertToString", &E::convertToString},
    {36, "convertToHTML", &E::convertToHTML},
    {9, "deleteWordLeft", &E::deleteWordLeft},
    {10, "deleteWordRight", &E::deleteWordRight},
    {41, "undo", &E::undo},
    {42, "redo", &E::redo},
    {43, "undoAll", &E::undoAll},
    {44, "redoAll", &E::redoAll},
    {45, "enter", &E::enter},
    {48, "charLeft", &E::charLeft},
    {51, "charRight", &E::charRight},
    {54, "wordLeft", &E::wordLeft},
    {56, "wordRight", &E::wordRight},
    {58, "lineUp", &E::lineUp},
    {62, "lineDown", &E::lineDown},
    {66, "lineStartToggle", &E::lineStartToggle},
    {68, "lineEnd", &E::lineEnd},
    {73, "commentSelection", &E::commentSelection},
    {74, "uncommentSelection", &E::uncommentSelection},
    {75, "sortAscending", &E::sortAscending},
    {76, "sortDescending", &E::sortDescending},
    {81, "documentStart", &E::documentStart},
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
    {110, "deleteLine", &E::deleteLine},
    {111, "deleteWord", &E::deleteWord},
    {112, "deleteStartOfLine", &E::deleteStartOfLine},
    {113, "deleteEndOfLine", &E::deleteEndOfLine},
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
