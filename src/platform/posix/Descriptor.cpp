#include "platform/posix/Descriptor.h"

#include <cerrno>

#include <unistd.h>

namespace tolvex::platform {

Descriptor::~Descriptor() {
    close();
}

Descriptor& Descriptor::operator=(Descriptor&& other) noexcept {
    if (this != &other) {
        close();
        number_ = other.number_;
        other.number_ = -1;
    }
    return *this;
}

int Descriptor::close() {
    const int number = number_;
    number_ = -1;
    return number < 0 || ::close(number) == 0 ? 0 : errno;
}

} // namespace tolvex::platform
