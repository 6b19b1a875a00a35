#include "platform/CodePage.h"

#include <gtest/gtest.h>

using namespace tolvex::platform;

TEST(CodePage, EveryByteSurvivesTheRoundTripAndTheRestBecomesAQuestionMark) {
    QByteArray all;
    for (int byte = 0; byte < 256; ++byte)
        all += static_cast<char>(byte);
    EXPECT_EQ(ToCodePage(FromCodePage(all)), all);
    EXPECT_EQ(FromCodePage(QByteArray("\x80\x99")), QString::fromUtf8("€™"));
    EXPECT_EQ(ToCodePage(QString::fromUtf8("Ω😀x")), QByteArray("??x"));
}
