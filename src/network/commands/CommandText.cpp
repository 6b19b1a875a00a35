#include "network/commands/CommandText.h"

#include "platform/CodePage.h"

namespace tolvex {

namespace {

struct Escape {
    char letter;
    char byte;
};
constexpr Escape escapes[] = {{'r', '\r'}, {'n', '\n'}, {'t', '\t'}, {'\\', '\\'}};

// Bytes that stand for no visible character: the controls, the five that the code page leaves open, and the
// no-break space and soft hyphen, which look like something else.
bool isHidden(unsigned char byte) {
    constexpr unsigned char others[] = {0x7F, 0x81, 0x8D, 0x8F, 0x90, 0x9D, 0xA0, 0xAD};
    return byte < 0x20 || std::find(std::begin(others), std::end(others), byte) != std::end(others);
}

QString escapeOf(char byte) {
    for (const Escape& escape : escapes)
        if (escape.byte == byte)
            return QStringLiteral("\\%1").arg(QLatin1Char(escape.letter));
    return QStringLiteral("\\x%1")
        .arg(static_cast<unsigned char>(byte), 2, 16, QLatin1Char('0'))
        .toUpper()
        .replace(u'X', u'x');
}

// Reads the escape whose backslash is at `at` and moves `at` to its last character. Nothing if it does not
// exist.
std::optional<char> readEscape(const QString& text, qsizetype& at) {
    const QString letter = text.mid(at + 1, 1);
    for (const Escape& escape : escapes)
        if (letter == QLatin1Char(escape.letter))
            return ++at, escape.byte;
    if (letter != QLatin1String("x"))
        return std::nullopt;
    const QString digits = text.mid(at + 2, 2);
    bool isNumber = false;
    const int value = digits.toInt(&isNumber, 16);
    if (!isNumber || digits.size() != 2 || !digits[0].isLetterOrNumber())
        return std::nullopt;
    at += 3;
    return static_cast<char>(value);
}

} // namespace

QString ShowCommandText(const QByteArray& bytes, bool lineBreaks) {
    QString text;
    for (qsizetype i = 0; i < bytes.size(); ++i) {
        const char byte = bytes[i];
        if (lineBreaks && byte == '\r' && i + 1 < bytes.size() && bytes[i + 1] == '\n') {
            text += u'\n';
            ++i;
        } else if (byte == '\\' || isHidden(static_cast<unsigned char>(byte))) {
            text += escapeOf(byte);
        } else {
            text += platform::FromCodePage(&byte, 1);
        }
    }
    return text;
}

std::optional<QByteArray> ReadCommandText(const QString& text, TextForm form, TextFault* fault) {
    const auto refuse = [fault](const QString& sentence, qsizetype place) {
        if (fault)
            *fault = {sentence, place};
        return std::nullopt;
    };
    if (const qsizetype place = platform::FirstOutsideCodePage(text); place >= 0) {
        const bool pair = text[place].isHighSurrogate() && place + 1 < text.size();
        return refuse(QStringLiteral("The character \"%1\" at place %2 cannot be sent: the code page of the "
                                     "suite does not have it.")
                          .arg(text.mid(place, pair ? 2 : 1))
                          .arg(place + 1),
                      place);
    }
    QByteArray bytes;
    bytes.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (form != TextForm::AsItStands && text[i] == u'\n' && (i == 0 || text[i - 1] != u'\r')) {
            bytes += "\r\n";
        } else if (form == TextForm::Escaped && text[i] == u'\\') {
            const qsizetype place = i;
            const std::optional<char> byte = readEscape(text, i);
            if (!byte)
                return refuse(QStringLiteral("\"%1\" at place %2 is not an escape; one of \\r, \\n, \\t, "
                                             "\\\\ and \\x with two hexadecimal digits is expected.")
                                  .arg(text.mid(place, 4))
                                  .arg(place + 1),
                              place);
            bytes += *byte;
        } else {
            bytes += platform::ToCodePage(text[i]);
        }
    }
    return bytes;
}

QString HexOf(const QByteArray& bytes) {
    return QString::fromLatin1(bytes.toHex(' ')).toUpper();
}

} // namespace tolvex
