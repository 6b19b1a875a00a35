#include "automation/SettingWords.h"

namespace tolvex {

namespace {

QVariant refuse(QString* why, const QString& reason) {
    if (why)
        *why = reason;
    return {};
}

QString plain(QString word) {
    word = word.trimmed();
    if (word.endsWith(u'.'))
        word.chop(1);
    return word;
}

} // namespace

QString FlagWord(bool flag) {
    return flag ? QStringLiteral("yes") : QStringLiteral("no");
}

QVariant ParseFlag(const QString& text, QString* why) {
    const QString word = text.trimmed().toLower();
    for (const char* on : {"1", "-1", "true", "on", "yes"})
        if (word == QLatin1String(on))
            return true;
    for (const char* off : {"0", "false", "off", "no"})
        if (word == QLatin1String(off))
            return false;
    return refuse(why, QStringLiteral("is yes or no, not \"%1\"").arg(text));
}

QVariant ParseWord(std::span<const char* const> words, const QString& text, QString* why) {
    bool good = false;
    const int number = text.toInt(&good);
    if (good && number >= 0 && number < static_cast<int>(words.size()))
        return number;
    QStringList all;
    for (std::size_t at = 0; at < words.size(); ++at) {
        all += QStringLiteral("%1 \"%2\"").arg(at).arg(QString::fromUtf8(words[at]));
        if (plain(text).compare(plain(QString::fromUtf8(words[at])), Qt::CaseInsensitive) == 0)
            return static_cast<int>(at);
    }
    return refuse(why, QStringLiteral("is one of %1").arg(all.join(QStringLiteral(", "))));
}

QVariant ParseWhole(const QString& text, qint64 lowest, qint64 highest, QString* why) {
    bool good = false;
    const qint64 number = text.trimmed().toLongLong(&good);
    if (!good || number < lowest || number > highest)
        return refuse(
            why,
            QStringLiteral("is a whole number from %1 to %2, not \"%3\"").arg(lowest).arg(highest).arg(text));
    return static_cast<qint32>(number);
}

QString ColourWord(qint32 colour) {
    return QStringLiteral("0x%1").arg(static_cast<quint32>(colour), colour < 0 ? 8 : 6, 16, QLatin1Char('0'));
}

QVariant ParseColour(const QString& text, QString* why) {
    constexpr qint64 white = 0xFFFFFF;
    constexpr qint64 firstSystem = 0x80000000;
    constexpr qint64 lastSystem = 0x8000001E;
    bool good = false;
    const QString word = text.trimmed();
    const qint64 number = word.startsWith(QStringLiteral("0x"), Qt::CaseInsensitive)
                              ? word.mid(2).toLongLong(&good, 16)
                              : word.toLongLong(&good);
    const qint64 system = number < 0 ? number + (qint64{1} << 32) : number;
    if (good && ((number >= 0 && number <= white) || (system >= firstSystem && system <= lastSystem)))
        return static_cast<qint32>(system);
    return refuse(
        why, QStringLiteral("is a colour, blue-green-red as in 0x00FF00 for green, not \"%1\"").arg(text));
}

} // namespace tolvex
