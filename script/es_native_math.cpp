#include "script/es_native_math.h"

#include <cmath>
#include <cstdlib>

#include "script/es_native.h"

namespace regmill::script {

namespace {

enum MathId : int32_t {
  Abs = 1, Acos, Asin, Atan, Atan2, Ceil, Cos, Exp, Floor, Log, Max, Min, Pow, Random, Round, Sin, Sqrt, Tan,
};

// Max and min convert the arguments in turn and stop at the first NaN. Between
// equal values +0 wins in max and -0 in min.
double extreme(ESContext& context, int32_t argumentCount, const ESValue* arguments, bool maximum) {
  double best = maximum ? -INFINITY : INFINITY;
  for (int32_t i = 0; i < argumentCount; ++i) {
    double value = context.toNumber(arguments[i]);
    if (std::isnan(value)) return value;
    bool better = maximum ? value > best : value < best;
    if (value == best && value == 0) better = std::signbit(value) != maximum;
    if (better) best = value;
  }
  return best;
}

// -0 and every value in [-0.5, 0) give -0; otherwise the floor of x + 0.5.
double roundHalfUp(double x) {
  if (x == 0) return x;
  if (x >= -0.5 && x < 0) return -0.0;
  return std::floor(x + 0.5);
}

// The generator is the process's rand(), of which only 15 bits count: at most
// 32,768 values in [0, 1), also where rand() gives more bits.
double randomFraction() { return double(std::rand() & 32767) * (1.0 / 32768); }

}  // namespace

void ESNativeMath::initialise(ESContext& context) {
  ESObject* math = context.newObject();
  ESEngine& engine = context.engine();
  context.global()->klass->put(context, context.global(), engine.intern(QStringLiteral("Math")),
                               ESValue::fromObject(math));
  auto constant = [&](const char* name, double value) {
    math->klass->put(context, math, engine.intern(QLatin1String(name)), ESValue::fromNumber(value));
  };
  constant("E", std::exp(1.0));
  constant("LN10", std::log(10.0));
  constant("LN2", std::log(2.0));
  constant("LOG2E", 1 / std::log(2.0));
  constant("LOG10E", 1 / std::log(10.0));
  constant("PI", M_PI);
  constant("SQRT1_2", std::sqrt(0.5));
  constant("SQRT2", std::sqrt(2.0));
  defineNativeFunctions(context, math, this, "Math.",
                        {{"abs", 1, Abs},     {"acos", 1, Acos},     {"asin", 1, Asin},   {"atan", 1, Atan},
                         {"atan2", 2, Atan2}, {"ceil", 1, Ceil},     {"cos", 1, Cos},     {"exp", 1, Exp},
                         {"floor", 1, Floor}, {"log", 1, Log},       {"max", 0, Max},     {"min", 0, Min},
                         {"pow", 2, Pow},     {"random", 0, Random}, {"round", 1, Round}, {"sin", 1, Sin},
                         {"sqrt", 1, Sqrt},   {"tan", 1, Tan}});
}

void ESNativeMath::call(ESContext& context, ESObject* function, ESObject*, int32_t argumentCount,
                        ESValue* arguments) {
  const int32_t id = function->builtinId;
  if (id < Abs || id > Tan) raiseBadCall(context);
  double result = 0;
  if (id == Max || id == Min) {
    result = extreme(context, argumentCount, arguments, id == Max);
  } else if (id == Random) {
    result = randomFraction();
  } else if (id == Atan2 || id == Pow) {
    double x = context.toNumber(arguments[0]);
    double y = context.toNumber(arguments[1]);
    result = id == Atan2 ? std::atan2(x, y) : std::pow(x, y);
  } else {
    double x = context.toNumber(arguments[0]);
    switch (id) {
      case Abs: result = std::fabs(x); break;
      case Acos: result = std::acos(x); break;
      case Asin: result = std::asin(x); break;
      case Atan: result = std::atan(x); break;
      case Ceil: result = std::ceil(x); break;
      case Cos: result = std::cos(x); break;
      case Exp: result = std::exp(x); break;
      case Floor: result = std::floor(x); break;
      case Log: result = std::log(x); break;
      case Round: result = roundHalfUp(x); break;
      case Sin: result = std::sin(x); break;
      case Sqrt: result = std::sqrt(x); break;
      case Tan: result = std::tan(x); break;
    }
  }
  arguments[0] = ESValue::fromNumber(result);
}

}  // namespace regmill::script
