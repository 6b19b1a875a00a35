// Files in memory that behave as badly as the worst disk: a power cut
// loses unflushed data in any part and any order, and any call can be
// made to fail. Storage for tests; several users may be open on it.
#pragma once

#include "jet/base/Error.h"
#include "jet/base/Storage.h"

#include <functional>
#include <map>
#include <random>
#include <set>
#include <vector>

namespace jet::tests {

// Thrown by the call at which the power fails, and by every later call.
struct PowerCut : Error {
    PowerCut()
        : Error(ErrorNumber::DiskIo, "no power") {}
};

class FaultyStorage final : public Storage {
public:
    using Bytes = std::vector<std::uint8_t>;

    FaultyStorage() = default;
    FaultyStorage(const FaultyStorage&) = delete;
    FaultyStorage& operator=(const FaultyStorage&) = delete;

    std::unique_ptr<StorageFile> open(const std::string& path, Open how) override;
    bool exists(const std::string& path) override {
        requirePower();
        return names_.count(path) != 0;
    }
    void remove(const std::string& path) override;
    void rename(const std::string& from, const std::string& to) override;
    void publish(const std::string& from, const std::string& to) override;
    bool link(const std::string& path, const std::string& second) override;

    // Adds a file, already flushed.
    void put(const std::string& path, const Bytes& content);
    Bytes get(const std::string& path) const { return names_.at(path)->content; }
    std::vector<std::string> names() const;

    // Number of calls that changed something on the disk.
    int calls() const { return calls_; }
    // Cuts the power, or the share, just before the call of this number (from 1) takes effect; a write may be
    // partial. Afterwards nothing can be read, opened or locked either.
    void cutAt(int call) { cutAt_ = call; }
    // Makes the call of this number fail, and if `lasting` every later one.
    void failAt(int call, ErrorNumber error, bool lasting) {
        failAt_ = call;
        error_ = error;
        lasting_ = lasting;
    }
    // Whether files may have two names.
    void setLinks(bool links) { links_ = links; }
    // Refuses opening a file for writing, and making one.
    void setReadOnly(bool readOnly) { readOnly_ = readOnly; }

    // The content of the disk when power returns. Unflushed data is lost, kept, or kept by chance.
    enum class Loss { Everything, Nothing, Random };
    void afterPowerCut(Loss loss, std::uint32_t seed, FaultyStorage& into) const;

private:
    struct Write {
        std::uint64_t offset = 0;
        Bytes bytes;
        bool truncate = false; // to `offset`
    };
    struct Lock {
        const void* owner = nullptr;
        std::uint64_t from = 0;
        std::uint64_t to = 0; // last byte
        bool exclusive = false;
    };
    struct Inode {
        Bytes content;
        Bytes flushed;
        std::vector<Write> pending; // since the last flush, in order
        std::vector<Lock> locks;
    };
    using Names = std::map<std::string, std::shared_ptr<Inode>>;
    class File;

    void step(const std::function<void()>& halfDone = {});
    void requirePower() const {
        if (cutAt_ != 0 && calls_ >= cutAt_)
            throw PowerCut{};
    }
    static void apply(const Write& write, Bytes& content);
    void changeNames(const std::function<void(Names&)>& change);
    void flushNames() { pendingNames_.clear(); }

    Names names_;
    // Names before each change since the last flush, oldest
    // first: changes of names reach the disk in order.
    std::vector<Names> pendingNames_;
    int calls_ = 0;
    int cutAt_ = 0;
    int failAt_ = 0;
    ErrorNumber error_ = ErrorNumber::DiskIo;
    bool lasting_ = false;
    bool readOnly_ = false;
    bool links_ = true;
};

} // namespace jet::tests
