// The compiler: source text to byte code for the machine. One object per
// compilation: the parser builds the tree and declares names, then every function
// is generated (inner before outer) and the program last. Errors become a
// SyntaxError raised through the context, with the line they belong to.
#pragma once
#include <QString>
#include <memory>
#include <vector>

#include "script/es_code.h"

namespace regmill::script {

class ESContext;
class ESGenerator;
struct ESNode;

class ESCompiler {
 public:
  explicit ESCompiler(ESContext& context) : context_(context) {}

  // The program's block; functions found in it join the context's function table.
  std::unique_ptr<ESCode> compileProgram(const QString& source);

  // A function from a parameter text (identifiers separated by commas) and a body
  // text; gives its index in the context's function table.
  uint32_t compileFunction(const QString& parameters, const QString& body);

  // When set, every generated block is listed on stderr.
  void setListing(bool on) { listing_ = on; }

 private:
  void generateFunctions(const std::vector<ESNode*>& functions, ESGenerator& generator);

  ESContext& context_;
  bool listing_ = false;
};

}  // namespace regmill::script
