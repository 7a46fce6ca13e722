// loom diff LEFT RIGHT [--no-color]: the comparison display as text. The left file's
// view comes first and the right file's below it, row for row alike in number, then
// the summary line. Colour escapes are written only to a terminal and without
// --no-color. Exit codes follow the convention of comparison tools: 0 for equal
// files, 1 when they differ, 2 when the comparison could not be made.
#include <unistd.h>

#include <QStringDecoder>
#include <cstdio>
#include <string>

#include "base/input_file.h"
#include "editor/diff_display.h"
#include "loom/command.h"

namespace loom {

namespace {

constexpr int kTrouble = 2;

// A file's lines, split at each line feed with empty parts kept; an empty file has
// none. A file of valid UTF-8 is read as such, any other byte for byte, so that its
// lines come back out unchanged.
struct TextFile {
  QStringList lines;
  bool utf8 = true;

  QByteArray encoded(const QString& text) const { return utf8 ? text.toUtf8() : text.toLatin1(); }
};

TextFile decode(const std::string& bytes) {
  TextFile file;
  QStringDecoder decoder(QStringDecoder::Utf8);
  QString text = decoder.decode(QByteArrayView(bytes.data(), qsizetype(bytes.size())));
  if (decoder.hasError()) {
    text = QString::fromLatin1(bytes.data(), qsizetype(bytes.size()));
    file.utf8 = false;
  }
  if (!text.isEmpty()) file.lines = text.split(QLatin1Char('\n'));
  return file;
}

void print(const QByteArray& bytes) { std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stdout); }

}  // namespace

int runDiff(Arguments arguments) {
  std::vector<std::string> names;
  bool colour = isatty(fileno(stdout)) == 1;
  for (const std::string& argument : arguments) {
    if (argument == "--no-color")
      colour = false;
    else
      names.push_back(argument);
  }
  if (names.size() != 2) return fail("diff takes two files: loom diff LEFT RIGHT [--no-color]", kTrouble);
  TextFile files[2];
  for (int side = 0; side < 2; ++side) {
    regmill::Expected<std::string> bytes = regmill::readInputFile(names[side]);
    if (!bytes.ok()) return fail(bytes.status().message(), kTrouble);
    files[side] = decode(*bytes);
  }
  regmill::DiffDisplay display(colour);
  display.compareLists(files[0].lines, files[1].lines).message.clear();
  print(files[0].encoded(display.leftText()));
  print(files[1].encoded(display.rightText()));
  print(display.label().toUtf8() + '\n');
  return display.differences().empty() ? 0 : 1;
}

}  // namespace loom
