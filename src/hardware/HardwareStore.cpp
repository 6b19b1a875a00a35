#include "hardware/HardwareStore.h"

#include "core/text/Numbers.h"
#include "platform/Prompts.h"
#include "platform/profile/ProfileFile.h"

#include <algorithm>

namespace tolvex {

namespace {

constexpr int LongestText = LongestDescription + 1; // buffer of the reads

const QString cardTypeKey = QStringLiteral("CardType");
const QString baseAddressKey = QStringLiteral("BaseAddress");

QString sectionOf(int card) {
    return QStringLiteral("Hardware%1").arg(card);
}

// The nine keys of a line, in the order of writing.
struct LineKeys {
    QString type;
    QString activeLow;
    QString description;
    QString color;
    QString action;
    std::array<QString, 4> data;

    explicit LineKeys(int line) {
        const QString number = QString::number(line);
        type = QLatin1String("LineType") + number;
        activeLow = QLatin1String("ActiveLow") + number;
        description = QLatin1String("Description") + number;
        color = QLatin1String("Color") + number;
        action = QLatin1String("Action") + number;
        for (std::size_t k = 0; k < data.size(); ++k)
            data[k] = action + QLatin1String("Data") + QString::number(k + 1);
    }
};

qint16 toWord(double value) {
    return static_cast<qint16>(std::clamp(ToLong(value), -32768, 32767));
}

void countLines(HardwareCard& card, DriverReports& reports) {
    const LineCounts counts = GetCardLineCounts(card.CardType, card.BaseAddress, reports);
    card.NumberLines = counts.total;
    card.NumberInputs = counts.inputs;
    card.NumberOutputs = counts.outputs;
    card.Answered = counts.answered;
}

class CardReader {
public:
    CardReader(int card, const QString& file)
        : section_(sectionOf(card))
        , file_(file) {}

    void read(HardwareCard& card, DriverReports& reports) const {
        card.CardType = ToLong(LeadingNumber(text(cardTypeKey)));
        card.BaseAddress = toWord(LeadingNumber(text(baseAddressKey)));
        card.ComPort = card.BaseAddress;
        countLines(card, reports);
        for (int number = 1; number <= LinesPerCard; ++number) {
            HardwareLine& line = card.Lines[number];
            line = {};
            // Default counts do not limit the board: all lines are read.
            if (number <= card.NumberLines || !card.Answered)
                readLine(LineKeys(number), card, number, line);
        }
    }

private:
    QString text(const QString& key) const {
        return platform::ProfileText(section_, key, QString(), file_, LongestText);
    }
    qint32 number(const QString& key) const { return platform::ProfileInteger(section_, key, 0, file_); }

    // An output unless the key says otherwise; a value that is not a number is ignored.
    qint32 lineType(const QString& key) const {
        constexpr qint32 output = 1;
        const qint32 type = platform::ProfileInteger(section_, key, output, file_);
        const QString stored = text(key);
        return type != 0 || stored.startsWith(u'0') || stored.startsWith(QLatin1String("-0")) ? type : output;
    }

    void readLine(const LineKeys& keys, const HardwareCard& card, int n, HardwareLine& line) const {
        line.LineType =
            card.CardType == CardAdvantech ? (n > card.NumberInputs ? 1 : 0) : lineType(keys.type);
        line.ActiveLow = toWord(number(keys.activeLow));
        line.Color = number(keys.color);
        line.Description = text(keys.description);
        line.Action = number(keys.action);
        for (std::size_t k = 0; k < keys.data.size(); ++k)
            line.ActionData[k] = number(keys.data[k]);
    }

    QString section_;
    QString file_;
};

// `typed`: the line's type is known.
void putLine(platform::ProfileBatch& batch, const QString& section, const LineKeys& keys,
             const HardwareLine& line, bool typed) {
    if (typed)
        batch.put(section, keys.type, line.LineType);
    batch.put(section, keys.activeLow, line.ActiveLow);
    batch.put(section, keys.description,
              IsQuoted(line.Description) ? u'"' + line.Description + u'"' : line.Description);
    batch.put(section, keys.color, line.Color);
    batch.put(section, keys.action, line.Action);
    for (std::size_t k = 0; k < keys.data.size(); ++k)
        batch.put(section, keys.data[k], line.ActionData[k]);
}

void removeLine(platform::ProfileBatch& batch, const QString& section, const LineKeys& keys, bool typed) {
    if (typed)
        batch.remove(section, keys.type);
    for (const QString* key : {&keys.activeLow, &keys.description, &keys.color, &keys.action})
        batch.remove(section, *key);
    for (const QString& key : keys.data)
        batch.remove(section, key);
}

void putCard(platform::ProfileBatch& batch, int number, HardwareCard& card, DriverReports& reports) {
    const QString section = sectionOf(number);
    if (card.CardType == CardDisabled) {
        batch.removeSection(section);
        return;
    }
    if (!FindCardType(card.CardType))
        return;
    batch.put(section, cardTypeKey, card.CardType);
    batch.put(section, baseAddressKey, card.BaseAddress);
    countLines(card, reports);
    for (int n = 1; n <= LinesPerCard; ++n) {
        const LineKeys keys(n);
        const bool exists = n <= card.NumberLines;
        if (card.Lines[n].inUse() && (exists || !card.Answered))
            putLine(batch, section, keys, card.Lines[n], card.Answered);
        else if (exists || card.Answered)
            removeLine(batch, section, keys, card.Answered);
    }
}

} // namespace

void ReadHardwareSettings(HardwareCardTable& cards, const QString& iniPath, DriverReports& reports) {
    for (int card = 1; card <= HardwareCardCount; ++card)
        CardReader(card, iniPath).read(cards[card], reports);
}

void ReadHardwareSettings(HardwareCardTable& cards, const QString& iniPath) {
    DriverReports reports;
    ReadHardwareSettings(cards, iniPath, reports);
}

int WriteHardwareSettings(HardwareCardTable& cards, const QString& iniPath, DriverReports& reports) {
    platform::prompts().setPointer(platform::Pointer::Wait);
    platform::ProfileBatch batch(iniPath);
    for (int card = 1; card <= HardwareCardCount; ++card)
        putCard(batch, card, cards[card], reports);
    const int error = batch.commit();
    platform::prompts().setPointer(platform::Pointer::Default);
    return error;
}

int WriteHardwareSettings(HardwareCardTable& cards, const QString& iniPath) {
    DriverReports reports;
    return WriteHardwareSettings(cards, iniPath, reports);
}

} // namespace tolvex
