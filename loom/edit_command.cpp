// `loom edit FILE [--encoding NAME] [--do COMMAND]... [--replace FIND WITH]...
// [--save-as OUT] [--batch]`: edits a file without a window when a step, a target or
// --batch is given, and otherwise opens it in the editor window.
#include <QString>
#include <cstdio>

#include "editor/batch_edit.h"
#include "editor/widgets/code_edit_window.h"
#include "loom/command.h"

namespace loom {

int runEdit(Arguments arguments) {
  regmill::BatchEdit edit;
  bool batch = false;
  for (size_t index = 0; index < arguments.size(); ++index) {
    const std::string& word = arguments[index];
    auto value = [&](size_t offset) { return QString::fromStdString(arguments[index + offset]); };
    const size_t left = arguments.size() - index - 1;
    if (word == "--encoding" && left >= 1) {
      edit.encoding = value(1);
      ++index;
    } else if (word == "--do" && left >= 1) {
      edit.steps.push_back({value(1), {}, {}});
      batch = true;
      ++index;
    } else if (word == "--replace" && left >= 2) {
      edit.steps.push_back({{}, value(1), value(2)});
      batch = true;
      index += 2;
    } else if (word == "--save-as" && left >= 1) {
      edit.saveAs = value(1);
      batch = true;
      ++index;
    } else if (word == "--batch") {
      batch = true;
    } else if (word.starts_with("--")) {
      return fail("edit: unknown or incomplete option '" + word + "'");
    } else if (edit.file.isEmpty()) {
      edit.file = QString::fromStdString(word);
    } else {
      return fail("edit takes one file");
    }
  }
  if (edit.file.isEmpty()) return fail("edit needs a file");
  if (!batch) return regmill::runCodeEditWindow(edit.file, edit.encoding);
  QString notice;
  regmill::Status result = regmill::runBatchEdit(edit, &notice);
  if (!notice.isEmpty()) std::fprintf(stderr, "loom: %s\n", notice.toLocal8Bit().constData());
  if (!result.ok()) return fail(result.message());
  return 0;
}

}  // namespace loom
