#include "platform/registry/RegistryLine.h"

#include "platform/CodePage.h"

#include <QtEndian>

namespace tolvex::platform {

namespace {

// Column after which the platform's own export goes on in the next line.
constexpr qsizetype widestLine = 76;

// Types whose bytes are text, stored as UTF-16.
bool isText(RegistryType type) {
    return type == RegistryType::Text || type == RegistryType::ExpandText || type == RegistryType::MultiText;
}

// A quoted text from `at`, which moves past its closing quote. Nothing if it is not closed.
std::optional<QString> quoted(QStringView line, qsizetype& at) {
    if (at >= line.size() || line[at] != u'"')
        return std::nullopt;
    QString text;
    for (++at; at < line.size(); ++at) {
        if (line[at] == u'"') {
            ++at;
            return text;
        }
        if (line[at] == u'\\' && ++at == line.size())
            break;
        text += line[at];
    }
    return std::nullopt;
}

QString inQuotes(const QString& text) {
    QString escaped = text;
    escaped.replace(u'\\', QStringLiteral("\\\\")).replace(u'"', QStringLiteral("\\\""));
    return u'"' + escaped + u'"';
}

int hexDigit(QChar c) {
    if (c >= u'0' && c <= u'9')
        return c.unicode() - u'0';
    const char16_t lower = c.unicode() | 0x20;
    return lower >= u'a' && lower <= u'f' ? lower - u'a' + 10 : -1;
}

// Up to `digits` hexadecimal digits and nothing else.
std::optional<quint32> hexNumber(QStringView text, qsizetype digits) {
    quint32 number = 0;
    if (text.isEmpty() || text.size() > digits)
        return std::nullopt;
    for (const QChar c : text) {
        const int digit = hexDigit(c);
        if (digit < 0)
            return std::nullopt;
        number = number << 4 | static_cast<quint32>(digit);
    }
    return number;
}

// "aa,bb,\<line end>  cc": bytes with continuations between them.
std::optional<QByteArray> hexBytes(QStringView text) {
    QByteArray bytes;
    int pending = -1;
    bool comma = true; // whether a byte may start here
    for (const QChar c : text) {
        const int digit = hexDigit(c);
        if (digit >= 0 && pending >= 0) {
            bytes += static_cast<char>(pending << 4 | digit);
            pending = -1;
            comma = false;
        } else if (digit >= 0 && comma) {
            pending = digit;
        } else if (c == u',' && pending < 0 && !comma) {
            comma = true;
        } else if (pending >= 0 || !(c.isSpace() || c == u'\\')) {
            return std::nullopt;
        }
    }
    return pending < 0 ? std::optional(bytes) : std::nullopt;
}

QByteArray fromWide(const QByteArray& bytes) {
    QString text(bytes.size() / 2, Qt::Uninitialized);
    qFromLittleEndian<char16_t>(bytes.constData(), text.size(), text.data());
    return ToCodePage(text);
}

QByteArray toWide(const QByteArray& bytes) {
    const QString text = FromCodePage(bytes);
    QByteArray wide(text.size() * 2, Qt::Uninitialized);
    qToLittleEndian<char16_t>(text.constData(), text.size(), wide.data());
    return wide;
}

std::optional<RegistryValue> parseHex(QStringView text, bool ansi) {
    RegistryType type = RegistryType::Binary;
    if (text.startsWith(u'(')) {
        const qsizetype end = text.indexOf(u')');
        const auto number = hexNumber(end < 0 ? QStringView() : text.sliced(1, end - 1), 8);
        if (!number)
            return std::nullopt;
        type = static_cast<RegistryType>(*number);
        text = text.sliced(end + 1);
    }
    if (!text.startsWith(u':'))
        return std::nullopt;
    const std::optional<QByteArray> bytes = hexBytes(text.sliced(1));
    if (!bytes)
        return std::nullopt;
    return RegistryValue{type, isText(type) && !ansi ? fromWide(*bytes) : *bytes};
}

std::optional<RegistryValue> parseValue(QStringView text, bool ansi) {
    if (text.startsWith(u'"')) {
        qsizetype at = 0;
        const std::optional<QString> content = quoted(text, at);
        if (!content || at != text.size())
            return std::nullopt;
        return RegistryValue{RegistryType::Text, ToCodePage(*content)};
    }
    if (text.startsWith(QLatin1String("dword:"), Qt::CaseInsensitive)) {
        const std::optional<quint32> number = hexNumber(text.sliced(6), 8);
        if (!number)
            return std::nullopt;
        RegistryValue value{RegistryType::Number, QByteArray(4, '\0')};
        qToLittleEndian(*number, value.data.data());
        return value;
    }
    if (text.startsWith(QLatin1String("hex"), Qt::CaseInsensitive))
        return parseHex(text.sliced(3), ansi);
    return std::nullopt;
}

// Text that fits between quotes on one line; the export adds its terminating zero itself.
std::optional<QString> quotable(const RegistryValue& value) {
    if (value.type != RegistryType::Text)
        return std::nullopt;
    QByteArray bytes = value.data;
    if (bytes.endsWith('\0'))
        bytes.chop(1);
    for (const char c : bytes)
        if (c == '\0' || c == '\r' || c == '\n')
            return std::nullopt;
    return FromCodePage(bytes);
}

QString hexText(QString line, const QByteArray& bytes) {
    QString text;
    for (qsizetype i = 0; i < bytes.size(); ++i) {
        line += QStringLiteral("%1").arg(static_cast<quint8>(bytes[i]), 2, 16, QChar(u'0'));
        if (i + 1 == bytes.size())
            break;
        line += u',';
        if (line.size() > widestLine) {
            text += line + QLatin1String("\\\r\n");
            line = QStringLiteral("  ");
        }
    }
    return text + line;
}

} // namespace

std::optional<RegistryLine> ParseRegistryLine(QStringView given, bool ansi) {
    const QStringView line = given.trimmed();
    RegistryLine parsed;
    qsizetype at = 1;
    if (!line.startsWith(u'@')) {
        at = 0;
        const std::optional<QString> name = quoted(line, at);
        if (!name)
            return std::nullopt;
        parsed.name = *name;
    }
    QStringView rest = line.sliced(at).trimmed();
    if (!rest.startsWith(u'='))
        return std::nullopt;
    rest = rest.sliced(1).trimmed();
    if (rest == QLatin1String("-"))
        return parsed;
    parsed.value = parseValue(rest, ansi);
    return parsed.value ? std::optional(parsed) : std::nullopt;
}

QString ParseRegistryHeader(QStringView given) {
    const QStringView line = given.trimmed();
    const qsizetype end = line.lastIndexOf(u']');
    if (!line.startsWith(u'[') || end < 0)
        return {};
    return NormalRegistryPath(line.sliced(1, end - 1).toString());
}

QString FormatRegistryLine(const QString& name, const RegistryValue& value, bool ansi) {
    const QString start = (name.isEmpty() ? QStringLiteral("@") : inQuotes(name)) + u'=';
    const QString end = QStringLiteral("\r\n");
    if (const std::optional<QString> text = quotable(value))
        return start + inQuotes(*text) + end;
    if (value.type == RegistryType::Number && value.data.size() == 4)
        return start + QLatin1String("dword:") +
               QStringLiteral("%1").arg(qFromLittleEndian<quint32>(value.data.constData()), 8, 16,
                                        QChar(u'0')) +
               end;
    const QString type = value.type == RegistryType::Binary
                             ? QStringLiteral("hex:")
                             : QStringLiteral("hex(%1):").arg(static_cast<quint32>(value.type), 0, 16);
    return hexText(start + type, isText(value.type) && !ansi ? toWide(value.data) : value.data) + end;
}

QString NormalRegistryPath(const QString& path) {
    return path.split(u'\\', Qt::SkipEmptyParts).join(u'\\');
}

} // namespace tolvex::platform
