#include "script/es_threads_window.h"

#include "base/input_file.h"
#include "script/es_host_binding.h"

namespace regmill::script {

namespace {

struct ThreadsFunctionDef {
  const char* name;
  int32_t length;
  const char* fullName;
};

// In the order of the function ids. setColumns2 reports the full name of
// setColumns, the name scripts have always seen for both.
constexpr ThreadsFunctionDef kThreadsFunctions[] = {
    {"clear", 0, "Debug.prototype.clear"},
    {"newqueue", 1, "Debug.prototype.newqueue"},
    {"add", 1, "Debug.prototype.add"},
    {"setColumns", 1, "Debug.prototype.setColumns"},
    {"setSortByNumber", 1, "Debug.prototype.setSortByNumber"},
    {"setColor", 1, "Debug.prototype.setColor"},
    {"setColumns2", 1, "Debug.prototype.setColumns"},
    {"newqueue2", 1, "Debug.prototype.newqueue2"},
    {"add2", 1, "Debug.prototype.add2"},
    {"shown", 1, "Debug.prototype.shown"},
};

const QString kMaximumReached = QStringLiteral("Maximum thread number to display reached");

// The texts of the arguments from `first` to `count` - 1.
QStringList texts(ESContext& context, const ESValue* arguments, int32_t first, int32_t count) {
  QStringList result;
  for (int32_t i = first; i < count; ++i) result.append(context.toString(arguments[i]));
  return result;
}

// The text of argument i, empty when the call gave fewer arguments.
QString textAt(ESContext& context, const ESValue* arguments, int32_t count, int32_t i) {
  return i < count ? context.toString(arguments[i]) : QString();
}

}  // namespace

ThreadsWindowESContext::ThreadsWindowESContext(std::shared_ptr<ESEngine> engine) : ESContext(std::move(engine)) {
  setPolling(true);
}

void ThreadsWindowScriptObjectClass::bind(ESContext& context) {
  ESObject* threads = context.newObject();
  ESEngine& engine = context.engine();
  int32_t id = 0;
  for (const ThreadsFunctionDef& def : kThreadsFunctions)
    context.defineBuiltin(threads, this,
                          context.builtinDef(QLatin1String(def.name), QLatin1String(def.fullName), def.length, id++));
  context.global()->klass->put(context, context.global(), engine.intern(QStringLiteral("Threads")),
                               ESValue::fromObject(threads));
}

void ThreadsWindowScriptObjectClass::call(ESContext& context, ESObject* function, ESObject*, int32_t count,
                                          ESValue* arguments) {
  // Every function but `shown` writes no result, so the call's value is its first argument.
  switch (function->builtinId) {
    case Clear:
      model_.clear();
      break;
    case NewQueue:
      model_.mainView().queues.push_back({context.toString(arguments[0]), {}});
      break;
    case Add:
      addRow(context, model_.mainView(), arguments, count, true);
      break;
    case SetColumns:
      model_.mainView().columns = texts(context, arguments, 0, count);
      break;
    case SetSortByNumber:
      model_.mainView().sortByNumberColumn = context.toString(arguments[0]);
      break;
    case SetColor:
      model_.mainView().columnColors[context.toString(arguments[0])] = {
          textAt(context, arguments, count, 1), textAt(context, arguments, count, 2),
          textAt(context, arguments, count, 3)};
      break;
    case SetColumns2:
      model_.view(context.toString(arguments[0])).columns = texts(context, arguments, 1, count);
      break;
    case NewQueue2: {
      ThreadsView& view = model_.view(context.toString(arguments[0]));
      view.queues.push_back({textAt(context, arguments, count, 1), {}});
      break;
    }
    case Add2:
      addRow(context, model_.view(context.toString(arguments[0])), arguments + 1, count - 1, false);
      break;
    case Shown:
      arguments[0] = ESValue::boolean(model_.isShown(context.toString(arguments[0])));
      break;
    default:
      context.raiseError(QStringLiteral("bad signature in builtin call"));
  }
}

// The arguments are column texts; for `add` a last argument that is a number is the
// row's thread id and one that is an array the row's register block.
void ThreadsWindowScriptObjectClass::addRow(ESContext& context, ThreadsView& view, const ESValue* first,
                                            int32_t count, bool lastMayBeId) {
  ThreadsRow row;
  int32_t textCount = count;
  if (lastMayBeId && count > 0) {
    ESValue last = first[count - 1];
    if (last.isNumber()) {
      row.threadId = context.toUint32(last);  // thread ids are 32-bit target values
      --textCount;
    } else if (last.isObject() && last.object->klass == context.arrayClass()) {
      row.registers = readIntegerArray(context, last);
      --textCount;
    }
  }
  row.texts = texts(context, first, 0, textCount);
  if (!model_.addRow(view, std::move(row))) {
    rowLimitReached_ = true;
    context.raiseError(kMaximumReached);
  }
}

ThreadsWindowScript::ThreadsWindowScript(QString path, ThreadsViewModel& model, ThreadsWindowReporter& reporter,
                                         QStringList loadDirectories)
    : path_(std::move(path)), model_(model), reporter_(reporter), loadDirectories_(std::move(loadDirectories)) {}

int32_t ThreadsWindowScript::evaluate(const QString& callText, const ValueUser& useValue) {
  Expected<std::string> bytes = readInputFile(path_.toStdString());
  if (!bytes) {
    reporter_.output(QStringLiteral("Cannot open: ") + path_);
    return ESEvaluation::Finished;
  }
  ThreadsWindowESContext context;
  ThreadsWindowScriptObjectClass threads(model_);
  try {
    context.setUp();
    threads.bind(context);
    for (const QString& directory : loadDirectories_) context.addLoadDirectory(directory);
    ESEvaluation result = context.evaluate(path_, QString::fromUtf8(*bytes) + callText);
    if (result.status == ESEvaluation::Finished && useValue) {
      try {
        useValue(context, result.value);
      } catch (const ESException& thrown) {
        result = {ESEvaluation::ScriptError, thrown.value, QString()};
      }
    }
    if (result.status == ESEvaluation::ScriptError)
      reportScriptError(context, result.value, threads.rowLimitReached());
    return result.status;
  } catch (const ESFatalError& fault) {
    // No caller above the view could do better with a fault of the engine than
    // show it like a script error; the view stays usable.
    reporter_.report(QStringLiteral("Script runtime error"), fault.message);
    return ESEvaluation::ScriptError;
  }
}

void ThreadsWindowScript::reportScriptError(ESContext& context, ESValue thrown, bool rowLimitReached) {
  if (rowLimitReached) {
    // The limit is the project's choice, not a fault of the script: a note, once.
    if (!limitNoteShown_) {
      limitNoteShown_ = true;
      reporter_.report(QStringLiteral("Threads Window"),
                       QStringLiteral("Maximum thread number ") + QString::number(model_.rowLimit()) +
                           QStringLiteral(" to display has been reached. The project property Thread Maximum "
                                          "sets this value"));
    }
    return;
  }
  if (!context.isError(thrown)) {
    reporter_.report(QStringLiteral("Script runtime error"),
                     QStringLiteral("Uncaught exception: ") + reportText(context, thrown));
    return;
  }
  const ESEngine::Names& names = context.engine().names();
  ESObject* error = thrown.object;
  QString text;
  QString line = errorField(context, error, names.lineNumber);
  if (!line.isEmpty())
    text = QStringLiteral("At line ") + line + QStringLiteral(" of ") + errorField(context, error, names.fileName);
  QString sourceLine = errorField(context, error, names.sourceLine);
  if (!sourceLine.isEmpty()) text += QStringLiteral("\n\nSource line in error: ") + sourceLine;
  // Without a line number the text would open with the blank lines.
  while (text.startsWith(QLatin1Char('\n'))) text.remove(0, 1);
  reporter_.report(QStringLiteral("Script runtime error - ") + errorField(context, error, names.message), text);
}

bool ThreadsWindowScript::refresh() {
  bool hasInit = false;
  if (evaluate(QStringLiteral("init\n"),
               [&](ESContext&, ESValue value) { hasInit = !value.isUndefined(); }) == ESEvaluation::ScriptError) {
    model_.clear();
    return false;
  }
  if (!hasInit) {
    model_.mainView().columns = QStringList{QStringLiteral("Id"), QStringLiteral("Priority"), QStringLiteral("State")};
    return true;
  }
  return evaluate(QStringLiteral("init()\n")) == ESEvaluation::Finished;
}

std::optional<std::vector<int32_t>> ThreadsWindowScript::registers(uint32_t threadId) {
  std::optional<std::vector<int32_t>> block;
  evaluate(QStringLiteral("getregs(") + QString::number(threadId) + QStringLiteral(")\n"),
           [&](ESContext& context, ESValue value) {
             if (value.isObject()) block = readIntegerArray(context, value);
           });
  return block;
}

}  // namespace regmill::script
