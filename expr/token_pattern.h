// TokenPattern: one rule's pattern of the lexer, matched at a fixed position.
// It takes the part of the regular-expression syntax that token rules need: a
// sequence of single characters, "." , escapes (\s white space, \d digit, any
// other escaped character stands for itself) and bracket classes with ranges and
// "^", each optionally followed by "?", "*" or "+" (one of these with nothing
// before it stands for itself). Quantifiers are greedy and give way only as far
// as the rest of the pattern needs.
#pragma once
#include <QString>
#include <QStringView>
#include <bitset>
#include <optional>
#include <vector>

namespace regmill {

class TokenPattern {
 public:
  // No value for a pattern outside that syntax (groups, alternatives, anchors, counts).
  static std::optional<TokenPattern> compile(QStringView pattern);

  // The length of the match that starts exactly at position, or -1 when there is none.
  qsizetype matchAt(QStringView text, qsizetype position) const;

 private:
  struct Range {
    char16_t first;
    char16_t last;
  };
  struct CharSet {
    std::vector<Range> ranges;
    bool anyCharacter = false;
    bool whiteSpace = false;
    bool digit = false;
    bool negated = false;
    bool contains(QChar c) const;
  };
  struct Atom {
    CharSet set;
    int minimum = 1;
    bool unbounded = false;  // "*" and "+"
  };

  static bool parseEscape(QChar escaped, CharSet& set);
  static bool parseClass(QStringView pattern, qsizetype& position, CharSet& set);
  qsizetype matchFrom(size_t atomIndex, QStringView text, qsizetype position) const;
  void computeFirstCharacters();

  std::vector<Atom> atoms_;
  // The ASCII characters a match can begin with, so that most rules are turned
  // down by one look-up; characters beyond ASCII always take the full match.
  std::bitset<128> firstCharacters_;
};

}  // namespace regmill
