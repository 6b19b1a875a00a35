#include "jet/Database.h"

#include "jet/Draft.h"
#include "jet/Error.h"
#include "jet/Jet3File.h"
#include "jet/PageFile.h"
#include "jet/Sharing.h"

#include <optional>

namespace jet {

namespace {

// A file of the older format, whole; nothing if it is none. Such a file is not locked, so that of exclusive
// use only the others' part can be kept: nobody may have it open.
std::optional<Bytes> readOlder(Storage& storage, const std::string& path, const OpenOptions& options) {
    const auto file = storage.open(path, Storage::Open::ReadOnly);
    Bytes bytes(Jet3File::PageSize3);
    if (file->read(0, bytes.data(), bytes.size()) < bytes.size() ||
        DecodePageZero(bytes).version != PageZero::Jet3)
        return std::nullopt;
    if (options.exclusive && Sharing(storage, *file, path, false, options.lockWait).hasForeignUsers())
        throw Error(ErrorNumber::CannotStart, path);
    bytes.resize(file->size());
    bytes.resize(file->read(0, bytes.data(), bytes.size()));
    return bytes;
}

} // namespace

struct Database::Parts {
    std::string path;
    std::unique_ptr<FilePager> file;    // either this
    std::unique_ptr<MemoryPager> older; // or a copy of a file of the older format, with the rest
    PageZero olderHeader;
    std::string olderReason;
    Jet3Contents olderContents;
    Catalog catalog;

    Parts(Storage& storage, const std::string& name, const OpenOptions& options)
        : path(name)
        , file(std::make_unique<FilePager>(storage, name, options))
        , catalog(*file) {}

    Parts(const std::string& name, const PageZero& header, Jet3Import import)
        : path(name)
        , older(std::move(import.pager))
        , olderHeader(header)
        , olderReason(name + " is of an older version, which is only read")
        , olderContents(std::move(import.contents))
        , catalog(*older) {
        older->setReadOnly(olderReason);
    }
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
    try {
        return Database(std::make_unique<Parts>(storage, path, options));
    } catch (const Error& error) {
        if (error.code() != ErrorNumber::Unrecognised)
            throw;
        const std::optional<Bytes> older = readOlder(storage, path, options);
        if (!older)
            throw;
        const PageZero header = DecodePageZero(*older);
        if (!header.password.empty() && header.password != options.password)
            throw Error(ErrorNumber::InvalidPassword, path);
        return Database(std::make_unique<Parts>(path, header, ImportJet3(*older)));
    }
}

Database Database::create(const std::string& path, const OpenOptions& options) {
    return create(MachineStorage(), path, options);
}

Database Database::create(Storage& storage, const std::string& path, const OpenOptions& options) {
    Draft(storage, path).publish();
    return open(storage, path, options);
}

Catalog& Database::catalog() {
    return parts_->catalog;
}

Pager& Database::pager() {
    return parts_->catalog.pager();
}

const PageZero& Database::header() const {
    return parts_->file ? parts_->file->header() : parts_->olderHeader;
}

const std::string& Database::path() const {
    return parts_->path;
}

const std::string& Database::readOnlyReason() const {
    return parts_->file ? parts_->file->readOnlyReason() : parts_->olderReason;
}

const Jet3Contents* Database::olderContents() const {
    return parts_->older ? &parts_->olderContents : nullptr;
}

void Database::beginTransaction() {
    pager().beginChange(true);
}

void Database::commit() {
    if (transactionDepth() == 0)
        throw Error(ErrorNumber::InvalidArgument, "no transaction is running");
    pager().commitChange();
}

void Database::rollback() {
    if (transactionDepth() == 0)
        throw Error(ErrorNumber::InvalidArgument, "no transaction is running");
    pager().rollbackChange();
}

int Database::transactionDepth() const {
    return parts_->file ? parts_->file->changeDepth() : 0;
}

void Database::flush() {
    if (parts_->file)
        parts_->file->flush();
}

void Database::refresh() {
    if (parts_->file)
        parts_->file->refresh();
}

void Database::close() {
    if (parts_->file)
        parts_->file->close();
}

Transaction::~Transaction() {
    try {
        if (!done_ && database_.transactionDepth() > 0)
            database_.rollback();
    } catch (...) {
        done_ = true; // the database was closed meanwhile, and its transaction with it
    }
}

void Transaction::commit() {
    database_.commit();
    done_ = true;
}

} // namespace jet
