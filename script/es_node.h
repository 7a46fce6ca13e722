// A node of the syntax tree that the parser builds and the generator walks. The
// kind is a token number (es_lexer.h); a node owns its children.
#pragma once
#include <memory>
#include <vector>

#include "script/es_code.h"
#include "script/es_value.h"

namespace regmill::script {

struct ESNode {
  int kind = 0;
  double number = 0;        // a number literal; for `new`, 1 when it has an argument list
  ESAtom* name = nullptr;   // identifier, string, member name, label, object key
  uint32_t line = 0;
  int depth = 1;            // height of the subtree, bounded so that walks cannot overflow
  std::unique_ptr<ESNode> child[4];
  std::vector<std::unique_ptr<ESNode>> list;  // statements, arguments, elements, entries, clauses

  // Function nodes only.
  ESCode* code = nullptr;          // registered in the context's function table
  uint32_t functionIndex = 0;
  ESNode* enclosing = nullptr;     // the function around this one, null at top level
};

}  // namespace regmill::script
