// Feeds arbitrary text to the plain expression parser through its three
// evaluating entries and the tree walks; nothing may crash, hang or leak.
#include <cstddef>
#include <cstdint>

#include "expr/parser_exception.h"
#include "expr/simple_expression_parser.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  // Formulas are short; longer inputs only slow the search down.
  if (size > 4096) return 0;
  const QString text = QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
  regmill::SimpleExpressionParser parser;
  bool ok = false;
  parser.evaluateBool(text, &ok);
  parser.evaluateSigned(text, &ok);
  parser.evaluateUnsigned(text, &ok);
  try {
    std::unique_ptr<regmill::Expression> tree = parser.parseTree(text);
    if (tree) {
      tree->toString();
      tree->bindIdentifier(QStringLiteral("x"), 4);
      tree->evaluate();
      tree->clone();
    }
  } catch (const regmill::ParserException&) {
  }
  return 0;
}
