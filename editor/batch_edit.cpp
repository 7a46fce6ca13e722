#include "editor/batch_edit.h"

#include <QTextCodec>

#include "editor/code_file.h"
#include "editor/edit_commands.h"

namespace regmill {

namespace {

struct NoticeCollector : MessageHandler {
  QString text;
  void showMessage(const QString&, const QString& message) override { text = message; }
};

EditCommands::Slot slotForKebab(const QString& kebab) {
  for (const QString& name : EditCommands::slotNames())
    if (kebabCase(name) == kebab) return EditCommands::slotNamed(name);
  return nullptr;
}

void selectAllWithCaretAtStart(CodeEdit& editor) {
  editor.setSelection(editor.buffer().endPosition(), {0, 0});
  editor.setCaret({0, 0});
}

}  // namespace

QString kebabCase(const QString& name) {
  QString kebab;
  for (int index = 0; index < name.size(); ++index) {
    if (name[index].isUpper() && index > 0 && name[index - 1].isLower()) kebab += u'-';
    kebab += name[index].toLower();
  }
  return kebab;
}

QStringList batchCommandNames() {
  QStringList names;
  for (const QString& name : EditCommands::slotNames()) names.append(kebabCase(name));
  return names;
}

Status runBatchEdit(const BatchEdit& edit, QString* notice) {
  for (const BatchStep& step : edit.steps)
    if (!step.command.isEmpty() && slotForKebab(step.command) == nullptr)
      return Status::failure("unknown command '" + step.command.toStdString() + "'");
  if (!edit.encoding.isEmpty() && QTextCodec::codecForName(edit.encoding.toLatin1()) == nullptr)
    return Status::failure("unknown encoding '" + edit.encoding.toStdString() + "'");

  CodeEdit editor;
  MemoryClipboard clipboard;
  EditCommands commands(editor, clipboard);
  NoticeCollector messages;
  editor.setMessageHandler(&messages);
  editor.setEncodingName(edit.encoding);
  if (!editor.load(edit.file)) return Status::failure(messages.text.toStdString());
  // Saving text that lost bytes in decoding would change the file behind the user's back.
  if (editor.lossyDecoding())
    return Status::failure(edit.file.toStdString() + " is not valid " + codecNamed(editor.encodingName())->name().toStdString() +
                           "; name its encoding with --encoding");
  if (notice != nullptr) *notice = messages.text;
  editor.setEditState(CodeEdit::Editable);  // asking for the edit is the user's consent
  for (const BatchStep& step : edit.steps) {
    selectAllWithCaretAtStart(editor);
    if (step.command.isEmpty()) commands.finder().replaceAll({0, step.findText, step.replacement}, false);
    else (commands.*slotForKebab(step.command))();
  }
  return editor.save(edit.saveAs.isEmpty() ? edit.file : edit.saveAs);
}

}  // namespace regmill
