// How a text file's bytes become lines and back: the byte-order mark, the choice of
// encoding, the check for UTF-8, the line ends. Saving an unchanged document gives
// the loaded bytes again, except where the line ends were inconsistent.
#pragma once
#include <QByteArray>
#include <QString>

#include "editor/code_buffer.h"

class QTextCodec;

namespace regmill {

struct CodeEditSettings;

// 0 none, 1 EF BB BF, 2 FF FE, 3 FE FF; tested in the order FE FF, FF FE, EF BB BF.
int detectByteOrderMark(QByteArrayView bytes);
QByteArray byteOrderMarkBytes(int mark);
// Whether the bytes are well-formed by the lead-byte rule (up to six-byte sequences;
// overlong forms and surrogates are not looked at). Plain ASCII passes.
bool looksLikeUtf8(QByteArrayView bytes);
// The codec's name for a file: the requested one, else what the mark says, else UTF-8
// when detection is on and the bytes pass, else the default; "Default" stands for the
// locale's codec.
QString chooseEncoding(const QString& requested, int mark, QByteArrayView bytes, const CodeEditSettings& settings);
// The codec of that name, or the locale's.
QTextCodec* codecNamed(const QString& name);

struct DecodedFile {
  CodeBuffer::Lines lines;
  QString encoding;    // as chosen, e.g. "UTF-8" or "Default"
  int byteOrderMark = 0;
  int lineEnding = 3;  // 0 CR LF, 1 LF, 2 CR, 3 no line end seen
  bool inconsistentLineEndings = false;
  bool lossy = false;  // some bytes had no character in the codec
};

// A NUL byte is kept as a character, so that saving never truncates a file.
DecodedFile decodeFile(const QByteArray& bytes, const QString& requestedEncoding, const CodeEditSettings& settings);
// The mark as raw bytes, then the lines in the codec's form with `lineEnding` between
// them (3 takes the default), no mark from the codec itself.
QByteArray encodeFile(const CodeBuffer& buffer, const QString& encoding, int byteOrderMark, int lineEnding,
                      const CodeEditSettings& settings);

}  // namespace regmill
