// What a WHERE selects, over rows in memory: three-valued logic, kinds, LIKE, dates, and the errors that
// programs distinguish.
#include "jet/sql/Predicate.h"
#include "jet/base/Error.h"
#include "jet/text/Collation.h"
#include "jet/text/DateText.h"

#include <gtest/gtest.h>

namespace jet {
namespace {

struct MemoryRow final : RowValues {
    std::vector<Value> values;
    const Value& value(int column) override { return values[static_cast<std::size_t>(column)]; }
};

class PredicateTest : public ::testing::Test {
protected:
    PredicateTest() {
        const std::pair<const char16_t*, ColumnType> columns[] = {
            {u"Name", ColumnType::Text},       {u"Plays", ColumnType::Long},
            {u"Live", ColumnType::Boolean},    {u"Price", ColumnType::Currency},
            {u"On Air", ColumnType::DateTime}, {u"Gain", ColumnType::Double},
            {u"Cover", ColumnType::Ole},       {u"Missing", ColumnType::Memo},
        };
        for (const auto& [name, type] : columns) {
            Column column;
            column.name = name;
            column.type = type;
            definition.columns.push_back(column);
        }
        row.values = {std::u16string(u"Café O'Neil*"),
                      std::int32_t{42},
                      true,
                      Currency{15000},
                      *MakeDate({2001, 1, 31, 18.5 * 3600}),
                      0.5,
                      Bytes{1},
                      Value{}};
    }
    Truth ask(std::u16string_view predicate) {
        return Predicate(definition, u"Carts", sql::ParsePredicate(predicate)).evaluate(row);
    }
    int errorOf(std::u16string_view predicate) {
        try {
            ask(predicate);
        } catch (const Error& error) {
            return error.number();
        }
        return 0;
    }

    TableDefinition definition;
    MemoryRow row;
};

TEST_F(PredicateTest, ChoosesRows) {
    for (const char16_t* yes : {
             u"Name = 'CAFÉ o''neil*'",
             u"name = \"café O'Neil*  \"",
             u"Name <> 'Cafe O''Neil*' AND Name > 'Cafe'",
             u"Plays = 42 and PLAYS < 42.5 And 41 < Plays",
             u"Carts.Plays >= +42 AND [carts].[Plays] <= 42",
             u"Live AND Live = TRUE AND Live = -1 AND NOT Live = 0",
             u"Price = 1.5 AND Price BETWEEN 1 AND 1.5",
             u"[On Air] = #1/31/2001 6:30 PM# AND [On Air] = #2001-01-31 18:30:00#",
             u"[On Air] > #1/31/2001# AND [On Air] < #2/1/01#",
             u"Plays IN (1, NULL, 42) AND NOT (Plays IN (1, 2))",
             u"Plays NOT BETWEEN 50 AND 60",
             u"Missing IS NULL AND NOT Missing IS NOT NULL AND Cover IS NOT NULL",
             u"Plays = 1 OR Plays = 2 OR Plays = 42 AND Gain = 5e-1",
             u"(Plays = 42) = (Gain = .5)",
             u"Name LIKE 'caf? *' AND Name LIKE '*[*]' AND NOT Name LIKE 'Cafe*'",
             u"Name NOT LIKE '[!a-d]*' AND Name LIKE '[x-zC]*neil?'",
             u"Plays LIKE '4#' AND Plays LIKE '*'",
         })
        EXPECT_EQ(ask(yes), Truth::True) << ToUtf8(yes);
}

// A comparison with null is neither true nor false, and neither is anything derived from it.
TEST_F(PredicateTest, NullIsUnknown) {
    for (const char16_t* unknown :
         {u"Missing = 'x'", u"NOT Missing = 'x'", u"Missing = NULL", u"NULL", u"Missing LIKE '*'",
          u"Missing = 'x' OR Plays = 1", u"Missing = 'x' AND Plays = 42", u"Plays IN (1, NULL)",
          u"Plays NOT IN (1, NULL)", u"Plays BETWEEN NULL AND 50", u"Plays BETWEEN 1 AND NULL"})
        EXPECT_EQ(ask(unknown), Truth::Unknown) << ToUtf8(unknown);
    EXPECT_EQ(ask(u"Missing = 'x' OR Plays = 42"), Truth::True);
    EXPECT_EQ(ask(u"Missing = 'x' AND Plays = 1"), Truth::False);
    EXPECT_EQ(ask(u"Plays BETWEEN 50 AND NULL"), Truth::False);
    EXPECT_EQ(ask(u"Plays BETWEEN NULL AND 41"), Truth::False);
}

TEST_F(PredicateTest, TellsErrorsApart) {
    for (const char16_t* syntax : {u"",
                                   u"Plays =",
                                   u"Plays = = 1",
                                   u"Name = 'open",
                                   u"[Plays = 1",
                                   u"Plays NOT 1",
                                   u"Plays = 1 1",
                                   u"(Plays = 1",
                                   u"Plays = 1)",
                                   u"[On Air] = #31/31/2001#",
                                   u"[On Air] = #2001-02-29#",
                                   u"Plays = 1x",
                                   u"Plays = 1e999",
                                   u"Plays IN ()",
                                   u"Name LIKE '[a'",
                                   u"Name LIKE '[z-a]'",
                                   u"-Name = 'x'",
                                   u"Plays ; 1",
                                   u"[On Air] = #13:00 PM#",
                                   u"Name = -'x'"})
        EXPECT_EQ(errorOf(syntax), 3075) << ToUtf8(syntax);
    EXPECT_EQ(errorOf(u"Nothing = 1"), 3061);
    EXPECT_EQ(errorOf(u"Other.Plays = 1"), 3061);
    for (const char16_t* mismatch : {u"Plays = '42'", u"Name > 5", u"Name AND Live", u"Cover = 'x'", u"Name",
                                     u"Cover LIKE 'x'", u"Name LIKE 5", u"[On Air] = '2001'", u"NOT 'x'"})
        EXPECT_EQ(errorOf(mismatch), 3464) << ToUtf8(mismatch);
}

// Nesting is refused before it exhausts the stack; long chains and lists are not nesting.
TEST_F(PredicateTest, BoundsNesting) {
    const std::u16string open(20000, u'(');
    EXPECT_EQ(errorOf(open), 3075);
    std::u16string nots;
    std::u16string chain = u"Plays = 1";
    for (int i = 0; i < 4000; ++i) {
        nots += u"NOT ";
        chain += u" OR Plays=1";
    }
    EXPECT_EQ(errorOf(nots + u"Live"), 3075);
    EXPECT_EQ(ask(chain + u" OR Live"), Truth::True);
    EXPECT_EQ(ask(std::u16string(90, u'(') + u"Live" + std::u16string(90, u')')), Truth::True);
    EXPECT_EQ(errorOf(std::u16string(70000, u' ')), 3075);
}

TEST(SqlTest, ReadsStatements) {
    const auto select = std::get<sql::Select>(sql::ParseStatement(
        u"select [Item], Carts.Value from [My Carts] where a = 1 order by Item desc, [Value] asc, c;"));
    EXPECT_EQ(select.fields, (std::vector<std::u16string>{u"Item", u"Value"}));
    EXPECT_EQ(select.table, u"My Carts");
    ASSERT_EQ(select.order.size(), 3u);
    EXPECT_TRUE(select.order[0].descending);
    EXPECT_FALSE(select.order[1].descending || select.order[2].descending);

    const auto insert =
        std::get<sql::Insert>(sql::ParseStatement(u"INSERT INTO T (a, b) VALUES (-2147483648, 'x')"));
    EXPECT_EQ(insert.values[0].literal, Value(-2147483648.0));
    const auto update = std::get<sql::Update>(sql::ParseStatement(u"UPDATE T SET a = NULL, b = [c]"));
    EXPECT_EQ(update.assignments[1].value.field, u"c");
    EXPECT_FALSE(update.where);
    EXPECT_TRUE(std::get<sql::Delete>(sql::ParseStatement(u"DELETE * FROM T WHERE NOT a")).where);

    for (const char16_t* bad :
         {u"SELECT FROM T", u"SELECT * T", u"SELECT * FROM T WHERE", u"SELECT a,, b FROM T", u"DROP TABLE T",
          u"INSERT INTO T (a) VALUES (1, 2)", u"INSERT INTO T VALUES (a)", u"UPDATE T SET a", u"DELETE T",
          u"SELECT * FROM T ORDER a", u"SELECT * FROM T; SELECT * FROM T", u"SELECT * FROM select"})
        EXPECT_THROW(sql::ParseStatement(bad), Error) << ToUtf8(bad);
}

// A character of a pattern matches its equals in text order, but a blank only itself.
TEST(LikeTest, ComparesEveryPairOfCharacters) {
    for (char16_t a = 0; a < 0x180; ++a) {
        if (std::u16string_view(u"*?#[").find(a) != std::u16string_view::npos)
            continue;
        const LikePattern pattern({&a, 1});
        for (char16_t b = 0; b < 0x180; ++b) {
            const bool blank = a == u' ' || b == u' ';
            ASSERT_EQ(pattern.matches({&b, 1}), blank ? a == b : CompareTexts({&a, 1}, {&b, 1}) == 0)
                << static_cast<int>(a) << ' ' << static_cast<int>(b);
        }
    }
}

} // namespace
} // namespace jet
