#include "readers/svd/svd_inheritance.h"

#include <cstring>
#include <vector>

namespace regmill {

TextValue Derivation::text(SVDTag tag) const {
  TextValue value = own.text(tag);
  return value.empty() ? base.text(tag) : value;
}

const XMLElement* Derivation::element(SVDTag tag) const {
  const XMLElement* found = own.find(tag);
  return found == nullptr ? base.find(tag) : found;
}

const XMLElement* DerivationIndex::nextInChain(const XMLElement* element) {
  for (const XMLAttribute* attribute = element->attributes(); attribute != nullptr; attribute = attribute->next)
    if (std::strcmp(attribute->name, "derivedFrom") == 0)
      return search_.find(element, attribute->value == nullptr ? "" : attribute->value);
  return nullptr;
}

// A chain is a path through elements that each name at most one next element. From
// a start S it either reaches an element without a next one (the end and base of S),
// or runs into a cycle: entered from outside at element E, the walk goes round once
// and stops before E again, so it ends at E's predecessor in the cycle; started on
// the cycle itself, it ends at the predecessor of S. `arrival` records, per element,
// where a chain arriving there ends, which is the same for every start outside the
// element's cycle and, for an element on a cycle, its predecessor.
// Back at an element of the walk under way: the walk from `first` on is a cycle, and
// a chain that enters it at one of its elements ends at that element's predecessor.
void DerivationIndex::closeCycle(const std::vector<const XMLElement*>& walk, size_t first) {
  for (size_t i = first; i < walk.size(); ++i) chains_[walk[i]].arrival = walk[i == first ? walk.size() - 1 : i - 1];
}

const DerivationIndex::ChainEnd& DerivationIndex::followChain(const XMLElement* element) {
  std::vector<const XMLElement*> walk;
  const XMLElement* current = element;
  const XMLElement* stoppedAt = nullptr;  // an element whose end was known before
  while (true) {
    auto [entry, isNew] = chains_.try_emplace(current);
    ChainEnd& state = entry->second;
    if (!isNew && state.walkIndex >= 0) {
      closeCycle(walk, static_cast<size_t>(state.walkIndex));
      break;
    }
    if (!isNew) {
      stoppedAt = current;
      break;
    }
    state.walkIndex = static_cast<int32_t>(walk.size());
    walk.push_back(current);
    const XMLElement* next = nextInChain(current);
    if (next == nullptr) {
      state.arrival = current;
      break;
    }
    state.hasNext = true;
    current = next;
  }
  // The elements in front of the cycle or of a known end arrive where their next one does.
  const XMLElement* following = stoppedAt;
  for (size_t i = walk.size(); i-- > 0;) {
    ChainEnd& state = chains_[walk[i]];
    if (state.arrival == nullptr) state.arrival = chains_[following].arrival;
    state.walkIndex = -1;
    following = walk[i];
  }
  return chains_[element];
}

const XMLElement* DerivationIndex::resolveDerived(const XMLElement* element) {
  if (element == nullptr) return nullptr;
  const XMLElement* next = nextInChain(element);
  // Most chains have one step; only longer ones are worked out and remembered.
  if (next == nullptr || !next->hasAttribute("derivedFrom")) return next;
  const ChainEnd& end = followChain(element);
  return end.hasNext ? end.arrival : nullptr;
}

ChildTable DerivationIndex::tableOf(const XMLElement* base) {
  // A small base is read again at less cost than keeping its table.
  constexpr size_t kKeptFromChildren = 64;
  auto kept = largeBaseTables_.find(base);
  if (kept != largeBaseTables_.end()) return kept->second;
  ChildTable table(base);
  if (table.childCount() > kKeptFromChildren) largeBaseTables_.emplace(base, table);
  return table;
}

Derivation DerivationIndex::derive(const XMLElement* element) {
  Derivation derivation{ChildTable(element), ChildTable()};
  if (const XMLElement* base = resolveDerived(element)) derivation.base = tableOf(base);
  return derivation;
}

}  // namespace regmill
