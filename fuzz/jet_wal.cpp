// Any write-ahead log beside a database: recovered if there is no other user, and followed if another user
// has the file open. Whatever it holds, opening, reading and writing succeed or end with an error. An input
// that begins with 01 is frames, each a page number and a page count of four bytes, under right checksums;
// any other is the log itself.
#include "jet/FaultyStorage.h"
#include "jet/RawFile.h"
#include "jet/base/LittleEndian.h"
#include "jet/pager/FilePager.h"
#include "jet/pager/WriteAheadLog.h"

#include <cstdlib>
#include <span>

using namespace jet;
using namespace jet::tests;

namespace {

constexpr char Path[] = "F.MDB";

Bytes logOf(std::span<const std::uint8_t> frames) {
    FaultyStorage storage;
    const Bytes database = RawFile();
    const auto log = WriteAheadLog::create(storage, WriteAheadLog::PathFor(Path),
                                           WriteAheadLog::IdentityOf(database.data()), 4);
    Bytes page(PageSize);
    for (; frames.size() >= 8; frames = frames.subspan(8)) {
        const PageNumber pages = Load32(frames.data() + 4);
        Fill(page.data(), log->end());
        log->append(Load32(frames.data()), page.data(), pages);
        if (pages != 0)
            log->publish(pages);
    }
    log->writeOut();
    return storage.get(WriteAheadLog::PathFor(Path));
}

void use(FilePager& pager) {
    try {
        const PageNumber pages = pager.pageCount();
        for (PageNumber page = 0; page < pages && page < 100; ++page)
            pager.read(page);
        Changing change(pager);
        Fill(pager.edit(2), 1);
        change.commit();
        if (FilledWith(pager.read(2)) != 1)
            std::abort();
    } catch (const Error&) {
        // As expected.
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::span<const std::uint8_t> input(data, size);
    const Bytes log = size > 0 && data[0] == 1 ? logOf(input.subspan(1)) : Bytes(data, data + size);
    OpenOptions options;
    options.lockWait = std::chrono::milliseconds(0);
    options.logPages = 2;
    try {
        FaultyStorage storage;
        storage.put(Path, RawFile());
        storage.put(WriteAheadLog::PathFor(Path), log);
        FilePager pager(storage, Path, options);
        use(pager);
    } catch (const Error&) {
        // As expected.
    }
    try {
        FaultyStorage storage;
        storage.put(Path, RawFile());
        FilePager other(storage, Path, options);
        storage.put(WriteAheadLog::PathFor(Path), log);
        FilePager pager(storage, Path, options);
        use(pager);
        use(other);
    } catch (const Error&) {
        // As expected.
    }
    return 0;
}
