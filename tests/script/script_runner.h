// Runs script text in a fresh console context and describes the outcome in one
// readable line, so that tables of cases compare texts: "number 3", "string ab",
// "boolean true", "undefined", "object", "function", or for a script error
// "TypeError: message @ line".
#pragma once
#include <QString>
#include <cstdio>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "script/es_console.h"

namespace regmill::script::testing {

class ScriptRunner {
 public:
  ScriptRunner() : output_(open_memstream(&buffer_, &size_)), context_(output_) {}
  ~ScriptRunner() {
    std::fclose(output_);
    std::free(buffer_);
  }

  ESConsoleContext& context() { return context_; }

  std::string describe(const ESEvaluation& result) {
    ESValue value = result.value;
    if (result.status == ESEvaluation::ScriptError) {
      if (!context_.isError(value)) return "thrown " + context_.toString(value).toStdString();
      ESObject* error = value.object;
      auto read = [&](const char* name) {
        return context_.toString(error->klass->get(context_, error, context_.engine().intern(QLatin1String(name))));
      };
      return (read("name") + QStringLiteral(": ") + read("message") + QStringLiteral(" @ ") + read("lineNumber"))
          .toStdString();
    }
    QString type = ESContext::typeOf(value);
    if (value.isObject()) return type.toStdString();
    if (value.isUndefined()) return "undefined";
    return (type + QLatin1Char(' ') + context_.toString(value)).toStdString();
  }

  std::string run(const std::string& source) {
    return describe(context_.evaluate(QStringLiteral("test.js"), QString::fromStdString(source)));
  }

  // What print wrote so far.
  std::string printed() {
    std::fflush(output_);
    return std::string(buffer_, size_);
  }

 private:
  char* buffer_ = nullptr;
  size_t size_ = 0;
  std::FILE* output_;
  ESConsoleContext context_;
};

// Runs each program, between a prefix and a suffix that the cases share, in a fresh
// context and compares its description; its line numbers count the prefix's lines.
using Cases = std::vector<std::pair<std::string, std::string>>;
inline void expectAll(const Cases& cases, const std::string& prefix = {}, const std::string& suffix = {}) {
  for (const auto& [source, expected] : cases) {
    ScriptRunner runner;
    EXPECT_EQ(runner.run(prefix + source + suffix), expected) << source;
  }
}

}  // namespace regmill::script::testing
