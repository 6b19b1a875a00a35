// What stands beside the cart lists: notes, the hotlist, the dated backups.
#include "AudioTest.h"

#include "audio/CartBackup.h"
#include "platform/SteadyTime.h"
#include "support/Age.h"

using namespace tolvex;
using namespace tolvex::tests;
using platform::Answer;

namespace {

class CartFilesTest : public AudioTest {
protected:
    CartFilesTest() { setLocations("D:\\WALL"); }

    // The path, with "!" in front where the file is not there, when a change of the folder is seen.
    QString notesOf(qint32 cart) {
        platform::SkipAhead(std::chrono::milliseconds(150));
        bool exists = true;
        const QString path = CartNotesPath(store, cart, &exists);
        return exists ? path : u'!' + path;
    }
};

constexpr char hotlist[] = "D:\\WALL\\GLIC.Lst";

QByteArray blankEntries(int count) {
    return (QByteArray(26, ' ') + QByteArray(230, '\0')).repeated(count);
}

} // namespace

TEST_F(CartFilesTest, NotesAreRichTextFirstAndSeenAsTheyComeAndGo) {
    EXPECT_EQ(notesOf(7), QString("!D:\\WALL\\TLV00007.RTF"));
    machine.write("D:\\WALL\\tlv00007.txt", "x");
    EXPECT_EQ(notesOf(7), QString("D:\\WALL\\TLV00007.TXT"));
    machine.write("D:\\WALL\\Tlv00007.Rtf", {});
    EXPECT_EQ(notesOf(7), QString("D:\\WALL\\TLV00007.RTF"));
    QFile::remove(machine.host("D:\\WALL\\TLV00007.RTF"));
    EXPECT_EQ(notesOf(7), QString("D:\\WALL\\TLV00007.TXT"));
    // A folder at rest is not listed again until it changes.
    LetAge(machine.host("D:\\WALL"));
    EXPECT_EQ(notesOf(8), QString("!D:\\WALL\\TLV00008.RTF"));
    machine.write("D:\\WALL\\TLV00008.RTF", "x");
    EXPECT_EQ(notesOf(8), QString("D:\\WALL\\TLV00008.RTF"));
    for (const qint32 outside : {0, -1, 10000})
        EXPECT_EQ(notesOf(outside), QString("!"));
    part(2).Location = "E:\\GONE";
    EXPECT_EQ(notesOf(1001), QString("!E:\\GONE\\TLV01001.RTF"));
}

TEST_F(CartFilesTest, TheHotlistIsMadeGrownAndNeverCut) {
    prompts.answers = {Answer::Cancel, Answer::No, Answer::Yes};
    EXPECT_FALSE(OpenHotlist(store, "D:\\WALL"));
    EXPECT_TRUE(OpenHotlist(store, "D:\\WALL"));
    EXPECT_FALSE(machine.exists(hotlist));
    EXPECT_EQ(store.hotlist.number, 0);
    EXPECT_TRUE(OpenHotlist(store, "D:\\WALL"));
    EXPECT_EQ(machine.read(hotlist), blankEntries(40));
    EXPECT_EQ(store.hotlist.number, 1);
    EXPECT_EQ(prompts.asked[0].text, QString("The Public Instant Cart Hotlist has not been found.\nDo you "
                                             "wish to create it in :\nD:\\WALL\\GLIC.Lst"));
    EXPECT_EQ(prompts.asked[0].title, QString("File System Startup Error"));
    EXPECT_EQ(prompts.asked[0].icon, platform::Icon::Exclamation);
    // The lists take other channels than the hotlist's.
    EXPECT_EQ(OpenCartParts(store, 1, true), 0);
    EXPECT_EQ(part(1).FileNumber, 2);
    CloseHotlist(store);
    EXPECT_EQ(store.hotlist.number, 0);

    const QByteArray entry(HotlistRecordLength, 'e');
    machine.write(hotlist, entry.repeated(2) + "rest");
    EXPECT_TRUE(OpenHotlist(store, "D:\\WALL"));
    EXPECT_EQ(machine.read(hotlist), entry.repeated(2) + blankEntries(38));
    machine.write(hotlist, entry.repeated(41) + "rest");
    EXPECT_TRUE(OpenHotlist(store, "D:\\WALL"));
    EXPECT_EQ(machine.read(hotlist), entry.repeated(41) + "rest");
}

TEST_F(CartFilesTest, TheHotlistIsLeftAloneWhereItCannotBe) {
    EXPECT_FALSE(OpenHotlist(store, {}));
    EXPECT_FALSE(OpenHotlist(store, "E:\\GONE"));
    settings.LastOneWas = -1;
    EXPECT_FALSE(OpenHotlist(store, "D:\\WALL"));
    settings.LastOneWas = 0;
    settings.AutoConfigInProgress = -1;
    machine.makeFolder(hotlist);
    EXPECT_TRUE(OpenHotlist(store, "D:\\WALL"));
    EXPECT_EQ(store.hotlist.number, 0);
    EXPECT_TRUE(prompts.asked.isEmpty());
}

TEST_F(CartFilesTest, ListsAreBackedUpIntoTheFolderOfTheDay) {
    const QByteArray list = cartBytes("One").repeated(3);
    machine.write("D:\\WALL\\carts1.lst", list);
    machine.write("D:\\WALL\\Carts11.LST", {});
    part(2).Location.clear();
    EXPECT_TRUE(BackupCartLists(settings, false));
    EXPECT_EQ(machine.read("D:\\WALL\\Backups\\2024-03-05\\Carts1.LST"), list);
    EXPECT_TRUE(machine.exists("D:\\WALL\\Backups\\2024-03-05\\Carts11.LST"));
    EXPECT_EQ(prompts.progressTitles,
              (QStringList{"Backing up Audio Wall lists - Part 1", "Backing up Audio Wall lists - Part 11"}));

    // The next day, and once more on that day.
    clock.time = clock.time.addDays(1);
    for (const QByteArray& now : {list + list, list}) {
        machine.write("D:\\WALL\\carts1.lst", now);
        EXPECT_TRUE(BackupCartLists(settings, false));
        EXPECT_EQ(machine.read("D:\\WALL\\Backups\\2024-03-06\\Carts1.LST"), now);
    }
    EXPECT_EQ(machine.read("D:\\WALL\\Backups\\2024-03-05\\Carts1.LST"), list);

    // A list in Backups itself, which this program never puts there, holds a copy back unless forced.
    machine.write("D:\\WALL\\Backups\\Carts1.LST", "x");
    machine.write("D:\\WALL\\carts1.lst", list + list);
    EXPECT_TRUE(BackupCartLists(settings, false));
    EXPECT_EQ(machine.read("D:\\WALL\\Backups\\2024-03-06\\Carts1.LST"), list);
    EXPECT_TRUE(BackupCartLists(settings, true));
    EXPECT_EQ(machine.read("D:\\WALL\\Backups\\2024-03-06\\Carts1.LST"), list + list);
}

TEST_F(CartFilesTest, AFailedBackupEndsWithoutAWord) {
    machine.write("D:\\WALL\\Carts1.LST", "list");
    machine.write("D:\\WALL\\Carts2.LST", "list");
    machine.write("D:\\WALL\\Backups", "a file where the folder should be");
    EXPECT_FALSE(BackupCartLists(settings, true));
    QFile::remove(machine.host("D:\\WALL\\Backups"));
    prompts.progressGoesOn = {false}; // the user stops the first copy
    EXPECT_FALSE(BackupCartLists(settings, true));
    EXPECT_FALSE(machine.exists("D:\\WALL\\Backups\\2024-03-05\\Carts1.LST"));
    EXPECT_FALSE(machine.exists("D:\\WALL\\Backups\\2024-03-05\\Carts2.LST"));
    EXPECT_TRUE(prompts.asked.isEmpty());
}
