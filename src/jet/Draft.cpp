#include "jet/Draft.h"

#include "jet/base/Error.h"
#include "jet/pager/Sharing.h"
#include "jet/pager/WriteAheadLog.h"
#include "jet/table/Catalog.h"
#include "jet/table/CreateDatabase.h"

#include <array>

namespace jet {

namespace {

constexpr int MostDrafts = 1000; // of one database at the same time

// A stem unlike the database's, so that its lock file differs, and not ".MDB", so that searches skip it.
std::string nameBeside(const std::string& path, int number) {
    const auto slash = path.rfind('/');
    const auto dot = path.rfind('.');
    const bool hasExtension = dot != std::string::npos && (slash == std::string::npos || dot > slash);
    return path.substr(0, hasExtension ? dot : path.size()) + "-new" +
           (number == 1 ? std::string() : std::to_string(number)) + ".TMP";
}

// What a dead process left: a file that was only begun, or a database. Other files may have such a name, too.
bool isLeftDraft(StorageFile& file) {
    std::array<char, 4> start{};
    const std::size_t length = file.read(0, start.data(), start.size());
    // A power cut may leave zeros in place of what was being written.
    return length == 0 || (length == start.size() && start[0] == 0 && start[1] <= 1 && start[2] == 0);
}

} // namespace

Draft::Draft(Storage& storage, const std::string& path)
    : storage_(storage)
    , path_(storage.resolve(path)) {
    if (storage_.exists(path_))
        throw Error(ErrorNumber::DatabaseExists, path_);
    for (int number = 1; !take(nameBeside(path_, number)); ++number)
        if (number == MostDrafts)
            throw Error(ErrorNumber::CannotOpenFile, path_ + ": it is being made by too many");
    try {
        write();
    } catch (const Error&) {
        storage_.remove(beside_);
        throw;
    }
}

// False: a living process has it, it is not a draft, or it may not be written.
bool Draft::take(const std::string& beside) {
    for (;;) {
        const bool isThere = storage_.exists(beside);
        std::unique_ptr<StorageFile> file;
        try {
            file = storage_.open(beside, isThere ? Storage::Open::ReadWrite : Storage::Open::CreateNew);
        } catch (const Error& error) {
            if (error.code() == (isThere ? ErrorNumber::FileNotFound : ErrorNumber::DatabaseExists))
                continue; // removed or added in between
            if (isThere && error.code() == ErrorNumber::CannotOpenFile)
                return false;
            throw;
        }
        if (!Sharing::lockDraft(*file, false) || (isThere && !isLeftDraft(*file)))
            return false;
        if (!file->isNow(beside))
            continue; // published or removed in between
        file_ = std::move(file);
        beside_ = beside;
        return true;
    }
}

void Draft::write() const {
    storage_.remove(WriteAheadLog::PathFor(beside_));
    if (file_->size() != 0)
        file_->truncate(0);
    const Bytes image = FreshDatabase(LocalTime());
    file_->write(0, image.data(), image.size());
    file_->flush();
}

Draft::~Draft() {
    if (beside_.empty())
        return;
    try {
        storage_.remove(WriteAheadLog::PathFor(beside_));
        storage_.remove(beside_);
    } catch (const Error&) {
        // The next attempt to make this database takes it over.
    }
}

void Draft::publish() {
    storage_.remove(WriteAheadLog::PathFor(beside_)); // empty, if it could not be removed on closing
    storage_.publish(beside_, path_);
    beside_.clear();
}

void Draft::removeEmpty(Storage& storage, const std::string& path) {
    std::unique_ptr<StorageFile> file;
    try {
        file = storage.open(path, Storage::Open::ReadWrite);
    } catch (const Error& error) {
        if (error.code() == ErrorNumber::FileNotFound)
            return; // another program has removed it
        throw;
    }
    if (!Sharing::lockDraft(*file, true))
        throw Error(ErrorNumber::CannotOpenFile, path);
    if (file->size() == 0 && file->isNow(path))
        storage.remove(path);
}

} // namespace jet
