#include "audio/CartRecord.h"

#include "core/RecordLayout.h"

namespace tolvex {

namespace {

// A line of a cart: its first 20 characters in one place, the other 30 in another.
struct LineField {
    static constexpr int headSize = 20;
    static constexpr int tailSize = CartLineLength - headSize;

    int head;
    int tail;
    QString CartRecord::*member;

    // Only the tail ends at a zero byte; in the head it is a character like any other.
    void decode(const char* bytes, CartRecord& record) const {
        char line[CartLineLength];
        std::memcpy(line, bytes + head, headSize);
        const char* const rest = bytes + tail;
        const char* const end = std::find(rest, rest + tailSize, '\0');
        std::fill(std::copy(rest, end, line + headSize), line + CartLineLength, ' ');
        record.*member = platform::FromCodePage(line, CartLineLength);
    }
    void encode(const CartRecord& record, char* bytes) const {
        char line[CartLineLength];
        EncodeFixedText(record.*member, line, CartLineLength);
        std::memcpy(bytes + head, line, headSize);
        std::memcpy(bytes + tail, line + headSize, tailSize);
    }
    template<typename Mark>
    constexpr void spans(Mark mark) const {
        mark(head, headSize);
        mark(tail, tailSize);
    }
};

using Dropped = DroppedField<CartRecord>;

constexpr NumberField totalLength{274, &CartRecord::TotalLength};

constexpr auto layout = MakeRecordLayout<CartListRecordLength, CartRecord>(
    LineField{0, 70, &CartRecord::Line1}, LineField{20, 100, &CartRecord::Line2},
    LineField{40, 130, &CartRecord::Line3}, //
    NumberField{60, &CartRecord::BackColor}, NumberField{64, &CartRecord::ForeColor},
    NumberField{68, &CartRecord::Word68}, //
    Dropped{160, 24}, NumberField{184, &CartRecord::Long184}, NumberField{188, &CartRecord::Word188},
    NumberField{190, &CartRecord::Single190}, NumberField{194, &CartRecord::Single194}, //
    Dropped{198, 2}, Dropped{200, 2}, NumberField{202, &CartRecord::Words202},
    NumberField{212, &CartRecord::Doubles212}, NumberField{252, &CartRecord::Words252},
    NumberField{262, &CartRecord::Single262}, NumberField{266, &CartRecord::Single266},
    NumberField{270, &CartRecord::Length}, totalLength, NumberField{278, &CartRecord::PlayStart},
    NumberField{282, &CartRecord::PlayEnd}, NumberField{286, &CartRecord::PlayLength},
    NumberField{290, &CartRecord::Single290}, NumberField{294, &CartRecord::Single294},
    NumberField{298, &CartRecord::Word298});
static_assert(layout.coversEachByteOnce());

// Blanks alone, not other white space: a no-break space is part of a text.
QStringView trimmed(QStringView text) {
    while (text.startsWith(u' '))
        text = text.mid(1);
    while (text.endsWith(u' '))
        text.chop(1);
    return text;
}

} // namespace

CartListRecord EncodeCartRecord(const CartRecord& record) {
    CartListRecord bytes;
    layout.encode(record, bytes.data());
    return bytes;
}

CartRecord DecodeCartRecord(const char* bytes) {
    CartRecord record;
    layout.decode(bytes, record);
    return record;
}

float CartListTotalLength(const CartListRecord& bytes) {
    return qFromLittleEndian<float>(bytes.data() + totalLength.offset);
}

CartRecord MakeEmptyCartRecord(qint32 backColor, qint32 foreColor) {
    CartRecord record;
    record.Line1 = record.Line2 = record.Line3 = QString(CartLineLength, u' ');
    record.BackColor = backColor;
    record.ForeColor = foreColor;
    record.TotalLength = EmptyCartLength;
    record.PlayLength = EmptyCartLength;
    return record;
}

QString CartDescription(const CartRecord& record, bool joined) {
    if (!joined)
        return record.Line1 + record.Line2 + record.Line3;
    QString description;
    description.reserve(3 * CartLineLength + 1);
    for (const QString* const line : {&record.Line1, &record.Line2, &record.Line3}) {
        if (!line->endsWith(u' ')) {
            description += *line;
            continue;
        }
        if (const QStringView words = trimmed(*line); !words.isEmpty()) {
            description += words;
            description += u' ';
        }
    }
    return trimmed(description).toString();
}

} // namespace tolvex
