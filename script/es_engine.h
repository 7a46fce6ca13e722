// Engine state shared by every context that works together: the atom table with
// its 1024 small integers, the common names, and the counter of the compiler's fresh
// names. It is an object and not a set of process globals, so that two tests (or
// two hosts) do not see each other's atoms; contexts that exchange values must share
// one engine. Not thread-safe: all script work of one engine runs on one thread.
#pragma once
#include <QHash>
#include <QString>
#include <deque>
#include <memory>
#include <unordered_map>

#include "script/es_value.h"

namespace regmill::script {

class ESEngine {
 public:
  ESEngine();
  ESEngine(const ESEngine&) = delete;
  ESEngine& operator=(const ESEngine&) = delete;

  // The atom of the text, made on first use; an atom is never removed or changed.
  ESAtom* intern(const QString& text);
  ESAtom* atomAt(uint32_t index) const { return atoms_[index].get(); }
  uint32_t atomCount() const { return uint32_t(atoms_.size()); }

  // Below 1024 from the prebuilt table; any other index is formatted and interned.
  ESAtom* indexAtom(uint64_t index);
  // The atom of an index if it was ever made, else null: no object can have a
  // property of that name then. Readers of many indexes use it to intern nothing.
  ESAtom* findIndexAtom(uint64_t index) const;

  // A name no script can write: "CG" and a number that grows with every call.
  ESAtom* freshName();

  // The names the engine itself looks up.
  struct Names {
    ESAtom *length, *prototype, *null, *trueName, *falseName, *eval, *arguments, *callee, *constructor, *index,
        *valueOf, *toString, *message, *name, *fileName, *lineNumber, *sourceLine;
  };
  const Names& names() const { return names_; }

 private:
  std::deque<std::unique_ptr<ESAtom>> atoms_;
  QHash<QString, ESAtom*> byText_;  // lookup only: order of the table is creation order
  // Atoms that are array indexes, by their number: indexing by number formats no text.
  std::unordered_map<int64_t, ESAtom*> byIndex_;
  ESAtom* smallIntegers_[1024];
  Names names_;
  uint32_t freshCounter_ = 0;
};

}  // namespace regmill::script
