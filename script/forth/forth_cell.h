// The value of a stack cell and the exception that every failing word raises.
// A cell carries its type, so that a word meant for integers can refuse a float.
#pragma once
#include <QString>
#include <cstdint>
#include <utility>

namespace regmill::forth {

struct Cell {
  static constexpr int32_t kInteger = 3;
  static constexpr int32_t kFloating = 4;

  int32_t type = kInteger;
  int64_t integer = 0;
  double floating = 0;
  QString text;

  static Cell ofInteger(int64_t value) { return Cell{kInteger, value, 0, {}}; }
  static Cell ofFloating(double value) { return Cell{kFloating, 0, value, {}}; }
};

// A numbered THROW code and an optional text that names what failed (a word, a name).
struct ForthException {
  explicit ForthException(int32_t throwCode, QString what = {}) : code(throwCode), text(std::move(what)) {}
  int32_t code;
  QString text;
};

// The message of a THROW code: the table's text, with the exception's text behind
// ": ", or the exception's text alone where the table has none for the code.
QString throwText(int32_t code, const QString& text = {});

}  // namespace regmill::forth
