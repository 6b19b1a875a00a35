#include "jet/Check.h"

#include "jet/Database.h"
#include "jet/maintenance/CheckCatalog.h"
#include "jet/maintenance/CheckDefinition.h"
#include "jet/maintenance/CheckTable.h"
#include "jet/page/DataPage.h"
#include "jet/page/PageZero.h"

#include <tuple>

namespace jet {

namespace {

class DatabaseCheck {
public:
    DatabaseCheck(Pager& pager, const std::function<void(const Fault&)>& report)
        : context_(pager, report)
        , catalog_(pager) {}

    CheckResult run() {
        result_.pages = context_.ledger.pages();
        checkHeader();
        std::vector<CatalogObject> objects;
        context_.faults.setTable(u"MSysObjects");
        const bool readable = context_.faults.guard(Catalog::ObjectsPage, [&] {
            // Damage in the catalogue's own rows is reported with its table.
            objects =
                ReadObjects(Table(context_.pager, Catalog::ObjectsPage), [](PageNumber, const Error&) {});
        });
        bool catalogListed = false;
        for (const CatalogObject& object : objects) {
            catalogListed = catalogListed || object.id == static_cast<std::int32_t>(Catalog::ObjectsPage);
            if (object.isTable())
                checkTable(static_cast<PageNumber>(object.id), object.name);
        }
        if (readable && !catalogListed)
            checkTable(Catalog::ObjectsPage, u"MSysObjects");
        CheckCatalog(context_, catalog_, objects);
        context_.faults.setTable({});
        checkFreePages();
        result_.faults = context_.faults.count();
        return result_;
    }

private:
    void checkHeader() {
        context_.faults.guard(0, [&] {
            header_ = DecodePageZero({context_.pager.read(0), PageSize});
            if (!header_.cleanlyClosed)
                context_.faults.remark(0, "says that a program ended while it was writing");
        });
        const std::tuple<PageNumber, PageNumber, const char*> tables[] = {
            {header_.objects, Catalog::ObjectsPage, "MSysObjects"},
            {header_.permissions, Catalog::PermissionsPage, "MSysACEs"},
            {header_.queries, Catalog::QueriesPage, "MSysQueries"},
            {header_.relationships, Catalog::RelationshipsPage, "MSysRelationships"}};
        for (const auto& [said, page, name] : tables)
            if (said != page)
                context_.faults.fault(0, "names page " + std::to_string(said) + " as the definition of " +
                                             name + " instead of page " + std::to_string(page));
        const PageNumber page = header_.freeMap.page;
        const std::string name = "free pages";
        if (context_.ledger.claim(page, context_.ledger.add("map of the " + name)) &&
            datapage::IsDataPage(context_.pager.read(page))) {
            context_.faults.guard(page, [&] {
                datapage::Check(context_.pager.read(page), page);
                for (const RowPointer map : {header_.freeMap, header_.secondMap}) {
                    const PageLedger::Owner bitmaps = context_.ledger.add("map pages of the " + name);
                    for (const PageNumber bitmap : UsageMap(context_.pager, map).bitmapPages())
                        context_.ledger.claim(bitmap, bitmaps);
                }
            });
        } else {
            context_.faults.fault(page, "does not hold the map of the free pages");
        }
    }

    void checkTable(PageNumber page, const std::u16string& name) {
        context_.faults.setTable(name);
        ++result_.tables;
        context_.faults.guard(page, [&] {
            const PageLedger::Owner definition = context_.ledger.add("definition");
            const std::vector<PageNumber> pages = DefinitionPages(context_.pager, page);
            for (const PageNumber one : pages) {
                if (!context_.ledger.claim(one, definition))
                    return; // of another table: its rows are checked there
            }
            const Table table(context_.pager, page, name);
            CheckDefinition(context_, table.definition(), pages);
            TableCheck check(context_, table);
            check.run();
            result_.rows += check.rows();
        });
    }

    void checkFreePages() {
        context_.faults.guard(header_.freeMap.page, [&] {
            const FreeMap free(context_.pager, header_.freeMap);
            for (PageNumber page = 1; page < context_.ledger.pages(); ++page) {
                const bool claimed = context_.ledger.isClaimed(page);
                if (claimed && context_.pager.read(page)[1] != 1)
                    context_.faults.fault(page, "does not have 1 as its second byte");
                if (free.isFree(page) && claimed)
                    context_.faults.fault(page, "is listed as free but belongs to the " +
                                                    context_.ledger.describe(page));
                else if (!free.isFree(page) && !claimed)
                    context_.faults.remark(page, "is lost: it is neither free nor anyone's");
            }
        });
    }

    CheckContext context_;
    Catalog catalog_;
    PageZero header_;
    CheckResult result_;
};

} // namespace

CheckResult CheckDatabase(Pager& pager, const std::function<void(const Fault&)>& report) {
    const Reading reading(pager);
    return DatabaseCheck(pager, report).run();
}

CheckResult CheckDatabase(Database& database, const std::function<void(const Fault&)>& report) {
    const Jet3Contents* older = database.olderContents();
    if (older == nullptr)
        return CheckDatabase(database.pager(), report);
    CheckResult result{older->pages, older->tables, older->rows, 0};
    for (const Fault& fault : older->faults) {
        result.faults += fault.harmless ? 0 : 1;
        report(fault);
    }
    return result;
}

} // namespace jet
