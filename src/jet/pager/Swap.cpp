#include "jet/pager/Swap.h"

#include "jet/base/Error.h"
#include "jet/pager/Sharing.h"

#include <vector>

namespace jet {

namespace {

constexpr std::size_t LongestNote = 16384;
constexpr std::size_t CopiedAtOnce = 1 << 20;
constexpr int MostBackups = 100000;

std::string noteOf(const std::string& database) {
    return database + "-swap";
}

// The place for a copy of the old file on a disk that does not support second names.
std::string oldCopyOf(const std::string& database) {
    return database + "-swap-old";
}

// The path in the last line "key=path\n" of a note; empty if there is no complete one.
std::string noted(const std::string& note, const std::string& key) {
    std::string path;
    for (std::size_t at = 0; at < note.size();) {
        const std::size_t end = note.find('\n', at);
        if (end == std::string::npos)
            break;
        if (note.compare(at, key.size() + 1, key + "=") == 0)
            path = note.substr(at + key.size() + 1, end - at - key.size() - 1);
        at = end + 1;
    }
    return path;
}

std::string readNote(Storage& storage, const std::string& path) {
    std::string text(LongestNote, '\0');
    text.resize(storage.open(path, Storage::Open::ReadOnly)->read(0, text.data(), text.size()));
    return text;
}

} // namespace

Swap::Swap(Storage& storage, std::string database, std::string copy)
    : storage_(storage)
    , database_(std::move(database))
    , copy_(std::move(copy)) {
    if (storage_.exists(copy_))
        throw Error(ErrorNumber::DatabaseExists, copy_);
    note_ = storage_.open(noteOf(database_), Storage::Open::CreateNew);
    try {
        note("copy", copy_);
        file_ = storage_.open(copy_, Storage::Open::CreateNew);
        Sharing::holdAlone(*file_);
    } catch (const Error&) {
        settle(storage_, database_);
        throw;
    }
}

Swap::~Swap() {
    if (note_ == nullptr)
        return;
    try {
        settle(storage_, database_);
    } catch (const Error&) {
        // Left to the next program that opens the database.
    }
}

void Swap::note(const std::string& key, const std::string& path) {
    const std::string line = key + '=' + path + '\n';
    note_->write(noted_, line.data(), line.size());
    note_->flush();
    noted_ += line.size();
}

void Swap::finish(const std::function<std::string(int)>& backup) {
    file_->takeRightsOf(database_);
    file_->flush();
    int number = 1;
    while (!keepOld(backup(number)))
        if (++number > MostBackups)
            throw Error(ErrorNumber::DatabaseExists, backup(MostBackups));
    try {
        storage_.rename(copy_, database_);
    } catch (const Error&) {
        if (!file_->isNow(database_))
            throw; // else it is in place, and only the flush of the folder failed
    }
    note_.reset();
    try {
        storage_.remove(noteOf(database_));
    } catch (const Error&) {
        // Left to the next program that opens the database.
    }
}

// False: the name is taken.
bool Swap::keepOld(const std::string& backup) {
    if (storage_.exists(backup))
        return false;
    note("backup", backup);
    try {
        if (storage_.link(database_, backup))
            return true;
        const auto from = storage_.open(database_, Storage::Open::ReadOnly);
        storage_.remove(oldCopyOf(database_));
        const auto to = storage_.open(oldCopyOf(database_), Storage::Open::CreateNew);
        std::vector<char> block(CopiedAtOnce);
        for (std::uint64_t at = 0; at < from->size(); at += block.size()) {
            const std::size_t length = from->read(at, block.data(), block.size());
            to->write(at, block.data(), length);
        }
        to->takeRightsOf(database_);
        to->flush();
        storage_.publish(oldCopyOf(database_), backup);
        return true;
    } catch (const Error& error) {
        if (error.code() == ErrorNumber::DatabaseExists)
            return false;
        throw;
    }
}

void Swap::settle(Storage& storage, const std::string& database) {
    if (!storage.exists(noteOf(database)))
        return;
    const std::string note = readNote(storage, noteOf(database));
    const std::string copy = noted(note, "copy");
    const std::string backup = noted(note, "backup");
    // Each name was free when it was noted: whatever has it now was made here, unless it is another file.
    if (!backup.empty() && storage.exists(backup) &&
        storage.open(backup, Storage::Open::ReadOnly)->isNow(database))
        storage.remove(backup);
    if (!copy.empty())
        storage.remove(copy);
    storage.remove(oldCopyOf(database));
    storage.remove(noteOf(database));
}

} // namespace jet
