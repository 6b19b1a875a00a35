// The engine's own files: what an independent reader makes of every table, definitions byte by byte,
// properties, and what changing them leaves behind.
#include "NewDatabase.h"
#include "Samples.h"

#include "jet/Database.h"
#include "jet/Error.h"
#include "jet/IndexCheck.h"
#include "jet/KeyEncoding.h"
#include "jet/TableDesign.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <sstream>

using namespace jet;
using namespace jet::tests;

namespace {

std::string hex(const Bytes& bytes) {
    std::string text;
    char two[3];
    for (const std::uint8_t byte : bytes) {
        std::snprintf(two, sizeof two, "%02X", byte);
        text += two;
    }
    return text;
}

std::string escaped(const std::u16string& text) {
    std::string out;
    for (const char unit : ToUtf8(text))
        out += unit == '\r'   ? "\\r"
               : unit == '\n' ? "\\n"
               : unit == '\t' ? "\\t"
               : unit == '\\' ? "\\\\"
                              : std::string(1, unit);
    return out;
}

std::string dateText(Date date) {
    const auto seconds = std::llround(std::fmod(date.days, 1.0) * 86400);
    const std::chrono::sys_days epoch = std::chrono::year(1899) / 12 / 30;
    const std::chrono::year_month_day day{epoch + std::chrono::days(static_cast<int>(date.days))};
    char text[40];
    std::snprintf(text, sizeof text, "%04d-%02u-%02u %02d:%02d:%02d", int{day.year()}, unsigned{day.month()},
                  unsigned{day.day()}, static_cast<int>(seconds / 3600), static_cast<int>(seconds / 60 % 60),
                  static_cast<int>(seconds % 60));
    return text;
}

// A value as the dumps have it.
std::string dump(const Value& value) {
    if (const auto* held = std::get_if<bool>(&value))
        return *held ? "1" : "0";
    if (const auto* held = std::get_if<std::u16string>(&value))
        return escaped(*held);
    if (const auto* held = std::get_if<Bytes>(&value))
        return hex(*held);
    if (const auto* held = std::get_if<Date>(&value))
        return dateText(*held);
    if (const auto* held = std::get_if<std::int32_t>(&value))
        return std::to_string(*held);
    if (const auto* held = std::get_if<std::int16_t>(&value))
        return std::to_string(*held);
    if (const auto* held = std::get_if<std::uint8_t>(&value))
        return std::to_string(*held);
    if (const auto* held = std::get_if<double>(&value)) {
        char text[40];
        std::snprintf(text, sizeof text, "%.16g", *held);
        return text;
    }
    return IsNull(value) ? "NULL" : "?";
}

std::string dump(const Table& table) {
    std::vector<Column> columns = table.definition().columns;
    std::vector<std::size_t> order(columns.size());
    for (std::size_t i = 0; i < order.size(); ++i)
        order[i] = i;
    std::sort(order.begin(), order.end(),
              [&](auto a, auto b) { return columns[a].number < columns[b].number; });
    std::string text;
    for (const std::size_t i : order)
        text += ToUtf8(columns[i].name) + (i == order.back() ? "\n" : "|");
    std::vector<Value> values;
    RowPointer at;
    for (RowView row; table.next(at, row);) {
        table.values(row, values);
        for (const std::size_t i : order)
            text += dump(values[i]) + (i == order.back() ? "\n" : "|");
    }
    return text;
}

// Rows that were moved come at other places in the two readers' walks.
std::vector<std::string> sortedLines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);)
        lines.push_back(line);
    std::sort(lines.begin(), lines.end());
    return lines;
}

// What an independent reader makes of a table, one line a row.
std::string exported(const std::string& sample, const std::string& table) {
    const std::string command =
        "mdb-export -e -b hex -Q -d '|' -0 NULL -D '%Y-%m-%d %H:%M:%S' -T '%Y-%m-%d %H:%M:%S' '" +
        SampleFolder() + sample + ".mdb' '" + table + "'";
    std::string text;
    FILE* pipe = popen(command.c_str(), "r");
    if (!pipe)
        throw std::runtime_error("cannot run mdb-export");
    char buffer[4096];
    for (std::size_t got = 0; (got = std::fread(buffer, 1, sizeof buffer, pipe)) > 0;)
        text.append(buffer, got);
    EXPECT_EQ(pclose(pipe), 0) << command;
    return text;
}

void expectDumps(Pager& pager, const std::string& sample) {
    const Catalog catalog(pager);
    EXPECT_FALSE(catalog.tables().empty());
    for (const CatalogObject& object : catalog.tables()) {
        const std::string name = ToUtf8(object.name);
        EXPECT_EQ(sortedLines(dump(catalog.table(object))), sortedLines(exported(sample, name)))
            << sample << ' ' << name;
    }
}

// Every row has its entries and no more, in every index of every table; every page belongs to one thing.
void expectSound(Pager& pager) {
    const Catalog catalog(pager);
    for (const CatalogObject& object : catalog.objects()) {
        if (!object.isTable())
            continue;
        const Table table = catalog.table(object);
        SCOPED_TRACE(ToUtf8(object.name));
        std::uint32_t rows = 0;
        RowPointer at;
        for (RowView row; table.next(at, row);)
            ++rows;
        EXPECT_EQ(rows, table.rowCount());
        for (std::size_t i = 0; i < table.definition().realIndexes.size(); ++i) {
            const KeyEncoder encoder(table.definition(), table.definition().realIndexes[i]);
            std::uint32_t entries = 0;
            CheckIndex(
                table.index(static_cast<int>(i)),
                [](const IndexFault& fault) {
                    ADD_FAILURE() << "page " << fault.page << ": " << fault.reason;
                },
                [&](KeyView key, RowPointer pointer) {
                    ++entries;
                    RowView row;
                    ASSERT_TRUE(table.fetch(pointer, row));
                    std::vector<Value> values;
                    table.values(row, values);
                    Bytes own;
                    encoder.encodeRow(values, own);
                    EXPECT_TRUE(std::equal(own.begin(), own.end(), key.begin(), key.end()));
                });
            if (!table.definition().realIndexes[i].ignoresNulls()) {
                EXPECT_EQ(entries, rows);
            }
        }
    }
}

} // namespace

TEST(JetSamples, EveryTableReadsAsAnIndependentReaderReadsIt) {
    NEED_SAMPLES();
    for (const char* sample : Jet4Samples) {
        MemoryPager pager(ReadSample(sample));
        expectDumps(pager, sample);
    }
    for (const char* sample : Jet3Samples) {
        const Jet3Import import = ImportJet3(ReadSample(sample));
        EXPECT_TRUE(import.contents.faults.empty()) << import.contents.faults.front().reason;
        expectDumps(*import.pager, sample);
        expectSound(*import.pager);
    }
}

TEST(JetSamples, FilesOfTheOlderFormatOpenForReading) {
    NEED_SAMPLES();
    Database database = Database::open(SampleFolder() + "jet3-long-values.mdb");
    EXPECT_EQ(database.header().version, PageZero::Jet3);
    EXPECT_FALSE(database.readOnlyReason().empty());
    ASSERT_NE(database.olderContents(), nullptr);
    EXPECT_TRUE(database.olderContents()->faults.empty());
    const std::u16string first = database.catalog().tables().front().name;
    EXPECT_EQ(ErrorOf([&] { DropTable(database.catalog(), first); }), 3027);
    EXPECT_EQ(ErrorOf([&] { database.beginTransaction(); }), 3027);
    database.close();
}

TEST(JetSamples, DefinitionsAreWrittenAsTheyWereRead) {
    NEED_SAMPLES();
    for (const char* sample : Jet4Samples) {
        MemoryPager pager(ReadSample(sample));
        for (const CatalogObject& object : Catalog(pager).objects()) {
            if (!object.isTable())
                continue;
            const auto page = static_cast<PageNumber>(object.id);
            const Bytes before = pager.image();
            const TableDefinition definition = ReadTableDefinition(pager, page);
            const std::size_t length = EncodeTableDefinition(definition).size();
            WriteTableDefinition(pager, definition);
            // What lies behind the end of the definition is undefined.
            const std::size_t at = page * PageSize, end = std::min<std::size_t>(length, PageSize);
            EXPECT_EQ(std::memcmp(before.data() + at, pager.read(page), end), 0)
                << sample << ' ' << ToUtf8(object.name);
            EXPECT_EQ(EncodeTableDefinition(ReadTableDefinition(pager, page)),
                      EncodeTableDefinition(definition));
        }
    }
}

TEST(JetSamples, PropertiesSurviveReadingAndWriting) {
    NEED_SAMPLES();
    int read = 0;
    for (const char* sample : Jet4Samples) {
        MemoryPager pager(ReadSample(sample));
        const Catalog catalog(pager);
        for (const CatalogObject& object : catalog.objects()) {
            const PropertyBlob blob = catalog.properties(object);
            const PropertyBlob again = DecodeProperties(EncodeProperties(blob));
            ASSERT_EQ(again.owners.size(), blob.owners.size());
            for (std::size_t i = 0; i < blob.owners.size(); ++i) {
                EXPECT_EQ(again.owners[i].column, blob.owners[i].column);
                ASSERT_EQ(again.owners[i].properties.size(), blob.owners[i].properties.size());
                for (std::size_t k = 0; k < blob.owners[i].properties.size(); ++k, ++read) {
                    EXPECT_EQ(again.owners[i].properties[k].name, blob.owners[i].properties[k].name);
                    EXPECT_EQ(again.owners[i].properties[k].value, blob.owners[i].properties[k].value);
                }
            }
        }
    }
    EXPECT_GT(read, 300);
}

TEST(JetSamples, TheirTablesCanBeChanged) {
    NEED_SAMPLES();
    for (const char* sample : Jet4Samples) {
        SCOPED_TRACE(sample);
        MemoryPager pager(ReadSample(sample));
        Catalog catalog(pager);
        expectSound(pager);
        for (const CatalogObject& object : catalog.tables()) {
            Table table = catalog.table(object);
            // Every second row goes, the others get a longer text, and some come back.
            std::vector<std::vector<Value>> removed;
            std::vector<Value> values;
            bool odd = false;
            RowPointer at;
            for (RowView row; table.next(at, row); odd = !odd) {
                table.values(row, values);
                if (odd) {
                    removed.push_back(values);
                    table.remove(at);
                    continue;
                }
                for (std::size_t i = 0; i < values.size(); ++i)
                    if (table.definition().columns[i].type == ColumnType::Text) {
                        const FieldChange change{static_cast<int>(i),
                                                 std::u16string(u"changed, and longer: ÄÖÜ")};
                        try {
                            table.update(at, {&change, 1});
                        } catch (const Error& error) {
                            EXPECT_TRUE(error.code() == ErrorNumber::DuplicateKey ||
                                        error.code() == ErrorNumber::FieldTooSmall)
                                << error.what();
                        }
                    }
            }
            for (std::vector<Value>& row : removed)
                table.insert(row);
            AppendField(catalog, object.name, {u"Appended", ColumnType::Memo});
            AppendIndex(catalog, object.name, {u"AppendedIndex", {{u"Appended"}}});
        }
        expectSound(pager);
        EXPECT_EQ(catalog.objects().size(), Catalog(pager).objects().size());
    }
}

TEST(JetSamples, RelationshipsHoldTheirTablesAndIndexes) {
    NEED_SAMPLES();
    MemoryPager pager(ReadSample("relationships"));
    Catalog catalog(pager);
    const TableDefinition definition = catalog.table(u"Table1").definition();
    EXPECT_EQ(ErrorOf([&] { DropTable(catalog, u"Table1"); }), 3281);
    EXPECT_EQ(ErrorOf([&] { DropField(catalog, u"Table1", u"otherfk1"); }), 3280);
    for (const LogicalIndex& index : definition.logicalIndexes)
        if (index.role != LogicalIndex::Role::None) {
            EXPECT_EQ(ErrorOf([&] { DropIndex(catalog, u"Table1", index.name); }), 3281);
        }
    const std::size_t pairs = catalog.relationships().size();
    RenameTable(catalog, u"Table1", u"Renamed");
    RenameField(catalog, u"Renamed", u"otherfk1", u"key");
    std::size_t renamed = 0;
    for (const Catalog::RelationshipColumn& pair : catalog.relationships()) {
        EXPECT_NE(pair.table, u"Table1");
        EXPECT_NE(pair.column, u"otherfk1");
        renamed += pair.table == u"Renamed" && pair.column == u"key" ? 1 : 0;
    }
    EXPECT_EQ(renamed, 1u);
    EXPECT_EQ(catalog.relationships().size(), pairs);
}
