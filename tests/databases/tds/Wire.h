// Bytes of the TDS protocol: numbers and texts read and written in order, and messages cut into packets on a
// socket. Numbers are little-endian, texts UTF-16.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

namespace testserver::tds {

using Bytes = std::string;

// The client violated the protocol, or disconnected.
struct WireError : std::runtime_error {
    using runtime_error::runtime_error;
};

class Reader {
public:
    explicit Reader(std::string_view bytes)
        : left_(bytes) {}

    bool atEnd() const { return left_.empty(); }
    std::string_view take(std::size_t length);
    std::uint64_t number(int bytes);
    std::int64_t signedNumber(int bytes);
    std::uint8_t byte() { return static_cast<std::uint8_t>(number(1)); }
    // Texts as UTF-8: with a given number of letters, or with that number before them in one or two bytes.
    std::string text(std::size_t letters);
    std::string shortText() { return text(byte()); }
    std::string longText() { return text(static_cast<std::size_t>(number(2))); }
    std::string restAsText() { return text(left_.size() / 2); }
    // The header of a request: its transaction, and the like.
    void skipHeaders();

private:
    std::string_view left_;
};

class Writer {
public:
    Writer& number(std::uint64_t value, int bytes);
    Writer& raw(std::string_view bytes);
    // A text with the number of its letters before it, in a byte or in two.
    Writer& shortText(const std::string& text) { return counted(text, 1); }
    Writer& longText(const std::string& text) { return counted(text, 2); }
    // The same with a type and the length of all in two bytes before it.
    Writer& token(int type, const Writer& contents);
    const Bytes& bytes() const { return bytes_; }

private:
    Writer& counted(const std::string& text, int bytes);

    Bytes bytes_;
};

struct Message {
    int type = 0;
    Bytes body;
};

// Throw WireError if the other end is gone.
Message Receive(int socket);
void Send(int socket, const Bytes& body);

} // namespace testserver::tds
