#include "audio/CartRecord.h"

#include "core/text/RecordLayout.h"

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
    void take(const char* bytes, char* line) const {
        std::memcpy(line, bytes + head, headSize);
        std::memcpy(line + headSize, bytes + tail, tailSize);
        if (void* const end = std::memchr(line + headSize, '\0', tailSize))
            std::fill(static_cast<char*>(end), line + CartLineLength, ' ');
    }
    void decode(const char* bytes, CartRecord& record) const {
        char line[CartLineLength];
        take(bytes, line);
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

constexpr LineField lines[] = {
    {0, 70, &CartRecord::Line1}, {20, 100, &CartRecord::Line2}, {40, 130, &CartRecord::Line3}};
constexpr NumberField listedLength{270, &CartRecord::Length};
constexpr NumberField totalLength{274, &CartRecord::TotalLength};

constexpr auto layout = MakeRecordLayout<CartListRecordLength, CartRecord>(
    lines[0], lines[1], lines[2], //
    NumberField{60, &CartRecord::BackColor}, NumberField{64, &CartRecord::ForeColor},
    NumberField{68, &CartRecord::Word68}, //
    Dropped{160, 24}, NumberField{184, &CartRecord::Long184}, NumberField{188, &CartRecord::Word188},
    NumberField{190, &CartRecord::Single190}, NumberField{194, &CartRecord::Single194}, //
    Dropped{198, 2}, Dropped{200, 2}, NumberField{202, &CartRecord::Words202},
    NumberField{212, &CartRecord::Doubles212}, NumberField{252, &CartRecord::Words252},
    NumberField{262, &CartRecord::Single262}, NumberField{266, &CartRecord::Single266}, listedLength,
    totalLength, NumberField{278, &CartRecord::PlayStart}, NumberField{282, &CartRecord::PlayEnd},
    NumberField{286, &CartRecord::PlayLength}, NumberField{290, &CartRecord::Single290},
    NumberField{294, &CartRecord::Single294}, NumberField{298, &CartRecord::Word298});
static_assert(layout.coversEachByteOnce());

// Blanks alone, not other white space: a no-break space is part of a text.
template<typename Char>
std::basic_string_view<Char> trimmed(std::basic_string_view<Char> text) {
    while (!text.empty() && text.front() == Char{' '})
        text.remove_prefix(1);
    while (!text.empty() && text.back() == Char{' '})
        text.remove_suffix(1);
    return text;
}

// How a description spreads over the lines: one that fills its line runs straight on into the next, any other
// is trimmed and followed by one blank. The text lies in `room`, which has as many characters as the lines.
template<typename Char>
std::basic_string_view<Char> join(const std::array<std::basic_string_view<Char>, 3>& texts, Char* room) {
    Char* end = room;
    for (const std::basic_string_view<Char> text : texts) {
        if (!text.empty() && text.back() != Char{' '}) {
            end = std::copy(text.begin(), text.end(), end);
        } else if (const auto words = trimmed(text); !words.empty()) {
            end = std::copy(words.begin(), words.end(), end);
            *end++ = Char{' '};
        }
    }
    return trimmed(std::basic_string_view<Char>(room, static_cast<std::size_t>(end - room)));
}

std::u16string_view view(const QString& text) {
    return {reinterpret_cast<const char16_t*>(text.utf16()), static_cast<std::size_t>(text.size())};
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

float CartListLength(const CartListRecord& bytes) {
    return qFromLittleEndian<float>(bytes.data() + listedLength.offset);
}

float CartListTotalLength(const CartListRecord& bytes) {
    return qFromLittleEndian<float>(bytes.data() + totalLength.offset);
}

CartLineBytes CartListLine(const CartListRecord& bytes, int line) {
    CartLineBytes text;
    lines[line - 1].take(bytes.data(), text.data());
    return text;
}

std::string_view CartListDescription(const CartListRecord& bytes, CartDescriptionRoom& room) {
    CartLineBytes texts[3];
    for (int i = 0; i < 3; ++i)
        lines[i].take(bytes.data(), texts[i].data());
    const auto text = [&texts](int i) { return std::string_view(texts[i].data(), CartLineLength); };
    return join<char>({text(0), text(1), text(2)}, room.data());
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
    const std::array<std::u16string_view, 3> texts{view(record.Line1), view(record.Line2),
                                                   view(record.Line3)};
    std::u16string room(texts[0].size() + texts[1].size() + texts[2].size(), u' ');
    const std::u16string_view description = join(texts, room.data());
    return QString::fromUtf16(description.data(), static_cast<qsizetype>(description.size()));
}

} // namespace tolvex
