// One cart of the audiowall: its working form, its form in the cart list files (300 bytes, told in
// docs/formats/cart-list.md), and the way between the two. Fields without a telling name keep the offset they
// have in the file; they belong to other programs of the suite and are kept as read.
#pragma once

#include <QString>

#include <array>
#include <string_view>

namespace tolvex {

inline constexpr int CartLineLength = 50;
inline constexpr int CartListRecordLength = 300;

// TotalLength of a cart that holds nothing.
inline constexpr float EmptyCartLength = -1;

// Lines are 50 characters, padded with blanks. Times are in seconds, colours blue-green-red.
struct CartRecord {
    QString Line1;
    QString Line2;
    QString Line3;
    qint32 BackColor = 0;
    qint32 ForeColor = 0;
    qint16 Word68 = 0;
    float Single190 = 0;
    float Single194 = 0;
    std::array<qint16, 5> Words202{};
    std::array<double, 5> Doubles212{};
    std::array<qint16, 5> Words252{};
    float Single262 = 0;
    float Single266 = 0;
    float Length = 0;      // as listed and as tested by a time rule
    float TotalLength = 0; // exactly -1: an empty cart
    float PlayStart = 0;
    float PlayEnd = 0;
    float PlayLength = 0;
    float Single290 = 0;
    float Single294 = 0;
    qint16 Word298 = 0;
    qint32 Long184 = 0;
    qint16 Word188 = 0;

    bool operator==(const CartRecord&) const = default;
    bool isEmpty() const { return TotalLength == EmptyCartLength; }
};

// The file form, byte by byte.
using CartListRecord = std::array<char, CartListRecordLength>;

// Lines longer than 50 characters are cut, shorter ones padded. Bytes that the working form has no place for
// become zeros.
CartListRecord EncodeCartRecord(const CartRecord& record);

// Takes any 300 bytes. A line is its first 20 bytes as they stand and the other 30 up to their first zero
// byte. About a quarter of a microsecond.
CartRecord DecodeCartRecord(const char* bytes);
inline CartRecord DecodeCartRecord(const CartListRecord& bytes) {
    return DecodeCartRecord(bytes.data());
}

// Parts of a record in its file form, without decoding the rest.
float CartListLength(const CartListRecord& bytes);
float CartListTotalLength(const CartListRecord& bytes);

// Line 1, 2 or 3 of a record in its file form: its 50 bytes.
using CartLineBytes = std::array<char, CartLineLength>;
CartLineBytes CartListLine(const CartListRecord& bytes, int line);

// The bytes of CartDescription(record, true) for a record in its file form. They lie in `room`.
using CartDescriptionRoom = std::array<char, std::size_t{3} * CartLineLength>;
std::string_view CartListDescription(const CartListRecord& bytes, CartDescriptionRoom& room);

// The record of a cart that holds nothing, in these colours.
CartRecord MakeEmptyCartRecord(qint32 backColor, qint32 foreColor);

// The three lines as one text. Not joined: one after the other in full, 150 characters. Joined: a line that
// fills all its 50 characters runs straight on into the next one, any other is trimmed and followed by one
// blank; the whole is trimmed.
QString CartDescription(const CartRecord& record, bool joined);

} // namespace tolvex
