#include "editor/code_file.h"

#include <QTextCodec>

#include "editor/code_edit.h"

namespace regmill {

namespace {

bool isDefaultName(const QString& name) { return name.isEmpty() || name == QLatin1String("Default"); }

// Cuts decoded text at LF, CR and CR LF, noting each ending.
void splitLines(const QString& text, DecodedFile& file) {
  const QChar* data = text.constData();
  const qsizetype size = text.size();
  qsizetype start = 0;
  auto takeEnding = [&file](int ending) {
    if (file.lineEnding != 3 && file.lineEnding != ending) file.inconsistentLineEndings = true;
    file.lineEnding = ending;
  };
  for (qsizetype index = 0; index < size; ++index) {
    const char16_t c = data[index].unicode();
    if (c != u'\n' && c != u'\r') continue;
    file.lines.push_back(CodeLine{text.mid(start, index - start)});
    if (c == u'\r' && index + 1 < size && data[index + 1] == u'\n') {
      takeEnding(0);
      ++index;
    } else {
      takeEnding(c == u'\n' ? 1 : 2);
    }
    start = index + 1;
  }
  file.lines.push_back(CodeLine{text.mid(start)});
}

}  // namespace

int detectByteOrderMark(QByteArrayView bytes) {
  if (bytes.startsWith("\xFE\xFF")) return 3;
  if (bytes.startsWith("\xFF\xFE")) return 2;
  if (bytes.startsWith("\xEF\xBB\xBF")) return 1;
  return 0;
}

QByteArray byteOrderMarkBytes(int mark) {
  switch (mark) {
    case 1: return QByteArray("\xEF\xBB\xBF");
    case 2: return QByteArray("\xFF\xFE");
    case 3: return QByteArray("\xFE\xFF");
    default: return QByteArray();
  }
}

bool looksLikeUtf8(QByteArrayView bytes) {
  const qsizetype size = bytes.size();
  for (qsizetype index = 0; index < size;) {
    const unsigned char lead = static_cast<unsigned char>(bytes[index++]);
    int continuation;
    if (lead < 127) continue;
    if (lead <= 191 || lead >= 254) return false;
    if (lead <= 223) continuation = 1;
    else if (lead <= 239) continuation = 2;
    else if (lead <= 247) continuation = 3;
    else if (lead <= 251) continuation = 4;
    else continuation = 5;
    if (size - index < continuation) return false;
    for (; continuation > 0; --continuation)
      if ((static_cast<unsigned char>(bytes[index++]) & 0xC0) != 0x80) return false;
  }
  return true;
}

QString chooseEncoding(const QString& requested, int mark, QByteArrayView bytes, const CodeEditSettings& settings) {
  if (!isDefaultName(requested)) return requested;
  switch (mark) {
    case 3: return QStringLiteral("UTF-16BE");
    case 2: return QStringLiteral("UTF-16LE");
    case 1: return QStringLiteral("UTF-8");
  }
  if (settings.detectUtf8 && looksLikeUtf8(bytes)) return QStringLiteral("UTF-8");
  return isDefaultName(settings.defaultEncoding) ? QStringLiteral("Default") : settings.defaultEncoding;
}

QTextCodec* codecNamed(const QString& name) {
  QTextCodec* codec = isDefaultName(name) ? nullptr : QTextCodec::codecForName(name.toLatin1());
  return codec != nullptr ? codec : QTextCodec::codecForLocale();
}

DecodedFile decodeFile(const QByteArray& bytes, const QString& requestedEncoding, const CodeEditSettings& settings) {
  DecodedFile file;
  file.byteOrderMark = detectByteOrderMark(bytes);
  const QByteArrayView body = QByteArrayView(bytes).sliced(byteOrderMarkBytes(file.byteOrderMark).size());
  file.encoding = chooseEncoding(requestedEncoding, file.byteOrderMark, body, settings);
  // The mark is the file's, not the text's: the codec must neither eat nor add one.
  QTextDecoder decoder(codecNamed(file.encoding), QTextCodec::IgnoreHeader);
  QString text = decoder.toUnicode(body.data(), int(body.size()));
  // A sequence cut off by the end of the file would otherwise vanish without a trace.
  file.lossy = decoder.hasFailure() || decoder.needsMoreData();
  if (decoder.needsMoreData()) text += QChar::ReplacementCharacter;
  splitLines(text, file);
  return file;
}

QByteArray encodeFile(const CodeBuffer& buffer, const QString& encoding, int byteOrderMark, int lineEnding,
                      const CodeEditSettings& settings) {
  if (lineEnding == 3) lineEnding = settings.defaultLineEnding;
  const QString ending = lineEnding == 0 ? QStringLiteral("\r\n") : lineEnding == 2 ? QStringLiteral("\r") : QStringLiteral("\n");
  QString text;
  for (auto record = buffer.begin(); record != buffer.end(); ++record) {
    if (record != buffer.begin()) text += ending;
    text += record->text;
  }
  const QString name = isDefaultName(encoding) ? settings.defaultEncoding : encoding;
  QTextEncoder encoder(codecNamed(name), QTextCodec::IgnoreHeader);
  return byteOrderMarkBytes(byteOrderMark) + encoder.fromUnicode(text);
}

}  // namespace regmill
