#include "script/es_native_global.h"

#include <QFile>
#include <cfloat>
#include <cmath>
#include <optional>

#include "base/input_file.h"
#include "script/es_native.h"

namespace regmill::script {

namespace {

enum GlobalId : int32_t { Eval = 1, ParseInt = 2, ParseFloat = 3, IsNaN = 4, IsFinite = 5, Load = 6 };

// The text that parseInt and parseFloat read: the first part of the text split
// at blanks, empty parts dropped.
QString firstWord(const QString& text) {
  const QStringList parts = text.split(QLatin1Char(' '), Qt::SkipEmptyParts);
  return parts.isEmpty() ? QString() : parts.first();
}

double parseInteger(ESContext& context, ESValue textValue, ESValue radixValue) {
  const QString text = firstWord(context.toString(textValue));
  int base = 10;
  if (radixValue.isUndefined()) {
    if (text.startsWith(QLatin1String("0x")))
      base = 16;
    else if (text.startsWith(QLatin1Char('0')))
      base = 8;
  } else {
    base = context.toInt32(radixValue);
    // Base 0 reads the prefixes of C; any other base outside 2 to 36 reads nothing
    // (the toolkit's conversion would take some of them as base 10).
    if (base != 0 && (base < 2 || base > 36)) return std::nan("");
  }
  bool ok = false;
  int value = text.toInt(&ok, base);
  return ok ? value : std::nan("");
}

// Single precision: the text is read as a double and refused beyond the float
// range, so "inf" is refused too, while a value too small for a float becomes 0.
// (The toolkit's own float conversion reads "inf" and refuses underflow.)
double parseFloat(ESContext& context, ESValue textValue) {
  bool ok = false;
  double value = firstWord(context.toString(textValue)).toDouble(&ok);
  if (!ok || value > FLT_MAX || value < -FLT_MAX) return std::nan("");
  return double(float(value));
}

ESValue eval(ESContext& context, ESValue program) {
  if (!program.isString()) return program;
  KeepProgramText keep(context);
  // Any script error of the program is swallowed: its value is undefined.
  ESEvaluation result = context.evaluate(context.fileName(), program.text());
  return result.status == ESEvaluation::Finished ? result.value : ESValue();
}

// The bytes of the first candidate that opens: the name itself, then the name in
// each search directory in turn.
std::optional<std::pair<QString, std::string>> findScript(const QString& name, const QStringList& directories) {
  auto tryRead = [](const QString& path) -> std::optional<std::pair<QString, std::string>> {
    // No script is longer than the longest string; an endless device stops there.
    Expected<std::string> bytes =
        readInputFile(QFile::encodeName(path).toStdString(), size_t(ESContext::kMaxStringLength));
    if (!bytes) return std::nullopt;
    return std::make_pair(path, std::move(*bytes));
  };
  if (auto found = tryRead(name)) return found;
  for (const QString& directory : directories)
    if (auto found = tryRead(directory + QLatin1Char('/') + name)) return found;
  return std::nullopt;
}

}  // namespace

void ESNativeGlobal::initialise(ESContext& context) {
  ESObject* global = context.global();
  ESEngine& engine = context.engine();
  auto value = [&](const char* name, ESValue value) {
    global->klass->put(context, global, engine.intern(QLatin1String(name)), value);
  };
  value("NaN", ESValue::fromNumber(std::nan("")));
  value("Infinity", ESValue::fromNumber(INFINITY));
  value("undefined", ESValue());
  defineNativeFunctions(context, global, this, "",
                        {{"eval", 1, Eval},
                         {"parseInt", 2, ParseInt},
                         {"parseFloat", 1, ParseFloat},
                         {"isNaN", 1, IsNaN},
                         {"isFinite", 1, IsFinite},
                         {"load", 1, Load}});
}

void ESNativeGlobal::call(ESContext& context, ESObject* function, ESObject*, int32_t, ESValue* arguments) {
  ESValue& result = arguments[0];
  switch (function->builtinId) {
    case Eval:
      result = eval(context, arguments[0]);
      return;
    case ParseInt:
      result = ESValue::fromNumber(parseInteger(context, arguments[0], arguments[1]));
      return;
    case ParseFloat:
      result = ESValue::fromNumber(parseFloat(context, arguments[0]));
      return;
    case IsNaN:
      result = ESValue::boolean(std::isnan(context.toNumber(arguments[0])));
      return;
    case IsFinite:
      result = ESValue::boolean(std::isfinite(context.toNumber(arguments[0])));
      return;
    case Load:
      result = load(context, context.toString(arguments[0]));
      return;
    default:
      raiseBadCall(context);
  }
}

// True when a file was found and ran; false when none opened. A script error of the
// file goes on into the calling script.
ESValue ESNativeGlobal::load(ESContext& context, const QString& name) {
  auto found = findScript(name, searchDirectories_);
  if (!found) return ESValue::boolean(false);
  // Bytes become text by the default conversion of the string class, UTF-8.
  const QString source = QString::fromUtf8(found->second.data(), qsizetype(found->second.size()));
  KeepProgramText keep(context);
  ESEvaluation evaluation = context.evaluate(found->first, source);
  if (evaluation.status == ESEvaluation::ScriptError) throw ESException{evaluation.value};
  return ESValue::boolean(true);
}

}  // namespace regmill::script
