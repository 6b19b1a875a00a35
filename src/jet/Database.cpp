#include "jet/Database.h"

#include "jet/Draft.h"
#include "jet/base/Error.h"
#include "jet/base/Storage.h"
#include "jet/jet3/Jet3File.h"
#include "jet/pager/Sharing.h"

#include <optional>
#include <utility>

namespace jet {

namespace {

// A file of the older format, as a whole.
struct Older {
    std::unique_ptr<StorageFile> file;
    std::unique_ptr<Sharing> sharing; // of exclusive use; others read it as it is, and never write
    Bytes bytes;
};

std::unique_ptr<StorageFile> openOlder(Storage& storage, const std::string& path, bool& writable) {
    try {
        if (writable)
            return storage.open(path, Storage::Open::ReadWrite);
    } catch (const Error& error) {
        if (error.code() != ErrorNumber::CannotOpenFile)
            throw;
        writable = false;
    }
    return storage.open(path, Storage::Open::ReadOnly);
}

// Nothing if it is not one.
std::optional<Older> readOlder(Storage& storage, const std::string& path, const OpenOptions& options) {
    bool writable = options.exclusive;
    Older older{openOlder(storage, path, writable), nullptr, Bytes(Jet3File::PageSize3)};
    Bytes& bytes = older.bytes;
    if (older.file->read(0, bytes.data(), bytes.size()) < bytes.size() ||
        DecodePageZero(bytes).version != PageZero::Jet3)
        return std::nullopt;
    if (options.exclusive) {
        older.sharing = std::make_unique<Sharing>(storage, *older.file, path, writable, options.lockWait);
        if (older.sharing->hasForeignUsers())
            throw Error(ErrorNumber::CannotStart, path);
    }
    if (writable) {
        older.sharing->join(true);
        older.sharing->joined();
        if (!older.file->isNow(path))
            throw Error(ErrorNumber::CannotStart, path + ": it was replaced just now");
    }
    bytes.resize(older.file->size());
    bytes.resize(older.file->read(0, bytes.data(), bytes.size()));
    return older;
}

} // namespace

struct Database::Parts {
    std::string path;
    std::unique_ptr<FilePager> file;    // either this,
    std::unique_ptr<MemoryPager> older; // or a copy of a file of the older format, with the rest
    Older olderFile;
    PageZero olderHeader;
    std::string olderReason;
    Jet3Contents olderContents;
    Catalog catalog;

    Parts(Storage& storage, const std::string& name, const OpenOptions& options)
        : path(name)
        , file(std::make_unique<FilePager>(storage, name, options))
        , catalog(*file) {}

    Parts(const std::string& name, Older read, const PageZero& header, Jet3Import import)
        : path(name)
        , older(std::move(import.pager))
        , olderFile(std::move(read))
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

Database Database::open(Storage& storage, const std::string& name, const OpenOptions& options) {
    const std::string path = storage.resolve(name);
    try {
        return Database(std::make_unique<Parts>(storage, path, options));
    } catch (const Error& error) {
        if (error.code() != ErrorNumber::Unrecognised)
            throw;
        std::optional<Older> older = readOlder(storage, path, options);
        if (!older)
            throw;
        const PageZero header = DecodePageZero(older->bytes);
        if (!header.password.empty() && header.password != options.password)
            throw Error(ErrorNumber::InvalidPassword, path);
        Jet3Import import = ImportJet3(std::exchange(older->bytes, {}));
        return Database(std::make_unique<Parts>(path, std::move(*older), header, std::move(import)));
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

bool Database::isHeldAlone() const {
    if (parts_->file)
        return parts_->file->isHeldAlone();
    return parts_->olderFile.sharing != nullptr && parts_->olderFile.sharing->isExclusive();
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

void Database::emptyLog() {
    if (parts_->file)
        parts_->file->emptyLog();
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
        done_ = true; // the database was closed meanwhile, with its transaction
    }
}

void Transaction::commit() {
    database_.commit();
    done_ = true;
}

} // namespace jet
