#include "jet/page/PageZero.h"

#include "jet/base/Error.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <numeric>

namespace jet {

namespace {

constexpr char Signature[] = "Standard Jet DB"; // with its zero
constexpr std::size_t SignatureAt = 0x04;
constexpr std::size_t VersionAt = 0x14;
constexpr std::size_t MaskedAt = 0x18;
constexpr std::uint32_t MaskKey = 0x6B39DAC7;

// Fields inside the masked part of a Jet 4 header.
constexpr std::size_t MaskedLength = 128;
constexpr std::size_t FreeMapAt = 0x18;
constexpr std::size_t SecondMapAt = 0x1C;
constexpr std::size_t CatalogueAt = 0x20; // four definition pages
constexpr std::size_t CodePageAt = 0x3C;
constexpr std::size_t DatabaseKeyAt = 0x3E;
constexpr std::size_t PasswordAt = 0x42;
constexpr std::size_t PasswordLength = 40;
constexpr std::size_t BuildAt = 0x6A;
constexpr std::size_t LanguageAt = 0x6E;
constexpr std::size_t SortVersionAt = 0x71;
constexpr std::size_t CreatedAt = 0x72;
// After it.
constexpr std::size_t ConstantAt = 0x98; // 1620, then the text "4.0"
constexpr std::size_t CommitsAt = 0xE00;

// The same for Jet 3.
constexpr std::size_t Jet3PageSize = 2048;
constexpr std::size_t Jet3MaskedLength = 126;
constexpr std::size_t Jet3LanguageAt = 0x3A;
constexpr std::size_t Jet3PasswordLength = 20;
constexpr std::size_t Jet3CommitsAt = 0x600;

constexpr std::size_t CommitPairs = 256;

// The mask of the password: the whole days of the creation date, repeated.
void maskPassword(std::uint8_t* password, double created) {
    const bool sane = created > -2147483648.0 && created < 2147483648.0;
    const auto days = static_cast<std::uint32_t>(sane ? static_cast<std::int32_t>(created) : 0);
    for (std::size_t i = 0; i < PasswordLength; ++i)
        password[i] = static_cast<std::uint8_t>(password[i] ^ days >> i % 4 * 8);
}

// Each pair counts a user's writes, in 16 bits from 0100h up; it is below that during a write.
bool clean(const std::uint8_t* commits) {
    constexpr std::uint16_t leastCount = 0x0100;
    for (std::size_t pair = 0; pair < CommitPairs; ++pair)
        if (Load16(commits + pair * 2) < leastCount)
            return false;
    return true;
}

void decodeJet3(std::span<const std::uint8_t> page, const std::uint8_t* plain, PageZero& header) {
    header.language = Load16(plain + Jet3LanguageAt);
    header.codePage = Load16(plain + CodePageAt);
    header.databaseKey = Load32(plain + DatabaseKeyAt);
    for (std::size_t i = 0; i < Jet3PasswordLength && plain[PasswordAt + i] != 0; ++i)
        header.password += static_cast<char16_t>(plain[PasswordAt + i]);
    header.cleanlyClosed = clean(page.data() + Jet3CommitsAt);
}

void decodeJet4(std::span<const std::uint8_t> page, std::uint8_t* plain, PageZero& header) {
    header.freeMap = LoadRowPointer(plain + FreeMapAt);
    header.secondMap = LoadRowPointer(plain + SecondMapAt);
    header.objects = Load32(plain + CatalogueAt);
    header.permissions = Load32(plain + CatalogueAt + 4);
    header.queries = Load32(plain + CatalogueAt + 8);
    header.relationships = Load32(plain + CatalogueAt + 12);
    header.codePage = Load16(plain + CodePageAt);
    header.databaseKey = Load32(plain + DatabaseKeyAt);
    header.build = Load32(plain + BuildAt);
    header.language = Load16(plain + LanguageAt);
    header.sortVersion = plain[SortVersionAt];
    header.created.days = std::bit_cast<double>(Load64(plain + CreatedAt));
    maskPassword(plain + PasswordAt, header.created.days);
    for (std::size_t i = 0; i < PasswordLength; i += 2)
        if (const auto unit = static_cast<char16_t>(Load16(plain + PasswordAt + i)); unit != 0)
            header.password += unit;
        else
            break;
    header.cleanlyClosed = clean(page.data() + CommitsAt);
}

} // namespace

Rc4::Rc4(std::uint32_t key)
    : state_() {
    std::iota(state_.begin(), state_.end(), std::uint8_t{0});
    std::uint8_t j = 0;
    for (std::size_t i = 0; i < state_.size(); ++i) {
        j = static_cast<std::uint8_t>(j + state_[i] + (key >> i % 4 * 8));
        std::swap(state_[i], state_[j]);
    }
}

void Rc4::apply(std::span<std::uint8_t> bytes) {
    for (std::uint8_t& byte : bytes) {
        j_ = static_cast<std::uint8_t>(j_ + state_[++i_]);
        std::swap(state_[i_], state_[j_]);
        byte ^= state_[static_cast<std::uint8_t>(state_[i_] + state_[j_])];
    }
}

PageZero DecodePageZero(std::span<const std::uint8_t> page) {
    if (page.size() < Jet3PageSize || Load32(page.data()) != 0x100 ||
        std::memcmp(page.data() + SignatureAt, Signature, sizeof(Signature)) != 0)
        throw Error(ErrorNumber::Unrecognised, "no database");
    PageZero header;
    header.version = Load32(page.data() + VersionAt);
    if (header.version > PageZero::Jet4)
        throw Error(ErrorNumber::Unrecognised, "of a later version than can be used here");
    if (header.version == PageZero::Jet4 && page.size() < PageSize)
        throw Error(ErrorNumber::Unrecognised, "cut off inside the first page");
    std::array<std::uint8_t, MaskedAt + MaskedLength> plain{};
    std::copy_n(page.begin(), plain.size(), plain.begin());
    const bool jet3 = header.version == PageZero::Jet3;
    Rc4(MaskKey).apply({plain.data() + MaskedAt, jet3 ? Jet3MaskedLength : MaskedLength});
    if (jet3)
        decodeJet3(page, plain.data(), header);
    else
        decodeJet4(page, plain.data(), header);
    return header;
}

void EncodePageZero(const PageZero& header, std::span<std::uint8_t> page) {
    std::fill(page.begin(), page.end(), std::uint8_t{0});
    std::uint8_t* at = page.data();
    Store32(at, 0x100);
    std::memcpy(at + SignatureAt, Signature, sizeof(Signature));
    Store32(at + VersionAt, header.version);
    StoreRowPointer(at + FreeMapAt, header.freeMap);
    StoreRowPointer(at + SecondMapAt, header.secondMap);
    Store32(at + CatalogueAt, header.objects);
    Store32(at + CatalogueAt + 4, header.permissions);
    Store32(at + CatalogueAt + 8, header.queries);
    Store32(at + CatalogueAt + 12, header.relationships);
    Store16(at + CodePageAt, header.codePage);
    Store32(at + DatabaseKeyAt, header.databaseKey);
    for (std::size_t i = 0; i < std::min(header.password.size(), PageZero::MaximumPassword); ++i)
        Store16(at + PasswordAt + 2 * i, header.password[i]);
    maskPassword(at + PasswordAt, header.created.days);
    Store32(at + BuildAt, header.build);
    Store16(at + LanguageAt, header.language);
    at[SortVersionAt] = header.sortVersion;
    Store64(at + CreatedAt, std::bit_cast<std::uint64_t>(header.created.days));
    Rc4(MaskKey).apply({at + MaskedAt, MaskedLength});
    Store32(at + ConstantAt, 1620);
    std::memcpy(at + ConstantAt + 4, "4.0", 4);
    for (std::size_t pair = 0; pair < CommitPairs; ++pair)
        at[CommitsAt + 2 * pair + 1] = 1;
    at[CommitsAt] = 1;
}

void CryptPage(std::uint32_t databaseKey, PageNumber number, std::span<std::uint8_t> page) {
    Rc4(databaseKey ^ number).apply(page);
}

} // namespace jet
