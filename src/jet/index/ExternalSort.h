// Sorts index entries that come in any order. Up to a limit they are sorted in memory; beyond it sorted runs
// go to a temporary file and are merged from there, so that memory is bounded. The file has no name: it
// disappears with the sorter, or with the program, however that ends.
#pragma once

#include "jet/index/IndexPage.h"

#include <memory>

namespace jet {

class StorageFile;

class ExternalSort {
public:
    static constexpr std::size_t DefaultMemory = std::size_t{64} << 20;

    // `memory`: bytes for entries and their order before a run is written out; the merge's read buffers use
    // the same amount in total, but at least 4 KB per run.
    explicit ExternalSort(std::size_t memory = DefaultMemory);
    ExternalSort(ExternalSort&&) noexcept;
    ExternalSort& operator=(ExternalSort&&) noexcept;
    ~ExternalSort();

    // The expected number of entries, if known: avoids repeated reallocation.
    void expect(std::uint64_t entries);
    // Throws RecordTooLarge for a key that is too long, and the errors of writing a file.
    void add(KeyView key, RowPointer row);
    // Call once, after all were added. Cost: usually linear in the number of entries.
    void sort();
    // After sort(): moves to the first entry, then to the next one; false: there is none.
    bool next();
    // The entry: its key and the row's pointer. Valid until the next call of next().
    KeyView entry() const { return entry_; }
    KeyView key() const { return entry_.first(entry_.size() - indexpage::RowLength); }
    RowPointer row() const;

    std::uint64_t size() const { return size_; }

private:
    class Run;
    struct Place {
        std::uint64_t head;   // bytes of the entry that decide most comparisons
        std::uint32_t at;     // in the chunks
        std::uint32_t length; // of the entry
    };
    KeyView entryAt(const Place& place) const;
    std::uint8_t* room(std::size_t length);
    void sortPlaces();
    void spill();

    std::size_t memory_;
    std::uint64_t size_ = 0;

    // Entries in memory.
    std::vector<std::unique_ptr<std::uint8_t[]>> chunks_;
    std::size_t used_ = 0; // bytes of the chunks
    std::vector<Place> places_;
    std::vector<Place> spare_;
    std::size_t common_ = 0; // length of the prefix common to all of them
    bool inOrder_ = true;    // they arrived in order
    std::size_t given_ = 0;

    // Entries in the file.
    std::unique_ptr<StorageFile> file_;
    std::uint64_t fileEnd_ = 0;
    std::vector<std::unique_ptr<Run>> runs_; // merging: those with entries left, as a heap
    bool begun_ = false;

    KeyView entry_;
};

} // namespace jet
