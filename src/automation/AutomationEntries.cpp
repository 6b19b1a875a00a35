// What the window's controls show of a record, the checks of OK, and the way back into the record.
#include "automation/AutomationFields.h"
#include "core/text/Numbers.h"
#include "core/text/PathNames.h"
#include "core/time/DateFormat.h"

namespace tolvex {

namespace {

using Kind = AutomationField::Kind;

constexpr qint32 LastPlayer = 255;
constexpr qint32 LongestRestart = 32000; // seconds
constexpr qint32 MostNextItems = 50;
constexpr qint32 LongestPreview = 300; // seconds
constexpr qint32 MostPorts = 20;       // of station control
enum StationControl : qint32 { NoComputer = 0, Zcp = 1, Zqs = 2 };

const AutomationItem& itemOf(const AutomationField& field) {
    return *FindAutomationItem(QLatin1String(field.item));
}

QString numberText(const QVariant& value) {
    return value.typeId() == QMetaType::Float ? QString::number(value.toFloat()) : value.toString();
}

int playerEntry(qint32 player) {
    const auto count = static_cast<qint32>(PlayerWords().size());
    return player == LastPlayer ? count - 1 : std::clamp(player, 1, count) - 1;
}

qint32 playerOf(qint32 entry) {
    return entry == static_cast<qint32>(PlayerWords().size()) - 1 ? LastPlayer : entry + 1;
}

// The controls of items that share some.
void showShared(const KOVADatabaseSettings& record, AutomationEntries& entries) {
    const auto showSwitched = [&](const char* box, const char* text, bool on, const QString& value) {
        entries[QLatin1String(box)] = int{on};
        entries[QLatin1String(text)] = on ? value : QString();
    };
    showSwitched("chkAutoRestart", "txtRestartSeconds", record.KOVA_AutoRestartDelay >= 0,
                 QString::number(record.KOVA_AutoRestartDelay));
    showSwitched("chkSTLevelTrigger", "txtSTTriggerLevel", record.SEGUE_VoiceLinkLevelTrigger >= 1,
                 QString::number(record.SEGUE_VoiceLinkLevelTrigger));
    showSwitched("chkScheduleAds", "txtAdvertClientDatabase", !record.ADVERTS_ClientDatabase.isEmpty(),
                 record.ADVERTS_ClientDatabase);
    const bool fadesLast = record.KOVA_MaxFadeTime >= 1;
    showSwitched("optFadeLast", "txtMaxFadeTime", fadesLast, QString::number(record.KOVA_MaxFadeTime));
    showSwitched("optFadeEach", "txtFadeEachTime", !fadesLast, QString::number(record.KOVA_EachFadeTime));

    const bool hasComputer = !record.KOVA_SCComputerAddress.isEmpty();
    const bool hasPort = record.KOVA_SCComputerPort >= 1;
    entries[QStringLiteral("comboStationControl")] = !hasComputer ? NoComputer : hasPort ? Zcp : Zqs;
    entries[QStringLiteral("txtStationControlComputer")] = record.KOVA_SCComputerAddress;
    entries[QStringLiteral("comboStationControlPort")] =
        hasComputer && hasPort ? std::clamp(record.KOVA_SCComputerPort, 1, MostPorts) - 1 : 0;
}

class Reader {
public:
    explicit Reader(const AutomationEntries& entries)
        : entries_(entries) {}
    bool on(const char* control) const { return number(control) != 0; }
    int number(const char* control) const { return entries_.value(QLatin1String(control)).toInt(); }
    QString text(const char* control) const { return entries_.value(QLatin1String(control)).toString(); }
    double typed(const char* control) const { return LeadingNumber(text(control)); }
    bool isEmpty(const char* control) const { return text(control).trimmed().isEmpty(); }

private:
    const AutomationEntries& entries_;
};

bool isBetween(double value, qint32 lowest, qint32 highest) {
    return value >= lowest && value <= highest;
}

// Whether the box is one that is stored: what stands in the others may be anything.
bool isStored(const AutomationField& field, const Reader& entry) {
    switch (field.kind) {
    case Kind::Number:
    case Kind::Digits:
        return true;
    case Kind::AutoRestart:
        return entry.on("chkAutoRestart");
    case Kind::LevelTrigger:
        return entry.on("chkSTLevelTrigger");
    case Kind::FadeTime:
        return entry.on(qstrcmp(field.control, "txtMaxFadeTime") == 0 ? "optFadeLast" : "optFadeEach");
    default:
        return false;
    }
}

// Numbers that their item cannot hold.
std::optional<AutomationFault> checkFits(const Reader& entry) {
    for (const AutomationField& field : AutomationFields()) {
        KOVADatabaseSettings trial;
        if (!isStored(field, entry) || TakeMember(itemOf(field), entry.text(field.control), trial))
            continue;
        const bool isSmall = std::holds_alternative<qint16 KOVADatabaseSettings::*>(itemOf(field).member);
        return AutomationFault{QStringLiteral("This number has to lie between %1 and %2.")
                                   .arg(field.kind == Kind::Number ? INT32_MIN : 0)
                                   .arg(isSmall ? INT16_MAX : INT32_MAX),
                               QLatin1String(field.control)};
    }
    return std::nullopt;
}

std::optional<AutomationFault> checkCarts(const Reader& entry, qint32 carts) {
    const double first = entry.typed("txtVoiceLinkStartCart");
    const double last = entry.typed("txtVoiceLinkEndcart");
    const bool firstIsGood = isBetween(first, 1, carts);
    if (firstIsGood && isBetween(last, 1, carts) && last >= first)
        return std::nullopt;
    return AutomationFault{QStringLiteral("You must choose a valid cart number range for Voice Links"),
                           firstIsGood ? QStringLiteral("txtVoiceLinkEndcart")
                                       : QStringLiteral("txtVoiceLinkStartCart")};
}

} // namespace

AutomationEntries ShowAutomationSettings(const KOVADatabaseSettings& record) {
    AutomationEntries entries;
    for (const AutomationField& field : AutomationFields()) {
        const QVariant value = MemberValue(itemOf(field), record);
        const QString control = QLatin1String(field.control);
        switch (field.kind) {
        case Kind::Flag:
            entries[control] = int{value.toInt() != 0};
            break;
        case Kind::Number:
        case Kind::Digits:
        case Kind::Text:
            entries[control] = numberText(value);
            break;
        case Kind::List:
            entries[control] = std::clamp(value.toInt(), 0, static_cast<int>(field.words.size()) - 1);
            break;
        case Kind::Player:
            entries[control] = playerEntry(value.toInt());
            break;
        case Kind::Colour:
            entries[control] = value;
            break;
        default:
            break;
        }
    }
    showShared(record, entries);
    return entries;
}

std::optional<AutomationFault> CheckAutomationSettings(AutomationEntries& entries, qint32 carts) {
    for (const char* folder : {"txtMusicLogPath", "txtAdvertLogsPath"})
        entries[QLatin1String(folder)] = WithoutTrailingBackslash(Reader(entries).text(folder));
    const Reader entry(entries);
    const auto fault = [](const char* message, const char* control) {
        return AutomationFault{QString::fromUtf8(message), QLatin1String(control)};
    };
    if (entry.on("chkAutoRestart") && (entry.isEmpty("txtRestartSeconds") ||
                                       !isBetween(entry.typed("txtRestartSeconds"), 0, LongestRestart)))
        return fault("You must set the automatic restart delay to a value from 0 to 32000 seconds",
                     "txtRestartSeconds");
    if (entry.number("comboStationControl") > NoComputer &&
        !isBetween(entry.typed("txtShowNextItemsCount"), 1, MostNextItems))
        return fault("You must set how many \"Next\" to send from 1 to 50", "txtShowNextItemsCount");
    if (!isBetween(entry.typed("txtSegPreviewLength"), 1, LongestPreview))
        return fault("You can only set from 1 to 300 seconds for the number of seconds to hear when using "
                     "the segue editor",
                     "txtSegPreviewLength");
    if (auto wrong = checkCarts(entry, carts))
        return wrong;
    if (entry.isEmpty("txtMusicFilenamePrefix") && entry.isEmpty("comboMusicFilenameFormat"))
        return fault("You must set at least one of Music Log Filename Prefix and Log Filename Format",
                     "txtMusicFilenamePrefix");
    if (entry.isEmpty("txtAdvertFilenamePrefix") && entry.isEmpty("comboAdvertFilenameFormat"))
        return fault("You must set at least one of Adverts Log Filename Prefix and Log Filename Format",
                     "txtAdvertFilenamePrefix");
    return checkFits(entry);
}

void TakeAutomationSettings(const AutomationEntries& entries, KOVADatabaseSettings& record) {
    const Reader entry(entries);
    for (const AutomationField& field : AutomationFields()) {
        QVariant value;
        switch (field.kind) {
        case Kind::Flag:
        case Kind::Number:
        case Kind::Digits:
        case Kind::Text:
        case Kind::List:
        case Kind::Colour:
            value = entries.value(QLatin1String(field.control));
            break;
        case Kind::Player:
            value = playerOf(entry.number(field.control));
            break;
        case Kind::AutoRestart:
            value = entry.on("chkAutoRestart") ? entry.text(field.control) : QStringLiteral("-1");
            break;
        case Kind::LevelTrigger:
        case Kind::FadeTime:
            value = isStored(field, entry) ? entry.text(field.control) : QStringLiteral("0");
            break;
        case Kind::ClientDatabase:
            value = entry.on("chkScheduleAds") ? entry.text(field.control) : QString();
            break;
        default:
            continue;
        }
        TakeMember(itemOf(field), value, record);
    }
    const int computer = entry.number("comboStationControl");
    record.KOVA_SCComputerAddress =
        computer == NoComputer ? QString() : entry.text("txtStationControlComputer");
    record.KOVA_SCComputerPort = computer == Zcp ? entry.number("comboStationControlPort") + 1 : 0;
}

std::optional<AutomationFault> CheckAutomationRecord(KOVADatabaseSettings& record, qint32 carts) {
    AutomationEntries entries = ShowAutomationSettings(record);
    if (auto wrong = CheckAutomationSettings(entries, carts))
        return wrong;
    TakeAutomationSettings(entries, record);
    return std::nullopt;
}

QString SampleLogFilename(const QString& prefix, const QString& format, const QDateTime& day) {
    const QString pattern = format.trimmed();
    return prefix.trimmed() + (pattern.isEmpty() ? QString() : FormatDate(day, pattern)) +
           QStringLiteral(".LOG");
}

} // namespace tolvex
