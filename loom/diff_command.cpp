// loom diff LEFT RIGHT [--no-color]: the comparison display as text. The left file's
// view comes first and the right file's below it, row for row alike in number, then
// the summary line. Colour escapes are written only to a terminal and without
// --no-color. Exit codes follow the convention of comparison tools: 0 for equal
// files, 1 when they differ, 2 when the comparison could not be made.
#include <unistd.h>

#include <QStringDecoder>
#include <cstdio>
#include <stdexcept>
#include <string>

#include "base/input_file.h"
#include "editor/diff_display.h"
#include "loom/command.h"

namespace loom {

namespace {

constexpr int kTrouble = 2;

// The lines of both files, split at each line feed with empty parts kept; an empty
// file has none. Two files of valid UTF-8 are read as such (a byte order mark stays
// a character); otherwise both are read byte for byte, so that files that differ in
// their bytes never compare equal and every line comes back out unchanged.
struct TextFiles {
  QStringList lines[2];
  bool utf8 = true;

  QByteArray encoded(const QString& text) const { return utf8 ? text.toUtf8() : text.toLatin1(); }
};

TextFiles decode(const std::string (&bytes)[2]) {
  TextFiles files;
  QString texts[2];
  for (int side = 0; side < 2; ++side) {
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::ConvertInitialBom);
    texts[side] = decoder.decode(QByteArrayView(bytes[side].data(), qsizetype(bytes[side].size())));
    files.utf8 = files.utf8 && !decoder.hasError();
  }
  for (int side = 0; side < 2; ++side)
    files.lines[side] = regmill::splitDiffLines(files.utf8 ? texts[side] : QString::fromLatin1(bytes[side].data(), qsizetype(bytes[side].size())));
  return files;
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
  std::string bytes[2];
  for (int side = 0; side < 2; ++side) {
    regmill::Expected<std::string> read = regmill::readInputFile(names[side]);
    if (!read.ok()) return fail(read.status().message(), kTrouble);
    bytes[side] = std::move(*read);
  }
  const TextFiles files = decode(bytes);
  regmill::DiffDisplay display(colour);
  try {
    display.compareLists(files.lines[0], files.lines[1]);
  } catch (const std::length_error&) {
    return fail("too many lines of the two files match each other to compare them (list too long)", kTrouble);
  }
  print(files.encoded(display.leftText()));
  print(files.encoded(display.rightText()));
  print(display.label().toUtf8() + '\n');
  return display.differences().empty() ? 0 : 1;
}

}  // namespace loom
