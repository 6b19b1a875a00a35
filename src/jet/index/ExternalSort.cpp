#include "jet/index/ExternalSort.h"

#include "jet/base/Error.h"
#include "jet/base/Prefetch.h"
#include "jet/base/Storage.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <filesystem>
#include <random>
#include <utility>

namespace jet {

using namespace indexpage;

namespace {

constexpr std::size_t ChunkLength = 65536;
constexpr std::size_t LengthField = 2; // before each entry in the file
constexpr std::size_t LeastBuffer = 4096;
constexpr std::size_t MostBuffer = std::size_t{1} << 18;
constexpr std::size_t Ahead = 8;           // entries prefetched when they lie scattered in memory
constexpr std::size_t WorthCounting = 256; // with fewer, sorting compares them

static_assert(LeastBuffer >= LengthField + MaximumEntry);

// The first bytes of an entry as a number with the same order; zeros if it is shorter.
std::uint64_t headOf(KeyView entry) {
    std::uint8_t bytes[8] = {};
    std::memcpy(bytes, entry.data(), std::min(entry.size(), sizeof bytes));
    std::uint64_t head = 0;
    for (const std::uint8_t byte : bytes)
        head = head << 8 | byte;
    return head;
}

// Begin and end of an entry, which may lie on two cache lines.
void prefetch(KeyView entry) {
    Prefetch(entry.data());
    Prefetch(entry.data() + entry.size() - 1);
}

// Positions in the order of their heads: a radix sort from the lowest byte up that skips bytes in which all
// heads agree.
template<typename Place>
void sortByHeads(std::vector<Place>& places, std::vector<Place>& spare) {
    constexpr std::size_t Bytes = sizeof(std::uint64_t);
    constexpr std::size_t Values = 256;
    std::array<std::array<std::uint32_t, Values>, Bytes> counts{};
    const auto byteOf = [](const Place& place, std::size_t byte) {
        return static_cast<std::uint8_t>(place.head >> 8 * byte);
    };
    for (const Place& place : places)
        for (std::size_t byte = 0; byte < Bytes; ++byte)
            ++counts[byte][byteOf(place, byte)];
    spare.resize(places.size());
    for (std::size_t byte = 0; byte < Bytes; ++byte) {
        auto& next = counts[byte];
        if (next[byteOf(places.front(), byte)] == places.size())
            continue;
        std::uint32_t before = 0;
        for (std::uint32_t& count : next)
            before += std::exchange(count, before);
        for (const Place& place : places)
            spare[next[byteOf(place, byte)]++] = place;
        places.swap(spare);
    }
}

std::unique_ptr<StorageFile> temporaryFile() {
    Storage& storage = MachineStorage();
    std::random_device random;
    for (;;) {
        const auto path =
            (std::filesystem::temp_directory_path() / ("jet-sort-" + std::to_string(random()))).string();
        try {
            auto file = storage.open(path, Storage::Open::CreateNew);
            storage.remove(path);
            return file;
        } catch (const Error& error) {
            if (error.code() != ErrorNumber::DatabaseExists)
                throw;
        }
    }
}

} // namespace

// One sorted run in the file, read through a buffer.
class ExternalSort::Run {
public:
    Run(std::uint64_t begin, std::uint64_t end)
        : at_(begin)
        , end_(end) {}

    void open(StorageFile& file, std::size_t buffer) {
        file_ = &file;
        buffer_.resize(buffer);
    }
    KeyView entry() const { return entry_; }
    bool next() {
        if (filled_ - taken_ < LengthField + MaximumEntry)
            fill();
        if (filled_ == taken_)
            return false;
        const std::uint8_t* at = buffer_.data() + taken_;
        entry_ = {at + LengthField, Load16(at)};
        taken_ += LengthField + entry_.size();
        return true;
    }

private:
    void fill() {
        std::memmove(buffer_.data(), buffer_.data() + taken_, filled_ - taken_);
        filled_ -= taken_;
        taken_ = 0;
        const auto wanted =
            static_cast<std::size_t>(std::min<std::uint64_t>(buffer_.size() - filled_, end_ - at_));
        if (file_->read(at_, buffer_.data() + filled_, wanted) != wanted)
            throw Error(ErrorNumber::DiskIo, "a temporary file is too short");
        at_ += wanted;
        filled_ += wanted;
    }

    StorageFile* file_ = nullptr;
    std::uint64_t at_; // in the file: of what is not in the buffer yet
    std::uint64_t end_;
    Bytes buffer_;
    std::size_t filled_ = 0;
    std::size_t taken_ = 0;
    KeyView entry_;
};

ExternalSort::ExternalSort(std::size_t memory)
    : memory_(memory) {}

ExternalSort::ExternalSort(ExternalSort&&) noexcept = default;
ExternalSort& ExternalSort::operator=(ExternalSort&&) noexcept = default;
ExternalSort::~ExternalSort() = default;

RowPointer ExternalSort::row() const {
    return RowOf(entry_);
}

KeyView ExternalSort::entryAt(const Place& place) const {
    return {chunks_[place.at / ChunkLength].get() + place.at % ChunkLength, place.length};
}

// Bytes for an entry, which lies in one chunk.
std::uint8_t* ExternalSort::room(std::size_t length) {
    if (used_ % ChunkLength + length > ChunkLength)
        used_ += ChunkLength - used_ % ChunkLength;
    if (used_ / ChunkLength == chunks_.size())
        chunks_.emplace_back(new std::uint8_t[ChunkLength]);
    std::uint8_t* at = chunks_[used_ / ChunkLength].get() + used_ % ChunkLength;
    used_ += length;
    return at;
}

void ExternalSort::expect(std::uint64_t entries) {
    places_.reserve(
        static_cast<std::size_t>(std::min<std::uint64_t>(entries, memory_ / (3 * sizeof(Place)))));
}

void ExternalSort::add(KeyView key, RowPointer row) {
    const std::size_t length = key.size() + RowLength;
    // Sorting needs a second array of positions.
    if (!places_.empty() && used_ + length + 2 * sizeof(Place) * (places_.size() + 1) > memory_)
        spill();
    std::uint8_t* at = room(length);
    WriteEntry(key, row, at);
    if (places_.empty()) {
        common_ = length;
        inOrder_ = true;
    } else {
        const KeyView first = entryAt(places_.front());
        common_ = std::min(common_, SharedLength(first, {at, length}));
        inOrder_ = inOrder_ && CompareEntries(entryAt(places_.back()), {at, length}) < 0;
    }
    places_.push_back({0, static_cast<std::uint32_t>(used_ - length), static_cast<std::uint32_t>(length)});
    ++size_;
}

// Keys of one index often begin alike; the common prefix
// does not order them, so the heads begin after it.
void ExternalSort::sortPlaces() {
    if (inOrder_)
        return;
    for (Place& place : places_)
        place.head = headOf(entryAt(place).subspan(common_));
    const auto before = [this](const Place& a, const Place& b) {
        return CompareEntries(entryAt(a), entryAt(b)) < 0;
    };
    if (places_.size() < WorthCounting) {
        std::sort(places_.begin(), places_.end(), before);
        return;
    }
    sortByHeads(places_, spare_);
    for (auto first = places_.begin(); first != places_.end();) {
        auto last = first + 1;
        while (last != places_.end() && last->head == first->head)
            ++last;
        std::sort(first, last, before);
        first = last;
    }
}

// Writes the entries in memory to the file as a sorted run.
void ExternalSort::spill() {
    sortPlaces();
    if (file_ == nullptr)
        file_ = temporaryFile();
    const std::uint64_t begin = fileEnd_;
    Bytes buffer;
    const auto write = [&] {
        file_->write(fileEnd_, buffer.data(), buffer.size());
        fileEnd_ += buffer.size();
        buffer.clear();
    };
    for (const Place& place : places_) {
        const KeyView entry = entryAt(place);
        buffer.resize(buffer.size() + LengthField);
        Store16(buffer.data() + buffer.size() - LengthField, place.length);
        buffer.insert(buffer.end(), entry.begin(), entry.end());
        if (buffer.size() >= ChunkLength)
            write();
    }
    write();
    runs_.push_back(std::make_unique<Run>(begin, fileEnd_));
    places_.clear();
    used_ = 0;
}

namespace {

constexpr auto Behind = [](const auto& a, const auto& b) {
    return CompareEntries(a->entry(), b->entry()) > 0;
};

} // namespace

void ExternalSort::sort() {
    if (runs_.empty()) {
        sortPlaces();
        spare_ = {};
        return;
    }
    if (!places_.empty())
        spill();
    chunks_.clear();
    places_ = {};
    spare_ = {};
    for (const auto& run : runs_) {
        run->open(*file_, std::clamp(memory_ / runs_.size(), LeastBuffer, MostBuffer));
        run->next(); // no run is empty
    }
    std::make_heap(runs_.begin(), runs_.end(), Behind);
}

bool ExternalSort::next() {
    if (file_ == nullptr) {
        if (given_ == places_.size())
            return false;
        if (!inOrder_ && given_ + Ahead < places_.size())
            prefetch(entryAt(places_[given_ + Ahead]));
        entry_ = entryAt(places_[given_++]);
        return true;
    }
    if (begun_ && !runs_.empty()) {
        std::pop_heap(runs_.begin(), runs_.end(), Behind);
        if (runs_.back()->next())
            std::push_heap(runs_.begin(), runs_.end(), Behind);
        else
            runs_.pop_back();
    }
    begun_ = true;
    if (runs_.empty())
        return false;
    entry_ = runs_.front()->entry();
    return true;
}

} // namespace jet
