// Tables of fields: texts and numbers at their places, each byte once.
#include "core/text/RecordLayout.h"

#include <gtest/gtest.h>

using namespace tolvex;

namespace {

struct Pair {
    qint16 number = 0;
    QString text;
};
constexpr auto pairs = MakeRecordLayout<6, Pair>(NumberField{0, &Pair::number}, TextField{2, 4, &Pair::text});
static_assert(pairs.coversEachByteOnce());
static_assert(!MakeRecordLayout<7, Pair>(NumberField{0, &Pair::number}, TextField{2, 4, &Pair::text})
                   .coversEachByteOnce());
static_assert(!MakeRecordLayout<6, Pair>(NumberField{1, &Pair::number}, TextField{2, 4, &Pair::text})
                   .coversEachByteOnce());
static_assert(!MakeRecordLayout<5, Pair>(NumberField{0, &Pair::number}, TextField{2, 4, &Pair::text})
                   .coversEachByteOnce());

} // namespace

TEST(RecordLayout, PadsAndCutsTextsAndPacksNumbers) {
    const auto bytesOf = [](const Pair& pair) {
        QByteArray bytes(6, 'x');
        pairs.encode(pair, bytes.data());
        return bytes;
    };
    EXPECT_EQ(bytesOf({-2, "ab"}), QByteArray("\xFE\xFF"
                                              "ab  "));
    EXPECT_EQ(bytesOf({258, "abcdef"}), QByteArray("\x02\x01"
                                                   "abcd"));
    Pair pair;
    pairs.decode("\x02\x01 ab ", pair);
    EXPECT_EQ(pair.number, 258);
    EXPECT_EQ(pair.text, " ab ");
}
