// A driver library for the loader: device 7 is a board of 40 inputs and 24 outputs, device 9 one of ports,
// others do not open.
#include <cstdint>
#include <cstring>

namespace {
constexpr std::int32_t fixedHandle = 1;
constexpr std::int32_t portsHandle = 2;
} // namespace

extern "C" {

__attribute__((visibility("default"))) std::int32_t DRV_DeviceOpen(std::uint32_t device,
                                                                   std::int32_t* handle) {
    *handle = device == 7 ? fixedHandle : portsHandle;
    return device == 7 || device == 9 ? 0 : 3;
}

__attribute__((visibility("default"))) std::int32_t DRV_DeviceClose(std::int32_t* handle) {
    return *handle == fixedHandle || *handle == portsHandle ? 0 : 4;
}

struct Features {
    char version[8];
    char name[16];
    std::uint32_t board;
    std::uint16_t analogue[3];
    std::uint16_t outputs;
    std::uint16_t inputs;
    char rest[482];
};
static_assert(sizeof(Features) == 520);
struct FeaturesQuestion {
    void* buffer;
    std::uint16_t size;
};

__attribute__((visibility("default"))) std::int32_t DRV_DeviceGetFeatures(std::int32_t handle,
                                                                          FeaturesQuestion* question) {
    Features features{};
    std::memset(features.rest, '\x7f', sizeof features.rest);
    features.board = handle == portsHandle ? 39 : 50;
    features.inputs = 40;
    features.outputs = 24;
    if (question->size < sizeof features)
        return 5;
    std::memcpy(question->buffer, &features, sizeof features);
    return 0;
}

struct PortsQuestion {
    std::int16_t* modes;
    std::uint16_t count;
};

__attribute__((visibility("default"))) std::int32_t DRV_DioGetConfig(std::int32_t, PortsQuestion* question) {
    for (int port = 0; port < question->count; ++port)
        question->modes[port] = 1;
    return question->count == 10 ? 0 : 6;
}

__attribute__((visibility("default"))) std::int32_t DRV_GetErrorMessage(std::int32_t error, char* text) {
    std::strcpy(text, error == 3 ? "No such device" : "Other");
    return 0;
}
}
