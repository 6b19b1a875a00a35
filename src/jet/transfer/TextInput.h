// Text that is read once from front to back, from a source of the caller.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace jet {

class TextInput {
public:
    // Fills a buffer and returns the number of bytes; 0: the end.
    using Fill = std::function<std::size_t(char* into, std::size_t length)>;
    explicit TextInput(Fill fill);

    static constexpr int End = -1;
    // Longest accepted field or line (a Memo holds less than 1 GB).
    static constexpr std::size_t MaximumLength = std::size_t{1} << 30;

    // The next byte, without and with moving past it. A byte order mark at the start is skipped.
    int peek() {
        if (at_ == length_ && !fill())
            return End;
        return static_cast<unsigned char>(buffer_[at_]);
    }
    int get() {
        const int byte = peek();
        if (byte != End) {
            ++at_;
            line_ += byte == '\n' ? 1 : 0;
        }
        return byte;
    }
    // The rest of the line without its end (LF or CR LF); false: the input has ended.
    bool getLine(std::string& line);
    // The line of the next byte, counted from 1.
    std::uint32_t line() const { return line_; }

private:
    bool fill();

    Fill fill_;
    std::vector<char> buffer_;
    std::size_t at_ = 0;
    std::size_t length_ = 0;
    std::uint32_t line_ = 1;
    bool started_ = false;
    bool ended_ = false;
};

} // namespace jet
