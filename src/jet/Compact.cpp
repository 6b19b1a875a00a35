#include "jet/Compact.h"

#include "jet/Database.h"
#include "jet/pager/NewFile.h"
#include "jet/table/Catalog.h"

#include <algorithm>

namespace jet {

namespace {

// Removes what was begun unless it is completed.
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
            // The error that made the compaction fail is the one to report.
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
    header.queries = Catalog::QueriesPage;
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
