#include "jet/record/PropertyBlob.h"

#include "jet/base/Error.h"
#include "jet/base/LittleEndian.h"
#include "jet/record/TableDefinition.h"

#include <algorithm>
#include <cstring>

namespace jet {

namespace {

constexpr std::uint8_t Magic[] = {'M', 'R', '2', 0};
constexpr std::uint16_t NamesKind = 0x80;
constexpr std::size_t BlockHead = 6; // length, kind
constexpr std::size_t ValueHead = 8;
constexpr std::uint8_t True = 0x01;

[[noreturn]] void bad() {
    throw Error(ErrorNumber::Corrupt, "the properties of an object");
}

using View = std::span<const std::uint8_t>;

View take(View& from, std::size_t length) {
    if (length > from.size())
        bad();
    const View taken = from.first(length);
    from = from.subspan(length);
    return taken;
}

std::u16string toText(View bytes) {
    std::u16string text(bytes.size() / 2, u'\0');
    for (std::size_t i = 0; i < text.size(); ++i)
        text[i] = static_cast<char16_t>(Load16(bytes.data() + 2 * i));
    return text;
}

Bytes toBytes(std::u16string_view text) {
    Bytes bytes(text.size() * 2);
    for (std::size_t i = 0; i < text.size(); ++i)
        Store16(bytes.data() + 2 * i, text[i]);
    return bytes;
}

std::u16string takeName(View& from) {
    const std::size_t length = Load16(take(from, 2).data());
    return toText(take(from, length));
}

PropertyBlob::Owner readOwner(View content, std::uint16_t kind, const std::vector<std::u16string>& names) {
    PropertyBlob::Owner owner;
    owner.kind = kind;
    if (content.size() < 4)
        bad();
    View head = take(content, Load32(content.data()));
    take(head, 4);
    owner.column = takeName(head);
    owner.reserved.assign(head.begin(), head.end());
    while (!content.empty()) {
        if (content.size() < ValueHead)
            bad();
        const std::size_t length = Load16(content.data());
        if (length < ValueHead)
            bad();
        const View record = take(content, length);
        const std::size_t name = Load16(record.data() + 4);
        const std::size_t size = Load16(record.data() + 6);
        if (name >= names.size() || size > length - ValueHead)
            bad();
        const View value = record.subspan(ValueHead, size);
        owner.properties.push_back({names[name], record[2] != 0, static_cast<ColumnType>(record[3]),
                                    Bytes(value.begin(), value.end())});
    }
    return owner;
}

void append16(Bytes& into, std::size_t value) {
    into.resize(into.size() + 2);
    Store16(into.data() + into.size() - 2, static_cast<std::uint32_t>(value));
}

void appendName(Bytes& into, std::u16string_view name) {
    append16(into, name.size() * 2);
    const Bytes bytes = toBytes(name);
    into.insert(into.end(), bytes.begin(), bytes.end());
}

void appendBlock(Bytes& into, std::uint16_t kind, const Bytes& content) {
    into.resize(into.size() + 4);
    Store32(into.data() + into.size() - 4, static_cast<std::uint32_t>(content.size() + BlockHead));
    append16(into, kind);
    into.insert(into.end(), content.begin(), content.end());
}

template<class Owners>
auto findOwner(Owners& owners, std::u16string_view column) {
    const bool object = column.empty();
    return std::find_if(owners.begin(), owners.end(), [&](const PropertyBlob::Owner& owner) {
        return (owner.kind == PropertyBlob::Owner::ObjectKind) == object && SameName(owner.column, column);
    });
}

} // namespace

const Property* PropertyBlob::find(std::u16string_view column, std::u16string_view name) const {
    const auto owner = findOwner(owners, column);
    if (owner == owners.end())
        return nullptr;
    for (const Property& property : owner->properties)
        if (SameName(property.name, name))
            return &property;
    return nullptr;
}

bool PropertyBlob::flag(std::u16string_view column, std::u16string_view name) const {
    const Property* property = find(column, name);
    return property != nullptr && !property->value.empty() && property->value[0] != 0;
}

std::u16string PropertyBlob::text(std::u16string_view column, std::u16string_view name) const {
    const Property* property = find(column, name);
    if (property == nullptr || (property->type != ColumnType::Text && property->type != ColumnType::Memo))
        return {};
    return toText(property->value);
}

void PropertyBlob::set(std::u16string_view column, Property property) {
    auto owner = findOwner(owners, column);
    if (owner == owners.end()) {
        Owner added;
        added.kind = column.empty() ? Owner::ObjectKind : Owner::ColumnKind;
        added.column = column;
        owner = owners.insert(owners.end(), std::move(added));
    }
    for (Property& held : owner->properties)
        if (SameName(held.name, property.name)) {
            held = std::move(property);
            return;
        }
    owner->properties.push_back(std::move(property));
}

void PropertyBlob::setFlag(std::u16string_view column, std::u16string_view name, bool value) {
    set(column, {std::u16string(name), true, ColumnType::Boolean, {value ? True : std::uint8_t{0}}});
}

void PropertyBlob::renameColumn(std::u16string_view from, std::u16string_view to) {
    const auto owner = findOwner(owners, from);
    if (owner != owners.end())
        owner->column = to;
}

void PropertyBlob::removeColumn(std::u16string_view column) {
    const auto owner = findOwner(owners, column);
    if (owner != owners.end())
        owners.erase(owner);
}

PropertyBlob DecodeProperties(std::span<const std::uint8_t> bytes) {
    PropertyBlob blob;
    if (bytes.empty())
        return blob;
    if (bytes.size() < sizeof Magic || std::memcmp(bytes.data(), Magic, sizeof Magic) != 0)
        bad();
    View rest = bytes.subspan(sizeof Magic);
    std::vector<std::u16string> names;
    while (!rest.empty()) {
        if (rest.size() < BlockHead)
            bad();
        const std::size_t length = Load32(rest.data());
        const std::uint16_t kind = Load16(rest.data() + 4);
        if (length < BlockHead)
            bad();
        View content = take(rest, length).subspan(BlockHead);
        if (kind == NamesKind) {
            names.clear();
            while (!content.empty())
                names.push_back(takeName(content));
        } else if (kind == PropertyBlob::Owner::ObjectKind || kind == PropertyBlob::Owner::ColumnKind) {
            blob.owners.push_back(readOwner(content, kind, names));
        } else {
            blob.others.push_back({kind, Bytes(content.begin(), content.end())});
        }
    }
    return blob;
}

Bytes EncodeProperties(const PropertyBlob& blob) {
    if (blob.empty())
        return {};
    std::vector<std::u16string> names;
    const auto indexOf = [&](const std::u16string& name) {
        const auto index =
            static_cast<std::size_t>(std::find(names.begin(), names.end(), name) - names.begin());
        if (index == names.size())
            names.push_back(name);
        return index;
    };
    Bytes owners;
    for (const PropertyBlob::Owner& owner : blob.owners) {
        Bytes content(4, 0);
        appendName(content, owner.column);
        content.insert(content.end(), owner.reserved.begin(), owner.reserved.end());
        Store32(content.data(), static_cast<std::uint32_t>(content.size()));
        for (const Property& property : owner.properties) {
            if (property.value.size() > 0xFFFF - ValueHead)
                throw Error(ErrorNumber::InvalidArgument, "property '" + ToUtf8(property.name) + "'");
            append16(content, ValueHead + property.value.size());
            content.push_back(property.definition ? 1 : 0);
            content.push_back(static_cast<std::uint8_t>(property.type));
            append16(content, indexOf(property.name));
            append16(content, property.value.size());
            content.insert(content.end(), property.value.begin(), property.value.end());
        }
        appendBlock(owners, owner.kind, content);
    }
    for (const PropertyBlob::Other& other : blob.others)
        appendBlock(owners, other.kind, other.content);

    Bytes bytes(std::begin(Magic), std::end(Magic));
    Bytes nameBlock;
    for (const std::u16string& name : names)
        appendName(nameBlock, name);
    appendBlock(bytes, NamesKind, nameBlock);
    bytes.insert(bytes.end(), owners.begin(), owners.end());
    return bytes;
}

} // namespace jet
