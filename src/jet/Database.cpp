#include "jet/Database.h"

#include "jet/CreateDatabase.h"
#include "jet/Error.h"
#include "jet/PageFile.h"

namespace jet {

struct Database::Parts {
    std::string path;
    std::unique_ptr<FilePager> pager;
    Catalog catalog;

    Parts(Storage& storage, const std::string& file, const OpenOptions& options)
        : path(file)
        , pager(std::make_unique<FilePager>(storage, file, options))
        , catalog(*pager) {}
};

Database::Database(std::unique_ptr<Parts> parts)
    : parts_(std::move(parts)) {}
Database::Database(Database&&) noexcept = default;
Database& Database::operator=(Database&&) noexcept = default;
Database::~Database() = default;

Database Database::open(const std::string& path, const OpenOptions& options) {
    return open(MachineStorage(), path, options);
}

Database Database::open(Storage& storage, const std::string& path, const OpenOptions& options) {
    return Database(std::make_unique<Parts>(storage, path, options));
}

Database Database::create(const std::string& path, const OpenOptions& options) {
    return create(MachineStorage(), path, options);
}

Database Database::create(Storage& storage, const std::string& path, const OpenOptions& options) {
    if (storage.exists(path))
        throw Error(ErrorNumber::DatabaseExists, path);
    const Bytes image = FreshDatabase(LocalTime());
    const std::string beside = path + "-new";
    storage.remove(beside);
    try {
        const auto file = storage.open(beside, Storage::Open::CreateNew);
        file->write(0, image.data(), image.size());
        file->flush();
    } catch (const Error&) {
        storage.remove(beside);
        throw;
    }
    storage.rename(beside, path);
    return open(storage, path, options);
}

Catalog& Database::catalog() {
    return parts_->catalog;
}

Pager& Database::pager() {
    return *parts_->pager;
}

const PageZero& Database::header() const {
    return parts_->pager->header();
}

const std::string& Database::path() const {
    return parts_->path;
}

const std::string& Database::readOnlyReason() const {
    return parts_->pager->readOnlyReason();
}

void Database::beginTransaction() {
    parts_->pager->beginChange(true);
}

void Database::commit() {
    if (transactionDepth() == 0)
        throw Error(ErrorNumber::InvalidArgument, "no transaction is running");
    parts_->pager->commitChange();
}

void Database::rollback() {
    if (transactionDepth() == 0)
        throw Error(ErrorNumber::InvalidArgument, "no transaction is running");
    parts_->pager->rollbackChange();
}

int Database::transactionDepth() const {
    return parts_->pager->changeDepth();
}

void Database::flush() {
    parts_->pager->flush();
}

void Database::refresh() {
    parts_->pager->refresh();
}

void Database::close() {
    parts_->pager->close();
}

Transaction::~Transaction() {
    if (!done_ && database_.transactionDepth() > 0)
        database_.rollback();
}

void Transaction::commit() {
    database_.commit();
    done_ = true;
}

} // namespace jet
