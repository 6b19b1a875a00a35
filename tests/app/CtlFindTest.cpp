// "carts find": the output for scripts and people, and refusals.
#include "RunCtl.h"

#include "audio/CartRecord.h"

#include <QJsonArray>
#include <QJsonObject>

namespace tolvex::tests {
namespace {

class CtlFind : public Ctl {
protected:
    void SetUp() override {
        write(onC("WINDOWS/TOLVEX.INI"), "[FileLocations]\r\nCarts1=C:\\WALL\r\nCarts2=C:\\WALL\r\n");
        write(onC("WALL/Audwall.ini"), "[Audiowall]\r\nNoCarts=1100\r\nVersion=2.6\r\n");
        QByteArray list;
        for (int cart = 1; cart <= 1100; ++cart) {
            CartRecord record = MakeEmptyCartRecord(1, 2);
            if (cart % 100 == 0) {
                record.Line1 = QStringLiteral("Night train %1").arg(cart);
                record.Line2 = QStringLiteral("\u00DCber");
                record.Length = record.TotalLength = 170 + float(cart) / 100;
            }
            list += QByteArray(EncodeCartRecord(record).data(), CartListRecordLength);
        }
        write(onC("WALL/Carts1.lst"), list.left(1000 * CartListRecordLength));
        write(onC("WALL/Carts2.lst"), list.mid(1000 * CartListRecordLength));
        write(onC("WALL/TLV00300.RTF"), "{\\rtf1 Sweeper}");
    }

    QList<int> find(const QStringList& options) const {
        QList<int> numbers;
        const QJsonArray found = run(QStringList{"--json", "carts", "find"} + options).json().array();
        for (const QJsonValue cart : found)
            numbers += cart["number"].toInt();
        return numbers;
    }
};

TEST_F(CtlFind, EveryOptionIsOneOfTheWindow) {
    EXPECT_EQ(find({"NIGHT TRAIN 1"}), (QList<int>{100, 1000, 1100}));
    EXPECT_EQ(find({"\u00FCber", "--from", "900"}), (QList<int>{900, 1000, 1100}));
    EXPECT_EQ(find({"\u00FCber", "--from", "200", "--backwards"}), (QList<int>{200, 100}));
    EXPECT_EQ(find({"*", "--backwards", "--max", "2"}), (QList<int>{1100, 1000}));
    EXPECT_EQ(find({"*", "--whole", "--from", "900", "--max", "1"}), QList<int>{100});
    EXPECT_EQ(find({"ber", "--lines", "1,3"}), QList<int>());
    EXPECT_EQ(find({"ber", "--lines=2", "--max", "1"}), QList<int>{100});
    EXPECT_EQ(find({"sweeper"}), QList<int>());
    EXPECT_EQ(find({"sweeper", "--notes"}), QList<int>{300});
    EXPECT_EQ(find({"*", "--length", "2:55", "--give", "0"}), QList<int>{500});
    EXPECT_EQ(find({"*", "--length", "2:55"}), (QList<int>{200, 300, 400, 500, 600, 700, 800}));
    const QJsonValue cart = run({"--json", "carts", "find", "1100"}).json()[0];
    EXPECT_EQ(cart, run({"--json", "carts", "show", "1100"}).json().object());
}

TEST_F(CtlFind, AnswersPeopleAndStatus) {
    const Result found = run({"carts", "find", "train 200"});
    EXPECT_EQ(found.status, 0);
    EXPECT_EQ(found.out, "Cart  Line 1           Line 2  Line 3  Seconds\n"
                         " 200  Night train 200  \xC3\x9C"
                         "ber                172\n");
    const Result none = run({"carts", "find", ""});
    EXPECT_EQ(none.status, 1);
    EXPECT_EQ(none.err, "No carts found.\n");
    EXPECT_EQ(run({"--json", "carts", "find", "none"}).out, "[\n]\n");
    EXPECT_EQ(run({"--json", "carts", "find", "none"}).status, 1);

    const std::pair<QStringList, const char*> refused[] = {
        {{"--from", "0"}, "A cart number from 1 to 99999 is expected, not \"0\"."},
        {{"--lines", "1,4"}, "--lines is expected with some of 1,2,3, not \"1,4\"."},
        {{"--length", "200"}, "--length is expected as M:SS, not \"200\"."},
        {{"--length", "3:00", "--give", "-1"}, "--give is expected with a number of seconds, not \"-1\"."},
        {{"--give", "3"}, "--give belongs to --length."},
        {{"--max", "0"}, "--max is expected with a number of carts, not \"0\"."},
    };
    for (const auto& [options, sentence] : refused) {
        const Result result = run(QStringList{"carts", "find", "x"} + options);
        EXPECT_EQ(result.status, 2) << sentence;
        EXPECT_EQ(result.err, QByteArray(sentence) + '\n');
    }
    EXPECT_TRUE(QDir(onC("WALL")).removeRecursively());
    EXPECT_EQ(run({"carts", "find", "x"}).status, 3);
}

} // namespace
} // namespace tolvex::tests
