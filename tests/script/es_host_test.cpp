// The engine as a host embeds it: a native class bound to the global object, calls
// and construction from native code, the poll hook, the error objects, and the
// memory a long run of calls costs.
#include <gtest/gtest.h>

#include "script/es_context.h"
#include "tests/script/script_runner.h"

namespace regmill::script {
namespace {

using testing::ScriptRunner;

// A host class with one call operation that switches on the function's id.
class RecordingHost : public ESClass {
 public:
  RecordingHost() : ESClass("Host") {}
  void call(ESContext& context, ESObject* function, ESObject* thisObject, int32_t count, ESValue* arguments) override {
    switch (function->builtinId) {
      case 0:  // sum(a, b): declared places are padded with undefined
        arguments[0] = ESValue::fromNumber(context.toNumber(arguments[0]) + context.toNumber(arguments[1]));
        break;
      case 1:  // count(): the number of arguments given
        arguments[0] = ESValue::fromNumber(count);
        break;
      case 2:  // self(): the receiver
        arguments[0] = ESValue::fromObject(thisObject);
        break;
      default:  // silent(): writes nothing
        break;
    }
  }
};

TEST(ESHost, BindsNativeFunctionsOnAnObject) {
  ScriptRunner runner;
  ESContext& context = runner.context();
  RecordingHost host;
  ESObject* object = context.newObject();
  context.global()->klass->put(context, context.global(), context.engine().intern(QStringLiteral("host")),
                               ESValue::fromObject(object));
  context.defineFunction(object, QStringLiteral("sum"), &host, 2, 0);
  context.defineFunction(object, QStringLiteral("count"), &host, 0, 1);
  context.defineFunction(object, QStringLiteral("self"), &host, 0, 2);
  context.defineFunction(object, QStringLiteral("silent"), &host, 0, 3);
  const std::pair<const char*, const char*> cases[] = {
      {"host.sum(2, 3)", "number 5"},
      {"host.sum(2)", "number NaN"},  // b was padded with undefined
      {"host.count(1, 2, 3)", "number 3"},
      {"host.count()", "number 0"},
      {"host.self() == host", "boolean true"},
      {"host.silent('first', 2)", "string first"},  // the first argument stays the result
      {"host.silent()", "undefined"},
      {"typeof host.sum + ' ' + host.sum.length", "string function 2"},
      {"new host.sum(1)", "TypeError: new must be given a constructor object @ 1"},
  };
  for (const auto& [source, expected] : cases) EXPECT_EQ(runner.run(source), expected) << source;
}

TEST(ESHost, CallsAndConstructsScriptFunctionsFromNativeCode) {
  ScriptRunner runner;
  ESContext& context = runner.context();
  ASSERT_EQ(runner.run("function add(a, b) { return a + b + this.bias; } var bias = 10;"
                       "function Point(x) { this.x = x; } function Weird() { return 5; }"),
            "undefined");
  auto global = [&](const char* name) {
    return context.global()->klass->get(context, context.global(), context.engine().intern(QLatin1String(name)));
  };
  ESValue arguments[] = {ESValue::fromNumber(2), ESValue::fromNumber(3)};
  ESValue sum = context.callFunction(global("add").object, context.global(), 2, arguments);
  EXPECT_EQ(sum.number, 15);
  ESObject* point = context.construct(global("Point").object, 1, arguments);
  EXPECT_EQ(point->klass->get(context, point, context.engine().intern(QStringLiteral("x"))).number, 2);
  // A constructor that returns no object still gives the new object.
  ESObject* weird = context.construct(global("Weird").object, 0, nullptr);
  EXPECT_EQ(weird->prototype, global("Weird").object->slot(1).value.object);
  EXPECT_THROW(context.callFunction(context.newObject(), context.global(), 0, nullptr), ESException);
}

TEST(ESHost, ErrorConstructorsMakeErrorObjects) {
  const std::pair<const char*, const char*> cases[] = {
      {"var e = new TypeError('m'); e.name + ':' + e.message", "string TypeError:m"},
      {"var e = RangeError('r'); e.name + ':' + e.message", "string RangeError:r"},
      {"var e = new Error(); e.message == ''", "boolean true"},
      {"var e = new SyntaxError(5); typeof e.message", "string number"},  // taken unconverted
  };
  for (const auto& [source, expected] : cases) {
    ScriptRunner runner;
    EXPECT_EQ(runner.run(source), expected) << source;
  }
  ScriptRunner runner;
  ESEvaluation made = runner.context().evaluate(QString(), QStringLiteral("new EvalError('x')"));
  EXPECT_TRUE(runner.context().isError(made.value));
  EXPECT_FALSE(runner.context().isError(runner.context().evaluate(QString(), QStringLiteral("({})")).value));
}

// Stops a run after a number of polls and counts them.
class StoppingContext : public ESContext {
 public:
  explicit StoppingContext(int limit) : limit_(limit) {
    setUp();
    setPolling(true);
  }
  bool poll() override { return ++polls < limit_; }
  int polls = 0;

 private:
  int limit_;
};

TEST(ESHost, PollIsCalledBeforeARunAndAfterEachInstruction) {
  StoppingContext counting(1000000);
  // NUM_1 NUM_2 ADD RET: one poll before the run and one after each of the first three.
  ESEvaluation result = counting.evaluate(QString(), QStringLiteral("1 + 2"));
  EXPECT_EQ(result.value.number, 3);
  EXPECT_EQ(counting.polls, 4);

  StoppingContext stopping(50);
  ESEvaluation stopped = stopping.evaluate(QString(), QStringLiteral("var n = 0; while (1) n++;"));
  EXPECT_EQ(stopped.status, ESEvaluation::Finished);
  EXPECT_EQ(stopping.polls, 50);
}

TEST(ESHost, CallsWithoutCapturedActivationsRunInConstantMemory) {
  ScriptRunner runner;
  ESContext& context = runner.context();
  ASSERT_EQ(runner.run("function mk(s) { var c = s; function add(d) { c = c + d; return c; } return add; }"
                       "var f = mk(0); function run(n) { for (var i = 0; i < n; i++) f(1); }"
                       "function plain(x) { with (x) { } return x; }"),
            "undefined");
  ASSERT_EQ(runner.run("run(1000); plain({}); f(0)"), "number 1000");
  size_t records = context.recordCount();
  ASSERT_EQ(runner.run("run(100000); f(0)"), "number 101000");
  EXPECT_EQ(context.recordCount(), records);
  // Closures that are kept do cost memory: each keeps its activation.
  ASSERT_EQ(runner.run("var kept = []; for (var i = 0; i < 1000; i++) kept[i] = mk(i); kept[999](1)"),
            "number 1000");
  EXPECT_GT(context.recordCount(), records + 2000);
}

}  // namespace
}  // namespace regmill::script
