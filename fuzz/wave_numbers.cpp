// The list of remembered wave devices, which a user may edit: what is read from it can be written and read
// again, and numbering devices by it stays within its bounds.
#include "platform/devices/WaveNumbers.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

using namespace tolvex::platform;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArray text(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const KnownWaveDevices known = ReadKnownWaveDevices(text);
    const QByteArray written = WriteKnownWaveDevices(known);
    const QList<KnownWaveDevice> numbered = NumberWaveDevices(known.outputs, known.inputs);
    if (WriteKnownWaveDevices(ReadKnownWaveDevices(written)) != written || numbered.size() > 64 ||
        numbered.size() < known.outputs.size())
        std::abort();
    return 0;
}
