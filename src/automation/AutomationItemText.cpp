// Items in the words of the window, for the shell and for messages.
#include "automation/AutomationFields.h"
#include "automation/SettingWords.h"
#include "core/text/PathNames.h"
#include "platform/devices/AudioFormats.h"

#include <limits>

namespace tolvex {

namespace {

using Kind = AutomationField::Kind;
using Record = KOVADatabaseSettings;

constexpr qint32 LastPlayer = 255;

// The range of an item's numbers.
qint64 lowestOf(const AutomationItem& item, const AutomationField* field) {
    if (field && field->kind == Kind::Font)
        return 1; // of its size
    if (field && field->kind != Kind::Number)
        return field->kind == Kind::AutoRestart ? -1 : 0;
    return std::holds_alternative<qint16 Record::*>(item.member) ? INT16_MIN : INT32_MIN;
}
qint64 highestOf(const AutomationItem& item) {
    return std::holds_alternative<qint16 Record::*>(item.member) ? INT16_MAX : INT32_MAX;
}

QVariant parsePlayer(const QString& text, QString* why) {
    const auto words = PlayerWords();
    const qint32 number = text.toInt();
    if (number == LastPlayer || (number >= 1 && number < static_cast<qint32>(words.size())))
        return number;
    for (std::size_t at = 0; at < words.size(); ++at)
        if (text.trimmed().compare(QLatin1String(words[at]), Qt::CaseInsensitive) == 0)
            return at + 1 == words.size() ? LastPlayer : static_cast<qint32>(at) + 1;
    *why = QStringLiteral("is a player from 1 to %1, or 255 for the last one").arg(words.size() - 1);
    return {};
}

QVariant parseSeconds(const QString& text, QString* why) {
    bool good = false;
    const float number = text.toFloat(&good);
    if (good && number >= 0 && number <= INT16_MAX)
        return text;
    *why = QStringLiteral("is a number of seconds, not \"%1\"").arg(text);
    return {};
}

// The window's boxes mend or refuse the same texts.
QVariant parseText(const AutomationItem& item, const AutomationField* field, const QString& text,
                   QString* why) {
    if (field && field->kind == Kind::Font && text.trimmed().isEmpty()) {
        *why = QStringLiteral("has to be the name of a font");
        return {};
    }
    return QLatin1String(item.name).endsWith(QLatin1String(".LogPath")) ? WithoutTrailingBackslash(text)
                                                                        : text;
}

QVariant parse(const AutomationItem& item, const AutomationField* field, const QString& text, QString* why) {
    const bool isFlag = field && field->kind == Kind::Flag;
    if (isFlag || std::holds_alternative<bool Record::*>(item.member)) {
        const QVariant flag = ParseFlag(text, why);
        return flag.isValid() ? QVariant(int{flag.toBool()}) : flag;
    }
    if (std::holds_alternative<QString Record::*>(item.member))
        return parseText(item, field, text, why);
    if (std::holds_alternative<float Record::*>(item.member))
        return parseSeconds(text, why);
    if (field && field->kind == Kind::List)
        return ParseWord(field->words, text, why);
    if (field && field->kind == Kind::Player)
        return parsePlayer(text, why);
    if (field && field->kind == Kind::Colour)
        return ParseColour(text, why);
    if (field && field->kind == Kind::AutoRestart &&
        text.compare(QLatin1String("off"), Qt::CaseInsensitive) == 0)
        return -1;
    return ParseWhole(text, lowestOf(item, field), highestOf(item), why);
}

// Whether the chooser of formats can give the record's format of voice links.
bool hasKnownFormat(const KOVADatabaseSettings& record) {
    const auto nearest = platform::SuggestAudioFormat(
        record.SEGUE_VoiceLinkFormat, record.SEGUE_VoiceLinkChannels, record.SEGUE_VoiceLinkKhz);
    return nearest && nearest->tag == record.SEGUE_VoiceLinkFormat &&
           nearest->channels == record.SEGUE_VoiceLinkChannels && nearest->rate == record.SEGUE_VoiceLinkKhz;
}

// Sets what follows from an item: its time chooses one of the two ways of fading, an address a computer.
void settle(const AutomationItem& item, KOVADatabaseSettings& record) {
    const QLatin1String name(item.name);
    if (name == QLatin1String("KOVA.MaxFadeTime") && record.KOVA_MaxFadeTime > 0)
        record.KOVA_EachFadeTime = 0;
    if (name == QLatin1String("KOVA.EachFadeTime"))
        record.KOVA_MaxFadeTime = 0;
    if (record.KOVA_SCComputerAddress.isEmpty() && name == QLatin1String("KOVA.SCComputerAddress"))
        record.KOVA_SCComputerPort = 0;
}

} // namespace

QString AutomationItemText(const AutomationItem& item, const KOVADatabaseSettings& record) {
    const QVariant value = MemberValue(item, record);
    const AutomationField* field = FindAutomationField(QLatin1String(item.name));
    if (value.typeId() == QMetaType::Bool || (field && field->kind == Kind::Flag))
        return FlagWord(value.toInt() != 0);
    if (value.typeId() == QMetaType::Float)
        return QString::number(value.toFloat());
    const int number = value.toInt();
    if (field && field->kind == Kind::Colour)
        return ColourWord(number);
    if (field && field->kind == Kind::List && number >= 0 && number < static_cast<int>(field->words.size()))
        return QString::fromUtf8(field->words[static_cast<std::size_t>(number)]);
    if (field && field->kind == Kind::Player && number == LastPlayer)
        return QString::fromUtf8(PlayerWords().back());
    if (field && field->kind == Kind::Player && number >= 1 && number < static_cast<int>(field->words.size()))
        return QString::fromUtf8(PlayerWords()[static_cast<std::size_t>(number) - 1]);
    if (field && field->kind == Kind::AutoRestart && number < 0)
        return QStringLiteral("off");
    return value.toString();
}

bool SetAutomationItem(const AutomationItem& item, const QString& text, KOVADatabaseSettings& record,
                       QString* why) {
    if (!item.isWritten()) {
        *why = QStringLiteral("is written by other programs");
        return false;
    }
    if (QLatin1String(item.name) == QLatin1String("KOVA.ZQSServerAddress")) {
        *why = QStringLiteral("is an older name of KOVA.SCComputerAddress");
        return false;
    }
    const AutomationField* field = FindAutomationField(QLatin1String(item.name));
    const QVariant value = parse(item, field, text, why);
    if (!value.isValid())
        return false;
    KOVADatabaseSettings changed = record;
    TakeMember(item, value, changed);
    if (field && field->kind == Kind::AudioFormat && !hasKnownFormat(changed)) {
        *why = QStringLiteral("would make the format %1, which cannot be recorded here; \"tolvexctl audio "
                              "formats\" lists those that can")
                   .arg(platform::DescribeAudioFormat(changed.SEGUE_VoiceLinkFormat,
                                                      changed.SEGUE_VoiceLinkChannels,
                                                      changed.SEGUE_VoiceLinkKhz));
        return false;
    }
    settle(item, changed);
    record = changed;
    return true;
}

} // namespace tolvex
