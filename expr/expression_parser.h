// ExpressionParser: reads an expression text into a tree and evaluates it. The
// tree does the arithmetic; everything that needs symbols, registers, types or a
// target goes through the virtual operations below, which a subclass answers.
// The parser owns its lexer and is used by one caller at a time: it is not
// reentrant, since the lexer holds the state of the text being read.
#pragma once
#include <QStringList>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "expr/base_type.h"
#include "expr/expr_object.h"
#include "expr/expr_value.h"
#include "expr/expression.h"
#include "expr/lexer.h"

namespace regmill {

class ExpressionParser {
 public:
  explicit ExpressionParser(std::unique_ptr<Lexer> lexer);
  virtual ~ExpressionParser();
  ExpressionParser(const ExpressionParser&) = delete;
  ExpressionParser& operator=(const ExpressionParser&) = delete;

  // Parses and evaluates the whole text. An empty text gives a None value. Text
  // behind a complete expression is ignored; endPosition, if given, receives the
  // read position behind the token that follows the expression. Syntax and
  // evaluation failures throw ParserException.
  ExprValue parse(const QString& text, qsizetype* endPosition = nullptr);
  // The tree of the text without evaluating it; null for an empty text.
  std::unique_ptr<Expression> parseTree(const QString& text, qsizetype* endPosition = nullptr);

  // These catch ParserException and give 0 (false) with *ok false on any failure.
  // ok may be null.
  // True in *ok only for a Bool result.
  bool evaluateBool(const QString& text, bool* ok);
  // A Signed, Unsigned or Float result as a signed integer.
  int64_t evaluateSigned(const QString& text, bool* ok);
  // A Signed, Unsigned or Float result cut to its size: integers masked to 1, 2 or
  // 4 bytes, floats as the bits of their double or single form.
  uint64_t evaluateUnsigned(const QString& text, bool* ok);

  // What a tree asks of the world it runs in.
  virtual ExprObject* lookupScoped(const QStringList& names) = 0;
  virtual ExprObject* lookupSymbol(const QString& name) = 0;
  virtual ExprObject* lookupRegister(const QString& name) = 0;
  virtual bool isTypeName(const QString& word) = 0;
  virtual bool isTemplateName(const QString& word) = 0;
  virtual ExprValue cast(const BaseType& type, const ExprValue& value) = 0;
  virtual bool isPointerObject(ExprObject& object) = 0;
  virtual bool isArrayObject(ExprObject& object) = 0;
  virtual ExprValue memberByPath(ExprObject& object, const QStringList& names) = 0;
  virtual ExprValue memberByName(ExprObject& object, const QString& name) = 0;
  virtual ExprValue elementAt(ExprObject& object, int64_t index) = 0;
  virtual ExprValue offsetObject(ExprObject& object, int64_t offset) = 0;
  virtual ExprValue addressOf(ExprObject& object) = 0;
  virtual ExprValue sizeofType(const BaseType& type) = 0;
  virtual ExprValue sizeofObject(ExprObject& object) = 0;
  virtual ExprValue addressOfLine(const QString& file, int line) = 0;
  virtual ExprValue store(ExprObject& object, const ExprValue& value) = 0;
  virtual ExprValue load(ExprObject& object) = 0;
  virtual ExprValue call(ExprObject& function, const std::vector<ExprValue>& arguments) = 0;

 protected:
  Lexer& lexer() { return *lexer_; }

 private:
  // Runs parse and hands back the result, or nothing when ParserException came.
  std::optional<ExprValue> tryParse(const QString& text);

  std::unique_ptr<Lexer> lexer_;
};

}  // namespace regmill
