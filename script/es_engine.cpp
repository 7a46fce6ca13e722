#include "script/es_engine.h"

#include <memory>

namespace regmill::script {

namespace {

// The number a canonical decimal text stands for (no sign, no leading zero unless
// the text is "0"), up to the largest array index; else -1.
int64_t canonicalArrayIndex(const QString& text) {
  if (text.isEmpty() || text.size() > 10) return -1;
  if (text.size() > 1 && text[0] == u'0') return -1;
  int64_t value = 0;
  for (QChar c : text) {
    if (c < u'0' || c > u'9') return -1;
    value = value * 10 + (c.unicode() - u'0');
  }
  return value <= 2147483646 ? value : -1;
}

}  // namespace

ESEngine::ESEngine() {
  for (int i = 0; i < 1024; ++i) smallIntegers_[i] = intern(QString::number(i));
  names_.length = intern(QStringLiteral("length"));
  names_.prototype = intern(QStringLiteral("prototype"));
  names_.null = intern(QStringLiteral("null"));
  names_.trueName = intern(QStringLiteral("true"));
  names_.falseName = intern(QStringLiteral("false"));
  names_.eval = intern(QStringLiteral("eval"));
  names_.arguments = intern(QStringLiteral("arguments"));
  names_.callee = intern(QStringLiteral("callee"));
  names_.constructor = intern(QStringLiteral("constructor"));
  names_.index = intern(QStringLiteral("index"));
  names_.valueOf = intern(QStringLiteral("valueOf"));
  names_.toString = intern(QStringLiteral("toString"));
  names_.message = intern(QStringLiteral("message"));
  names_.name = intern(QStringLiteral("name"));
  names_.fileName = intern(QStringLiteral("fileName"));
  names_.lineNumber = intern(QStringLiteral("lineNumber"));
  names_.sourceLine = intern(QStringLiteral("sourceLine"));
}

ESAtom* ESEngine::intern(const QString& text) {
  auto found = byText_.constFind(text);
  if (found != byText_.constEnd()) return found.value();
  auto atom = std::make_unique<ESAtom>(ESAtom{uint32_t(atoms_.size()), text, canonicalArrayIndex(text)});
  ESAtom* result = atom.get();
  atoms_.push_back(std::move(atom));
  byText_.insert(text, result);
  if (result->arrayIndex >= 0) byIndex_.emplace(result->arrayIndex, result);
  return result;
}

ESAtom* ESEngine::indexAtom(uint64_t index) {
  if (index < 1024) return smallIntegers_[index];
  if (ESAtom* found = findIndexAtom(index)) return found;
  return intern(QString::number(index));
}

ESAtom* ESEngine::findIndexAtom(uint64_t index) const {
  if (index < 1024) return smallIntegers_[index];
  if (index <= 2147483646) {
    auto found = byIndex_.find(int64_t(index));
    return found == byIndex_.end() ? nullptr : found->second;
  }
  return byText_.value(QString::number(index), nullptr);
}

ESAtom* ESEngine::freshName() { return intern(QStringLiteral("CG") + QString::number(freshCounter_++)); }

}  // namespace regmill::script
