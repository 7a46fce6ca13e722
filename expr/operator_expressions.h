// The operator nodes: unary and binary operators with a numeric meaning. They
// evaluate their right operand before the left one, never short-circuit, and
// leave the arithmetic itself to value_arithmetic.
#pragma once
#include "expr/expression.h"
#include "expr/value_arithmetic.h"

namespace regmill {

class UnaryExpression : public Expression {
 public:
  QString toString() const override;
  void bindIdentifier(const QString& name, uint64_t value) override;
  const Expression& operand() const { return *operand_; }

 protected:
  UnaryExpression(ExpressionParser& parser, std::unique_ptr<Expression> operand);

 private:
  std::unique_ptr<Expression> operand_;
};

// A unary operator on a dereferenced operand; its text starts with its class name.
class NumericUnaryExpression : public UnaryExpression {
 public:
  ExprValue evaluate() const override;
  QString toString() const override;

 protected:
  NumericUnaryExpression(ExpressionParser& parser, std::unique_ptr<Expression> operand, UnaryOperator op,
                         const char* className)
      : UnaryExpression(parser, std::move(operand)), op_(op), className_(className) {}

 private:
  UnaryOperator op_;
  const char* className_;
};

class LogicalNotExpression : public NumericUnaryExpression {
 public:
  LogicalNotExpression(ExpressionParser& parser, std::unique_ptr<Expression> operand)
      : NumericUnaryExpression(parser, std::move(operand), UnaryOperator::LogicalNot, "LogicalNotExpression") {}
};

class BitNotExpression : public NumericUnaryExpression {
 public:
  BitNotExpression(ExpressionParser& parser, std::unique_ptr<Expression> operand)
      : NumericUnaryExpression(parser, std::move(operand), UnaryOperator::BitNot, "BitNotExpression") {}
};

class NegateExpression : public NumericUnaryExpression {
 public:
  NegateExpression(ExpressionParser& parser, std::unique_ptr<Expression> operand)
      : NumericUnaryExpression(parser, std::move(operand), UnaryOperator::Negate, "NegateExpression") {}
};

class BinaryExpression : public Expression {
 public:
  ~BinaryExpression() override;
  QString toString() const override;
  void bindIdentifier(const QString& name, uint64_t value) override;
  const Expression& left() const { return *left_; }
  const Expression& right() const { return *right_; }

 protected:
  BinaryExpression(ExpressionParser& parser, std::unique_ptr<Expression> left, std::unique_ptr<Expression> right);
  // What toString puts between the operands.
  virtual QString operatorText() const = 0;

 private:
  std::unique_ptr<Expression> left_;
  std::unique_ptr<Expression> right_;
};

// A binary operator whose text between the operands is its class name (or, for
// the plus sign, the sign itself).
class NamedBinaryExpression : public BinaryExpression {
 protected:
  NamedBinaryExpression(ExpressionParser& parser, std::unique_ptr<Expression> left, std::unique_ptr<Expression> right,
                        const char* name)
      : BinaryExpression(parser, std::move(left), std::move(right)), name_(name) {}
  QString operatorText() const override { return QLatin1String(name_); }

 private:
  const char* name_;
};

class ArithmeticExpression : public NamedBinaryExpression {
 public:
  ExprValue evaluate() const override;

 protected:
  ArithmeticExpression(ExpressionParser& parser, std::unique_ptr<Expression> left, std::unique_ptr<Expression> right,
                       ArithmeticOperator op, const char* name)
      : NamedBinaryExpression(parser, std::move(left), std::move(right), name), op_(op) {}

 private:
  ArithmeticOperator op_;
};

// Adds an integer to a pointer or array object by the parser's offsetObject;
// otherwise it is plain addition.
class PlusExpression : public ArithmeticExpression {
 public:
  PlusExpression(ExpressionParser& parser, std::unique_ptr<Expression> left, std::unique_ptr<Expression> right)
      : ArithmeticExpression(parser, std::move(left), std::move(right), ArithmeticOperator::Plus, "+") {}
  ExprValue evaluate() const override;
};

// One class per operator; the class name is also the operator's text.
template <ArithmeticOperator Op>
class ArithmeticNode : public ArithmeticExpression {
 public:
  ArithmeticNode(ExpressionParser& parser, std::unique_ptr<Expression> left, std::unique_ptr<Expression> right)
      : ArithmeticExpression(parser, std::move(left), std::move(right), Op, className()) {}

 private:
  static constexpr const char* className() {
    switch (Op) {
      case ArithmeticOperator::Minus: return "MinusExpression";
      case ArithmeticOperator::Multiply: return "MultiplyExpression";
      case ArithmeticOperator::Divide: return "DivideExpression";
      case ArithmeticOperator::Mod: return "ModExpression";
      case ArithmeticOperator::BitAnd: return "BitAndExpression";
      case ArithmeticOperator::BitOr: return "BitOrExpression";
      case ArithmeticOperator::BitXor: return "BitXorExpression";
      case ArithmeticOperator::LogicalAnd: return "LogicalAndExpression";
      case ArithmeticOperator::LogicalOr: return "LogicalOrExpression";
      case ArithmeticOperator::Plus: return "+";
    }
    return "";
  }
};
using MinusExpression = ArithmeticNode<ArithmeticOperator::Minus>;
using MultiplyExpression = ArithmeticNode<ArithmeticOperator::Multiply>;
using DivideExpression = ArithmeticNode<ArithmeticOperator::Divide>;
using ModExpression = ArithmeticNode<ArithmeticOperator::Mod>;
using BitAndExpression = ArithmeticNode<ArithmeticOperator::BitAnd>;
using BitOrExpression = ArithmeticNode<ArithmeticOperator::BitOr>;
using BitXorExpression = ArithmeticNode<ArithmeticOperator::BitXor>;
using LogicalAndExpression = ArithmeticNode<ArithmeticOperator::LogicalAnd>;
using LogicalOrExpression = ArithmeticNode<ArithmeticOperator::LogicalOr>;

class ComparisonExpression : public NamedBinaryExpression {
 public:
  ExprValue evaluate() const override;

 protected:
  ComparisonExpression(ExpressionParser& parser, std::unique_ptr<Expression> left, std::unique_ptr<Expression> right,
                       ComparisonOperator op, const char* name)
      : NamedBinaryExpression(parser, std::move(left), std::move(right), name), op_(op) {}

 private:
  ComparisonOperator op_;
};

template <ComparisonOperator Op>
class ComparisonNode : public ComparisonExpression {
 public:
  ComparisonNode(ExpressionParser& parser, std::unique_ptr<Expression> left, std::unique_ptr<Expression> right)
      : ComparisonExpression(parser, std::move(left), std::move(right), Op, className()) {}

 private:
  static constexpr const char* className() {
    switch (Op) {
      case ComparisonOperator::Eq: return "EqExpression";
      case ComparisonOperator::Ne: return "NeExpression";
      case ComparisonOperator::Lt: return "LtExpression";
      case ComparisonOperator::Le: return "LeExpression";
      case ComparisonOperator::Gt: return "GtExpression";
      case ComparisonOperator::Ge: return "GeExpression";
    }
    return "";
  }
};
using EqExpression = ComparisonNode<ComparisonOperator::Eq>;
using NeExpression = ComparisonNode<ComparisonOperator::Ne>;
using LtExpression = ComparisonNode<ComparisonOperator::Lt>;
using LeExpression = ComparisonNode<ComparisonOperator::Le>;
using GtExpression = ComparisonNode<ComparisonOperator::Gt>;
using GeExpression = ComparisonNode<ComparisonOperator::Ge>;

class ShiftExpression : public NamedBinaryExpression {
 public:
  ExprValue evaluate() const override;

 protected:
  ShiftExpression(ExpressionParser& parser, std::unique_ptr<Expression> left, std::unique_ptr<Expression> right,
                  ShiftOperator op, const char* name)
      : NamedBinaryExpression(parser, std::move(left), std::move(right), name), op_(op) {}

 private:
  ShiftOperator op_;
};

class LshiftExpression : public ShiftExpression {
 public:
  LshiftExpression(ExpressionParser& parser, std::unique_ptr<Expression> left, std::unique_ptr<Expression> right)
      : ShiftExpression(parser, std::move(left), std::move(right), ShiftOperator::Left, "LshiftExpression") {}
};

class RshiftExpression : public ShiftExpression {
 public:
  RshiftExpression(ExpressionParser& parser, std::unique_ptr<Expression> left, std::unique_ptr<Expression> right)
      : ShiftExpression(parser, std::move(left), std::move(right), ShiftOperator::Right, "RshiftExpression") {}
};

}  // namespace regmill
