// The engine's own files, from any folder: each is read as an independent
// reader reads it, or refused with a reason; those of the present format
// keep everything when they are rewritten, changed and compacted.
#include "jet/NewDatabase.h"
#include "jet/SortedRows.h"
#include "jet/maintenance/RandomDamage.h"
#include "jet/samples/Samples.h"

#include "jet/Check.h"
#include "jet/Compact.h"
#include "jet/index/IndexIntegrity.h"
#include "jet/index/KeyEncoding.h"
#include "jet/jet3/Jet3Import.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <iostream>
#include <map>

using namespace jet;
using namespace jet::tests;

namespace {

std::vector<Sample> samplesThat(const std::function<bool(const Sample&)>& suit) {
    std::vector<Sample> chosen;
    std::copy_if(Samples().begin(), Samples().end(), std::back_inserter(chosen), suit);
    return chosen;
}

std::string nameOf(const testing::TestParamInfo<Sample>& info) {
    return std::to_string(info.index) + '_' + info.param.name();
}

class AnySample : public testing::TestWithParam<Sample> {};
class ChangeableSample : public testing::TestWithParam<Sample> {};
class OlderSample : public testing::TestWithParam<Sample> {};

INSTANTIATE_TEST_SUITE_P(Folder, AnySample, testing::ValuesIn(Samples()), nameOf);
INSTANTIATE_TEST_SUITE_P(Folder, ChangeableSample,
                         testing::ValuesIn(samplesThat([](const Sample& s) { return s.canBeChanged(); })),
                         nameOf);
INSTANTIATE_TEST_SUITE_P(Folder, OlderSample,
                         testing::ValuesIn(samplesThat([](const Sample& s) { return s.isJet3(); })), nameOf);
// A folder may lack one kind.
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(AnySample);
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(ChangeableSample);
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(OlderSample);

void expectSameReadings(const Sample& sample, const Catalog& catalog) {
    for (const CatalogObject& object : catalog.tables()) {
        const std::optional<TwoReadings> both = ReadTwice(sample, catalog, object);
        if (both)
            EXPECT_EQ(both->ours, both->theirs) << sample.path << ' ' << ToUtf8(object.name);
        else
            std::cout << "The other reader cannot read table " << ToUtf8(object.name) << ".\n";
    }
}

std::string faultsOf(Pager& pager) {
    std::string text;
    CheckDatabase(pager, [&](const Fault& fault) {
        if (!fault.harmless)
            text += "page " + std::to_string(fault.page) + " [" + ToUtf8(fault.table) + "] " + fault.reason +
                    '\n';
    });
    return text;
}

// Every row has exactly its entries, in every index of every table, with the keys that we would build.
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

// Every table's rows as sorted lines.
std::map<std::u16string, std::vector<std::string>> rowsOf(const Bytes& image) {
    MemoryPager pager(image);
    const Catalog catalog(pager);
    std::map<std::u16string, std::vector<std::string>> all;
    for (const CatalogObject& object : catalog.tables())
        all[object.name] = SortedRows(catalog.table(object));
    return all;
}

// Every second row is removed, the others get a longer text if they have one, and the removed ones return.
void changeRows(Table& table) {
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
        for (std::size_t i = 0; i < values.size(); ++i) {
            if (table.definition().columns[i].type != ColumnType::Text)
                continue;
            const FieldChange change{static_cast<int>(i), std::u16string(u"changed, and longer: ÄÖÜ")};
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
}

} // namespace

TEST_P(AnySample, IsReadAsAnIndependentReaderReadsItOrRefusedWithAReason) {
    try {
        OpenSample sample(GetParam());
        expectSameReadings(GetParam(), sample.database->catalog());
    } catch (const Error& error) {
        EXPECT_NE(error.number(), 0);
        std::cout << "Refused: " << error.what() << " (error " << error.number() << ")\n";
    }
}

TEST_P(ChangeableSample, IsSound) {
    MemoryPager pager(GetParam().bytes());
    EXPECT_EQ(faultsOf(pager), "");
    expectSound(pager);
}

TEST_P(ChangeableSample, ItsDefinitionsAreWrittenAsTheyWereRead) {
    MemoryPager pager(GetParam().bytes());
    for (const CatalogObject& object : Catalog(pager).objects()) {
        if (!object.isTable())
            continue;
        const auto page = static_cast<PageNumber>(object.id);
        const Bytes before = pager.image();
        const TableDefinition definition = ReadTableDefinition(pager, page);
        const std::size_t length = EncodeTableDefinition(definition).size();
        WriteTableDefinition(pager, definition);
        // The bytes after the end of the definition are undefined.
        const std::size_t at = page * PageSize, end = std::min<std::size_t>(length, PageSize);
        EXPECT_EQ(std::memcmp(before.data() + at, pager.read(page), end), 0) << ToUtf8(object.name);
        EXPECT_EQ(EncodeTableDefinition(ReadTableDefinition(pager, page)), EncodeTableDefinition(definition));
    }
}

TEST_P(ChangeableSample, ItsPropertiesSurviveReadingAndWriting) {
    MemoryPager pager(GetParam().bytes());
    const Catalog catalog(pager);
    for (const CatalogObject& object : catalog.objects()) {
        const PropertyBlob blob = catalog.properties(object);
        const PropertyBlob again = DecodeProperties(EncodeProperties(blob));
        ASSERT_EQ(again.owners.size(), blob.owners.size());
        for (std::size_t i = 0; i < blob.owners.size(); ++i) {
            EXPECT_EQ(again.owners[i].column, blob.owners[i].column);
            ASSERT_EQ(again.owners[i].properties.size(), blob.owners[i].properties.size());
            for (std::size_t k = 0; k < blob.owners[i].properties.size(); ++k) {
                EXPECT_EQ(again.owners[i].properties[k].name, blob.owners[i].properties[k].name);
                EXPECT_EQ(again.owners[i].properties[k].value, blob.owners[i].properties[k].value);
            }
        }
    }
}

TEST_P(ChangeableSample, ItsTablesCanBeChanged) {
    MemoryPager pager(GetParam().bytes());
    Catalog catalog(pager);
    for (const CatalogObject& object : catalog.tables()) {
        SCOPED_TRACE(ToUtf8(object.name));
        Table table = catalog.table(object);
        changeRows(table);
        if (table.definition().columnNumbers >= MaximumColumns ||
            table.definition().realIndexes.size() >= MaximumIndexes)
            continue;
        AppendField(catalog, object.name, {u"Appended", ColumnType::Memo});
        AppendIndex(catalog, object.name, {u"AppendedIndex", {{u"Appended"}}});
    }
    expectSound(pager);
    EXPECT_EQ(faultsOf(pager), "");
    EXPECT_EQ(catalog.objects().size(), Catalog(pager).objects().size());
}

TEST_P(ChangeableSample, ItsRelationshipsHoldTheirTablesAndColumns) {
    MemoryPager pager(GetParam().bytes());
    Catalog catalog(pager);
    // Those between user tables; the engine has some of its own.
    std::vector<RelationshipColumn> pairs = catalog.relationships();
    std::erase_if(pairs, [&](const RelationshipColumn& pair) {
        const auto table = catalog.findTable(pair.table);
        return !table || !table->isTable() || table->isSystem();
    });
    for (const RelationshipColumn& pair : pairs) {
        EXPECT_EQ(ErrorOf([&] { DropTable(catalog, pair.table); }), 3281) << ToUtf8(pair.table);
        EXPECT_EQ(ErrorOf([&] { DropField(catalog, pair.table, pair.column); }), 3280) << ToUtf8(pair.column);
        for (const LogicalIndex& index : catalog.table(pair.table).definition().logicalIndexes)
            if (index.role != LogicalIndex::Role::None) {
                EXPECT_NE(ErrorOf([&] { DropIndex(catalog, pair.table, index.name); }), 0)
                    << ToUtf8(index.name);
            }
    }
    if (pairs.empty())
        return;
    const std::size_t all = catalog.relationships().size();
    RenameTable(catalog, pairs[0].table, u"Renamed");
    RenameField(catalog, u"Renamed", pairs[0].column, u"RenamedKey");
    EXPECT_EQ(catalog.relationships().size(), all);
    bool renamed = false;
    for (const RelationshipColumn& pair : catalog.relationships()) {
        EXPECT_FALSE(SameName(pair.table, pairs[0].table));
        renamed = renamed || (pair.table == u"Renamed" && pair.column == u"RenamedKey");
    }
    EXPECT_TRUE(renamed);
}

TEST_P(ChangeableSample, CompactionKeepsItsRows) {
    tests::FaultyStorage storage;
    storage.put("a.mdb", GetParam().bytes());
    CompactDatabase(storage, "a.mdb", "b.mdb", GetParam().header->password,
                    [](const Fault& loss) { ADD_FAILURE() << "page " << loss.page << ": " << loss.reason; });
    EXPECT_EQ(storage.get("a.mdb"), GetParam().bytes());
    const Bytes compacted = storage.get("b.mdb");
    MemoryPager pager(compacted);
    EXPECT_EQ(faultsOf(pager), "");
    EXPECT_EQ(rowsOf(compacted), rowsOf(GetParam().bytes()));
}

TEST_P(ChangeableSample, IsSavedWithoutFaultsWhenItIsDamaged) {
    for (unsigned seed = 0; seed < 20; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        TryDamage(GetParam().bytes(), seed);
    }
}

TEST_P(OlderSample, IsTakenOverWholeAndForReadingOnly) {
    std::optional<OpenSample> sample;
    try {
        sample.emplace(GetParam());
    } catch (const Error& error) {
        std::cout << "Refused: " << error.what() << " (error " << error.number() << ")\n";
        return;
    }
    Database& database = *sample->database;
    ASSERT_NE(database.olderContents(), nullptr);
    for (const Fault& fault : database.olderContents()->faults)
        EXPECT_TRUE(fault.harmless) << fault.reason;
    expectSound(database.pager());
    EXPECT_FALSE(database.readOnlyReason().empty());
    for (const CatalogObject& object : database.catalog().tables())
        EXPECT_EQ(ErrorOf([&] { DropTable(database.catalog(), object.name); }), 3027);
    EXPECT_EQ(ErrorOf([&] { database.beginTransaction(); }), 3027);
    database.close();
}
