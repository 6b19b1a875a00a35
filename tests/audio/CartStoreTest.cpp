// The audiowall's list files as they are met in the field: missing, short, long, cut inside a record, gone
// while open, out of reach; and what a cart's number leads to.
#include "AudioTest.h"

#include "platform/SteadyTime.h"

#include <csignal>

#include <sys/resource.h>

using namespace tolvex;
using namespace tolvex::tests;
using platform::Answer;

namespace {

class CartStoreTest : public AudioTest {
protected:
    CartStoreTest() { setLocations("D:\\WALL"); }

    static QString listPath(int number) { return QStringLiteral("D:\\WALL\\Carts%1.lst").arg(number); }
    // -1: no such file.
    static qint64 recordsIn(int number) {
        const qint64 size = platform::FileSize(listPath(number));
        return size < 0 ? -1 : size / CartListRecordLength;
    }
    QString firstLine(qint32 cart) { return ReadCart(store, cart).Line1.trimmed(); }
    qint16 statusOf(qint32 cart) {
        qint16 status = 99;
        ReadCart(store, cart, &status);
        return status;
    }
    // Longer than an open file's length is taken to hold without asking.
    static void wait() { platform::SkipAhead(std::chrono::milliseconds(150)); }
};

} // namespace

TEST_F(CartStoreTest, ACartNumberLeadsToItsPartAndFiles) {
    const std::pair<qint32, int> parts[] = {{-1, 11},    {INT32_MIN, 11}, {0, 0},
                                            {1, 1},      {1000, 1},       {1001, 2},
                                            {10000, 10}, {10001, 11},     {INT32_MAX, 11}};
    for (const auto& [cart, number] : parts)
        EXPECT_EQ(PartOfCart(cart), number) << cart;

    settings.NoCarts = 123456;
    part(2).Location = "M:\\TWO";
    part(11).Location = "\\\\SERVER\\WALL";
    EXPECT_EQ(CartFileStem(store, 42), QString("D:\\WALL\\TLV00042"));
    EXPECT_EQ(CartFileStem(store, 1001), QString("M:\\TWO\\TLV01001"));
    EXPECT_EQ(CartFileStem(store, 123456), QString("\\\\SERVER\\WALL\\TLV123456"));
    for (const qint32 outside : {0, -5, 123457})
        EXPECT_EQ(CartFileStem(store, outside), QString()) << outside;
}

TEST_F(CartStoreTest, ListsAreMadeAsLongAsTheCartsNeed) {
    settings.NoCarts = 12000;
    part(3).FileNumber = 23;
    EXPECT_EQ(OpenCartParts(store, 0, true), 0);
    EXPECT_EQ(machine.read(listPath(1)), emptyCarts(1000));
    EXPECT_EQ(recordsIn(10), 1000);
    EXPECT_EQ(recordsIn(11), 2000);
    for (int number = 1; number <= 11; ++number) {
        EXPECT_TRUE(part(number).IsOpen);
        EXPECT_EQ(part(number).State, Available);
        EXPECT_EQ(part(number).ListPath, listPath(number));
        EXPECT_EQ(part(number).FileNumber, number == 3 ? 23 : number < 3 ? number : number - 1);
    }
    for (const CartPlayer& player : settings.CartPlayerTable)
        EXPECT_EQ(player.State, 15);
    EXPECT_EQ(store.words[13], QString("Cued"));
}

// Nothing is ever cut or rewritten: a longer list stays, and a shorter one keeps every whole record it has,
// wherever it was cut.
TEST_F(CartStoreTest, AnExistingListKeepsItsRecordsWhereverItWasCut) {
    settings.NoCarts = 10;
    QByteArray carts;
    for (int cart = 1; cart <= 12; ++cart)
        carts += cartBytes(QStringLiteral("Cart %1").arg(cart));
    machine.write(listPath(1), carts);
    EXPECT_EQ(OpenCartParts(store, 0, true), 0);
    EXPECT_EQ(machine.read(listPath(1)), carts);

    for (int cut = 0; cut <= CartListRecordLength; ++cut) {
        machine.write(listPath(1), carts.left(3 * CartListRecordLength + cut));
        ASSERT_EQ(OpenCartParts(store, 0, true), 0);
        const int whole = cut == CartListRecordLength ? 4 : 3;
        ASSERT_EQ(machine.read(listPath(1)),
                  carts.left(whole * CartListRecordLength) + emptyCarts(10 - whole))
            << "cut after byte " << cut;
        ASSERT_EQ(firstLine(3), QString("Cart 3"));
        ASSERT_TRUE(ReadCart(store, 5).isEmpty());
    }
}

TEST_F(CartStoreTest, AnyNumberOfCartsIsTaken) {
    struct Case {
        qint32 carts;
        int result;
        qint64 inPart1;
        qint64 inPart11;
    };
    for (const Case& c :
         {Case{INT32_MIN, 0, 1000, 0}, Case{-1, 0, 1000, 0}, Case{0, -1, -1, -1}, Case{1, 0, 1, -1},
          Case{999, 0, 999, -1}, Case{100000, 0, 1000, 89999}, Case{INT32_MAX, 0, 1000, 89999}}) {
        CloseCartParts(store);
        QDir(machine.host("D:\\WALL")).removeRecursively();
        machine.makeFolder("D:\\WALL");
        settings.NoCarts = c.carts;
        EXPECT_EQ(OpenCartParts(store, 0, true), c.result) << c.carts;
        EXPECT_EQ(recordsIn(1), c.inPart1) << c.carts;
        EXPECT_EQ(recordsIn(11), c.inPart11) << c.carts;
        EXPECT_EQ(OpenCartParts(store, 12, true), -1);
        EXPECT_EQ(OpenCartParts(store, -1, true), -1);
        for (const qint32 cart : {-1, 0, c.carts, INT32_MAX})
            EXPECT_TRUE(ReadCart(store, cart).isEmpty());
        EXPECT_EQ(statusOf(0), -1);
    }
}

TEST_F(CartStoreTest, AMissingListIsMadeOnlyWhenTheUserWantsIt) {
    settings.NoCarts = 4500;
    machine.write(listPath(2), {});
    prompts.answers = {Answer::Yes, Answer::No, Answer::Cancel};
    EXPECT_EQ(OpenCartParts(store, 0, false), -1);
    EXPECT_EQ(prompts.texts(),
              (QStringList{"Part 1 of the AudioWall has not been found.\nDo you wish to create it in "
                           ":\nD:\\WALL\\Carts1.lst",
                           "Part 3 of the AudioWall has not been found.\nDo you wish to create it in "
                           ":\nD:\\WALL\\Carts3.lst",
                           "Part 4 of the AudioWall has not been found.\nDo you wish to create it in "
                           ":\nD:\\WALL\\Carts4.lst"}));
    EXPECT_EQ(prompts.asked[0].buttons, platform::Buttons::YesNoCancel);
    EXPECT_EQ(recordsIn(1), 1000);
    EXPECT_EQ(recordsIn(2), 1000);
    EXPECT_EQ(recordsIn(3), -1);
    EXPECT_EQ(recordsIn(4), -1);
    EXPECT_FALSE(part(3).IsOpen);
    EXPECT_EQ(part(3).State, Available);

    prompts.answers = {Answer::No};
    EXPECT_EQ(OpenCartParts(store, 4, false), 0);
    prompts.forget();
    settings.AutoConfigInProgress = -1;
    EXPECT_EQ(OpenCartParts(store, 0, false), 0);
    EXPECT_EQ(recordsIn(5), 500);
    EXPECT_TRUE(prompts.asked.isEmpty());
}

TEST_F(CartStoreTest, AnUnsetLocationStopsTheCallBeforeAnyFileIsTouched) {
    part(1).State = Unavailable;
    part(4).Location = "  ";
    part(9).Location.clear();
    EXPECT_EQ(OpenCartParts(store, 0, true), -1);
    EXPECT_TRUE(prompts.asked.isEmpty());
    EXPECT_EQ(OpenCartParts(store, 0, false), -1);
    EXPECT_EQ(prompts.texts(), QStringList{"2 locations of the AudioWall have not been set : Please check "
                                           "your configuration."});
    EXPECT_EQ(part(1).State, NotChecked);
    EXPECT_EQ(recordsIn(1), -1);
    EXPECT_EQ(OpenCartParts(store, 5, true), 0);
}

TEST_F(CartStoreTest, AMissingFolderIsReportedOnceForAllPartsInIt) {
    settings.NoCarts = 4000;
    settings.AutoConfigInProgress = -1;
    part(2).Location = part(3).Location = "E:\\GONE";
    EXPECT_EQ(OpenCartParts(store, 0, false), 0);
    EXPECT_EQ(prompts.texts(),
              QStringList{"There was a problem connecting part(s) of the Audio Wall because the directory: "
                          "\n\n\"E:\\GONE\"\n\n could not be found"});
    const qint32 states[] = {Available, Unavailable, Unavailable, Available};
    for (int number = 1; number <= 4; ++number)
        EXPECT_EQ(part(number).State, states[number - 1]) << number;
    EXPECT_EQ(OpenCartParts(store, 2, true), -1);
    EXPECT_EQ(statusOf(1001), -1);
}

TEST_F(CartStoreTest, AListThatCannotBeOpenedHarmsNothing) {
    machine.makeFolder(listPath(1));
    settings.UseIndividualCartListFiles = -1;
    machine.write("D:\\WALL\\TLV00002.LST", cartBytes("Its own"));
    EXPECT_EQ(OpenCartParts(store, 1, true), 0);
    EXPECT_FALSE(part(1).IsOpen);
    EXPECT_EQ(firstLine(2), QString("Its own"));
    EXPECT_EQ(statusOf(1), platform::BadFileNumber);
    EXPECT_EQ(part(1).State, Unavailable);
    // The next read tries again.
    QDir().rmdir(machine.host(listPath(1)));
    EXPECT_EQ(statusOf(1), 0);
    EXPECT_EQ(part(1).State, Available);
}

// No room: the carts that are there stay and can be read, and the list grows once there is room again.
TEST_F(CartStoreTest, AFullDiskCostsNoCart) {
    const QByteArray carts = cartBytes("There").repeated(3);
    machine.write(listPath(1), carts);
    struct rlimit before {};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    struct rlimit full = before;
    full.rlim_cur = 2000;
    ::setrlimit(RLIMIT_FSIZE, &full);
    const int opened = OpenCartParts(store, 1, true);
    const QString line = firstLine(3);
    const qint16 beyond = statusOf(4);
    ::setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);
    EXPECT_EQ(opened, 0);
    EXPECT_EQ(line, QString("There"));
    EXPECT_EQ(beyond, platform::PastEndOfFile);
    EXPECT_EQ(machine.read(listPath(1)), carts);
    EXPECT_EQ(OpenCartParts(store, 1, true), 0);
    EXPECT_EQ(machine.read(listPath(1)), carts + emptyCarts(997));
}

TEST_F(CartStoreTest, ReadingRepairsThePlayTimesThatAFileLacks) {
    struct Case {
        float total, end, length; // with PlayStart 10
        float startRead, endRead, lengthRead;
    };
    const Case cases[] = {
        {100, 90, 80, 10, 90, 80},  {100, 0, 80, 0, 100, 100}, {100, 90, 0, 0, 100, 100},
        {100, -1, -1, 0, 100, 100}, {0, 0, 0, 0, 0, 0},
    };
    QByteArray carts;
    for (const Case& c : cases) {
        CartRecord record = MakeEmptyCartRecord(0, 0);
        record.TotalLength = c.total;
        record.PlayStart = 10;
        record.PlayEnd = c.end;
        record.PlayLength = c.length;
        carts += QByteArray(EncodeCartRecord(record).data(), CartListRecordLength);
    }
    machine.write(listPath(1), carts + cartBytes("Words, but empty", EmptyCartLength));
    qint32 cart = 0;
    for (const Case& c : cases) {
        const CartRecord record = ReadCart(store, ++cart);
        EXPECT_EQ(record.PlayStart, c.startRead) << cart;
        EXPECT_EQ(record.PlayEnd, c.endRead) << cart;
        EXPECT_EQ(record.PlayLength, c.lengthRead) << cart;
        EXPECT_EQ(statusOf(cart), 0);
    }
    EXPECT_EQ(ReadCart(store, 6), store.emptyRecord);
    EXPECT_EQ(ReadCart(store, 6).BackColor, 0x00AABBCC);
}

// Parts that share a folder become available together; each opens its own list when a cart of it is read.
TEST_F(CartStoreTest, EveryPartIsReadAtTheFirstTry) {
    settings.NoCarts = 12000;
    machine.write(listPath(2), cartBytes("Number 1001"));
    machine.write(listPath(11), emptyCarts(1499) + cartBytes("Number 11500"));
    EXPECT_EQ(statusOf(1), 0);
    EXPECT_EQ(firstLine(1001), QString("Number 1001"));
    EXPECT_EQ(firstLine(11500), QString("Number 11500"));
    EXPECT_TRUE(prompts.asked.isEmpty());
}

TEST_F(CartStoreTest, WhatOtherProgramsDoToAnOpenListIsSeen) {
    machine.write(listPath(1), cartBytes("Before").repeated(1000));
    EXPECT_EQ(firstLine(7), QString("Before"));
    const auto file = platform::RecordFile::open(listPath(1), CartListRecordLength, false);
    ASSERT_EQ(file->write(7, cartBytes("After").constData()), 0);
    EXPECT_EQ(firstLine(7), QString("After"));

    // It is cut short, and then it is gone: the read fails, the next one mends it.
    ASSERT_TRUE(QFile::resize(machine.host(listPath(1)), 10 * CartListRecordLength));
    wait();
    EXPECT_EQ(statusOf(900), platform::PastEndOfFile);
    EXPECT_EQ(part(1).State, Unavailable);
    EXPECT_EQ(firstLine(7), QString("After"));
    EXPECT_EQ(recordsIn(1), 1000);

    ASSERT_TRUE(QFile::remove(machine.host(listPath(1))));
    machine.write(listPath(1), cartBytes("Restored").repeated(1000));
    wait();
    EXPECT_EQ(statusOf(7), platform::FileNotFound);
    EXPECT_EQ(firstLine(7), QString("Restored"));
}

TEST_F(CartStoreTest, ACartsOwnFileComesFirst) {
    settings.UseIndividualCartListFiles = -1;
    machine.write(listPath(1), cartBytes("From the list").repeated(1000));
    machine.write("D:\\WALL\\TLV00002.LST", cartBytes("Its own"));
    machine.write("D:\\WALL\\TLV00003.LST", {});
    machine.write("D:\\WALL\\TLV00004.LST", cartBytes("Cut").chopped(1));
    machine.write("D:\\WALL\\TLV00005.LST", cartBytes("Long") + cartBytes("and more"));
    EXPECT_EQ(firstLine(1), QString("From the list"));
    EXPECT_EQ(firstLine(2), QString("Its own"));
    EXPECT_EQ(firstLine(3), QString("From the list"));
    EXPECT_EQ(firstLine(4), QString());
    EXPECT_EQ(statusOf(4), platform::PastEndOfFile);
    EXPECT_EQ(part(1).State, Available);
    EXPECT_EQ(firstLine(5), QString("Long"));
    settings.UseIndividualCartListFiles = 0;
    EXPECT_EQ(firstLine(2), QString("From the list"));
}

// Opening a list, at any time, must not bring back what the user switched off.
TEST_F(CartStoreTest, OpeningAListKeepsWhatWasLoaded) {
    EXPECT_TRUE(settings.MaintainLegacyCartList && settings.PlayCartsInstantly);
    EXPECT_EQ(settings.HighestCartNumber, 99999);
    settings.PlayCartsInstantly = 0;
    settings.LowestCartNumber = 100;
    settings.HighestCartNumber = 200;
    EXPECT_EQ(OpenCartParts(store, 0, true), 0);
    EXPECT_FALSE(settings.PlayCartsInstantly);
    EXPECT_TRUE(settings.MaintainLegacyCartList);
    EXPECT_EQ(settings.HighestCartNumber, 200);
}
