#include "jet/FaultyStorage.h"

#include <algorithm>
#include <cstring>

namespace jet::tests {

namespace {
constexpr std::size_t Sector = 512; // a disk writes it completely or not at all
}

class FaultyStorage::File final : public StorageFile {
public:
    File(FaultyStorage& storage, std::shared_ptr<Inode> inode)
        : storage_(storage)
        , inode_(std::move(inode)) {}
    ~File() override { release(0, ~std::uint64_t{0}); }
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    std::uint64_t size() override {
        storage_.requirePower();
        return inode_->content.size();
    }

    std::size_t read(std::uint64_t offset, void* into, std::size_t length) override {
        storage_.requirePower();
        if (offset >= inode_->content.size())
            return 0;
        length = std::min<std::size_t>(length, inode_->content.size() - offset);
        std::memcpy(into, inode_->content.data() + offset, length);
        return length;
    }

    void write(std::uint64_t offset, const void* from, std::size_t length) override {
        const auto* bytes = static_cast<const std::uint8_t*>(from);
        Write write{offset, Bytes(bytes, bytes + length)};
        storage_.step([&] { keep({offset, Bytes(bytes, bytes + length / 2)}); });
        keep(std::move(write));
    }

    void truncate(std::uint64_t size) override {
        storage_.step();
        keep({size, {}, true});
    }

    void flush() override {
        storage_.step();
        inode_->flushed = inode_->content;
        inode_->pending.clear();
        storage_.flushNames();
    }

    bool lock(std::uint64_t offset, std::uint64_t length, bool exclusive, bool) override {
        storage_.requirePower();
        for (const Lock& lock : inode_->locks)
            if (lock.owner != this && overlaps(lock, offset, length) && (exclusive || lock.exclusive))
                return false;
        release(offset, length);
        inode_->locks.push_back({this, offset, offset + length - 1, exclusive});
        return true;
    }

    void unlock(std::uint64_t offset, std::uint64_t length) override {
        storage_.requirePower();
        release(offset, length);
    }

    std::optional<std::uint64_t> findLock(std::uint64_t offset, std::uint64_t length) override {
        storage_.requirePower();
        for (const Lock& lock : inode_->locks)
            if (lock.owner != this && overlaps(lock, offset, length))
                return std::max(lock.from, offset);
        return std::nullopt;
    }

    bool isNow(const std::string& path) override {
        return storage_.exists(path) && storage_.names_[path] == inode_;
    }
    void takeRightsOf(const std::string&) override { storage_.step(); }

private:
    static bool overlaps(const Lock& lock, std::uint64_t offset, std::uint64_t length) {
        return lock.from <= offset + (length - 1) && offset <= lock.to;
    }
    void release(std::uint64_t offset, std::uint64_t length) {
        std::erase_if(inode_->locks,
                      [&](const Lock& lock) { return lock.owner == this && overlaps(lock, offset, length); });
    }
    void keep(Write write) {
        apply(write, inode_->content);
        inode_->pending.push_back(std::move(write));
    }

    FaultyStorage& storage_;
    std::shared_ptr<Inode> inode_;
};

void FaultyStorage::apply(const Write& write, Bytes& content) {
    if (write.truncate) {
        content.resize(write.offset);
        return;
    }
    content.resize(std::max<std::size_t>(content.size(), write.offset + write.bytes.size()));
    std::copy(write.bytes.begin(), write.bytes.end(),
              content.begin() + static_cast<std::ptrdiff_t>(write.offset));
}

void FaultyStorage::step(const std::function<void()>& halfDone) {
    ++calls_;
    if (cutAt_ != 0 && calls_ >= cutAt_) {
        if (calls_ == cutAt_ && halfDone)
            halfDone();
        throw PowerCut{};
    }
    if (failAt_ != 0 && (calls_ == failAt_ || (lasting_ && calls_ > failAt_))) {
        if (halfDone)
            halfDone();
        throw Error(error_, "injected");
    }
}

void FaultyStorage::changeNames(const std::function<void(Names&)>& change) {
    pendingNames_.push_back(names_);
    change(names_);
}

std::unique_ptr<StorageFile> FaultyStorage::open(const std::string& path, Open how) {
    requirePower();
    if (how != Open::ReadOnly && readOnly_)
        throw Error(ErrorNumber::CannotOpenFile, path);
    if (how == Open::CreateNew) {
        if (exists(path))
            throw Error(ErrorNumber::DatabaseExists, path);
        step();
        changeNames([&](Names& names) { names[path] = std::make_shared<Inode>(); });
    }
    if (!exists(path))
        throw Error(ErrorNumber::FileNotFound, path);
    return std::make_unique<File>(*this, names_[path]);
}

void FaultyStorage::remove(const std::string& path) {
    if (!exists(path))
        return;
    step();
    changeNames([&](Names& names) { names.erase(path); });
}

void FaultyStorage::rename(const std::string& from, const std::string& to) {
    if (!exists(from))
        throw Error(ErrorNumber::FileNotFound, from);
    step();
    changeNames([&](Names& names) {
        names[to] = names[from];
        names.erase(from);
    });
    flushNames();
}

void FaultyStorage::publish(const std::string& from, const std::string& to) {
    if (exists(to))
        throw Error(ErrorNumber::DatabaseExists, to);
    rename(from, to);
}

bool FaultyStorage::link(const std::string& path, const std::string& second) {
    if (exists(second))
        throw Error(ErrorNumber::DatabaseExists, second);
    if (!links_)
        return false;
    step();
    changeNames([&](Names& names) { names[second] = names.at(path); });
    flushNames();
    return true;
}

void FaultyStorage::put(const std::string& path, const Bytes& content) {
    const auto inode = std::make_shared<Inode>();
    inode->content = inode->flushed = content;
    names_[path] = inode;
}

std::vector<std::string> FaultyStorage::names() const {
    std::vector<std::string> all;
    for (const auto& [name, inode] : names_)
        all.push_back(name);
    return all;
}

void FaultyStorage::afterPowerCut(Loss loss, std::uint32_t seed, FaultyStorage& into) const {
    std::mt19937 random(seed);
    const auto kept = [&] { return loss == Loss::Nothing || (loss == Loss::Random && random() % 2 != 0); };
    const bool wholeWrites = random() % 2 != 0;
    std::map<const Inode*, std::shared_ptr<Inode>> survivors;
    std::size_t changes = 0;
    while (changes < pendingNames_.size() && kept())
        ++changes;
    for (const auto& [name, inode] : changes < pendingNames_.size() ? pendingNames_[changes] : names_) {
        if (const auto known = survivors.find(inode.get()); known != survivors.end()) {
            into.names_[name] = known->second; // another name of it
            continue;
        }
        Bytes content = inode->flushed;
        for (const Write& write : inode->pending) {
            if (write.truncate) {
                if (kept())
                    apply(write, content);
                continue;
            }
            // Each write, or each sector of it, is kept or lost.
            const bool thisWrite = kept();
            for (std::size_t at = 0; at < write.bytes.size();) {
                const std::uint64_t offset = write.offset + at;
                const std::size_t length =
                    std::min<std::size_t>(Sector - offset % Sector, write.bytes.size() - at);
                const auto from = write.bytes.begin() + static_cast<std::ptrdiff_t>(at);
                if (wholeWrites ? thisWrite : kept())
                    apply({offset, Bytes(from, from + static_cast<std::ptrdiff_t>(length))}, content);
                at += length;
            }
        }
        into.put(name, content);
        survivors[inode.get()] = into.names_[name];
    }
}

} // namespace jet::tests
