// The file form of a cart, byte for byte: other programs of the suite read what we write, and we what they
// do.
#include "audio/CartRecord.h"
#include "audio/Hotlist.h"

#include <gtest/gtest.h>

#include <QStringList>
#include <QtEndian>

#include <random>

using namespace tolvex;

namespace {

QString line(const char* text) {
    return QString(QLatin1String(text)).leftJustified(CartLineLength, u' ');
}

// A record put together by hand from the places its fields have.
class FileForm {
public:
    FileForm() { bytes.fill(' '); }
    template<typename Number>
    void put(std::size_t offset, Number value) {
        qToLittleEndian(value, bytes.data() + offset);
    }
    void text(std::size_t offset, const char* value) {
        std::copy_n(value, qstrlen(value), bytes.begin() + offset);
    }

    CartListRecord bytes;
};

FileForm sample() {
    FileForm form;
    form.text(0, "Twenty characters ab");
    form.text(70, "and thirty more of the same xy");
    form.text(20, "Second");
    form.text(40, "Third");
    form.put<qint32>(60, 0x00C0FFEE);
    form.put<qint32>(64, qint32(0x80000012));
    form.put<qint16>(68, 68);
    form.put<qint32>(184, -184);
    form.put<qint16>(188, -188);
    form.put<float>(190, 1.5F);
    form.put<float>(194, -2.25F);
    for (std::size_t i = 0; i < 5; ++i) {
        form.put<qint16>(202 + 2 * i, qint16(202 + i));
        form.put<double>(212 + 8 * i, 212.125 + double(i));
        form.put<qint16>(252 + 2 * i, qint16(252 + i));
    }
    for (std::size_t offset = 262; offset < 298; offset += 4)
        form.put<float>(offset, float(offset));
    form.put<qint16>(298, 298);
    form.put<qint16>(198, 198);
    form.put<qint16>(200, 200);
    return form;
}

} // namespace

TEST(CartRecord, EveryFieldIsFoundInItsPlace) {
    const CartRecord record = DecodeCartRecord(sample().bytes);
    EXPECT_EQ(record.Line1, line("Twenty characters aband thirty more of the same xy"));
    EXPECT_EQ(record.Line2, line("Second"));
    EXPECT_EQ(record.Line3, line("Third"));
    EXPECT_EQ(record.BackColor, 0x00C0FFEE);
    EXPECT_EQ(record.ForeColor, qint32(0x80000012));
    EXPECT_EQ(record.Word68, 68);
    EXPECT_EQ(record.Long184, -184);
    EXPECT_EQ(record.Word188, -188);
    EXPECT_EQ(record.Single190, 1.5F);
    EXPECT_EQ(record.Single194, -2.25F);
    EXPECT_EQ(record.Words202, (std::array<qint16, 5>{202, 203, 204, 205, 206}));
    EXPECT_EQ(record.Doubles212, (std::array<double, 5>{212.125, 213.125, 214.125, 215.125, 216.125}));
    EXPECT_EQ(record.Words252, (std::array<qint16, 5>{252, 253, 254, 255, 256}));
    EXPECT_EQ(record.Single262, 262);
    EXPECT_EQ(record.Single266, 266);
    EXPECT_EQ(record.Length, 270);
    EXPECT_EQ(record.TotalLength, 274);
    EXPECT_EQ(CartListTotalLength(sample().bytes), 274);
    EXPECT_EQ(record.PlayStart, 278);
    EXPECT_EQ(record.PlayEnd, 282);
    EXPECT_EQ(record.PlayLength, 286);
    EXPECT_EQ(record.Single290, 290);
    EXPECT_EQ(record.Single294, 294);
    EXPECT_EQ(record.Word298, 298);
}

// Whatever bytes a record holds, it goes back as it came, but for the three fields that are dropped.
TEST(CartRecord, GoesBackAsItCame) {
    std::mt19937 random(1);
    for (int round = 0; round < 200; ++round) {
        CartListRecord bytes;
        for (char& byte : bytes)
            byte = char(1 + random() % 255);
        CartListRecord expected = bytes;
        std::fill_n(expected.begin() + 160, 24, '\0');
        std::fill_n(expected.begin() + 198, 4, '\0');
        ASSERT_EQ(EncodeCartRecord(DecodeCartRecord(bytes)), expected);
    }
}

TEST(CartRecord, AZeroByteEndsTheTailOfALineButNotItsHead) {
    FileForm form;
    form.text(0, "Head");
    form.bytes[4] = '\0';
    form.text(70, "tail");
    form.bytes[72] = '\0';
    form.text(20, "Only a head");
    form.text(100, "?nothing of this");
    form.bytes[100] = '\0';
    const CartRecord record = DecodeCartRecord(form.bytes);
    EXPECT_EQ(record.Line1.left(20), QString("Head") + QChar(0) + QString(15, u' '));
    EXPECT_EQ(record.Line1.mid(20), QString("ta").leftJustified(30, u' '));
    EXPECT_EQ(record.Line2, line("Only a head"));
}

TEST(CartRecord, LinesAreCutPaddedAndReplacedWhereTheCodePageEnds) {
    CartRecord record = MakeEmptyCartRecord(1, 2);
    record.Line1 = QString(60, u'x');
    record.Line2 = QString::fromUtf8("Café €5 \u03A9 \U0001F600!");
    const CartListRecord bytes = EncodeCartRecord(record);
    EXPECT_EQ(QByteArray(bytes.data(), 20), QByteArray(20, 'x'));
    EXPECT_EQ(QByteArray(bytes.data() + 20, 20), QByteArray("Caf\xE9 \x80\x35 ? ?!        "));
    EXPECT_EQ(QByteArray(bytes.data() + 70, 30), QByteArray(30, 'x'));
    EXPECT_EQ(QByteArray(bytes.data() + 100, 60), QByteArray(60, ' '));
}

TEST(CartRecord, TheEmptyRecordMarksItselfAndHoldsTheColours) {
    FileForm form;
    form.put<qint32>(60, 0x112233);
    form.put<qint32>(64, 0x445566);
    std::fill(form.bytes.begin() + 68, form.bytes.begin() + 70, '\0');
    std::fill(form.bytes.begin() + 160, form.bytes.end(), '\0');
    form.put<float>(274, -1);
    form.put<float>(286, -1);
    EXPECT_EQ(EncodeCartRecord(MakeEmptyCartRecord(0x112233, 0x445566)), form.bytes);
    EXPECT_TRUE(MakeEmptyCartRecord(0, 0).isEmpty());
}

TEST(CartRecord, ALineThatIsFullRunsStraightOnIntoTheNext) {
    const QString full(48, u'x');
    const QString noBreakSpace = QString(49, u'x') + QChar(0xA0); // part of the text, not white space
    const QStringList cases[] = {
        {"One", "Two", "Three", "One Two Three"},
        {"  One  ", "", " Three", "One Three"},
        {"", "", "", ""},
        {full + "fi", "fty", "end", full + "fifty end"},
        {noBreakSpace, "", "", noBreakSpace},
    };
    for (const QStringList& c : cases) {
        CartRecord record;
        record.Line1 = c[0].leftJustified(CartLineLength, u' ');
        record.Line2 = c[1].leftJustified(CartLineLength, u' ');
        record.Line3 = c[2].leftJustified(CartLineLength, u' ');
        EXPECT_EQ(CartDescription(record, true), c[3]);
        EXPECT_EQ(CartDescription(record, false), record.Line1 + record.Line2 + record.Line3);
    }
}

TEST(HotlistRecord, IsTwoTextsOfWhichTheSecondIsBlankByZeros) {
    const HotlistBytes blank = EncodeHotlistRecord(BlankHotlistRecord());
    EXPECT_EQ(QByteArray(blank.data(), HotlistRecordLength), QByteArray(26, ' ') + QByteArray(230, '\0'));
    HotlistBytes bytes{};
    for (std::size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = char(i);
    EXPECT_EQ(EncodeHotlistRecord(DecodeHotlistRecord(bytes)), bytes);
    EXPECT_EQ(DecodeHotlistRecord(bytes).Text0.size(), 26);
}
