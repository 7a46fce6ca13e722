#include "expr/token_pattern.h"

#include <algorithm>

namespace regmill {

bool TokenPattern::CharSet::contains(QChar c) const {
  bool found = anyCharacter || (whiteSpace && c.isSpace()) || (digit && c.isDigit());
  for (size_t i = 0; !found && i < ranges.size(); ++i) {
    found = c.unicode() >= ranges[i].first && c.unicode() <= ranges[i].last;
  }
  return found != negated;
}

bool TokenPattern::parseEscape(QChar escaped, CharSet& set) {
  if (escaped == QLatin1Char('s')) {
    set.whiteSpace = true;
  } else if (escaped == QLatin1Char('d')) {
    set.digit = true;
  } else {
    set.ranges.push_back({escaped.unicode(), escaped.unicode()});
  }
  return true;
}

// position is just behind "[" and ends just behind "]".
bool TokenPattern::parseClass(QStringView pattern, qsizetype& position, CharSet& set) {
  if (position < pattern.size() && pattern[position] == QLatin1Char('^')) {
    set.negated = true;
    ++position;
  }
  bool first = true;
  while (position < pattern.size()) {
    QChar c = pattern[position++];
    if (c == QLatin1Char(']') && !first) return true;
    first = false;
    if (c == QLatin1Char('\\')) {
      if (position >= pattern.size()) return false;
      parseEscape(pattern[position++], set);
      continue;
    }
    bool isRange = position + 1 < pattern.size() && pattern[position] == QLatin1Char('-') &&
                   pattern[position + 1] != QLatin1Char(']');
    if (isRange) {
      QChar last = pattern[position + 1];
      if (last < c) return false;
      set.ranges.push_back({c.unicode(), last.unicode()});
      position += 2;
    } else {
      set.ranges.push_back({c.unicode(), c.unicode()});
    }
  }
  return false;  // no closing "]"
}

std::optional<TokenPattern> TokenPattern::compile(QStringView pattern) {
  TokenPattern result;
  qsizetype position = 0;
  while (position < pattern.size()) {
    QChar c = pattern[position++];
    Atom atom;
    if (c == QLatin1Char('[')) {
      if (!parseClass(pattern, position, atom.set)) return std::nullopt;
    } else if (c == QLatin1Char('\\')) {
      if (position >= pattern.size()) return std::nullopt;
      parseEscape(pattern[position++], atom.set);
    } else if (c == QLatin1Char('.')) {
      atom.set.anyCharacter = true;
    } else if (QStringView(u"()|{}^$").contains(c)) {
      return std::nullopt;
    } else {
      // This takes also a "?", "*" or "+" with nothing before it to repeat.
      atom.set.ranges.push_back({c.unicode(), c.unicode()});
    }
    if (position < pattern.size()) {
      QChar quantifier = pattern[position];
      bool quantified = true;
      if (quantifier == QLatin1Char('?')) {
        atom.minimum = 0;
      } else if (quantifier == QLatin1Char('*')) {
        atom.unbounded = true;
        atom.minimum = 0;
      } else if (quantifier == QLatin1Char('+')) {
        atom.unbounded = true;
      } else {
        quantified = false;
      }
      if (quantified) ++position;
    }
    result.atoms_.push_back(std::move(atom));
  }
  result.computeFirstCharacters();
  return result;
}

void TokenPattern::computeFirstCharacters() {
  for (const Atom& atom : atoms_) {
    for (char16_t c = 0; c < 128; ++c) {
      if (atom.set.contains(QChar(c))) firstCharacters_.set(c);
    }
    if (atom.minimum > 0) return;
  }
  firstCharacters_.set();  // the whole pattern may match nothing
}

qsizetype TokenPattern::matchAt(QStringView text, qsizetype position) const {
  if (position < text.size() && text[position].unicode() < 128 && !firstCharacters_.test(text[position].unicode())) {
    return -1;
  }
  qsizetype end = matchFrom(0, text, position);
  return end < 0 ? -1 : end - position;
}

// Backtracking over the atoms. The recursion is as deep as the pattern has atoms,
// and each atom tries its repetitions from the most down to its minimum.
qsizetype TokenPattern::matchFrom(size_t atomIndex, QStringView text, qsizetype position) const {
  if (atomIndex == atoms_.size()) return position;
  const Atom& atom = atoms_[atomIndex];
  const qsizetype rest = text.size() - position;
  const qsizetype maximum = atom.unbounded ? rest : std::min<qsizetype>(rest, 1);
  qsizetype count = 0;
  while (count < maximum && atom.set.contains(text[position + count])) ++count;
  for (; count >= atom.minimum; --count) {
    qsizetype end = matchFrom(atomIndex + 1, text, position + count);
    if (end >= 0) return end;
  }
  return -1;
}

}  // namespace regmill
