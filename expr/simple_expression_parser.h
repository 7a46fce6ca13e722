// SimpleExpressionParser: the parser that knows numbers only. Arithmetic on
// constants evaluates; every name, register, type, cast, member, call or memory
// access is refused with a message.
#pragma once
#include "expr/expression_parser.h"

namespace regmill {

class SimpleExpressionParser : public ExpressionParser {
 public:
  SimpleExpressionParser();

  ExprObject* lookupScoped(const QStringList& names) override;
  ExprObject* lookupSymbol(const QString& name) override;
  ExprObject* lookupRegister(const QString& name) override;
  bool isTypeName(const QString& word) override;
  bool isTemplateName(const QString& word) override;
  ExprValue cast(const BaseType& type, const ExprValue& value) override;
  bool isPointerObject(ExprObject& object) override;
  bool isArrayObject(ExprObject& object) override;
  ExprValue memberByPath(ExprObject& object, const QStringList& names) override;
  ExprValue memberByName(ExprObject& object, const QString& name) override;
  ExprValue elementAt(ExprObject& object, int64_t index) override;
  ExprValue offsetObject(ExprObject& object, int64_t offset) override;
  ExprValue addressOf(ExprObject& object) override;
  ExprValue sizeofType(const BaseType& type) override;
  ExprValue sizeofObject(ExprObject& object) override;
  ExprValue addressOfLine(const QString& file, int line) override;
  ExprValue store(ExprObject& object, const ExprValue& value) override;
  ExprValue load(ExprObject& object) override;
  ExprValue call(ExprObject& function, const std::vector<ExprValue>& arguments) override;
};

// The parser shared by the library's callers, made at first use. Like every
// parser it serves one caller at a time.
SimpleExpressionParser& sharedExpressionParser();

}  // namespace regmill
