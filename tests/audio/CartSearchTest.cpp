// The search over the audiowall: it finds what a plain and slow version of it finds, whatever the wall and
// the query, and it stays at hand for its window while other programs change the files under it.
#include "AudioTest.h"
#include "PlainSearch.h"

#include "platform/SteadyTime.h"
#include "support/Age.h"

#include <random>

using namespace tolvex;
using namespace tolvex::tests;
using namespace std::chrono_literals;

namespace {

QString number(qint32 cart) {
    return QString::number(cart).rightJustified(5, u'0');
}

class CartSearchTest : public AudioTest {
protected:
    CartSearchTest() { setLocations("D:\\WALL"); }

    // Without emptying the file first: some file systems then write it to the disk when it is closed.
    void write(const QString& name, const QByteArray& bytes) {
        QFile file(machine.host("D:\\WALL\\" + name));
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        ASSERT_EQ(file.write(bytes), bytes.size());
        ASSERT_TRUE(file.resize(bytes.size()));
    }
    void writeList(int part, const QByteArray& bytes) {
        write(QStringLiteral("Carts%1.lst").arg(part), bytes);
    }
    // Carts of these lines, from cart 1 on.
    void setWall(const QList<QStringList>& carts) {
        QByteArray list;
        for (const QStringList& lines : carts) {
            CartRecord record = MakeEmptyCartRecord(1, 2);
            record.Line1 = lines.value(0);
            record.Line2 = lines.value(1);
            record.Line3 = lines.value(2);
            record.Length = record.TotalLength = 180;
            const CartListRecord bytes = EncodeCartRecord(record);
            list += QByteArray(bytes.data(), CartListRecordLength);
        }
        settings.NoCarts = qint32(carts.size());
        writeList(1, list);
    }
    void writeNotes(qint32 cart, const QByteArray& text, const char* extension = ".RTF") {
        write("TLV" + number(cart) + extension, text);
    }

    static QList<qint32> numbers(CartSearch& search) {
        QList<qint32> found;
        for (const FoundCart& cart : search.takeFound())
            found += cart.number;
        return found;
    }
    QList<qint32> find(const CartQuery& query) {
        CartSearch search(store, query, settings.NoCarts);
        while (search.runFor(1s)) {
        }
        return numbers(search);
    }
    QList<qint32> find(const QString& text) { return find(CartQuery{.text = text}); }
};

// Makes walls and queries in which every rule matters: few letters, so that texts meet; capitals and letters
// with accents; lines that are full, blank, begin with blanks or hold zero bytes; empty carts; notes.
class RandomWall {
public:
    explicit RandomWall(unsigned seed)
        : random_(seed) {}

    int below(int count) { return int(random_() % unsigned(count)); }
    bool oneIn(int count) { return below(count) == 0; }

    char letter() {
        static constexpr char letters[] = "abABeE  zs\xE4\xC4\xDF\x9C\x8C\xFF\x9F\xD7\xF7.";
        return letters[below(int(sizeof letters) - 1)];
    }
    QByteArray text(int length) {
        QByteArray bytes;
        while (bytes.size() < length)
            bytes += letter();
        return bytes;
    }
    QByteArray record() {
        QByteArray bytes(CartListRecordLength, '\0');
        for (int line = 0; line < 3; ++line) {
            const int length = oneIn(4) ? 0 : oneIn(3) ? 50 : below(51);
            QByteArray words = text(length).leftJustified(CartLineLength, ' ');
            if (oneIn(6))
                words[below(50)] = '\0';
            bytes.replace(line * 20, 20, words.left(20));
            bytes.replace(70 + line * 30, 30, words.mid(20));
        }
        const float lengths[] = {0, 1, 175, 176, 177, 184, 185, 3.5F, -1};
        const float total = oneIn(6) ? EmptyCartLength : 180;
        const float length = lengths[below(9)];
        std::memcpy(bytes.data() + 270, &length, sizeof length);
        std::memcpy(bytes.data() + 274, &total, sizeof total);
        return bytes;
    }
    CartQuery query(const QByteArray& list, int carts) {
        CartQuery query;
        QByteArray wanted = text(1 + below(4));
        if (oneIn(3)) // something that is there
            wanted = list.mid(below(int(list.size())), 1 + below(6));
        query.text = oneIn(12) ? QStringLiteral(" *") : platform::FromCodePage(wanted);
        if (oneIn(20))
            query.text = oneIn(2) ? QString() : QStringLiteral("a\u0141");
        query.backwards = oneIn(3);
        query.wholeWall = oneIn(2);
        query.start = below(carts + 4) - 2;
        query.limitLines = oneIn(3);
        query.lines = {oneIn(2), oneIn(2), oneIn(2)};
        query.notes = oneIn(3);
        if (oneIn(3))
            query.length = LengthRule{double(below(2) * 180), double(below(2) * 3)};
        return query;
    }

private:
    std::mt19937 random_;
};

} // namespace

TEST_F(CartSearchTest, FindsWhatThePlainVersionFinds) {
    RandomWall wall(20240305);
    int found = 0;
    // More for a long run.
    const int walls = std::max(120, qEnvironmentVariableIntValue("TOLVEX_SEARCH_WALLS"));
    for (int round = 0; round < walls; ++round) {
        const bool twoParts = round % 20 == 0;
        const int carts = (twoParts ? 1000 : 1) + wall.below(120);
        settings.NoCarts = carts;
        settings.UseIndividualCartListFiles = !twoParts && wall.oneIn(5) ? -1 : 0;
        QByteArray list;
        for (int cart = 1; cart <= carts; ++cart)
            list += wall.record();
        writeList(1, list.left(1000 * CartListRecordLength));
        writeList(2, list.mid(1000 * CartListRecordLength));
        for (int i = 0; i < (round % 4 == 0 ? 6 : 0); ++i) {
            writeNotes(1 + wall.below(carts), wall.text(wall.below(30)), wall.oneIn(2) ? ".RTF" : ".txt");
            write("TLV" + number(1 + wall.below(carts)) + ".LST", wall.record());
        }
        CloseCartParts(store);
        store.notes.reset();
        for (int i = 0; i < 15; ++i) {
            const CartQuery query = wall.query(list, carts);
            const QList<qint32> expected = plainSearch(store, query, carts);
            found += int(expected.size());
            ASSERT_EQ(find(query), expected)
                << "wall " << round << ", query " << i << ": \"" << query.text.toStdString() << '"';
            // One step at a time it finds the same, with the same records.
            CartSearch search(store, query, carts);
            while (search.step()) {
            }
            EXPECT_EQ(search.done(), search.total());
            EXPECT_EQ(search.foundCount(), expected.size());
            for (const FoundCart& cart : search.takeFound())
                ASSERT_EQ(EncodeCartRecord(cart.record), EncodeCartRecord(ReadCart(store, cart.number)));
        }
    }
    EXPECT_GT(found, 5000) << "walls and queries that have nothing to do with each other";
}

TEST_F(CartSearchTest, ADescriptionRunsOnFromFullLineToLine) {
    const QString full = QString(44, u'x') + "Night";
    setWall({{u'y' + full, "  train to nowhere"},
             {full, "train"},
             {"Night ", "", "  train"},
             {"\u00DCber \u0160\u0153", "STRA\u00DFE", "\u0178"}});
    EXPECT_EQ(find("nightTRAIN"), QList<qint32>{1});
    EXPECT_EQ(find("night train"), (QList<qint32>{2, 3}));
    CartQuery limited{.text = "nighttrain", .limitLines = true, .lines = {true, true, true}};
    EXPECT_EQ(find(limited), QList<qint32>());
    limited.text = "TRAIN";
    limited.lines = {true, false, true};
    EXPECT_EQ(find(limited), QList<qint32>{3});
    EXPECT_EQ(find("\u00FCBER \u0161\u0152 stra\u00DFe \u00FF"), QList<qint32>{4});
    EXPECT_EQ(find("strasse"), QList<qint32>());
    EXPECT_EQ(find(QString()), QList<qint32>());
    EXPECT_EQ(find("  *  "), (QList<qint32>{1, 2, 3, 4}));
}

TEST_F(CartSearchTest, OnlyTheFirstTenThousandBytesOfNotesCount) {
    setWall({{"One"}, {"Two"}, {"Three"}, {"Four"}});
    writeNotes(1, QByteArray(9996, '.') + "WORD");
    writeNotes(2, QByteArray(9997, '.') + "word");
    writeNotes(3, QByteArray("\0{\\rtf word", 11), ".TXT");
    // Rich text is the notes, even where it cannot be read; a folder of that name is not read.
    writeNotes(4, "word", ".TXT");
    CartQuery query{.text = "Word", .notes = true};
    EXPECT_EQ(find(query), (QList<qint32>{1, 3, 4}));
    machine.makeFolder("D:\\WALL\\TLV00004.RTF");
    writeNotes(3, "other");
    platform::SkipAhead(1s);
    EXPECT_EQ(find(query), (QList<qint32>{1, 4}));
}

TEST_F(CartSearchTest, TheCartShownIsWhereItWasAskedToBeginAndThenEachHundredth) {
    settings.NoCarts = 450;
    writeList(1, cartBytes("x").repeated(450));
    CartSearch search(store, {.text = "*", .backwards = true, .wholeWall = true, .start = -3}, 450);
    QList<qint32> shown{search.shownCart()};
    while (search.step())
        if (search.shownCart() != shown.last())
            shown += search.shownCart();
    EXPECT_EQ(shown, (QList<qint32>{1, 400, 300, 200, 100}));
    EXPECT_EQ(CartSearch(store, {.text = "*", .start = 451}, 450).total(), 0);
    EXPECT_EQ(CartSearch(store, {.text = "*", .backwards = true, .start = 70}, 450).total(), 70);
}

TEST_F(CartSearchTest, StopsBetweenAnyTwoCartsAndKeepsWhatItFound) {
    settings.NoCarts = 300;
    writeList(1, cartBytes("x").repeated(300));
    CartSearch search(store, {.text = "*"}, 300);
    while (search.done() < 123)
        ASSERT_TRUE(search.runFor(0ms));
    EXPECT_FALSE(search.ended());
    search.stop();
    EXPECT_FALSE(search.step());
    EXPECT_FALSE(search.runFor(1s));
    EXPECT_TRUE(search.ended());
    EXPECT_EQ(search.takeFound().size(), 123);
    EXPECT_EQ(search.takeFound().size(), 0);
    EXPECT_EQ(search.foundCount(), 123);
}

// The folder of a part with ten thousands of carts takes a while to list; Stop has to count meanwhile.
TEST_F(CartSearchTest, ALargeFolderOfNotesIsListedInPieces) {
    setWall({{"One"}, {"Two"}});
    const QDir wall(machine.host("D:\\WALL"));
    for (int file = 0; file < 1100; ++file)
        QFile(wall.filePath(QStringLiteral("TLV%1.WAV").arg(file))).open(QIODevice::WriteOnly);
    writeNotes(2, "word");
    LetAge(machine.host("D:\\WALL"));
    CartSearch search(store, {.text = "word", .notes = true}, 2);
    int pieces = 0;
    for (; search.done() == 0; ++pieces)
        ASSERT_TRUE(search.step());
    EXPECT_GE(pieces, 3);
    while (search.step()) {
    }
    EXPECT_EQ(numbers(search), QList<qint32>{2});
    // It was at rest, so the next search need not list it again.
    platform::SkipAhead(1s);
    CartSearch again(store, {.text = "word", .notes = true}, 2);
    EXPECT_TRUE(again.step());
    EXPECT_EQ(again.done(), 1);
}

TEST_F(CartSearchTest, ACartsOwnFileComesBeforeTheList) {
    setWall({{"Old one"}, {"Old two"}, {"Old three"}});
    settings.UseIndividualCartListFiles = -1;
    CartSearch search(store, {.text = "new"}, 3);
    EXPECT_TRUE(search.step());
    machine.write("D:\\WALL\\TLV00002.LST", cartBytes("New two"));
    machine.write("D:\\WALL\\TLV00003.LST", {});
    while (search.runFor(1s)) {
    }
    EXPECT_EQ(numbers(search), QList<qint32>{2});
    EXPECT_EQ(find("old"), (QList<qint32>{1, 3}));
}

// Between two steps another program may write a list, cut it, or take it away.
TEST_F(CartSearchTest, AListThatChangesUnderTheSearchIsReadAsItIsThen) {
    settings.NoCarts = 900;
    writeList(1, cartBytes("old").repeated(900));
    const QString path = machine.host("D:\\WALL\\Carts1.lst");
    for (const bool backwards : {false, true}) {
        CartSearch search(store, {.text = "new", .backwards = backwards, .wholeWall = true}, 900);
        while (search.done() < 100)
            ASSERT_TRUE(search.runFor(0ms));
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        ASSERT_TRUE(file.seek(450 * CartListRecordLength));
        file.write(cartBytes("new"));
        file.close();
        while (search.runFor(1s)) {
        }
        EXPECT_EQ(numbers(search), QList<qint32>{451});
    }

    for (const bool backwards : {false, true}) {
        CloseCartParts(store);
        writeList(1, cartBytes("old").repeated(900));
        CartSearch search(store, {.text = "old", .backwards = backwards, .wholeWall = true}, 900);
        while (search.done() < 100)
            ASSERT_TRUE(search.runFor(0ms));
        ASSERT_TRUE(QFile::resize(path, 500 * CartListRecordLength + 17));
        while (search.runFor(1s)) {
        }
        EXPECT_EQ(search.foundCount(), backwards ? 100 + 500 : 500);
    }

    CartSearch search(store, {.text = "old"}, 900);
    while (search.done() < 100)
        ASSERT_TRUE(search.runFor(0ms));
    ASSERT_TRUE(QDir(machine.host("D:\\WALL")).removeRecursively());
    platform::SkipAhead(1s);
    while (search.runFor(1s)) {
    }
    EXPECT_EQ(search.foundCount(), 100);
}

// A folder that is gone is not looked for at every cart, and is there again when it comes back.
TEST_F(CartSearchTest, APartThatCannotBeOpenedIsTriedAgainAfterARest) {
    settings.NoCarts = 3000;
    for (const int number : {1, 3})
        writeList(number, cartBytes("x").repeated(1000));
    part(2).Location = "E:\\GONE";
    EXPECT_EQ(find("x").size(), 2000);

    CartSearch search(store, {.text = "x", .start = 1001}, 3000);
    ASSERT_TRUE(search.step());
    machine.addDrive(u'E');
    machine.write("E:\\GONE\\Carts2.lst", cartBytes("x").repeated(1000));
    ASSERT_TRUE(search.step());
    EXPECT_EQ(search.foundCount(), 0);
    platform::SkipAhead(1min); // the rest is as long as twenty tries
    ASSERT_TRUE(search.step());
    EXPECT_EQ(numbers(search), QList<qint32>{1003});
}
