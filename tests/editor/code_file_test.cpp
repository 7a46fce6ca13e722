// Loading and saving files: marks, encodings against iconv's conversions, line ends,
// and the places where Qt 6 differs from the behaviour the editor keeps.
#include <gtest/gtest.h>

#include <QTextCodec>
#include <cstdio>
#include <cstring>

#include "editor/code_edit.h"
#include "editor/code_file.h"
#include "tests/editor/editor_printers.h"
#include "tests/support/regmill_process.h"
#include "tests/support/scratch_folder.h"

namespace regmill {
namespace {

using testing::ScratchFolder;
using testing::shellOutput;

struct Recorder : MessageHandler {
  QStringList shown;
  void showMessage(const QString& title, const QString& text) override { shown.append(title + ": " + text); }
};

struct Sample {
  const char* encoding;  // iconv's and the codec's name
  const char* mark;      // prepended raw
  const char* text;      // UTF-8, lines joined by "\n"
};

const Sample kSamples[] = {
    {"UTF-8", "", "Grüße\nκόσμε 日本\n\tend"},
    {"UTF-8", "\xEF\xBB\xBF", "Grüße\nκόσμε\n"},
    {"UTF-16LE", "\xFF\xFE", "Grüße 😀\n日本語\n"},
    {"UTF-16BE", "\xFE\xFF", "Grüße 😀\n日本語"},
    {"windows-1252", "", "caf\xC3\xA9 \xE2\x82\xAC 5\n\xE2\x80\x9Cquoted\xE2\x80\x9D"},
    {"ISO-8859-1", "", "na\xC3\xAFve \xC3\xBF\n\xC2\xA9 2024\n"},
    {"Shift_JIS", "", "日本語のテキスト\nｶﾀｶﾅ\n"},
    {"GB18030", "", "中文文本\n汉字 €\n"},
    {"KOI8-R", "", "Привет, мир\nтекст"},
};

TEST(CodeFile, EncodingsMatchIconvAndUnchangedSavesAreByteIdentical) {
  REGMILL_SKIP_WITHOUT_PROGRAM("iconv");
  ScratchFolder folder;
  const struct {
    const char* name;
    const char* bytes;
    int code;
  } endings[] = {{"LF", "\n", CodeEdit::Lf}, {"CRLF", "\r\n", CodeEdit::CrLf}, {"CR", "\r", CodeEdit::Cr}};
  for (const Sample& sample : kSamples) {
    for (const auto& ending : endings) {
      const std::string label = std::string(sample.encoding) + (*sample.mark ? "+BOM " : " ") + ending.name;
      std::string source = sample.text;
      for (size_t at = 0; (at = source.find('\n', at)) != std::string::npos; at += std::strlen(ending.bytes))
        source.replace(at, 1, ending.bytes);
      folder.write("source.txt", source);
      auto converted = shellOutput("iconv -f UTF-8 -t " + std::string(sample.encoding) + " " + folder.file("source.txt"));
      ASSERT_TRUE(converted) << label;
      const std::string path = folder.write("file.txt", std::string(sample.mark) + *converted);

      CodeEdit editor;
      // Files without a mark or in UTF-8 name their codec; the others are detected.
      const bool detected = *sample.mark || std::string(sample.encoding) == "UTF-8";
      if (!detected) editor.setEncodingName(sample.encoding);
      ASSERT_TRUE(editor.load(QString::fromStdString(path))) << label;
      EXPECT_EQ(editor.text(), QString::fromUtf8(sample.text)) << label;
      EXPECT_EQ(editor.byteOrderMark(), detectByteOrderMark(QByteArray(sample.mark))) << label;
      EXPECT_EQ(editor.lineEnding(), ending.code) << label;
      ASSERT_TRUE(editor.save(QString::fromStdString(folder.file("saved.txt"))).ok());
      EXPECT_EQ(folder.read("saved.txt"), folder.read("file.txt")) << label;
    }
  }
}

TEST(CodeFile, MixedLineEndsAreReportedAndWrittenNatively) {
  ScratchFolder folder;
  Recorder messages;
  CodeEdit editor;
  editor.setMessageHandler(&messages);
  const QString path = QString::fromStdString(folder.write("mixed.txt", "a\r\nb\nc"));
  ASSERT_TRUE(editor.load(path));
  EXPECT_EQ(messages.shown, QStringList("Inconsistent line endings: This file " + path +
                                        " has inconsistent line endings; all line endings have been changed to "
                                        "native line endings"));
  EXPECT_EQ(editor.encodedText(), "a\nb\nc");
  messages.shown.clear();
  folder.write("plain.txt", "one line");
  ASSERT_TRUE(editor.load(QString::fromStdString(folder.file("plain.txt"))));
  EXPECT_TRUE(messages.shown.isEmpty());
  EXPECT_EQ(editor.lineEnding(), CodeEdit::Lf);  // no line end at all: the default
}

TEST(CodeFile, MarksNulsAndTruncatedSequences) {
  CodeEditSettings settings;
  // A UTF-16 codec would write its own mark; the editor writes the file's only once.
  for (const QByteArray& bytes :
       {QByteArray("\xEF\xBB\xBF"), QByteArray("a\0b\nc\n", 6), QByteArray("\xFF\xFE" "a\0", 4)}) {
    DecodedFile file = decodeFile(bytes, {}, settings);
    CodeBuffer buffer;
    buffer.assign(file.lines);
    EXPECT_EQ(encodeFile(buffer, file.encoding, file.byteOrderMark, file.lineEnding, settings), bytes);
  }
  struct Row {
    const char* bytes;
    bool utf8;
  } rows[] = {{"plain", true}, {"\xC3\xA9", true}, {"\xC3", false}, {"\xE6\x97", false}, {"\x7F", false},
              {"\xBF", false}, {"\xFE", false}, {"\xF8\x88\x80\x80\x80", true}, {"\xC3\x28", false}};
  for (const Row& row : rows) EXPECT_EQ(looksLikeUtf8(row.bytes), row.utf8) << row.bytes;
  EXPECT_EQ(chooseEncoding({}, 0, "caf\xE9", settings), "Default");
  settings.defaultEncoding = "windows-1252";
  EXPECT_EQ(chooseEncoding("Default", 0, "caf\xE9", settings), "windows-1252");
  EXPECT_EQ(chooseEncoding({}, 2, "", settings), "UTF-16LE");
  EXPECT_EQ(chooseEncoding("KOI8-R", 1, "", settings), "KOI8-R");
}

TEST(CodeFile, QtSixChoosesUtf8ForTheLocaleEvenInTheCLocale) {
  // Under Qt 4 the C locale gave a Latin-1 codec; Qt 6 always uses UTF-8, so a file
  // that is no UTF-8 and names no codec reads through UTF-8 with replacement characters.
  CodeEditSettings settings;
  settings.detectUtf8 = false;
  DecodedFile latin = decodeFile("caf\xE9", {}, settings);
  EXPECT_EQ(latin.lines.front().text, QString::fromUtf8("caf\xEF\xBF\xBD"));
}

TEST(CodeFile, UnreadableFilesFailWithTheirMessage) {
  ScratchFolder folder;
  Recorder messages;
  CodeEdit editor;
  editor.setMessageHandler(&messages);
  const QString missing = QString::fromStdString(folder.file("missing.txt"));
  EXPECT_FALSE(editor.load(missing));
  EXPECT_EQ(messages.shown, QStringList("Can't read file: Can't open " + missing + " for reading"));
  EXPECT_FALSE(editor.load(QString::fromStdString(folder.path().string())));
}

}  // namespace
}  // namespace regmill
