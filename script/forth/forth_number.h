// The number syntax of the word interpreter: a float needs an exponent letter
// ("1E", "-2.5e3"); an integer has an optional sign, an optional base prefix ($ hex,
// % binary, # decimal) and digits of that base, letters counting from 10.
#pragma once
#include <QStringView>
#include <cstdint>

namespace regmill::forth {

struct Number {
  enum class Kind {
    None,        // not a number at all
    DoubleCell,  // digits with one '.', which this interpreter does not support
    Integer,
    Floating,
  };
  Kind kind = Kind::None;
  int64_t integer = 0;  // all 64 bits; the interpreter cuts it where it must
  double floating = 0;
};

Number convertNumber(QStringView text);

}  // namespace regmill::forth
