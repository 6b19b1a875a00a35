// Export and import of rows, and files that other programs read: every type with its extremes, accents, long
// memos and indexes of three levels, compared with the output of mdbtools for the same file.
#include "jet/transfer/Transfer.h"

#include "jet/Check.h"
#include "jet/Database.h"
#include "jet/NewDatabase.h"
#include "jet/base/Error.h"
#include "jet/record/ValueText.h"
#include "jet/sql/Execute.h"
#include "jet/table/TableDesign.h"
#include "jet/text/DateText.h"
#include "jet/transfer/Csv.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <limits>

#include <unistd.h>

namespace jet {
namespace {

using tests::FieldOf;

std::string exportTable(Catalog& catalog, std::u16string_view name, TextFormat format) {
    const Table table = FindTable(catalog, name);
    std::string text;
    ExportRows(Filter(table, std::nullopt), format, [&](std::string_view piece) { text += piece; });
    return text;
}

// Delivers a text to a TextInput.
auto pieces(const std::string& text) {
    return [&text, at = std::size_t{0}](char* into, std::size_t length) mutable {
        const std::size_t n = std::min(length, text.size() - at);
        std::copy_n(text.data() + at, n, into);
        at += n;
        return n;
    };
}

std::uint32_t importText(Catalog& catalog, std::u16string_view name, TextFormat format,
                         const std::string& text) {
    TextInput input(pieces(text));
    Table table = FindTable(catalog, name);
    return ImportRows(table, format, input);
}

std::string run(const std::string& command) {
    std::string output;
    FILE* pipe = popen(command.c_str(), "r");
    char buffer[4096];
    for (std::size_t n = 0; (n = std::fread(buffer, 1, sizeof(buffer), pipe)) > 0;)
        output.append(buffer, n);
    EXPECT_EQ(pclose(pipe), 0) << command;
    return output;
}

std::vector<std::vector<std::string>> parseCsv(const std::string& text) {
    TextInput input(pieces(text));
    CsvReader reader(input);
    std::vector<std::vector<std::string>> rows;
    for (std::vector<CsvField> fields; reader.next(fields);) {
        rows.emplace_back();
        for (const CsvField& field : fields)
            rows.back().push_back(field.isNull() ? "<null>" : field.text);
    }
    return rows;
}

std::string hexOf(const std::string& base64) {
    Bytes bytes;
    EXPECT_TRUE(ParseBase64(base64, bytes));
    std::string hex;
    char digits[3];
    for (const std::uint8_t byte : bytes) {
        std::snprintf(digits, sizeof(digits), "%02X", static_cast<unsigned>(byte));
        hex += digits;
    }
    return hex;
}

std::string base64Of(const std::string& text) {
    std::string base64;
    const Bytes bytes(text.begin(), text.end());
    AppendBase64(bytes.data(), bytes.size(), base64);
    return base64;
}

class TransferTest : public ::testing::Test {
protected:
    TransferTest() {
        std::filesystem::remove_all(folder_);
        std::filesystem::create_directories(folder_);
        database_.emplace(Database::create(file_));
        AppendTable(catalog(),
                    {u"Every Type",
                     {FieldOf(u"Key", ColumnType::Long), FieldOf(u"Flag", ColumnType::Boolean),
                      FieldOf(u"Byte", ColumnType::Byte), FieldOf(u"Integer", ColumnType::Integer),
                      FieldOf(u"Money", ColumnType::Currency), FieldOf(u"Single", ColumnType::Single),
                      FieldOf(u"Double", ColumnType::Double), FieldOf(u"Date", ColumnType::DateTime),
                      FieldOf(u"Text", ColumnType::Text, 255), FieldOf(u"Memo", ColumnType::Memo),
                      FieldOf(u"Binary", ColumnType::Binary, 20), FieldOf(u"Ole", ColumnType::Ole),
                      FieldOf(u"Guid", ColumnType::Guid)},
                     {{u"Main", {{u"Key"}}, true, true}, {u"ByText", {{u"Text"}, {u"Double", true}}}},
                     {}});
    }
    ~TransferTest() override {
        database_.reset();
        std::filesystem::remove_all(folder_);
    }
    Catalog& catalog() { return database_->catalog(); }

    void fill() {
        Guid guid;
        for (std::uint8_t i = 0; i < 16; ++i)
            guid.bytes[i] = static_cast<std::uint8_t>(i * 17);
        const std::u16string accents = u"Ärger, café \"Ñandú\" €uro œuvre\nZeile 2";
        std::vector<std::vector<Value>> rows = {
            {std::int32_t{1}, true, std::uint8_t{255}, std::int16_t{-32768}, Currency{-12345678}, 1.5f, -0.1,
             *MakeDate({2026, 7, 4, 12 * 3600 + 34 * 60 + 56}), accents, accents, Bytes{1, 2, 255},
             Bytes{7, 8, 9}, guid},
            {std::int32_t{2}, false, {}, {}, {}, {}, {}, {}, {}, {}, {}, {}, {}},
            {std::numeric_limits<std::int32_t>::min(), true, std::uint8_t{0}, std::int16_t{32767},
             Currency{std::numeric_limits<std::int64_t>::max()}, 1e30f, 1e-300, *MakeDate({1952, 9, 14, 60}),
             std::u16string(255, u'ü'), std::u16string(64000, u'm') + u"Ω", Bytes(20, 42), Bytes(100000, 3),
             guid},
            {std::int32_t{4}, true, {}, {}, {}, {}, {}, {}, std::u16string(), std::u16string(), {}, {}, {}},
            {std::int32_t{5},
             true,
             {},
             {},
             {},
             {},
             {},
             {},
             std::u16string(u"漢字 und Ж"),
             std::u16string(3000, u'é'),
             {},
             {},
             {}},
        };
        // Text that cannot be ordered is for the memo only, as the field is indexed.
        std::swap(rows[4][8], rows[4][9]);
        Table table = catalog().table(u"Every Type");
        for (std::vector<Value>& row : rows) {
            if (const auto* text = std::get_if<std::u16string>(&row[8]);
                text != nullptr && text->size() > 255)
                row[8] = text->substr(0, 255);
            table.insert(row);
        }
        database_->flush();
    }

    const std::filesystem::path folder_ =
        std::filesystem::temp_directory_path() / ("tolvex-transfer-test-" + std::to_string(::getpid()));
    const std::string file_ = (folder_ / "a.mdb").string();
    std::optional<Database> database_;
};

TEST_F(TransferTest, GoesOutAndComesBack) {
    fill();
    for (const TextFormat format : {TextFormat::Csv, TextFormat::JsonLines}) {
        const std::string text = exportTable(catalog(), u"every type", format);
        Execute(catalog(), u"DELETE FROM [Every Type]");
        EXPECT_EQ(importText(catalog(), u"Every Type", format, text), 5u);
        EXPECT_EQ(exportTable(catalog(), u"Every Type", format), text);
    }
}

TEST_F(TransferTest, ABadRowStopsAll) {
    fill();
    const std::string before = exportTable(catalog(), u"Every Type", TextFormat::Csv);
    const std::tuple<TextFormat, const char*, int, const char*> bad[] = {
        {TextFormat::Csv, "Key,Text\n10,a\n11,\"two\nlines\"\n12x,b\n", 3421, "line 5"},
        {TextFormat::Csv, "Key,Text\n10,a\n2,b\n", 3022, "line 3"},
        {TextFormat::Csv, "Key,Text\n10\n", 3001, "line 2"},
        {TextFormat::Csv, "Key,Nothing\n10,1\n", 3265, "line 1"},
        {TextFormat::Csv, "Key,KEY\n10,1\n", 3191, "line 1"},
        {TextFormat::Csv, "Key,Text\n10,\"a\n", 3001, "line 2"},
        {TextFormat::Csv, "", 3001, "line 1"},
        {TextFormat::Csv, "Text\nwithout a key\n", 3058, "line 2"},
        {TextFormat::JsonLines, "{\"Key\":10}\n\n{\"Key\":11,\"Byte\":300}\n", 3421, "line 3"},
        {TextFormat::JsonLines, "{\"Key\":10}\n{\"Key\":[1]}\n", 3001, "line 2"},
        {TextFormat::JsonLines, "{\"Key\":10,\"key\":11}\n", 3191, "line 1"},
    };
    for (const auto& [format, text, number, line] : bad) {
        try {
            importText(catalog(), u"Every Type", format, text);
            ADD_FAILURE() << text;
        } catch (const Error& error) {
            EXPECT_EQ(error.number(), number) << error.what();
            EXPECT_NE(std::string(error.what()).find(line), std::string::npos) << error.what();
        }
        ASSERT_EQ(exportTable(catalog(), u"Every Type", TextFormat::Csv), before) << text;
    }
    EXPECT_EQ(CheckDatabase(database_->pager(), [](const Fault&) {}).faults, 0u);
}

TEST_F(TransferTest, AnotherReaderAgrees) {
    fill();
    const std::string ours = exportTable(catalog(), u"Every Type", TextFormat::Csv);
    database_->close();
    EXPECT_EQ(run("mdb-tables -1 " + file_), "Every Type\n");
    const std::string schema = run("mdb-schema --indexes " + file_ + " access");
    for (const char* line :
         {"[Key]\t\t\tLong Integer", "[Text]\t\t\tText (255)", "[Memo]\t\t\tMemo/Hyperlink",
          "[Guid]\t\t\tReplication ID", "[Money]\t\t\tCurrency"})
        EXPECT_NE(schema.find(line), std::string::npos) << line << "\n" << schema;

    EXPECT_NE(run("mdb-schema --indexes " + file_ + " postgres").find("bytext_idx"), std::string::npos);

    const auto mine = parseCsv(ours);
    const auto theirs = parseCsv(
        run("mdb-export -b hex -T '%Y-%m-%d %H:%M:%S' -D '%Y-%m-%d %H:%M:%S' " + file_ + " 'Every Type'"));
    ASSERT_EQ(mine.size(), theirs.size());
    for (std::size_t row = 0; row < mine.size(); ++row) {
        ASSERT_EQ(mine[row].size(), theirs[row].size());
        for (std::size_t i = 0; i < mine[row].size(); ++i) {
            const std::string& name = mine[0][i];
            const std::string& a = mine[row][i];
            const std::string& b = theirs[row][i];
            if (row == 0 || a.empty() || a == "<null>") // the other reader does not distinguish them
                EXPECT_EQ(a.empty() ? "<null>" : a, b.empty() ? "<null>" : b);
            else if (name == "Binary" || name == "Ole")
                EXPECT_EQ(hexOf(a), b) << name;
            else if (name == "Guid")
                EXPECT_EQ(hexOf(base64Of(a)).erase(48, 2), b); // it omits the last hyphen
            else if (name == "Money" || name == "Single" || name == "Double")
                EXPECT_NEAR(std::stod(a), std::stod(b), std::abs(std::stod(a)) * 1e-6) << name;
            else
                EXPECT_EQ(a, b) << name << " in row " << row;
        }
    }
}

// Indexes of three levels, written one by one in random order, read by another reader.
TEST_F(TransferTest, AnotherReaderReadsDeepIndexes) {
    AppendTable(catalog(), {u"Deep",
                            {{u"Key", ColumnType::Text, 200}, {u"No", ColumnType::Long}},
                            {{u"Main", {{u"Key"}}, true, true}},
                            {}});
    {
        Transaction transaction(*database_);
        Table table = catalog().table(u"Deep");
        for (std::int32_t i = 0; i < 6000; ++i) {
            const std::int32_t scattered = i * 7919 % 6000;
            std::vector<Value> row{ToUtf16(std::to_string(scattered)) + std::u16string(180, u'k'), scattered};
            table.insert(row);
        }
        transaction.commit();
    }
    const TableDefinition definition = catalog().table(u"Deep").definition();
    EXPECT_GE(database_->pager().read(definition.realIndexes[0].root)[0x1A], 2) << "levels";
    const auto report = [](const Fault& fault) { ADD_FAILURE() << fault.page << ": " << fault.reason; };
    EXPECT_GT(CheckDatabase(database_->pager(), report).rows, 6000u);
    database_->close();
    EXPECT_EQ(parseCsv(run("mdb-export " + file_ + " Deep")).size(), 6001u);
    const std::string found = run("echo \"select No from Deep where Key = '4711" + std::string(180, 'k') +
                                  "'\" | mdb-sql -F -H -P " + file_);
    EXPECT_NE(found.find("4711\n"), std::string::npos) << found;
}

} // namespace
} // namespace jet
