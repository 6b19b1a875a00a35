// A file descriptor that closes itself.
#pragma once

namespace tolvex::platform {

class Descriptor {
public:
    explicit Descriptor(int number = -1)
        : number_(number) {}
    ~Descriptor();
    Descriptor(Descriptor&& other) noexcept
        : number_(other.number_) {
        other.number_ = -1;
    }
    Descriptor& operator=(Descriptor&& other) noexcept;
    int get() const { return number_; }
    bool open() const { return number_ >= 0; }
    // Closes now; returns the errno, or 0.
    int close();

private:
    int number_;
};

} // namespace tolvex::platform
