// A place in a text document: a line and a column, both counted from 0. Positions
// order by line and then by column; a negative line or column means no position.
#pragma once
#include <compare>
#include <cstdint>

namespace regmill {

struct CodeBufferPosition {
  int32_t line = -1;
  int32_t column = -1;

  constexpr CodeBufferPosition() = default;
  constexpr CodeBufferPosition(int32_t lineNumber, int32_t columnNumber) : line(lineNumber), column(columnNumber) {}

  constexpr bool isValid() const { return line >= 0 && column >= 0; }
  constexpr auto operator<=>(const CodeBufferPosition&) const = default;
};

}  // namespace regmill
