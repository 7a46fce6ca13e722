// Expression: a node of the tree that the grammar builds. A node owns its
// children; it reaches symbols, registers and memory only through its parser,
// which outlives the tree.
#pragma once
#include <QString>
#include <cstdint>
#include <memory>

#include "expr/expr_value.h"

namespace regmill {

class ExpressionParser;

class Expression {
 public:
  virtual ~Expression();
  Expression(const Expression&) = delete;
  Expression& operator=(const Expression&) = delete;

  virtual ExprValue evaluate() const = 0;
  // A text of the tree, for debugging.
  virtual QString toString() const = 0;
  // Gives every identifier called name in the subtree the number value.
  virtual void bindIdentifier(const QString& name, uint64_t value);
  // A deep copy; only nodes that can stand on the left of an assignment (and
  // constants) have one, the others throw "cannot duplicate expression".
  virtual std::unique_ptr<Expression> clone() const;

  // Levels of the tree below and including this node; the grammar bounds it so
  // that every walk over a tree stays within a small stack.
  int height() const { return height_; }
  ExpressionParser& parser() const { return *parser_; }

 protected:
  explicit Expression(ExpressionParser& parser, int height = 1) : parser_(&parser), height_(height) {}

 private:
  ExpressionParser* parser_;
  int height_;
};

// True for an Object value that has an object behind it.
inline bool isObject(const ExprValue& value) { return value.kind == ExprKind::Object && value.object != nullptr; }

}  // namespace regmill
