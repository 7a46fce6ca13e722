// The nodes that reach into the parser's world: member and element access,
// assignment, address, cast, call and sizeof. Each needs an Object where the
// parser can act, and hands the work to one of the parser's operations.
#pragma once
#include <vector>

#include "expr/base_type.h"
#include "expr/operator_expressions.h"

namespace regmill {

// left.member and left->member alike; the right is a name, never evaluated.
class DotExpression : public BinaryExpression {
 public:
  DotExpression(ExpressionParser& parser, std::unique_ptr<Expression> left, std::unique_ptr<Expression> right)
      : BinaryExpression(parser, std::move(left), std::move(right)) {}
  ExprValue evaluate() const override;
  std::unique_ptr<Expression> clone() const override;

 protected:
  QString operatorText() const override { return QStringLiteral("."); }
};

// left[right]; a unary "*" is this node with the index 0.
class LeftSquareBracketExpression : public BinaryExpression {
 public:
  LeftSquareBracketExpression(ExpressionParser& parser, std::unique_ptr<Expression> left,
                              std::unique_ptr<Expression> right)
      : BinaryExpression(parser, std::move(left), std::move(right)) {}
  ExprValue evaluate() const override;
  QString toString() const override;
  std::unique_ptr<Expression> clone() const override;

 protected:
  QString operatorText() const override { return QStringLiteral("["); }
};

class AssignExpression : public BinaryExpression {
 public:
  AssignExpression(ExpressionParser& parser, std::unique_ptr<Expression> left, std::unique_ptr<Expression> right)
      : BinaryExpression(parser, std::move(left), std::move(right)) {}
  ExprValue evaluate() const override;

 protected:
  QString operatorText() const override { return QStringLiteral("="); }
};

class AddressofExpression : public Expression {
 public:
  AddressofExpression(ExpressionParser& parser, std::unique_ptr<Expression> operand)
      : Expression(parser, operand->height() + 1), operand_(std::move(operand)) {}
  ExprValue evaluate() const override;
  QString toString() const override { return QLatin1Char('&') + operand_->toString(); }

 private:
  std::unique_ptr<Expression> operand_;
};

class CastExpression : public Expression {
 public:
  CastExpression(ExpressionParser& parser, std::unique_ptr<BaseType> type, std::unique_ptr<Expression> operand);
  ExprValue evaluate() const override;
  QString toString() const override;
  void bindIdentifier(const QString& name, uint64_t value) override { operand_->bindIdentifier(name, value); }

 private:
  std::unique_ptr<BaseType> type_;
  std::unique_ptr<Expression> operand_;
};

class CallExpression : public Expression {
 public:
  CallExpression(ExpressionParser& parser, std::unique_ptr<Expression> callee,
                 std::vector<std::unique_ptr<Expression>> arguments);
  ExprValue evaluate() const override;
  QString toString() const override;

 private:
  std::unique_ptr<Expression> callee_;
  std::vector<std::unique_ptr<Expression>> arguments_;
};

// sizeof of either a type or an operand.
class SizeofExpression : public Expression {
 public:
  SizeofExpression(ExpressionParser& parser, std::unique_ptr<Expression> operand)
      : Expression(parser, operand->height() + 1), operand_(std::move(operand)) {}
  SizeofExpression(ExpressionParser& parser, std::unique_ptr<BaseType> type)
      : Expression(parser, type->height() + 1), type_(std::move(type)) {}
  ExprValue evaluate() const override;
  QString toString() const override;
  void bindIdentifier(const QString& name, uint64_t value) override;

 private:
  std::unique_ptr<Expression> operand_;
  std::unique_ptr<BaseType> type_;
};

class AddressofLineExpression : public Expression {
 public:
  AddressofLineExpression(ExpressionParser& parser, QString file, int line)
      : Expression(parser), file_(std::move(file)), line_(line) {}
  ExprValue evaluate() const override;
  QString toString() const override;

 private:
  QString file_;
  int line_;
};

}  // namespace regmill
