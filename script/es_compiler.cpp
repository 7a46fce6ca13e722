#include "script/es_compiler.h"

#include <cstdio>

#include "script/es_context.h"
#include "script/es_generator.h"
#include "script/es_parser.h"

namespace regmill::script {

std::unique_ptr<ESCode> ESCompiler::compileProgram(const QString& source) {
  auto program = std::make_unique<ESCode>();
  try {
    ESParser parser(context_, source, *program);
    std::unique_ptr<ESNode> tree = parser.parseProgram();
    ESGenerator generator(context_, parser.line());
    generateFunctions(parser.functions(), generator);
    generator.generateProgram(*tree, *program);
    if (listing_) std::fputs(qPrintable(disassemble(*program, context_.engine(), context_.global())), stderr);
  } catch (const CompileError& error) {
    context_.raiseSyntaxError(error.message, error.line);
  }
  return program;
}

uint32_t ESCompiler::compileFunction(const QString& parameters, const QString& body) {
  ESCode unused;
  try {
    ESParser parser(context_, body, unused);
    parser.parseFunctionText(parameters);
    ESGenerator generator(context_, parser.line());
    generateFunctions(parser.functions(), generator);
    return parser.functions().back()->functionIndex;
  } catch (const CompileError& error) {
    context_.raiseSyntaxError(error.message, error.line);
  }
}

void ESCompiler::generateFunctions(const std::vector<ESNode*>& functions, ESGenerator& generator) {
  for (ESNode* function : functions) {
    generator.generateFunction(*function);
    if (listing_) std::fputs(qPrintable(disassemble(*function->code, context_.engine(), context_.global())), stderr);
  }
}

}  // namespace regmill::script
