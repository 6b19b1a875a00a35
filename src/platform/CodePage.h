// Code page 1252, the single-byte text of every file of the suite. The
// undefined bytes 81 8D 8F 90 9D map to U+0081 and so on and back, as the
// platform's own conversion does; characters that do not fit become '?'.
#pragma once

#include <QByteArray>
#include <QString>

#include <array>

namespace tolvex::platform {

QByteArray ToCodePage(const QString& text);
// The position, from 0, of the first character that does not fit; -1 if all of them do.
qsizetype FirstOutsideCodePage(const QString& text);
QString FromCodePage(const char* bytes, qsizetype length);
inline QString FromCodePage(const QByteArray& bytes) {
    return FromCodePage(bytes.constData(), bytes.size());
}

// The lower-case form of each byte: two bytes are the same letter, regardless of case, if these are equal. A
// letter whose other case the code page lacks (sharp s, florin, micro) equals only itself.
extern const std::array<unsigned char, 256> LowerCaseBytes;

} // namespace tolvex::platform
