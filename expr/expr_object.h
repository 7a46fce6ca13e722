// An object of a parser's world (a symbol, a register, a piece of memory) as a
// value refers to it. The parser that hands one out owns it; values only share
// handles on it, so the object outlives every value that names it.
#pragma once
#include "expr/expr_value.h"

namespace regmill {

class ExprObject {
 public:
  virtual ~ExprObject() = default;
  // What the object holds now; arithmetic works on this, never on the object.
  virtual ExprValue value() = 0;
  virtual bool equals(const ExprObject& other) const = 0;
  virtual void setFromText(const QString& text) = 0;
};

}  // namespace regmill
