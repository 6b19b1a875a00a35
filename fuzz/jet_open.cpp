// A database file from outside: opening it, reading everything in it, checking it, saving what can be read
// and changing it must end, whatever the bytes are. An input of a page or more is the file; a shorter one is
// damage to a sound file: four bytes each, an offset and the byte that stands there.
#include "jet/Check.h"
#include "jet/Compact.h"
#include "jet/base/Error.h"
#include "jet/pager/MemoryPager.h"
#include "jet/pager/NewFile.h"
#include "jet/sql/Execute.h"
#include "jet/table/CreateDatabase.h"
#include "jet/table/TableDesign.h"
#include "jet/transfer/Transfer.h"

#include <algorithm>
#include <cstring>

namespace {

using namespace jet;

// The longest file looked at; what is longer tells nothing new.
constexpr std::size_t longest = 100 * PageSize;

class MemoryFile final : public StorageFile {
public:
    std::uint64_t size() override { return bytes_.size(); }
    std::size_t read(std::uint64_t offset, void* into, std::size_t length) override {
        const std::size_t n =
            offset >= bytes_.size() ? 0 : std::min<std::size_t>(length, bytes_.size() - offset);
        std::memcpy(into, bytes_.data() + offset, n);
        return n;
    }
    void write(std::uint64_t offset, const void* from, std::size_t length) override {
        bytes_.resize(std::max<std::size_t>(bytes_.size(), offset + length));
        std::memcpy(bytes_.data() + offset, from, length);
    }
    void truncate(std::uint64_t size) override { bytes_.resize(size); }
    void flush() override {}
    bool lock(std::uint64_t, std::uint64_t, bool, bool) override { return true; }
    void unlock(std::uint64_t, std::uint64_t) override {}
    std::optional<std::uint64_t> findLock(std::uint64_t, std::uint64_t) override { return std::nullopt; }
    bool isNow(const std::string&) override { return true; }
    void takeRightsOf(const std::string&) override {}

private:
    Bytes bytes_;
};

// Two tables with long values, moved and deleted rows and, in one of them, an index of two levels.
Bytes soundFile() {
    MemoryPager pager(FreshDatabase(Date{45000}));
    Catalog catalog(pager);
    for (const auto& [name, rows] : {std::pair(u"One", 60), std::pair(u"Two", 12)}) {
        AppendTable(catalog, {name,
                              {{u"a", ColumnType::Long, 0, true},
                               {u"b", ColumnType::Text, 200},
                               {u"c", ColumnType::Memo},
                               {u"d", ColumnType::Boolean},
                               {u"e", ColumnType::Ole}},
                              {{u"Main", {{u"a"}}, true, true}, {u"B", {{u"b"}, {u"a", true}}}},
                              {}});
        Table table = catalog.table(name);
        for (int i = 0; i < rows; ++i) {
            const auto length = static_cast<std::size_t>(i);
            std::vector<Value> row{Value{}, std::u16string(length * 2 + 1, u'b'),
                                   std::u16string(length % 11 == 0 ? 2500 : length + 1, u'é'), true,
                                   Bytes(length, 1)};
            table.insert(row);
        }
        const std::u16string of = name;
        Execute(catalog, u"UPDATE " + of + u" SET b = '" + std::u16string(150, u'x') + u"' WHERE a < 5");
        Execute(catalog, u"DELETE FROM " + of + u" WHERE a BETWEEN 7 AND 9");
    }
    return pager.image();
}

Bytes damagedFile(const std::uint8_t* data, std::size_t size) {
    static const Bytes sound = soundFile();
    Bytes file = sound;
    for (; size >= 4; size -= 4, data += 4) {
        const std::size_t at =
            data[0] | static_cast<std::size_t>(data[1]) << 8 | static_cast<std::size_t>(data[2]) << 16;
        file[at % file.size()] = data[3];
    }
    return file;
}

template<typename Step>
void attempt(Step step) {
    try {
        step();
    } catch (const Error&) {
        // what a damaged file is answered with
    }
}

// Changes of every kind; what a damaged file does not allow is refused.
void change(Pager& pager) {
    Catalog catalog(pager);
    for (const char16_t* statement :
         {u"INSERT INTO One (b, c) VALUES ('new', 'a memo')",
          u"UPDATE One SET b = 'short', c = b WHERE a > 40", u"DELETE FROM One WHERE a > 50",
          u"UPDATE Two SET e = NULL, d = FALSE", u"DELETE FROM Two"})
        attempt([&] { Execute(catalog, statement); });
    attempt([&] { AppendField(catalog, u"One", {u"f", ColumnType::Text, 9}); });
    attempt([&] { AppendIndex(catalog, u"One", {u"C", {{u"c"}}}); });
    attempt([&] { RenameTable(catalog, u"One", u"Three"); });
    attempt([&] { DropTable(catalog, u"Two"); });
    attempt([&] { AppendTable(catalog, {u"Four", {{u"a", ColumnType::Memo}}, {}, {}}); });
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size > longest)
        return 0;
    MemoryPager pager(size < PageSize ? damagedFile(data, size) : Bytes(data, data + size));
    const auto ignore = [](const Fault&) {};
    attempt([&] { CheckDatabase(pager, ignore); });
    attempt([&] {
        const Catalog catalog(pager);
        const Table objects(pager, Catalog::ObjectsPage);
        for (const CatalogObject& object : ReadObjects(objects, [](PageNumber, const Error&) {})) {
            if (!object.isTable())
                continue;
            attempt([&] {
                const Table table = catalog.table(object);
                ExportRows(Selection(table, std::nullopt), TextFormat::Csv, [](std::string_view) {});
            });
        }
    });
    attempt([&] {
        MemoryFile file;
        NewFile target(file, PageZero());
        CompactPages(pager, target, ignore);
        target.finish();
    });
    change(pager);
    attempt([&] { CheckDatabase(pager, ignore); });
    return 0;
}
