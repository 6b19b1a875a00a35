// The files of a compaction as the engine sees them: shows the user the progress and a Stop, and can put a
// sound first page before a file whose own one is destroyed.
#pragma once

#include "jet/Storage.h"
#include "jet/Value.h"
#include "platform/Prompts.h"

namespace tolvex {

// Thrown through the engine, which removes what it began.
struct CompactionStopped {};

class CompactionStorage final : public jet::Storage {
public:
    // `source`: the host path of the file to compact. `progress` may be null.
    CompactionStorage(const std::string& source, platform::Progress* progress);

    // From now on, the source is read with the first page of a new database. False: what follows the first
    // page does not look like a database either.
    bool replaceFirstPage();

    std::unique_ptr<jet::StorageFile> open(const std::string& path, Open how) override;
    std::string resolve(const std::string& path) override { return files_.resolve(path); }
    bool exists(const std::string& path) override { return files_.exists(path); }
    void remove(const std::string& path) override { files_.remove(path); }
    void rename(const std::string& from, const std::string& to) override { files_.rename(from, to); }
    void publish(const std::string& from, const std::string& to) override { files_.publish(from, to); }
    bool link(const std::string& path, const std::string& second) override {
        return files_.link(path, second);
    }

private:
    jet::Storage& files_;
    std::string source_;
    platform::Progress* progress_;
    jet::Bytes firstPage_;
};

} // namespace tolvex
