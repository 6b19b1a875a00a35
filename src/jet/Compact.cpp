#include "jet/Compact.h"

#include "jet/Catalog.h"
#include "jet/CompactTable.h"
#include "jet/CreateDatabase.h"
#include "jet/Database.h"
#include "jet/MemoryPager.h"
#include "jet/NewFile.h"
#include "jet/Salvage.h"

#include <algorithm>
#include <optional>

namespace jet {

namespace {

// The tables of the system, which have fixed pages.
struct SystemTable {
    PageNumber page;
    std::u16string_view name;
    std::u16string_view idColumn; // refers to objects by their Ids
};

constexpr PageNumber queriesPage = 4;
constexpr SystemTable systemTables[] = {
    {Catalog::ObjectsPage, u"MSysObjects", u"Id"},
    {Catalog::PermissionsPage, u"MSysACEs", u"ObjectId"},
    {queriesPage, u"MSysQueries", u"ObjectId"},
    {Catalog::RelationshipsPage, u"MSysRelationships", {}},
};

class Compaction {
public:
    Compaction(Pager& source, Pager& target, const OnLoss& lost)
        : source_(source)
        , target_(target)
        , lost_([this, &lost](const Fault& fault) {
            ++result_.losses;
            lost(fault);
        })
        , empty_(FreshDatabase({})) {}

    CompactResult run() {
        for (const SystemTable& table : systemTables)
            openSystemTable(table);
        MapPages maps(target_);
        maps.reserve();
        openTables();
        for (std::size_t i = 0; i < tables_.size(); ++i) {
            const bool ofSystem = i < std::size(systemTables);
            const IdColumn ids{ofSystem ? systemTables[i].idColumn : std::u16string_view{},
                               ofSystem && !systemTables[i].idColumn.empty() ? &ids_ : nullptr};
            Moving& moving = tables_[i];
            TableCompaction copy(moving.table.pager(), moving.table, target_, moving.to, maps, lost_);
            result_.rows += copy.run(ids_, ids);
            ++result_.tables;
        }
        return result_;
    }

private:
    struct Moving {
        Table table;
        PageNumber to;
    };

    // Definitions of the system that cannot be read are those of an empty database, whose rows serve, too.
    void openSystemTable(const SystemTable& system) {
        const PageNumber to = target_.allocate();
        try {
            tables_.push_back({Table(source_, system.page, std::u16string(system.name)), to});
        } catch (const Error& error) {
            loseTable(system.page, std::u16string(system.name), error);
            tables_.push_back({Table(empty_, system.page, std::u16string(system.name)), to});
        }
    }

    void openTables() {
        const Catalog catalog(source_);
        std::vector<CatalogObject> objects;
        try {
            // What is damaged in the catalogue's rows is reported when they are copied.
            objects = catalog.readableObjects([](PageNumber, const Error&) {});
        } catch (const Error& error) {
            if (!IsDamage(error))
                throw;
        }
        for (const CatalogObject& object : objects) {
            const auto page = static_cast<PageNumber>(object.id);
            if (!object.isTable() || page <= Catalog::RelationshipsPage)
                continue;
            try {
                Table table(source_, page, object.name);
                tables_.push_back({std::move(table), target_.allocate()});
                ids_.moved[object.id] = static_cast<std::int32_t>(tables_.back().to);
            } catch (const Error& error) {
                loseTable(page, object.name, error);
                ids_.lost.insert(object.id);
            }
        }
    }

    void loseTable(PageNumber page, const std::u16string& name, const Error& error) {
        if (!IsDamage(error))
            throw error;
        lost_({page, name, "holds no definition of the table that can be read: " + error.detail(), false});
    }

    Pager& source_;
    Pager& target_;
    OnLoss lost_;
    MemoryPager empty_;
    std::vector<Moving> tables_;
    NewIds ids_;
    CompactResult result_;
};

// Takes away what was begun unless it is completed.
class Target {
public:
    Target(Storage& storage, const std::string& path)
        : storage_(storage)
        , path_(path)
        , file_(storage.open(path, Storage::Open::CreateNew)) {}
    ~Target() {
        if (completed_)
            return;
        file_.reset();
        try {
            storage_.remove(path_);
        } catch (const Error&) {
            // What made the compaction fail is the error to be told.
        }
    }
    Target(const Target&) = delete;
    Target& operator=(const Target&) = delete;
    StorageFile& file() { return *file_; }
    void complete() { completed_ = true; }

private:
    Storage& storage_;
    std::string path_;
    std::unique_ptr<StorageFile> file_;
    bool completed_ = false;
};

} // namespace

CompactResult CompactPages(Pager& source, Pager& target, const OnLoss& lost) {
    const Reading reading(source);
    return Compaction(source, target, lost).run();
}

CompactResult CompactInto(Database& source, StorageFile& target, const OnLoss& lost) {
    PageZero header = source.header();
    if (source.olderContents() != nullptr) {
        std::u16string kept = std::move(header.password);
        header = DecodePageZero({source.pager().read(0), PageSize});
        header.password = std::move(kept);
    }
    header.freeMap = {1, 0};
    header.secondMap = {1, 1};
    header.objects = Catalog::ObjectsPage;
    header.permissions = Catalog::PermissionsPage;
    header.queries = queriesPage;
    header.relationships = Catalog::RelationshipsPage;
    NewFile to(target, header);
    CompactResult result = CompactPages(source.pager(), to, lost);
    if (const Jet3Contents* older = source.olderContents(); older != nullptr) {
        result.losses += older->faults.size();
        std::for_each(older->faults.begin(), older->faults.end(), lost);
    }
    to.finish();
    return result;
}

CompactResult CompactDatabase(Storage& storage, const std::string& source, const std::string& target,
                              const std::u16string& password, const OnLoss& lost) {
    OpenOptions options;
    options.readOnly = true;
    options.exclusive = true;
    options.password = password;
    Database from = Database::open(storage, source, options);
    Target file(storage, target);
    const CompactResult result = CompactInto(from, file.file(), lost);
    file.complete();
    return result;
}

CompactResult CompactDatabase(const std::string& source, const std::string& target,
                              const std::u16string& password, const OnLoss& lost) {
    return CompactDatabase(MachineStorage(), source, target, password, lost);
}

} // namespace jet
