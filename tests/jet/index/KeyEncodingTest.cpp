// Keys as the original engine writes them: the codes of single values, and the order of texts.
#include "jet/index/KeyEncoding.h"
#include "jet/base/Error.h"
#include "jet/text/Collation.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

using namespace jet;

namespace {

std::string hexOf(const Bytes& bytes) {
    std::string text;
    for (const std::uint8_t byte : bytes) {
        char digits[3];
        std::snprintf(digits, sizeof digits, "%02X", byte);
        text += digits;
    }
    return text;
}

std::string hexOf(std::string_view spaced) {
    std::string text(spaced);
    text.erase(std::remove(text.begin(), text.end(), ' '), text.end());
    return text;
}

std::string keyOf(ColumnType type, const Value& value, bool ascending = true) {
    Bytes key;
    AppendKey(type, ascending, value, key);
    return hexOf(key);
}

TEST(KeyEncoding, TextsHaveTheKeysOfTheOriginalEngine) {
    struct {
        const char* text;
        const char* key;
    } const cases[] = {
        {"Tables", "7F 6D4A4C5E516B 01 00"},
        {"Reims", "7F 695159606B 01 00"},
        {"Reims   ", "7F 695159606B 01 00"},
        {"Münster", "7F 606F626B6D5169 01 0213 00"},
        {"São Paulo", "7F 6B4A6407664A6F5E64 01 0219 00"},
        {"Côte de Blaye", "7F 4D646D51074F51074C5E4A7651 01 0212 00"},
        {"Tourtière", "7F 6D646F696D59516951 01 0202020202020F 00"},
        {"Guaraná Fantástica", "7F 556F4A694A624A07534A626D4A6B6D594D4A 01 0202020202020E02020202020E 00"},
        {"Chef Anton's Cajun Seasoning",
         "7F 4D575153074A626D64626B074D4A5B6F62076B514A6B6462596255 01 010101 802F0680 00"},
        {"HILARIÓN-Abastos", "7F 57595E4A695964624A4C4A6B6D646B 01 0202020202020E 010101 80270682 00"},
        {"Forêts d'érables", "7F 536469516D6B074F51694A4C5E516B 01 02020212020202020E 010101 80270680 00"},
        {"Gustaf's Knäckebröd", "7F 556F6B6D4A536B075C624A4D5C514C69644F 01 "
                                "0202020202020202020213020202020213 010101 801F0680 00"},
        {"NuNuCa Nuß-Nougat-Creme",
         "7F 626F626F4D4A07626F6B6B62646F554A6D4D69516051 01 010101 80330682 804B0682 00"},
        {"Heli Süßwaren GmbH & Co. KG", "7F 57515E59076B6F6B6B734A6951620755604C570712074D641C075C55 01 "
                                        "02020202020213 00"},
        {"Plutzer Lebensmittelgroßmärkte AG",
         "7F 665E6F6D785169075E514C51626B60596D6D515E5569646B6B604A695C6D51074A55 01 "
         "0202020202020202020202020202020202020202020202020202 13 00"},
        {"{521E094E-D2FC-11D6-8606-973214D8EB2A}",
         "7F 2B09403A385136483E514F3A534D38384F424642364248443C3A383E4F46514C3A4A2B0D 01 010101 802B0682 "
         "803B0682 804B0682 805B0682 00"},
        {"", "7F 01 00"},
    };
    for (const auto& one : cases) {
        EXPECT_EQ(keyOf(ColumnType::Text, ToUtf16(one.text)), hexOf(one.key)) << one.text;
        EXPECT_EQ(keyOf(ColumnType::Memo, ToUtf16(one.text)), hexOf(one.key)) << one.text;
    }
    EXPECT_EQ(keyOf(ColumnType::Text, u"a", false), "80B5FEFF00");
}

TEST(KeyEncoding, OtherValuesHaveTheKeysOfTheOriginalEngine) {
    const Guid guid{{0x33, 0x22, 0x11, 0x00, 0x55, 0x44, 0x77, 0x66, 8, 9, 10, 11, 12, 13, 14, 15}};
    const Numeric positive{false, {0, 0, 0, 258}};
    const Numeric negative{true, {0, 0, 0, 258}};
    struct {
        ColumnType type;
        Value value;
        const char* ascending;
        const char* descending;
    } const cases[] = {
        {ColumnType::Long, std::monostate{}, "00", "FF"},
        {ColumnType::Integer, std::int16_t{2}, "7F 8002", "80 7FFD"},
        {ColumnType::Integer, std::int16_t{-1}, "7F 7FFF", "80 8000"},
        {ColumnType::Integer, std::int16_t{5}, "7F 8005", "80 7FFA"},
        {ColumnType::Long, 1, "7F 80000001", "80 7FFFFFFE"},
        {ColumnType::Long, -2, "7F 7FFFFFFE", "80 80000001"},
        {ColumnType::Long, 4813, "7F 800012CD", "80 7FFFED32"},
        {ColumnType::Currency, Currency{15000}, "7F 8000000000003A98", "80 7FFFFFFFFFFFC567"},
        {ColumnType::Currency, Currency{-15000}, "7F 7FFFFFFFFFFFC568", "80 8000000000003A97"},
        {ColumnType::Single, 1.5F, "7F BFC00000", "80 403FFFFF"},
        {ColumnType::Single, -1.5F, "7F 403FFFFF", "80 BFC00000"},
        {ColumnType::Double, 1005450.0, "7F C12EAF1400000000", "80 3ED150EBFFFFFFFF"},
        {ColumnType::Double, -2.5, "7F 3FFBFFFFFFFFFFFF", "80 C004000000000000"},
        {ColumnType::Double, -0.0, "7F 8000000000000000", "80 7FFFFFFFFFFFFFFF"},
        {ColumnType::DateTime, Date{35250.0}, "7F C0E1364000000000", "80 3F1EC9BFFFFFFFFF"},
        {ColumnType::Boolean, true, "7F 00", "80 FF"},
        {ColumnType::Boolean, false, "7F FF", "80 00"},
        {ColumnType::Boolean, std::monostate{}, "7F FF", "80 00"},
        {ColumnType::Byte, std::uint8_t{200}, "7F C8", "80 37"},
        {ColumnType::Binary, Bytes{1, 2, 3, 4, 5}, "7F 0102030405000000 05", "80 FEFDFCFBFAFFFFFF FA"},
        {ColumnType::Binary, Bytes{1, 2, 3, 4, 5, 6, 7, 8, 9, 10},
         "7F 0102030405060708 09 090A000000000000 02", "80 FEFDFCFBFAF9F8F7 09 F6F5FFFFFFFFFFFF FD"},
        {ColumnType::Guid, guid, "7F 0011223344556677 09 08090A0B0C0D0E0F 08",
         "80 FFEEDDCCBBAA9988 09 F7F6F5F4F3F2F1F0 F7"},
        {ColumnType::Numeric, positive, "7F FF 00000000000000000000000000000102",
         "80 FF FFFFFFFFFFFFFFFFFFFFFFFFFFFFFEFD"},
        {ColumnType::Numeric, negative, "7F 00 FFFFFFFFFFFFFFFFFFFFFFFFFFFFFEFD",
         "80 00 00000000000000000000000000000102"},
    };
    for (const auto& one : cases) {
        EXPECT_EQ(keyOf(one.type, one.value, true), hexOf(one.ascending));
        EXPECT_EQ(keyOf(one.type, one.value, false), hexOf(one.descending));
    }
}

TEST(KeyEncoding, RefusesWhatHasNoPlaceInAnOrder) {
    const auto codeOf = [](ColumnType type, const Value& value) {
        Bytes key{1};
        try {
            AppendKey(type, true, value, key);
        } catch (const Error& error) {
            return error.code();
        }
        return ErrorNumber{};
    };
    EXPECT_EQ(codeOf(ColumnType::Long, std::int16_t{1}), ErrorNumber::DataTypeMismatch);
    EXPECT_EQ(codeOf(ColumnType::Double, std::nan("")), ErrorNumber::InvalidArgument);
    EXPECT_EQ(codeOf(ColumnType::Ole, Bytes{1}), ErrorNumber::InvalidArgument);
    try {
        Bytes key;
        AppendKey(ColumnType::Text, true, std::u16string(u"ab\u4E2D"), key);
        FAIL();
    } catch (const Error& error) {
        EXPECT_EQ(error.code(), ErrorNumber::InvalidArgument);
        EXPECT_NE(std::string(error.what()).find("U+4E2D"), std::string::npos) << error.what();
    }
    // After the part that an index uses, every character is accepted.
    EXPECT_NO_THROW(keyOf(ColumnType::Memo, std::u16string(255, u'a') + u"\u4E2D"));
    EXPECT_EQ(FindUnorderable(u"ab\u4E2D"), u'\u4E2D');
    EXPECT_EQ(FindUnorderable(u"Žižkov"), std::nullopt);
}

// Comparing without keys agrees with comparing keys, for short texts of critical characters and long random
// ones.
TEST(Collation, ComparesAsTheKeysDo) {
    const std::u16string letters = u"aAbÄäßsǼæ-' \u0301\u00AD1\u0001z€";
    std::vector<std::u16string> texts{u""};
    for (const char16_t one : letters) {
        texts.emplace_back(1, one);
        for (const char16_t two : letters) {
            texts.push_back({one, two});
            for (const char16_t three : letters)
                texts.push_back({one, two, three});
        }
    }
    std::mt19937 random(7);
    std::shuffle(texts.begin(), texts.end(), random);
    texts.resize(1000);
    for (int i = 0; i < 200; ++i) {
        std::u16string text(40, u' ');
        for (char16_t& unit : text)
            unit = letters[random() % letters.size()];
        texts.push_back(text);
        text[random() % text.size()] = letters[random() % letters.size()];
        texts.push_back(text);
    }
    std::vector<Bytes> keys(texts.size());
    for (std::size_t i = 0; i < texts.size(); ++i)
        AppendTextKey(texts[i], keys[i]);
    const auto sign = [](int order) { return (order > 0) - (order < 0); };
    for (std::size_t a = 0; a < texts.size(); ++a)
        for (std::size_t b = a; b < texts.size(); ++b) {
            const int byKey = keys[a] < keys[b] ? -1 : keys[a] == keys[b] ? 0 : 1;
            ASSERT_EQ(sign(CompareTexts(texts[a], texts[b])), byKey)
                << ToUtf8(texts[a]) << '|' << ToUtf8(texts[b]);
            ASSERT_EQ(sign(CompareTexts(texts[b], texts[a])), -byKey);
        }
}

TEST(Collation, CharactersWithoutAPlaceComeLast) {
    EXPECT_GT(CompareTexts(u"\u4E2D", u"zzz"), 0);
    EXPECT_LT(CompareTexts(u"\u4E2D", u"\u4E2E"), 0);
    EXPECT_EQ(CompareTexts(u"x\u4E2D ", u"X\u4E2D"), 0);
    EXPECT_TRUE(SameText(u"MSysObjects", u"msysOBJECTS"));
    EXPECT_FALSE(SameText(u"co-op", u"coop"));
}

} // namespace
