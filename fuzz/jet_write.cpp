// Statements run one after the other on a sound database: each does what it says or throws, and the file is
// sound afterwards. The input is text, one statement per line.
#include "jet/Check.h"
#include "jet/base/Error.h"
#include "jet/pager/MemoryPager.h"
#include "jet/sql/Execute.h"
#include "jet/sql/Filter.h"
#include "jet/table/CreateDatabase.h"
#include "jet/table/TableDesign.h"

#include <cstdio>
#include <cstdlib>

namespace {

using namespace jet;

constexpr std::size_t longest = 20000;

// A table whose indexes have two levels and whose rows leave little room on their pages.
Bytes fullTable() {
    MemoryPager pager(FreshDatabase(Date{45000}));
    Catalog catalog(pager);
    AppendTable(catalog, {u"T",
                          {{u"a", ColumnType::Long, 0, true},
                           {u"b", ColumnType::Text, 50},
                           {u"c", ColumnType::Memo},
                           {u"d", ColumnType::DateTime},
                           {u"e", ColumnType::Boolean},
                           {u"f", ColumnType::Currency}},
                          {{u"Main", {{u"a"}}, true, true}, {u"B", {{u"b"}, {u"d", true}}}, {u"C", {{u"c"}}}},
                          {}});
    Table table = catalog.table(u"T");
    for (std::size_t i = 0; i < 120; ++i) {
        const std::u16string text(20 + i % 30, static_cast<char16_t>(u'a' + i % 26));
        std::vector<Value> row{Value{},
                               text,
                               i % 40 == 0 ? std::u16string(4000, u'm') : text + text,
                               Date{static_cast<double>(i)},
                               i % 2 == 0,
                               Currency{static_cast<int>(i)}};
        table.insert(row);
    }
    return pager.image();
}

void runStatement(Catalog& catalog, const std::u16string& text) {
    const sql::Statement statement = sql::ParseStatement(text);
    if (const auto* select = std::get_if<sql::Select>(&statement)) {
        const Table table = FindTable(catalog, select->table);
        Filter(table, *select).rows();
    } else
        Execute(catalog, statement);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const Bytes start = fullTable();
    if (size > longest)
        return 0;
    MemoryPager pager(start);
    Catalog catalog(pager);
    std::string line;
    for (std::size_t i = 0; i <= size; ++i) {
        if (i < size && data[i] != '\n') {
            line += static_cast<char>(data[i]);
            continue;
        }
        try {
            runStatement(catalog, ToUtf16(line));
        } catch (const Error&) {
            // a statement that cannot be done; pages in memory have no rollback, but nothing may be half done
            // within one row
        }
        line.clear();
    }
    const auto report = [](const Fault& fault) {
        if (fault.harmless)
            return;
        std::fprintf(stderr, "page %u: %s\n", fault.page, fault.reason.c_str());
        std::abort();
    };
    CheckDatabase(pager, report);
    return 0;
}
