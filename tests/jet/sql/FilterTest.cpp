// Which rows SELECT, UPDATE and DELETE select: the same with an index and without, in the order of comparing
// values, all changes or none.
#include "jet/sql/Filter.h"
#include "jet/Database.h"
#include "jet/base/Error.h"
#include "jet/pager/MemoryPager.h"
#include "jet/sql/Execute.h"
#include "jet/table/CreateDatabase.h"
#include "jet/table/TableDesign.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <random>

#include <unistd.h>

using namespace std::string_view_literals;

namespace jet {
namespace {

const TableDesign carts = {
    u"Carts",
    {{u"Number", ColumnType::Long},
     {u"Title", ColumnType::Text, 40, false, false, true},
     {u"Plays", ColumnType::Integer},
     {u"Length", ColumnType::Double},
     {u"Live", ColumnType::Boolean},
     {u"Added", ColumnType::DateTime},
     {u"Fee", ColumnType::Currency}},
    {{u"Main", {{u"Number"}}, true, true},
     {u"ByTitle", {{u"Title"}, {u"Plays", true}}},
     {u"ByPlays", {{u"Plays", true}}},
     {u"ByAdded", {{u"Added"}, {u"Fee"}}, false, false, false, true}},
    {},
};

class FilterTest : public ::testing::Test {
protected:
    FilterTest() {
        AppendTable(catalog_, carts);
        Table table = catalog_.table(u"Carts");
        const char16_t* titles[] = {u"Ärger", u"arger", u"co-op", u"coop", u"Zulu", u"zulu", u"", u"Straße"};
        for (std::int32_t i = 0; i < 600; ++i) {
            std::vector<Value> row(carts.fields.size());
            row[0] = i;
            const auto set = [&](std::size_t column, Value value) {
                if (random_() % 6 != 0)
                    row[column] = std::move(value);
            };
            set(1, std::u16string(titles[random_() % std::size(titles)]));
            set(2, static_cast<std::int16_t>(random_() % 21));
            set(3, static_cast<double>(random_() % 40) / 4);
            row[4] = random_() % 2 == 0;
            set(5, Date{static_cast<double>(random_() % 30)});
            set(6, Currency{static_cast<std::int64_t>(random_() % 10) * 5000});
            table.insert(row);
        }
    }

    std::vector<RowPointer> walk(const std::u16string& where) {
        const Table table = catalog_.table(u"Carts");
        const Predicate predicate(table.definition(), table.name(), sql::ParsePredicate(where));
        TableRow values(table);
        std::vector<RowPointer> rows;
        RowPointer at;
        for (RowView row; table.next(at, row);) {
            values.moveTo(row);
            if (predicate.chooses(values))
                rows.push_back(at);
        }
        return rows;
    }
    std::vector<Value> column(const std::u16string& sql, int position) {
        const auto select = std::get<sql::Select>(sql::ParseStatement(sql));
        const Table table = catalog_.table(select.table);
        std::vector<Value> values;
        Filter(table, select).forEach([&](RowPointer, const RowView& row) {
            table.value(row, position, values.emplace_back());
            return true;
        });
        return values;
    }
    std::size_t pick(std::size_t count) { return random_() % count; }

    std::mt19937 random_{7};
    MemoryPager pager_{FreshDatabase(LocalTime())};
    Catalog catalog_{pager_};
};

// Random predicates over indexed columns: an index must neither lose a row nor add a wrong one.
TEST_F(FilterTest, IndexAndWalkAgree) {
    const std::vector<std::u16string> fields = {u"Number", u"Title", u"Plays", u"Length",
                                                u"Live",   u"Added", u"Fee"};
    const std::vector<std::vector<std::u16string>> literals = {
        {u"17", u"17.5", u"-1", u"1e9", u"599"},
        {u"'ärger'", u"'COOP'", u"'co-op'", u"'zulu  '", u"''", u"'strasse'", u"'ba'", u"'漢'"},
        {u"3", u"0", u"70000", u"19", u"2.5"},
        {u"2.25", u"7"},
        {u"TRUE", u"FALSE", u"-1", u"1"},
        {u"#1/5/1900#", u"#1899-12-30#", u"12", u"5.5"},
        {u"1.5", u"0", u"4.00001"}};
    const std::vector<std::u16string> patterns = {u"'ä*'",   u"'CO*'", u"'co-*'", u"'?ulu*'",      u"'zu*u'",
                                                  u"'zulu'", u"'*'",   u"''",     u"'stra[r-ß]*'", u"'漢*'"};
    const std::vector<std::u16string> signs = {u"=", u"<>", u"<", u"<=", u">", u">="};
    const Table table = catalog_.table(u"Carts");
    int byIndex = 0;
    for (int i = 0; i < 1500; ++i) {
        std::u16string where;
        for (std::size_t parts = pick(3) + 1; parts > 0; --parts) {
            const std::size_t field = pick(fields.size());
            const auto literal = [&] { return literals[field][pick(literals[field].size())]; };
            if (!where.empty())
                where += pick(5) == 0 ? u" OR " : u" AND ";
            const std::u16string& pattern = patterns[pick(patterns.size())];
            switch (pick(8)) {
            case 7:
                where +=
                    fields[field] + u" IN (" + literal() + u", NULL, " + literal() + u", " + literal() + u")";
                break;
            case 6:
                where += u"Title LIKE " + pattern;
                break;
            case 0:
                where += fields[field] + u" IS NULL";
                break;
            case 1:
                where += fields[field] + u" BETWEEN " + literal() + u" AND " + literal();
                break;
            case 2:
                where += literal() + u" " + signs[pick(6)] + u" " + fields[field];
                break;
            default:
                where += fields[field] + u" " + signs[pick(6)] + u" " + literal();
            }
        }
        const Filter filter(table, sql::ParsePredicate(where));
        byIndex += filter.index() ? 1 : 0;
        std::vector<RowPointer> rows = filter.rows();
        std::sort(rows.begin(), rows.end());
        ASSERT_EQ(rows, walk(where)) << ToUtf8(where);
    }
    EXPECT_GT(byIndex, 500);
    const auto chosen = [&](const char16_t* where) {
        const auto range = Filter(table, sql::ParsePredicate(where)).index();
        return range ? range->realIndex : -1;
    };
    EXPECT_EQ(chosen(u"Title = 'x' AND Number = 5"), 0);
    EXPECT_EQ(chosen(u"Plays = 5 AND Title = 'x'"), 1);
    EXPECT_EQ(chosen(u"Plays > 5"), 2);
    EXPECT_EQ(chosen(u"Length = 5"), -1);
    EXPECT_EQ(chosen(u"Title LIKE 'x*'"), 1);
    EXPECT_EQ(chosen(u"Title LIKE '*x'"), -1);
    EXPECT_EQ(chosen(u"Title IN ('x', 'y') AND Plays = 3"), 1);
    EXPECT_EQ(chosen(u"Number IN (1, NULL, 2)"), 0);
    EXPECT_EQ(chosen(u"Number IN (1, 2.5)"), -1);
    EXPECT_EQ(chosen(u"Number IN (1, Plays)"), -1);
    EXPECT_EQ(chosen(u"Added IS NULL"), -1); // that index has no entries for nulls
}

TEST_F(FilterTest, SortsAsValuesCompare) {
    for (const auto& [name, position] :
         {std::pair(u"Title", 1), std::pair(u"Plays", 2), std::pair(u"Length", 3)}) {
        for (const bool descending : {false, true}) {
            const std::vector<Value> values = column(std::u16string(u"SELECT * FROM Carts ORDER BY ") + name +
                                                         (descending ? u" DESC" : u""),
                                                     position);
            ASSERT_EQ(values.size(), 600u);
            for (std::size_t i = 1; i < values.size(); ++i) {
                const Value& low = descending ? values[i] : values[i - 1];
                const Value& high = descending ? values[i - 1] : values[i];
                ASSERT_TRUE(IsNull(low) || (!IsNull(high) && CompareValues(low, high) <= 0)) << i;
            }
        }
    }
    const std::vector<Value> second =
        column(u"SELECT * FROM Carts WHERE Title = 'zulu' ORDER BY Plays DESC, Number", 0);
    EXPECT_GT(second.size(), 20u);
}

// Texts of letters, accents, and signs that hardly count or do not
// count: two texts that begin alike in one way may have keys that do
// not. The same rows are in a table with indexes and in one without.
TEST_F(FilterTest, IndexesServeLikeAndOrder) {
    const std::vector<FieldDesign> fields = {{u"Id", ColumnType::Long},
                                             {u"Name", ColumnType::Text, 40, false, false, true},
                                             {u"Size", ColumnType::Integer}};
    AppendTable(catalog_, {u"Plain", fields, {}, {}});
    AppendTable(
        catalog_,
        {u"Indexed", fields, {{u"ByName", {{u"Name", true}}}, {u"BySize", {{u"Size"}, {u"Name"}}}}, {}});
    Table plain = catalog_.table(u"Plain");
    Table indexed = catalog_.table(u"Indexed");
    constexpr std::u16string_view letters = u"aAbBäÄáßsS-'  \x301\xAD\0e1æ"sv;
    std::vector<std::u16string> names;
    for (std::int32_t i = 0; i < 700; ++i) {
        std::u16string name(pick(6), u' ');
        for (char16_t& letter : name)
            letter = letters[pick(letters.size())];
        names.push_back(name);
        std::vector<Value> row{i, pick(9) == 0 ? Value{} : Value(name), static_cast<std::int16_t>(pick(5))};
        plain.insert(row);
        indexed.insert(row);
    }
    int walks = 0;
    int ranges = 0;
    const auto agree = [&](const std::u16string& rest, bool sorted) {
        const auto ids = [&](const Table& table, const sql::Select& select) {
            std::vector<std::int32_t> found;
            Value id;
            const Filter filter(table, select);
            walks += filter.sorts() || select.order.empty() ? 0 : 1;
            ranges += filter.index() ? 1 : 0;
            filter.forEach([&](RowPointer, const RowView& row) {
                table.value(row, 0, id);
                found.push_back(std::get<std::int32_t>(id));
                return true;
            });
            if (!sorted)
                std::sort(found.begin(), found.end());
            return found;
        };
        const auto select = std::get<sql::Select>(sql::ParseStatement(u"SELECT * FROM Plain " + rest));
        EXPECT_EQ(ids(plain, select), ids(indexed, select)) << ToUtf8(rest);
    };
    for (int i = 0; i < 400; ++i) {
        std::u16string start = names[pick(names.size())];
        start.resize(std::min(start.size(), 1 + pick(4)));
        for (std::size_t at = 0; at < start.size(); ++at) {
            if (start[at] == u'\'')
                start.insert(at++, 1, u'\'');
            else if (start[at] < 0x80 && std::isalpha(start[at]) != 0)
                start[at] = static_cast<char16_t>(start[at] ^ (pick(2) * 0x20));
        }
        agree(u"WHERE Name LIKE '" + start + u"*'", false);
        agree(u"WHERE Size IN (3, 1) AND Name LIKE '" + start + u"*'", false);
        agree(u"WHERE Name LIKE '" + start + u"*' ORDER BY Name" + (pick(2) == 0 ? u" DESC" : u""), true);
    }
    for (const char16_t* order :
         {u"Name", u"Name DESC", u"Size, Name", u"Size DESC, Name DESC", u"Size, Name DESC"})
        for (const char16_t* where : {u"", u"WHERE Size IN (4, 2, 2) ", u"WHERE Size > 2 "})
            agree(std::u16string(where) + u"ORDER BY " + order, true);
    EXPECT_GT(ranges, 1100);
    EXPECT_EQ(walks, 400 + 2 + 3 * 2);
}

TEST_F(FilterTest, ChangesRows) {
    EXPECT_EQ(Execute(catalog_, u"INSERT INTO carts (Number, Title) VALUES (1000, \"O'Neil\")"), 1u);
    EXPECT_EQ(column(u"SELECT * FROM Carts WHERE Title = 'O''NEIL'", 0),
              std::vector<Value>{std::int32_t{1000}});
    const auto zulu = static_cast<std::uint32_t>(walk(u"Title = 'zulu'").size());
    // Moves the rows within the index that finds them.
    EXPECT_EQ(Execute(catalog_, u"UPDATE Carts SET Title = 'zulu2', Plays = NULL WHERE Title = 'zulu'"),
              zulu);
    EXPECT_EQ(Execute(catalog_, u"UPDATE Carts SET Plays = Number WHERE Number < 10"), 10u);
    EXPECT_EQ(column(u"SELECT * FROM Carts WHERE Number = 7", 2), std::vector<Value>{std::int16_t{7}});
    EXPECT_EQ(Execute(catalog_, u"DELETE FROM Carts WHERE Title = 'zulu2'"), zulu);
    EXPECT_EQ(catalog_.table(u"Carts").rowCount(), 601 - zulu);

    const auto errorOf = [&](std::u16string_view sql) {
        try {
            Execute(catalog_, sql);
        } catch (const Error& error) {
            return error.number();
        }
        return 0;
    };
    EXPECT_EQ(errorOf(u"DELETE FROM Nowhere"), 3078);
    EXPECT_EQ(errorOf(u"UPDATE Carts SET Nothing = 1"), 3061);
    EXPECT_EQ(errorOf(u"INSERT INTO Carts VALUES (1)"), 3075);
    EXPECT_EQ(errorOf(u"INSERT INTO Carts (Number) VALUES (1000)"), 3022);
    EXPECT_EQ(errorOf(u"SELECT * FROM Carts"), 3001);
}

// An UPDATE that fails half-way leaves every row unchanged.
TEST(ExecuteTest, LeavesNothingHalfDone) {
    const auto folder =
        std::filesystem::temp_directory_path() / ("tolvex-execute-test-" + std::to_string(::getpid()));
    std::filesystem::remove_all(folder);
    std::filesystem::create_directories(folder);
    {
        Database database = Database::create((folder / "a.mdb").string());
        AppendTable(database.catalog(), carts);
        for (int i = 0; i < 50; ++i)
            Execute(database.catalog(), u"INSERT INTO Carts (Number, Plays) VALUES (" +
                                            ToUtf16(std::to_string(i)) + u", " +
                                            ToUtf16(std::to_string(i == 30 ? 100 : 100 + i)) + u")");
        EXPECT_THROW(Execute(database.catalog(), u"UPDATE Carts SET Number = Plays"), Error);
        EXPECT_THROW(Execute(database.catalog(), u"UPDATE Carts SET Number = 7 WHERE Number > 40"), Error);
        const Table table = database.catalog().table(u"Carts");
        EXPECT_EQ(Filter(table, sql::ParsePredicate(u"Number BETWEEN 0 AND 49")).rows().size(), 50u);
    }
    std::filesystem::remove_all(folder);
}

} // namespace
} // namespace jet
