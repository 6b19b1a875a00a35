#include "jet/pager/Sharing.h"

#include "jet/base/Error.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <functional>
#include <thread>

namespace jet {

namespace {

// Bytes of the database file that represent locks, all beyond 2 GB, the limit of a file.
constexpr std::uint64_t LockBase = 0x80000000;
constexpr std::uint64_t OpenByte = LockBase;         // shared by each user, exclusive for an exclusive one
constexpr std::uint64_t ReadingByte = LockBase + 1;  // shared by readers, exclusive while pages are written
constexpr std::uint64_t WritingByte = LockBase + 2;  // the transaction
constexpr std::uint64_t JoiningByte = LockBase + 3;  // entering and leaving
constexpr std::uint64_t WriterByte = LockBase + 4;   // shared by each user who can write
constexpr std::uint64_t DraftByte = LockBase + 5;    // exclusive while the file is being made
constexpr std::uint64_t UserBase = LockBase + 0x100; // + n: user n of the lock file is of this engine

// The lock file: an entry of two texts per user, and a byte far beyond them that its user keeps locked.
constexpr int MaximumUsers = 255;
constexpr std::uint64_t EntryLength = 64;
constexpr std::uint64_t NameLength = 32;
constexpr std::uint64_t UserLockBase = 0x10000001; // + n - 1
constexpr char UserName[] = "Admin";

// Tries at ever longer intervals until it succeeds or `wait` is over.
bool tryFor(Sharing::Wait wait, const std::function<bool()>& attempt) {
    const auto end = std::chrono::steady_clock::now() + wait;
    auto pause = std::chrono::microseconds(20);
    while (!attempt()) {
        if (std::chrono::steady_clock::now() >= end)
            return false;
        std::this_thread::sleep_for(pause);
        pause = std::min(pause * 2, std::chrono::microseconds(2000));
    }
    return true;
}

} // namespace

void Sharing::holdAlone(StorageFile& file) {
    if (!file.lock(OpenByte, 1, true, false))
        throw Error(ErrorNumber::CannotStart, "another has opened a new file");
}

bool Sharing::lockDraft(StorageFile& file, bool wait) {
    return file.lock(DraftByte, 1, true, wait);
}

std::string Sharing::LockFileOf(const std::string& database) {
    const auto dot = database.rfind('.');
    const auto slash = database.rfind('/');
    if (dot == std::string::npos || (slash != std::string::npos && dot < slash))
        return database + ".ldb";
    const bool lower = std::any_of(database.begin() + static_cast<std::ptrdiff_t>(dot), database.end(),
                                   [](unsigned char c) { return std::islower(c) != 0; });
    return database.substr(0, dot) + (lower ? ".ldb" : ".LDB");
}

Sharing::Sharing(Storage& storage, StorageFile& file, const std::string& path, bool writable, Wait wait)
    : storage_(storage)
    , file_(file)
    , path_(path)
    , lockPath_(LockFileOf(path))
    , writable_(writable)
    , wait_(wait) {}

Sharing::Others Sharing::join(bool exclusive) {
    if (!tryFor(wait_, [this] { return file_.lock(JoiningByte, 1, writable_, false); }))
        throw Error(ErrorNumber::FileLocked, path_ + ": another user is entering or leaving");
    if (!file_.lock(OpenByte, 1, false, false))
        throw Error(ErrorNumber::FileLocked, path_ + ": opened exclusively");
    const Others others{file_.findLock(OpenByte, 1).has_value(), file_.findLock(WriterByte, 1).has_value()};
    if (exclusive && (others.any || hasForeignUsers()))
        throw Error(ErrorNumber::CannotStart, path_ + describeOthers());
    // Nobody can join meanwhile, so this cannot fail.
    exclusive_ = exclusive && writable_ && file_.lock(OpenByte, 1, true, false);
    if (writable_)
        file_.lock(WriterByte, 1, false, false);
    if (!exclusive_)
        enterLockFile();
    return others;
}

void Sharing::joined() {
    file_.unlock(JoiningByte, 1);
}

bool Sharing::leave() {
    if (!tryFor(wait_, [this] { return file_.lock(JoiningByte, 1, writable_, false); }))
        return false;
    return !file_.findLock(OpenByte, 1).has_value();
}

void Sharing::finishLeaving(bool last) {
    if (lockFile_ != nullptr && slot_ != 0)
        lockFile_->unlock(UserLockBase + static_cast<std::uint64_t>(slot_) - 1, 1);
    const bool removeIt = last && lockFile_ != nullptr && !lockFile_->findLock(UserLockBase, MaximumUsers);
    lockFile_.reset();
    if (removeIt)
        storage_.remove(lockPath_);
    file_.unlock(LockBase, 0x200);
}

void Sharing::enterLockFile() {
    try {
        lockFile_ = storage_.open(lockPath_, storage_.exists(lockPath_) ? Storage::Open::ReadWrite
                                                                        : Storage::Open::CreateNew);
        for (int slot = 1; slot <= MaximumUsers && slot_ == 0; ++slot)
            if (takeSlot(static_cast<std::uint64_t>(slot)))
                slot_ = slot;
        if (slot_ == 0)
            throw Error(ErrorNumber::FileLocked, path_ + ": 255 users have opened it");
        std::array<char, EntryLength> entry{};
        MachineName().copy(entry.data(), NameLength - 1);
        std::string(UserName).copy(entry.data() + NameLength, NameLength - 1);
        lockFile_->write(EntryLength * static_cast<std::uint64_t>(slot_ - 1), entry.data(), entry.size());
    } catch (const Error&) {
        // For instance a read-only folder: the list of users is only informative, the locks are on the
        // database.
        if (slot_ == 0)
            lockFile_.reset();
    }
}

// The database's byte first: whoever sees the entry locked also sees that it belongs to this engine.
bool Sharing::takeSlot(std::uint64_t slot) {
    const std::uint64_t entry = UserLockBase + slot - 1;
    if (lockFile_->findLock(entry, 1))
        return false;
    file_.lock(UserBase + slot, 1, false, false);
    if (lockFile_->lock(entry, 1, true, false))
        return true;
    file_.unlock(UserBase + slot, 1);
    return false;
}

std::vector<int> Sharing::otherSlots() {
    std::vector<int> slots;
    std::unique_ptr<StorageFile> own; // an exclusive user has no lock file open
    StorageFile* lockFile = lockFile_.get();
    if (lockFile == nullptr && storage_.exists(lockPath_)) {
        own = storage_.open(lockPath_, Storage::Open::ReadOnly);
        lockFile = own.get();
    }
    if (lockFile == nullptr)
        return slots;
    const std::function<void(int, int)> find = [&](int from, int to) {
        if (from > to)
            return;
        const auto found =
            lockFile->findLock(UserLockBase + static_cast<std::uint64_t>(from) - 1,
                               static_cast<std::uint64_t>(to) - static_cast<std::uint64_t>(from) + 1);
        if (!found)
            return;
        const int slot = std::clamp(static_cast<int>(*found - UserLockBase) + 1, from, to);
        slots.push_back(slot);
        find(from, slot - 1);
        find(slot + 1, to);
    };
    find(1, MaximumUsers);
    return slots;
}

bool Sharing::isInUse() {
    return file_.findLock(OpenByte, 1).has_value();
}

bool Sharing::hasForeignUsers() {
    const auto noneNow = [this] {
        for (const int slot : otherSlots())
            if (!file_.findLock(UserBase + static_cast<std::uint64_t>(slot), 1))
                return false;
        return true;
    };
    // One of ours may be between its two locks, joining or leaving.
    return !tryFor(std::chrono::milliseconds(200), noneNow);
}

std::vector<std::string> Sharing::otherUsers() {
    std::vector<std::string> users;
    const std::vector<int> slots = otherSlots();
    if (slots.empty())
        return users;
    const auto lockFile = storage_.open(lockPath_, Storage::Open::ReadOnly);
    for (const int slot : slots) {
        std::array<char, NameLength + 1> name{};
        lockFile->read(EntryLength * static_cast<std::uint64_t>(slot - 1), name.data(), NameLength);
        users.emplace_back(name.data());
    }
    return users;
}

std::string Sharing::describeOthers() {
    std::string text;
    try {
        for (const std::string& user : otherUsers())
            text += (text.empty() ? ": in use by " : ", ") + user;
    } catch (const Error&) {
        text.clear();
    }
    return text;
}

void Sharing::lockReading() {
    if (!exclusive_ && !tryFor(wait_, [this] { return file_.lock(ReadingByte, 1, false, false); }))
        throw Error(ErrorNumber::RecordLocked, path_ + ": another user writes to the file");
}

void Sharing::unlockReading() noexcept {
    try {
        if (!exclusive_)
            file_.unlock(ReadingByte, 1);
    } catch (const Error&) {
        // Closing the file releases it.
    }
}

bool Sharing::lockPages(Wait wait) {
    return exclusive_ || tryFor(wait, [this] { return file_.lock(ReadingByte, 1, true, false); });
}

bool Sharing::lockWriting() {
    return exclusive_ || tryFor(wait_, [this] { return tryLockWriting(); });
}

bool Sharing::tryLockWriting() {
    return exclusive_ || file_.lock(WritingByte, 1, true, false);
}

void Sharing::unlockWriting() noexcept {
    try {
        if (!exclusive_)
            file_.unlock(WritingByte, 1);
    } catch (const Error&) {
        // Closing the file releases it.
    }
}

} // namespace jet
