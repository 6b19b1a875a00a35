// A file of the older format from outside: whatever its bytes are, reading it ends, and the result is a sound
// database. An input of a page or more is the file; a shorter one is damage to a good file: four bytes each,
// an offset (of two) and the two bytes to put there.
#include "jet/Check.h"
#include "jet/base/Error.h"
#include "jet/jet3/Jet3Builder.h"
#include "jet/jet3/Jet3Import.h"

#include <cstdio>
#include <cstdlib>

namespace {

using namespace jet;

constexpr std::size_t longest = 200 * Jet3File::PageSize3;

Bytes damagedFile(const std::uint8_t* data, std::size_t size) {
    static const Bytes sound = tests::Jet3Builder().file;
    Bytes file = sound;
    for (; size >= 4; size -= 4, data += 4) {
        const std::size_t at = Load16(data) % (file.size() - 1);
        file[at] = data[2];
        file[at + 1] = data[3];
    }
    return file;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size > longest)
        return 0;
    const Bytes file = size < Jet3File::PageSize3 ? damagedFile(data, size) : Bytes(data, data + size);
    try {
        const Jet3Import import = ImportJet3(file);
        CheckDatabase(*import.pager, [](const Fault& fault) {
            if (fault.harmless)
                return;
            std::fprintf(stderr, "page %u: %s\n", fault.page, fault.reason.c_str());
            std::abort();
        });
    } catch (const Error&) {
        // a file of another kind, or one without a catalogue, is answered with
    }
    return 0;
}
