// Layouts of the suite's fixed records: one table of fields per record, which serves both directions. A
// layout is a constant; the compiler checks that its fields cover each byte exactly once.
//
//     constexpr RecordLayout<128, TerminalRecord, TextField<TerminalRecord>, ...> layout{...};
//     static_assert(layout.coversEachByteOnce());
//
// Numbers are little-endian and packed. Text is single-byte, padded with blanks on the right, not terminated.
#pragma once

#include "platform/CodePage.h"

#include <QtEndian>

#include <algorithm>
#include <array>
#include <cstring>
#include <tuple>

namespace tolvex {

// Text into a field of fixed size: cut if too long, padded with blanks if too short.
inline void EncodeFixedText(const QString& text, char* field, int size) {
    const QByteArray bytes = platform::ToCodePage(text.left(size));
    const auto used = std::min<qsizetype>(bytes.size(), size);
    std::copy_n(bytes.constData(), used, field);
    std::fill(field + used, field + size, ' ');
}

// A number, or an array of numbers.
template<typename Record, typename Value>
struct NumberField {
    int offset;
    Value Record::*member;

    void decode(const char* bytes, Record& record) const { get(bytes + offset, record.*member); }
    void encode(const Record& record, char* bytes) const { put(record.*member, bytes + offset); }
    template<typename Mark>
    constexpr void spans(Mark mark) const {
        mark(offset, int{sizeof(Value)});
    }

private:
    template<typename Number>
    static void get(const char* from, Number& value) {
        value = qFromLittleEndian<Number>(from);
    }
    template<typename Number, std::size_t count>
    static void get(const char* from, std::array<Number, count>& values) {
        for (Number& value : values) {
            get(from, value);
            from += sizeof(Number);
        }
    }
    template<typename Number>
    static void put(Number value, char* to) {
        qToLittleEndian<Number>(value, to);
    }
    template<typename Number, std::size_t count>
    static void put(const std::array<Number, count>& values, char* to) {
        for (const Number value : values) {
            put(value, to);
            to += sizeof(Number);
        }
    }
};
template<typename Record, typename Value>
NumberField(int, Value Record::*) -> NumberField<Record, Value>;

// Text, as long as its field when it was read.
template<typename Record>
struct TextField {
    int offset;
    int size;
    QString Record::*member;

    void decode(const char* bytes, Record& record) const {
        record.*member = platform::FromCodePage(bytes + offset, size);
    }
    void encode(const Record& record, char* bytes) const {
        EncodeFixedText(record.*member, bytes + offset, size);
    }
    template<typename Mark>
    constexpr void spans(Mark mark) const {
        mark(offset, size);
    }
};
template<typename Record>
TextField(int, int, QString Record::*) -> TextField<Record>;

// Bytes that are ignored on reading and written as zeros.
template<typename Record>
struct DroppedField {
    int offset;
    int size;

    void decode(const char*, Record&) const {}
    void encode(const Record&, char* bytes) const { std::fill_n(bytes + offset, size, '\0'); }
    template<typename Mark>
    constexpr void spans(Mark mark) const {
        mark(offset, size);
    }
};

template<int length, typename Record, typename... Fields>
class RecordLayout {
public:
    using Bytes = std::array<char, std::size_t(length)>;

    explicit constexpr RecordLayout(Fields... fields)
        : fields_(fields...) {}

    // `bytes` holds `length` bytes.
    void decode(const char* bytes, Record& record) const {
        std::apply([&](const auto&... field) { (field.decode(bytes, record), ...); }, fields_);
    }
    void encode(const Record& record, char* bytes) const {
        std::apply([&](const auto&... field) { (field.encode(record, bytes), ...); }, fields_);
    }
    constexpr bool coversEachByteOnce() const {
        std::array<int, std::size_t(length)> seen{};
        bool inside = true;
        const auto mark = [&](int offset, int size) {
            for (int at = offset; at < offset + size; ++at) {
                inside = inside && at >= 0 && at < length;
                if (inside)
                    ++seen[std::size_t(at)];
            }
        };
        std::apply([&](const auto&... field) { (field.spans(mark), ...); }, fields_);
        for (const int count : seen)
            inside = inside && count == 1;
        return inside;
    }

private:
    std::tuple<Fields...> fields_;
};

// A layout of so many bytes; the record and the kinds of fields are deduced from the arguments.
template<int length, typename Record, typename... Fields>
constexpr auto MakeRecordLayout(Fields... fields) {
    return RecordLayout<length, Record, Fields...>(fields...);
}

} // namespace tolvex
