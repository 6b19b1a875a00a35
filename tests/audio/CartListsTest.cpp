// What is found wrong with lists and carts, and how a list is mended without losing a byte.
#include "AudioTest.h"

#include "audio/CartCheck.h"
#include "audio/CartLists.h"
#include "platform/files/Files.h"
#include "platform/host/HostFiles.h"
#include "platform/host/LookOnly.h"
#include "platform/posix/HostCalls.h"
#include "support/NoRoom.h"
#include "support/WithoutRights.h"

#include <sys/stat.h>
#include <unistd.h>

using namespace tolvex;
using namespace tolvex::tests;

namespace {

class CartListsTest : public AudioTest {
protected:
    CartListsTest() {
        setLocations("D:\\WALL");
        settings.NoCarts = 10;
    }

    QStringList check() {
        const platform::LookOnly looking;
        QStringList found;
        for (const CartFault& fault : CheckCarts(store).faults)
            found += QStringLiteral("%1 %2: %3").arg(fault.kind).arg(fault.cart).arg(fault.text);
        return found;
    }
    void giveAudio(int cart) {
        machine.write(QStringLiteral("D:\\WALL\\tlv%1.wav").arg(cart, 5, 10, QChar(u'0')), "sound");
    }
};

constexpr char list1[] = "D:\\WALL\\Carts1.lst";
constexpr char torn1[] = "D:\\WALL\\Carts1.lst.torn";

} // namespace

TEST_F(CartListsTest, AListIsJudgedByItsLength) {
    struct Case {
        qint64 bytes; // -1: no file
        const char* state;
        const char* words;
    };
    const Case cases[] = {
        {-1, "missing", "There is no list D:\\WALL\\Carts1.lst for part 1 of the AudioWall."},
        {0, "short", "D:\\WALL\\Carts1.lst is short: 0 of 10 carts are there."},
        {2999, "torn",
         "D:\\WALL\\Carts1.lst is torn: 299 of 300 bytes of cart 10 are there, and is short: 9 of 10 carts "
         "are there."},
        {3000, "sound", ""},
        {3001, "torn", "D:\\WALL\\Carts1.lst is torn: 1 of 300 bytes of cart 11 are there."},
        {3300, "sound", ""},
    };
    for (const Case& c : cases) {
        if (c.bytes >= 0)
            machine.write(list1, QByteArray(c.bytes, 'x'));
        const CartListFacts facts = LookAtCartList(store, 1);
        EXPECT_EQ(facts.state(), QString(c.state)) << c.bytes;
        EXPECT_EQ(facts.inWords(), QString(c.words)) << c.bytes;
        EXPECT_EQ(facts.lastCart(), std::max<qint64>(c.bytes, 0) / 300);
    }
    QFile::remove(machine.host(list1));
    machine.makeFolder(list1);
    EXPECT_EQ(LookAtCartList(store, 1).state(), QString("unreadable"));
    settings.NoCarts = 12000;
    machine.write("D:\\WALL\\Carts11.lst", cartBytes("x"));
    EXPECT_EQ(LookAtCartList(store, 11).inWords(),
              QString("D:\\WALL\\Carts11.lst is short: 1 of 2000 carts are there."));
    EXPECT_EQ(LookAtCartList(store, 11).lastCart(), 10001);
}

TEST_F(CartListsTest, RepairKeepsWhatIsThere) {
    const QByteArray carts = cartBytes("One") + cartBytes("Two");
    const QByteArray torn = cartBytes("Three").left(200);
    machine.write(list1, carts + torn);
    CartListRepair repair = RepairCartList(store, 1);
    EXPECT_EQ(repair.error, 0);
    EXPECT_EQ(repair.added, 8);
    EXPECT_EQ(repair.keptIn, QString(torn1));
    EXPECT_EQ(machine.read(torn1), torn);
    EXPECT_EQ(machine.read(list1), carts + emptyCarts(8));
    // A sound list is left alone; what was kept is never written over; a longer list is not cut.
    repair = RepairCartList(store, 1);
    EXPECT_TRUE(repair.added == 0 && repair.keptIn.isEmpty());
    machine.write(list1, carts.repeated(6) + "x");
    repair = RepairCartList(store, 1);
    EXPECT_EQ(repair.keptIn, QString(torn1) + "2");
    EXPECT_EQ(machine.read(torn1), torn);
    EXPECT_EQ(machine.read("D:\\WALL\\Carts1.lst.torn2"), "x");
    EXPECT_EQ(machine.read(list1), carts.repeated(6) + emptyCarts(1));
    // A short one has nothing to keep, and a missing one is not made.
    machine.write(list1, carts);
    EXPECT_EQ(RepairCartList(store, 1).added, 8);
    EXPECT_EQ(RepairCartList(store, 2).error, platform::FileNotFound);
    EXPECT_EQ(platform::FolderNames("D:\\WALL"),
              (QStringList{"Carts1.lst", "Carts1.lst.torn", "Carts1.lst.torn2"}));
}

TEST_F(CartListsTest, ARepairThatFailsLosesNothing) {
    const QByteArray torn = cartBytes("One") + cartBytes("Two").left(299);
    machine.write(list1, torn);
    {
        // Room for the torn bytes, not for the list.
        const NoRoom full(1000);
        EXPECT_EQ(RepairCartList(store, 1).error, platform::DiskFull);
    }
    EXPECT_EQ(machine.read(torn1), torn.mid(300));
    EXPECT_EQ(machine.read(list1).left(300), torn.left(300));
    EXPECT_EQ(machine.read(list1).size(), torn.size());
    EXPECT_EQ(RepairCartList(store, 1).error, 0);

    machine.write(list1, torn);
    const auto mode = [this](const char* path, mode_t bits) {
        ::chmod(QFile::encodeName(machine.host(path)).constData(), bits);
    };
    ::chmod(QFile::encodeName(machine.path()).constData(), 0755);
    mode(list1, 0444);
    mode("D:\\WALL", 0555);
    EXPECT_TRUE(
        PassesWithoutRights([this] { EXPECT_EQ(RepairCartList(store, 1).error, platform::PathFileAccess); }));
    mode("D:\\WALL", 0755);
    EXPECT_EQ(machine.read(list1), torn);
}

// The torn record was one that another program was just writing.
TEST_F(CartListsTest, ARepairLeavesARecordThatIsFinishedMeanwhile) {
    static const QByteArray two = cartBytes("Two");
    static QString listOnHost;
    listOnHost = machine.host(list1);
    machine.write(list1, cartBytes("One") + two.left(299));
    platform::hostCalls().write = [](int descriptor, const void* bytes, size_t length) -> ssize_t {
        QFile list(listOnHost);
        EXPECT_TRUE(list.open(QIODevice::Append) && (list.size() == 600 || list.write(two.right(1)) == 1));
        return ::write(descriptor, bytes, length);
    };
    const CartListRepair repair = RepairCartList(store, 1);
    platform::RestoreHostCalls();
    EXPECT_EQ(repair.error, 0);
    EXPECT_EQ(machine.read(list1), cartBytes("One") + two + emptyCarts(8));
}

TEST_F(CartListsTest, CartsWithoutAudioAndDoublesAreFound) {
    settings.UseIndividualCartListFiles = -1;
    QByteArray carts;
    for (const char* line : {"Jingle", "News", "Jingle", "", "", "Silent", "Torn", "Twice", "Empty", "None",
                             "Beyond the last cart"})
        carts += cartBytes(line);
    const auto put = [&carts](int cart, const QByteArray& record) {
        carts.replace((cart - 1) * CartListRecordLength, CartListRecordLength, record);
    };
    put(9, cartBytes("Words, but empty", EmptyCartLength));
    machine.write(list1, carts);
    machine.write("D:\\WALL\\TLV00007.LST", cartBytes("Torn").left(10));
    for (const int cart : {1, 2, 3, 4, 5, 8})
        giveAudio(cart);
    machine.write("D:\\WALL\\TLV00006.WAV", {});
    machine.write("D:\\WALL\\TLV00008.MP2", "sound");
    machine.write("D:\\WALL\\TLV00010.RTF", "notes are not audio");
    machine.write("D:\\WALL\\TLV10.WAV", "nor is this the name of a cart");
    EXPECT_EQ(check(),
              (QStringList{
                  "double 3: Cart 3 has the lines and the length of cart 1.",
                  "audio 6: Cart 6 has no audio in D:\\WALL.",
                  "unreadable 7: Cart 7 could not be read (error 62).",
                  "double 8: Cart 8 has several audio files in D:\\WALL: TLV00008.MP2, tlv00008.wav.",
                  "audio 10: Cart 10 has no audio in D:\\WALL.",
              }));
    // Another length makes another cart of it, and linked carts have their audio where nobody here can tell.
    put(3, cartBytes("Jingle", 12));
    machine.write(list1, carts);
    settings.AllowAudioFileLinking = -1;
    EXPECT_EQ(check().size(), 2);
}

TEST_F(CartListsTest, AudioLiesInTheFolderOfItsPart) {
    settings.NoCarts = 1001;
    part(2).Location = "D:\\TWO";
    machine.write(list1, cartBytes("One") + emptyCarts(999));
    machine.write("D:\\TWO\\Carts2.lst", cartBytes("Two"));
    giveAudio(1);
    giveAudio(1001);
    EXPECT_EQ(check(), QStringList{"audio 1001: Cart 1001 has no audio in D:\\TWO."});
    machine.write("D:\\TWO\\TLV01001.WAV", "sound");
    EXPECT_EQ(check(), QStringList());
}

TEST_F(CartListsTest, TheCheckCoversEveryPartAndCanBeStopped) {
    settings.NoCarts = 2500;
    part(2).Location.clear();
    machine.write(list1, cartBytes("One").repeated(1000));
    machine.write("D:\\WALL\\Carts3.lst", emptyCarts(499) + cartBytes("Last"));
    const platform::LookOnly looking;
    CartCheckResult result = CheckCarts(store);
    EXPECT_EQ(result.lists, 2);
    EXPECT_EQ(result.carts, 1001);
    EXPECT_EQ(result.faults.last().cart, 2500);
    EXPECT_EQ(result.faults.last().part, 3);
    prompts.progressGoesOn = {true, true, false};
    result = CheckCarts(store);
    EXPECT_TRUE(result.stopped);
    EXPECT_EQ(result.carts, 300);
}
