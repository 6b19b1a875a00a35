// Recordsets as used by the suite's programs: moves, seeks, finds, adds, edits and removals, in a table and
// in a query's result, with other users working at the same time.
#include "jet/Recordset.h"

#include "jet/Database.h"
#include "jet/FaultyStorage.h"
#include "jet/NewDatabase.h"
#include "jet/base/Error.h"
#include "jet/table/TableDesign.h"

#include <gtest/gtest.h>

namespace jet::tests {
namespace {

constexpr char Path[] = "/data/KOVA.MDB";

class RecordsetTest : public testing::Test {
protected:
    RecordsetTest() {
        TableDesign design;
        design.name = u"Songs";
        design.fields = {FieldOf(u"Id", ColumnType::Long), FieldOf(u"Title", ColumnType::Text, 20),
                         FieldOf(u"Year", ColumnType::Integer), FieldOf(u"Note", ColumnType::Memo)};
        design.fields.front().autonumber = true;
        design.indexes = {{.name = u"Main", .fields = {{u"Title"}}, .unique = true},
                          {.name = u"ByYear", .fields = {{u"Year", true}, {u"Title"}}, .ignoreNulls = true}};
        AppendTable(database_.catalog(), design);
    }

    Recordset songs(Recordset::Kind kind = Recordset::Kind::Table) {
        return Recordset::open(database_, u"Songs", kind);
    }
    void add(const char* title, int year) {
        Recordset set = songs();
        set.addNew();
        set.set(u"Title", ToUtf16(title));
        set.set(u"Year", std::int32_t{year});
        set.update();
    }
    void addFive() {
        for (const auto& [title, year] :
             {std::pair{"Émile", 1980}, {"Zoo", 1970}, {"apple", 1990}, {"Apfel", 1980}, {"emil", 1980}})
            add(title, year);
    }
    static std::string title(Recordset& set) { return ToUtf8(std::get<std::u16string>(set.value(u"Title"))); }
    static std::string all(Recordset& set, bool backward = false) {
        std::string titles;
        if (set.bof() && set.eof())
            return titles;
        backward ? set.moveLast() : set.moveFirst();
        while (backward ? !set.bof() : !set.eof()) {
            titles += title(set) + ' ';
            backward ? set.movePrevious() : set.moveNext();
        }
        return titles;
    }

    FaultyStorage storage_;
    Database database_ = Database::create(storage_, Path);
};

TEST_F(RecordsetTest, AnEmptyTableHasNeitherBeginningNorEnd) {
    Recordset set = songs();
    EXPECT_TRUE(set.bof() && set.eof());
    EXPECT_EQ(set.recordCount(), 0u);
    EXPECT_EQ(CodeOf([&] { set.moveFirst(); }), ErrorNumber::NoCurrentRecord);
    EXPECT_EQ(CodeOf([&] { set.moveNext(); }), ErrorNumber::NoCurrentRecord);
    EXPECT_EQ(CodeOf([&] { set.value(u"Title"); }), ErrorNumber::NoCurrentRecord);
    EXPECT_EQ(CodeOf([&] { set.edit(); }), ErrorNumber::NoCurrentRecord);
    EXPECT_EQ(CodeOf([&] { set.set(u"Title", u"x"); }), ErrorNumber::NoEdit);
    EXPECT_EQ(CodeOf([&] { set.update(); }), ErrorNumber::NoEdit);
    EXPECT_EQ(CodeOf([&] { set.seek(SeekComparison::Equal, u"x"); }), ErrorNumber::NoIndexSet);
    EXPECT_EQ(CodeOf([&] { set.setIndex(u"None"); }), ErrorNumber::IndexNotFound);
    EXPECT_EQ(CodeOf([&] { set.value(u"None"); }), ErrorNumber::ItemNotFound);
    EXPECT_EQ(CodeOf([&] { Recordset::open(database_, u"None"); }), ErrorNumber::TableNotFound);
    set.setIndex(u"main");
    set.seek(SeekComparison::Equal, u"x");
    EXPECT_TRUE(set.noMatch());
    set.addNew();
    set.set(u"Title", u"First");
    set.update();
    EXPECT_FALSE(set.bof() || set.eof());
    EXPECT_EQ(title(set), "First");
    EXPECT_EQ(set.size(set.field(u"Title")), 20);
}

TEST_F(RecordsetTest, WalksInTheOrderOfTheTableAndOfItsIndexes) {
    addFive();
    Recordset set = songs();
    EXPECT_EQ(all(set), "Émile Zoo apple Apfel emil ");
    EXPECT_EQ(all(set, true), "emil Apfel apple Zoo Émile ");
    set.setIndex(u"Main");
    EXPECT_EQ(all(set), "Apfel apple emil Émile Zoo ");
    set.setIndex(u"ByYear");
    EXPECT_EQ(all(set), "apple Apfel emil Émile Zoo ");
    EXPECT_EQ(all(set, true), "Zoo Émile emil Apfel apple ");
    EXPECT_TRUE(set.bof());
    EXPECT_EQ(CodeOf([&] { set.movePrevious(); }), ErrorNumber::NoCurrentRecord);
    set.moveNext();
    EXPECT_EQ(title(set), "apple");
    set.setIndex(u"");
    EXPECT_EQ(title(set), "Émile");
    EXPECT_EQ(set.recordCount(), 5u);
}

TEST_F(RecordsetTest, SeeksByAllComparisons) {
    addFive();
    Recordset set = songs();
    const auto seek = [&set](const char* comparison, std::vector<Value> values) {
        set.seek(ParseSeekComparison(comparison), values);
        return set.noMatch() ? std::string() : title(set);
    };
    set.setIndex(u"Main");
    EXPECT_EQ(seek("=", {u"APPLE  "}), "apple");
    EXPECT_EQ(seek("=", {u"app"}), "");
    EXPECT_EQ(CodeOf([&] { set.value(u"Title"); }), ErrorNumber::NoCurrentRecord);
    EXPECT_EQ(CodeOf([&] { set.moveNext(); }), ErrorNumber::NoCurrentRecord);
    EXPECT_EQ(seek("=", {u"\u4E2D"}), ""); // cannot be in an index
    EXPECT_EQ(seek(">", {u"emil"}), "Émile");
    EXPECT_EQ(seek(">=", {u"emil"}), "emil");
    EXPECT_EQ(seek(">=", {u"b"}), "emil");
    EXPECT_EQ(seek("<", {u"emil"}), "apple");
    EXPECT_EQ(seek("<=", {u"emil"}), "emil");
    EXPECT_EQ(seek("<", {u"apfel"}), "");
    EXPECT_EQ(seek(">", {u"zoo"}), "");
    set.setIndex(u"ByYear"); // from the latest year on
    EXPECT_EQ(seek("=", {1980}), "Apfel");
    EXPECT_EQ(seek("=", {u" 1980 ", u"emil"}), "emil");
    set.moveNext();
    EXPECT_EQ(title(set), "Émile");
    EXPECT_EQ(seek(">", {1980.0}), "Zoo");
    EXPECT_EQ(seek("<", {1980}), "apple");
    EXPECT_EQ(seek("<=", {1980}), "Émile");
    EXPECT_EQ(CodeOf([&] { seek("=", {u"soon"}); }), ErrorNumber::TypeConversion);
    EXPECT_EQ(CodeOf([&] { seek("=", {1, u"a", 2}); }), ErrorNumber::InvalidArgument);
    EXPECT_EQ(CodeOf([&] { ParseSeekComparison("=="); }), ErrorNumber::InvalidArgument);
}

TEST_F(RecordsetTest, EditsWhereItStands) {
    addFive();
    Recordset set = songs();
    set.setIndex(u"Main");
    set.seek(SeekComparison::Equal, u"emil");
    set.edit();
    set.set(u"Title", u"Yard");
    set.set(u"Note", std::u16string(5000, u'n'));
    EXPECT_EQ(title(set), "Yard");
    EXPECT_EQ(set.value(u"Year"), Value(std::int16_t{1980}));
    set.update();
    EXPECT_EQ(title(set), "Yard");
    EXPECT_EQ(set.lastModified(), set.bookmark());
    set.moveNext();
    EXPECT_EQ(title(set), "Zoo");
    EXPECT_EQ(all(set), "Apfel apple Émile Yard Zoo ");

    // A refused change keeps the values, for another try.
    set.moveLast();
    set.edit();
    set.set(u"Title", u"APPLE");
    EXPECT_EQ(CodeOf([&] { set.update(); }), ErrorNumber::DuplicateKey);
    set.set(u"Title", u"Zebra");
    set.update();
    EXPECT_EQ(all(set), "Apfel apple Émile Yard Zebra ");
    // Moving discards an edit.
    set.moveFirst();
    set.edit();
    set.set(u"Title", u"Changed");
    set.moveNext();
    EXPECT_EQ(CodeOf([&] { set.update(); }), ErrorNumber::NoEdit);
    EXPECT_EQ(all(set), "Apfel apple Émile Yard Zebra ");
    // An unused autonumber is not lost.
    set.addNew();
    set.set(u"Title", u"apple");
    EXPECT_EQ(CodeOf([&] { set.update(); }), ErrorNumber::DuplicateKey);
    EXPECT_EQ(set.value(u"Id"), Value());
    set.set(u"Title", u"Six");
    set.update();
    set.setBookmark(set.lastModified());
    EXPECT_EQ(set.value(u"Id"), Value(6));
    EXPECT_EQ(CodeOf([&] {
                  set.edit();
                  set.set(u"Year", u"long ago");
              }),
              ErrorNumber::TypeConversion);
}

TEST_F(RecordsetTest, GoesOnFromARemovedRow) {
    for (const char* index : {"", "Main", "ByYear"})
        for (const auto kind : {Recordset::Kind::Table, Recordset::Kind::Dynaset}) {
            addFive();
            Recordset set = songs(kind);
            if (kind == Recordset::Kind::Table)
                set.setIndex(ToUtf16(index));
            const auto firstMark = set.bookmark();
            set.moveNext();
            const auto second = set.bookmark();
            set.moveNext();
            const std::string third = title(set);
            set.setBookmark(second);
            set.remove();
            EXPECT_EQ(CodeOf([&] { set.value(u"Title"); }), ErrorNumber::RecordDeleted);
            EXPECT_EQ(CodeOf([&] { set.remove(); }), ErrorNumber::RecordDeleted);
            set.moveNext();
            EXPECT_EQ(title(set), third);
            set.movePrevious();
            EXPECT_EQ(set.bookmark(), firstMark);
            while (!set.eof()) {
                set.remove();
                set.moveNext();
            }
            EXPECT_TRUE(set.bof() && set.eof());
            EXPECT_EQ(set.recordCount(), 0u);
            EXPECT_EQ(CodeOf([&] { set.setBookmark(second); }), ErrorNumber::NoCurrentRecord);
        }
}

TEST_F(RecordsetTest, QueriesGiveDynasetsAndSnapshots) {
    addFive();
    const std::u16string query = u"SELECT Title, Year FROM Songs WHERE Year = 1980 ORDER BY Title DESC";
    Recordset dynaset = Recordset::open(database_, query, Recordset::Kind::Dynaset);
    Recordset snapshot = Recordset::open(database_, query, Recordset::Kind::Snapshot);
    EXPECT_EQ(all(dynaset), "Émile emil Apfel ");
    EXPECT_EQ(all(snapshot, true), "Apfel emil Émile ");
    EXPECT_EQ(dynaset.fieldCount(), 2);
    EXPECT_EQ(CodeOf([&] { dynaset.setIndex(u"Main"); }), ErrorNumber::InvalidArgument);
    EXPECT_EQ(CodeOf([&] { snapshot.addNew(); }), ErrorNumber::CannotUpdateReadOnly);
    EXPECT_FALSE(snapshot.updatable());

    // A dynaset sees others' changes to its rows, and none of their new ones; a snapshot sees neither.
    add("New", 1980);
    Recordset other = songs();
    other.setIndex(u"Main");
    other.seek(SeekComparison::Equal, u"Apfel");
    other.edit();
    other.set(u"Title", u"Birne");
    other.update();
    other.seek(SeekComparison::Equal, u"emil");
    other.remove();
    EXPECT_EQ(all(dynaset), "Émile Birne ");
    EXPECT_EQ(all(snapshot), "Émile emil Apfel ");
    dynaset.addNew();
    dynaset.set(u"Title", u"Own");
    dynaset.update();
    EXPECT_EQ(all(dynaset), "Émile Birne Own ");
    dynaset.moveFirst();
    dynaset.edit();
    dynaset.set(u"Title", u"Emilia");
    dynaset.update();
    EXPECT_EQ(all(dynaset), "Emilia Birne Own ");
    EXPECT_EQ(
        CodeOf([&] { Recordset::open(database_, u"SELECT None FROM Songs", Recordset::Kind::Dynaset); }),
        ErrorNumber::UnknownField);
}

TEST_F(RecordsetTest, FindsByCriteria) {
    addFive();
    for (const auto kind : {Recordset::Kind::Table, Recordset::Kind::Dynaset, Recordset::Kind::Snapshot}) {
        Recordset set = songs(kind);
        set.findFirst(u"Title=\"apfel\"");
        EXPECT_FALSE(set.noMatch());
        EXPECT_EQ(title(set), "Apfel");
        set.findFirst(u"Year = 1980");
        EXPECT_EQ(title(set), "Émile");
        set.findNext(u"Year = 1980");
        EXPECT_EQ(title(set), "Apfel");
        set.findLast(u"Title LIKE '*e'");
        EXPECT_EQ(title(set), "apple");
        set.findNext(u"Title = 'Zoo'");
        EXPECT_TRUE(set.noMatch());
        EXPECT_EQ(title(set), "apple");
        set.findPrevious(u"Title = 'Zoo'");
        EXPECT_EQ(title(set), "Zoo");
        EXPECT_EQ(CodeOf([&] { set.findFirst(u"Title ="); }), ErrorNumber::SyntaxError);
    }
}

// Two users of one file.
TEST_F(RecordsetTest, RefusesToOverwriteWhatOthersChanged) {
    addFive();
    Database second = Database::open(storage_, Path);
    Recordset mine = songs();
    Recordset theirs = Recordset::open(second, u"Songs");
    mine.setIndex(u"Main");
    theirs.setIndex(u"Main");
    mine.seek(SeekComparison::Equal, u"Zoo");
    theirs.seek(SeekComparison::Equal, u"Zoo");
    mine.edit();
    mine.set(u"Year", 1);
    theirs.edit();
    theirs.set(u"Note", std::u16string(100, u'x'));
    theirs.update();
    EXPECT_EQ(CodeOf([&] { mine.update(); }), ErrorNumber::RecordChanged);
    mine.edit(); // sees the change
    mine.set(u"Year", 2);
    mine.update();
    EXPECT_EQ(theirs.value(u"Note"), Value(std::u16string(100, u'x')));

    // Only a memo, of the same length, in a place that was free again.
    mine.edit();
    theirs.edit();
    theirs.set(u"Note", std::u16string(100, u'y'));
    theirs.update();
    mine.set(u"Year", 3);
    EXPECT_EQ(CodeOf([&] { mine.update(); }), ErrorNumber::RecordChanged);

    // Values stay as read until the recordset moves; a removed row is reported.
    EXPECT_EQ(mine.value(u"Year"), Value(std::int16_t{3}));
    mine.cancelUpdate();
    EXPECT_EQ(mine.value(u"Year"), Value(std::int16_t{2}));
    theirs.remove();
    EXPECT_EQ(mine.value(u"Year"), Value(std::int16_t{2}));
    EXPECT_EQ(CodeOf([&] { mine.edit(); }), ErrorNumber::RecordDeleted);
    EXPECT_EQ(CodeOf([&] { mine.remove(); }), ErrorNumber::RecordDeleted);
    mine.movePrevious();
    EXPECT_EQ(title(mine), "Émile");
}

} // namespace
} // namespace jet::tests
