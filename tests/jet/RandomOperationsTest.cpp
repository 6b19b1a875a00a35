// A database against a map in memory: random rows are added, changed and removed, in transactions that are
// committed or rolled back, across sessions, through a cache much smaller than the file. After each batch
// every index is walked both ways and the whole file is checked. TOLVEX_JET_BATCHES makes it run longer.
#include "jet/Check.h"
#include "jet/Database.h"
#include "jet/FaultyStorage.h"
#include "jet/NewDatabase.h"
#include "jet/Recordset.h"
#include "jet/base/Error.h"
#include "jet/table/TableDesign.h"
#include "jet/text/Collation.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <map>

namespace jet::tests {
namespace {

constexpr char Path[] = "/data/MODEL.MDB";

// Fields in the order of the table.
enum Field { Id, Name, Code, When, Flag, Amount, Note, FieldCount };

using Row = std::vector<Value>;
using Model = std::map<std::int32_t, Row>;

TableDesign tableDesign() {
    TableDesign design;
    design.name = u"Model";
    design.fields = {FieldOf(u"Id", ColumnType::Long),        FieldOf(u"Name", ColumnType::Text, 60),
                     FieldOf(u"Code", ColumnType::Text, 255), FieldOf(u"When", ColumnType::DateTime),
                     FieldOf(u"Flag", ColumnType::Boolean),   FieldOf(u"Amount", ColumnType::Currency),
                     FieldOf(u"Note", ColumnType::Memo)};
    design.indexes = {{.name = u"Main", .fields = {{u"Id"}}, .unique = true, .primary = true},
                      {.name = u"ByName", .fields = {{u"Name"}, {u"Id", true}}},
                      {.name = u"ByCode", .fields = {{u"Code"}}, .unique = true},
                      {.name = u"ByWhen", .fields = {{u"When", true}, {u"Amount"}}, .ignoreNulls = true},
                      {.name = u"ByNote", .fields = {{u"Flag", true}, {u"Note"}}}};
    return design;
}

int compare(const Value& a, const Value& b) {
    if (IsNull(a) || IsNull(b))
        return static_cast<int>(IsNull(b)) - static_cast<int>(IsNull(a));
    if (const auto* text = std::get_if<std::u16string>(&a)) {
        const auto indexed = [](std::u16string_view whole) { return whole.substr(0, IndexedTextLength); };
        return CompareTexts(indexed(*text), indexed(std::get<std::u16string>(b)));
    }
    if (const auto* flag = std::get_if<bool>(&a)) // true comes first
        return static_cast<int>(std::get<bool>(b)) - static_cast<int>(*flag);
    if (const auto* date = std::get_if<Date>(&a))
        return date->days < std::get<Date>(b).days ? -1 : date->days > std::get<Date>(b).days;
    if (const auto* money = std::get_if<Currency>(&a)) {
        const auto other = std::get<Currency>(b).tenThousandths;
        return money->tenThousandths < other ? -1 : money->tenThousandths > other;
    }
    return std::get<std::int32_t>(a) < std::get<std::int32_t>(b)
               ? -1
               : std::get<std::int32_t>(a) > std::get<std::int32_t>(b);
}

struct Order {
    const char16_t* index;
    std::vector<std::pair<Field, bool>> fields; // true: descending
    bool skipsNulls = false;
};

const std::vector<Order> orders = {{u"Main", {{Id, false}}},
                                   {u"ByName", {{Name, false}, {Id, true}}},
                                   {u"ByCode", {{Code, false}}},
                                   {u"ByWhen", {{When, true}, {Amount, false}}, true},
                                   {u"ByNote", {{Flag, true}, {Note, false}}}};

class RandomOperations : public testing::TestWithParam<std::uint32_t> {
protected:
    RandomOperations() { AppendTable(database_->catalog(), tableDesign()); }

    static OpenOptions options() {
        OpenOptions small;
        small.cachePages = 256;
        small.logPages = 300;
        return small;
    }
    std::uint32_t below(std::size_t limit) { return random_() % static_cast<std::uint32_t>(limit); }
    bool chance(std::size_t oneIn) { return below(oneIn) == 0; }

    std::u16string text(std::size_t longest) {
        static const std::u16string letters = u"aaabcdeEfghiklmnorstuÄöüéßŒ- '1279.€";
        std::u16string made(below(longest + 1), u' ');
        for (char16_t& unit : made)
            unit = letters[below(letters.size())];
        return made;
    }
    Value anyValue(int field) {
        if (chance(6) && field != Id)
            return field == Flag ? Value(false) : Value();
        switch (field) {
        case Id:
            return static_cast<std::int32_t>(below(3000)) - 1000;
        case Name:
            return chance(4) ? u"Müller-Lüdenscheidt, Überländer " + text(20) : text(60);
        case Code:
            return text(chance(8) ? 255 : 12);
        case When:
            return Date{below(4000) / 4.0 - 200};
        case Flag:
            return chance(2);
        case Amount:
            return Currency{static_cast<std::int64_t>(below(100)) - 50};
        default:
            return text(chance(10) ? 9000 : chance(3) ? 900 : 60);
        }
    }
    bool conflicts(const Row& row, const Row* own) const {
        return std::any_of(model_.begin(), model_.end(), [&](const auto& other) {
            return &other.second != own &&
                   (compare(other.second[Id], row[Id]) == 0 ||
                    (!IsNull(row[Code]) && compare(other.second[Code], row[Code]) == 0));
        });
    }
    // Saves; this must fail exactly if the row conflicts with another.
    void save(Recordset& set, bool conflict) {
        try {
            set.update();
            EXPECT_FALSE(conflict);
        } catch (const Error& error) {
            EXPECT_TRUE(conflict && error.code() == ErrorNumber::DuplicateKey) << error.what();
            set.cancelUpdate();
        }
    }

    void insertRow(Recordset& set) {
        Row row(FieldCount);
        set.addNew();
        for (int field = 0; field < FieldCount; ++field) {
            row[static_cast<std::size_t>(field)] = anyValue(field);
            set.set(field, row[static_cast<std::size_t>(field)]);
        }
        const bool conflict = conflicts(row, nullptr);
        save(set, conflict);
        if (!conflict)
            model_[std::get<std::int32_t>(row[Id])] = row;
    }
    Model::iterator seekAny(Recordset& set) {
        auto at = model_.lower_bound(static_cast<std::int32_t>(below(3000)) - 1000);
        if (at == model_.end())
            at = model_.begin();
        set.setIndex(u"Main");
        set.seek(SeekComparison::Equal, Value(at->first));
        EXPECT_FALSE(set.noMatch());
        return at;
    }
    void changeRow(Recordset& set) {
        const auto at = seekAny(set);
        if (chance(3)) {
            set.setIndex(orders[below(orders.size())].index);
            set.findFirst(u"Id = " + ToUtf16(std::to_string(at->first)));
            if (set.noMatch()) // the index leaves rows out
                return;
        }
        Row row = at->second;
        set.edit();
        for (std::size_t count = 1 + below(3); count > 0; --count) {
            const int field = static_cast<int>(below(FieldCount));
            row[static_cast<std::size_t>(field)] = anyValue(field);
            set.set(field, row[static_cast<std::size_t>(field)]);
        }
        const bool conflict = conflicts(row, &at->second);
        save(set, conflict);
        if (conflict)
            return;
        for (int field = 0; field < FieldCount; ++field)
            EXPECT_EQ(set.value(field), row[static_cast<std::size_t>(field)]);
        model_.erase(at);
        model_[std::get<std::int32_t>(row[Id])] = row;
    }
    void removeRow(Recordset& set) {
        const auto at = seekAny(set);
        set.remove();
        const auto next = model_.erase(at);
        if (chance(2)) {
            set.moveNext();
            ASSERT_EQ(set.eof(), next == model_.end());
            if (!set.eof()) {
                EXPECT_EQ(set.value(Id), Value(next->first));
            }
        }
    }
    void seekRow(Recordset& set) {
        const std::int32_t id = static_cast<std::int32_t>(below(3200)) - 1100;
        const auto from = model_.lower_bound(id);
        const auto past = model_.upper_bound(id);
        const auto expect = [&](SeekComparison comparison, Model::const_iterator at, bool some) {
            set.seek(comparison, Value(id));
            ASSERT_EQ(set.noMatch(), !some);
            if (some) {
                for (int field = 0; field < FieldCount; ++field)
                    ASSERT_EQ(set.value(field), at->second[static_cast<std::size_t>(field)]);
            }
        };
        set.setIndex(u"Main");
        expect(SeekComparison::Equal, from, from != past);
        expect(SeekComparison::GreaterOrEqual, from, from != model_.end());
        expect(SeekComparison::Greater, past, past != model_.end());
        expect(SeekComparison::Less, from == model_.begin() ? from : std::prev(from), from != model_.begin());
        expect(SeekComparison::LessOrEqual, past == model_.begin() ? past : std::prev(past),
               past != model_.begin());
    }
    void operate(int count) {
        Recordset set = Recordset::open(*database_, u"Model");
        for (int i = 0; i < count; ++i) {
            const std::uint32_t what = model_.empty() ? 0 : below(100);
            if (what < growing_)
                insertRow(set);
            else if (what < 60)
                changeRow(set);
            else if (what < 90)
                removeRow(set);
            else
                seekRow(set);
        }
    }
    void batch() {
        growing_ = 25 + below(25);
        if (chance(3))
            return operate(60);
        const Model before = model_;
        database_->beginTransaction();
        operate(60);
        if (chance(3)) {
            const Model inner = model_;
            database_->beginTransaction();
            operate(30);
            if (chance(2)) {
                database_->commit();
            } else {
                database_->rollback();
                model_ = inner;
            }
            operate(10);
        }
        if (chance(4)) {
            database_->rollback();
            model_ = before;
        } else {
            database_->commit();
        }
    }

    // The rows of an index match the model, in its order, forwards and backwards.
    void walk(Recordset& set, const Order& order) {
        set.setIndex(order.index);
        std::vector<std::int32_t> ids;
        Row before;
        for (; !set.eof(); set.moveNext()) {
            Row row(FieldCount);
            for (int field = 0; field < FieldCount; ++field)
                row[static_cast<std::size_t>(field)] = set.value(field);
            const auto found = model_.find(std::get<std::int32_t>(row[Id]));
            ASSERT_TRUE(found != model_.end() && found->second == row);
            int way = 0;
            for (std::size_t i = 0; way == 0 && !before.empty() && i < order.fields.size(); ++i) {
                const auto [field, descending] = order.fields[i];
                way = compare(before[field], row[field]) * (descending ? -1 : 1);
            }
            ASSERT_LE(way, 0) << ToUtf8(order.index);
            ids.push_back(found->first);
            before = row;
        }
        const auto indexed = std::count_if(model_.begin(), model_.end(), [&](const auto& row) {
            return !order.skipsNulls ||
                   std::any_of(order.fields.begin(), order.fields.end(),
                               [&](const auto& field) { return !IsNull(row.second[field.first]); });
        });
        ASSERT_EQ(ids.size(), static_cast<std::size_t>(indexed));
        if (ids.empty())
            return;
        set.moveLast();
        for (auto id = ids.rbegin(); id != ids.rend(); ++id, set.movePrevious())
            ASSERT_EQ(set.value(Id), Value(*id));
        ASSERT_TRUE(set.bof());
        std::sort(ids.begin(), ids.end());
        ASSERT_EQ(std::adjacent_find(ids.begin(), ids.end()), ids.end());
    }
    void compareAll() {
        CheckDatabase(database_->pager(), [](const Fault& fault) {
            EXPECT_TRUE(fault.harmless) << "page " << fault.page << ' ' << fault.reason;
        });
        Recordset set = Recordset::open(*database_, u"Model");
        ASSERT_EQ(set.recordCount(), model_.size());
        for (const Order& order : orders)
            walk(set, order);
    }

    std::mt19937 random_{GetParam()};
    FaultyStorage storage_;
    std::optional<Database> database_ = Database::create(storage_, Path, options());
    Model model_;
    std::uint32_t growing_ = 40;
};

TEST_P(RandomOperations, AgreeWithAMap) {
    const char* wanted = std::getenv("TOLVEX_JET_BATCHES");
    const int batches = wanted != nullptr ? std::max(1, std::atoi(wanted)) : 25;
    growing_ = 100;
    operate(500);
    for (int i = 0; i < batches && !HasFailure(); ++i) {
        compareAll();
        if (chance(4)) {
            database_->close();
            database_ = Database::open(storage_, Path, options());
        }
        batch();
    }
    compareAll();
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomOperations, testing::Values(1u, 2u, 3u));

} // namespace
} // namespace jet::tests
