// A database file from outside: opening it, reading everything in it, checking it, salvaging it and changing
// it must end, whatever the bytes are. An input of a page or more is the file; a shorter one is damage to a
// sound file: four bytes each, an offset and the byte to put there.
#include "jet/Check.h"
#include "jet/Compact.h"
#include "jet/WholeDatabase.h"
#include "jet/base/Error.h"
#include "jet/pager/MemoryPager.h"
#include "jet/pager/NewFile.h"
#include "jet/sql/Execute.h"
#include "jet/table/TableDesign.h"
#include "jet/transfer/Transfer.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

using namespace jet;

// The longest file tried; longer ones find nothing new.
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
    const Bytes& bytes() const { return bytes_; }

private:
    Bytes bytes_;
};

Bytes damagedFile(const std::uint8_t* data, std::size_t size) {
    static const Bytes sound = tests::WholeDatabase();
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
        // the answer to a damaged file
    }
}

// Changes of every kind; a damaged file may refuse them.
void change(Pager& pager) {
    Catalog catalog(pager);
    for (const char16_t* statement : {u"INSERT INTO Carts (Number, Notes) VALUES (900, 'a memo')",
                                      u"UPDATE Carts SET Title = 'short', Notes = Title WHERE Number > 40",
                                      u"DELETE FROM Carts WHERE Number > 100",
                                      u"UPDATE Log SET [When] = NULL, Kind = 3", u"DELETE FROM Log"})
        attempt([&] { Execute(catalog, statement); });
    attempt([&] { AppendField(catalog, u"Carts", {u"f", ColumnType::Text, 9}); });
    attempt([&] { AppendIndex(catalog, u"Carts", {u"C", {{u"Notes"}}}); });
    attempt([&] { RenameTable(catalog, u"Carts", u"Three"); });
    attempt([&] { DropTable(catalog, u"Log"); });
    attempt([&] { AppendTable(catalog, {u"Four", {{u"a", ColumnType::Memo}}, {}, {}}); });
}

// The result of a compaction has no fault.
void requireSound(const Bytes& file) {
    MemoryPager pager(file);
    CheckDatabase(pager, [](const Fault& fault) {
        if (fault.harmless)
            return;
        std::fprintf(stderr, "page %u: %s\n", fault.page, fault.reason.c_str());
        std::abort();
    });
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
                ExportRows(Filter(table, std::nullopt), TextFormat::Csv, [](std::string_view) {});
            });
        }
    });
    attempt([&] {
        MemoryFile file;
        NewFile target(file, PageZero());
        CompactPages(pager, target, ignore);
        target.finish();
        requireSound(file.bytes());
    });
    change(pager);
    attempt([&] { CheckDatabase(pager, ignore); });
    return 0;
}
