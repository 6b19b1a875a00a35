#include "jet/maintenance/CompactCatalog.h"
#include "jet/maintenance/CompactTable.h"
#include "jet/maintenance/DefinitionRepair.h"
#include "jet/maintenance/MendedPages.h"
#include "jet/maintenance/SourceTables.h"
#include "jet/pager/MemoryPager.h"
#include "jet/table/CreateDatabase.h"
#include "jet/table/Salvage.h"

#include <algorithm>

namespace jet {

namespace {

struct SystemTable {
    PageNumber page;
    const char16_t* name;
};

constexpr SystemTable systemTables[] = {{Catalog::ObjectsPage, u"MSysObjects"},
                                        {Catalog::PermissionsPage, u"MSysACEs"},
                                        {Catalog::QueriesPage, u"MSysQueries"},
                                        {Catalog::RelationshipsPage, u"MSysRelationships"}};

class Compaction {
public:
    Compaction(Pager& source, Pager& target, const OnLoss& lost)
        : source_(source)
        , target_(target)
        , lost_([this, &lost](const Fault& fault) {
            ++result_.losses;
            rightsLost_ = rightsLost_ || fault.table == u"MSysACEs";
            lost(fault);
        })
        , empty_(FreshDatabase({}))
        , tables_(source, empty_, lost_)
        , maps_(target)
        , system_(openSystemTables())
        , catalog_(system_[0], system_[1], system_[2], system_[3], empty_, lost_) {}

    CompactResult run() {
        maps_.reserve();
        openTables();
        for (Moving& moving : moving_)
            copyTable(moving);
        catalog_.settle();
        for (std::size_t i = 0; i < system_.size(); ++i) {
            const PageNumber page = systemTables[i].page;
            const RowChange change = catalog_.changeOf(page);
            TableCompaction copy(source_, system_[i], target_, page, maps_, change, lost_);
            count(copy.run());
        }
        catalog_.complete(target_, rightsLost_);
        nameRecovered();
        return result_;
    }

private:
    // A user table during its transfer.
    struct Moving {
        Table table;
        std::optional<CatalogObject> object; // nothing: no catalogue row names it
        PageNumber to;
    };

    // Their definitions have the same pages in every file.
    std::vector<Table> openSystemTables() {
        std::vector<Table> tables;
        for (const SystemTable& table : systemTables) {
            static_cast<void>(target_.allocate());
            tables.push_back(tables_.openSystem(table.page, table.name));
        }
        return tables;
    }

    void openTables() {
        std::vector<CatalogObject> astray; // those that name no definition
        for (const CatalogObject& object : catalog_.objects()) {
            const auto page = static_cast<PageNumber>(object.id);
            if (!object.isTable() || (isSystemTable(page) && taken_.insert(page).second))
                continue;
            if (isDefinitionPage(page) && taken_.insert(page).second)
                open(page, object);
            else
                astray.push_back(object);
        }
        for (CatalogObject object : catalog_.objects())
            if (seemsTable(object)) {
                object.kind = CatalogObject::TableKind;
                open(static_cast<PageNumber>(object.id), object);
            }
        if (catalog_.isDamaged() || !astray.empty())
            recover(astray);
        for (const CatalogObject& object : astray)
            lost_({object.row.page, object.name,
                   "names page " + std::to_string(static_cast<PageNumber>(object.id)) +
                       ", which is not the definition of this table",
                   false});
    }

    static bool isSystemTable(PageNumber page) {
        return std::any_of(std::begin(systemTables), std::end(systemTables),
                           [page](const SystemTable& table) { return table.page == page; });
    }
    bool isDefinitionPage(PageNumber page) {
        constexpr std::uint8_t definitionType = 2;
        return page < source_.pageCount() && source_.read(page)[0] == definitionType;
    }
    // An object of a damaged kind: only tables have definition pages as their numbers.
    bool seemsTable(const CatalogObject& object) {
        const auto page = static_cast<PageNumber>(object.id);
        return !object.isTable() && isDefinitionPage(page) && tables_.isDefinition(page) &&
               taken_.insert(page).second;
    }

    void open(PageNumber page, const std::optional<CatalogObject>& object) {
        if (auto table = tables_.open(page, object ? object->name : std::u16string(), object.has_value()))
            moving_.push_back({std::move(*table), object, target_.allocate()});
    }

    // Definitions that no object names: a single one belongs to the single object without a definition;
    // others get names of their own.
    void recover(std::vector<CatalogObject>& astray) {
        for (const Moving& moving : moving_) {
            const PageNumber page = moving.table.definition().page;
            const std::vector<PageNumber> pages = DefinitionPages(source_, page);
            taken_.insert(pages.begin(), pages.end());
        }
        const std::vector<PageNumber> found = tables_.findDefinitions(taken_);
        for (const PageNumber page : found) {
            if (found.size() > 1 || astray.size() != 1) {
                open(page, std::nullopt);
                continue;
            }
            astray.front().id = static_cast<std::int32_t>(page);
            open(page, astray.front());
            astray.clear();
        }
    }

    // Copies a table completely or not at all.
    struct Copied {
        std::vector<Fault> losses;
        OnLoss lose = [this](const Fault& fault) { losses.push_back(fault); };
        std::unique_ptr<TableCompaction> compaction;
        std::uint64_t rows = 0;
        bool done = false;
    };
    void copyFrom(const Table& table, PageNumber to, Copied& copied) {
        copied.losses.clear();
        const auto damaged = [&](PageNumber page, const Error& error) {
            copied.lose({page, table.name(), "could not be saved: " + error.detail(), false});
            copied.compaction->discard();
        };
        copied.compaction =
            std::make_unique<TableCompaction>(source_, table, target_, to, maps_, unchanged_, copied.lose);
        copied.done =
            DespiteDamage(table.definition().page, damaged, [&] { copied.rows = copied.compaction->run(); });
    }

    void copyTable(Moving& moving) {
        Copied copied;
        copyFrom(moving.table, moving.to, copied);
        if (copied.done && copied.rows < moving.table.definition().rowCount)
            if (auto whole = tables_.withUnlistedPages(moving.table)) {
                copied.compaction->discard();
                moving.table = std::move(*whole);
                copyFrom(moving.table, moving.to, copied);
            }
        if (copied.done && copied.losses.empty() && copied.rows < moving.table.definition().rowCount)
            copied.lose({moving.table.definition().page, moving.table.name(),
                         "counts " + std::to_string(moving.table.definition().rowCount) + " rows, of which " +
                             std::to_string(copied.rows) + " are there",
                         false});
        std::for_each(copied.losses.begin(), copied.losses.end(), lost_);
        if (!copied.done) {
            target_.release(moving.to);
            moving.to = 0;
            return;
        }
        count(copied.rows);
        if (moving.object)
            catalog_.add(*moving.object, copied.compaction->definition());
    }

    void count(std::uint64_t rows) {
        result_.rows += rows;
        ++result_.tables;
    }

    // Tables that no object names.
    void nameRecovered() {
        Catalog catalog(target_);
        NamesBeside beside;
        for (const Moving& moving : moving_) {
            if (moving.object || moving.to == 0)
                continue;
            const auto isTaken = [&](std::u16string_view name) {
                return catalog.findTable(name).has_value();
            };
            const std::u16string first = u"Recovered";
            const std::u16string name = isTaken(first) ? beside.next(first, isTaken) : first;
            lost_({moving.table.definition().page, name,
                   "is the definition of a table without a name, which is '" + ToUtf8(name) + "' now",
                   false});
            catalog.addTable(moving.to, name, {});
        }
    }

    Pager& source_;
    Pager& target_;
    OnLoss lost_;
    CompactResult result_;
    bool rightsLost_ = false;
    MemoryPager empty_;
    SourceTables tables_;
    MapPages maps_;
    std::vector<Table> system_;
    CompactCatalog catalog_;
    const RowChange unchanged_;
    std::vector<Moving> moving_;
    std::set<PageNumber> taken_; // definitions that have an owner
};

} // namespace

CompactResult CompactPages(Pager& source, Pager& target, const OnLoss& lost) {
    const Reading reading(source);
    MendedPages pages(source);
    return Compaction(pages, target, lost).run();
}

} // namespace jet
