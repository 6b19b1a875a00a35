#include "databases/tds/Wire.h"

#include "jet/base/Value.h"

#include <algorithm>
#include <cerrno>

#include <sys/socket.h>

namespace testserver::tds {

namespace {

constexpr std::size_t PacketHead = 8;
constexpr std::size_t PacketLength = 4096;
constexpr int LastPacket = 1;
constexpr int Answer = 4;

void receive(int socket, char* into, std::size_t length) {
    while (length > 0) {
        const auto got = ::recv(socket, into, length, 0);
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            throw WireError("the client is gone");
        into += got;
        length -= static_cast<std::size_t>(got);
    }
}

std::size_t bigEndian(const char* at) {
    return static_cast<std::size_t>(static_cast<unsigned char>(at[0]) << 8 |
                                    static_cast<unsigned char>(at[1]));
}

} // namespace

std::string_view Reader::take(std::size_t length) {
    if (length > left_.size())
        throw WireError("a message ends too early");
    const std::string_view taken = left_.substr(0, length);
    left_.remove_prefix(length);
    return taken;
}

std::uint64_t Reader::number(int bytes) {
    const std::string_view taken = take(static_cast<std::size_t>(bytes));
    std::uint64_t value = 0;
    for (std::size_t i = taken.size(); i-- > 0;)
        value = value << 8 | static_cast<unsigned char>(taken[i]);
    return value;
}

std::int64_t Reader::signedNumber(int bytes) {
    const int unused = 64 - 8 * bytes;
    return static_cast<std::int64_t>(number(bytes) << unused) >> unused;
}

std::string Reader::text(std::size_t letters) {
    std::u16string wide;
    for (std::size_t i = 0; i < letters; ++i)
        wide += static_cast<char16_t>(number(2));
    return jet::ToUtf8(wide);
}

void Reader::skipHeaders() {
    const std::uint64_t length = number(4);
    take(std::max<std::uint64_t>(length, 4) - 4);
}

Writer& Writer::number(std::uint64_t value, int bytes) {
    for (int i = 0; i < bytes; ++i, value >>= 8)
        bytes_ += static_cast<char>(value & 0xFF);
    return *this;
}

Writer& Writer::raw(std::string_view bytes) {
    bytes_ += bytes;
    return *this;
}

Writer& Writer::counted(const std::string& text, int bytes) {
    const std::u16string wide = jet::ToUtf16(text);
    number(wide.size(), bytes);
    for (const char16_t letter : wide)
        number(letter, 2);
    return *this;
}

Writer& Writer::token(int type, const Writer& contents) {
    return number(static_cast<std::uint64_t>(type), 1)
        .number(contents.bytes().size(), 2)
        .raw(contents.bytes());
}

Message Receive(int socket) {
    Message message;
    for (bool last = false; !last;) {
        char head[PacketHead];
        receive(socket, head, sizeof head);
        const std::size_t length = bigEndian(head + 2);
        if (length < PacketHead)
            throw WireError("a packet is shorter than its head");
        message.type = static_cast<unsigned char>(head[0]);
        last = (head[1] & LastPacket) != 0;
        const std::size_t before = message.body.size();
        message.body.resize(before + length - PacketHead);
        receive(socket, message.body.data() + before, length - PacketHead);
    }
    return message;
}

void Send(int socket, const Bytes& body) {
    Bytes packets;
    std::size_t at = 0;
    for (int number = 1; number == 1 || at < body.size(); ++number) {
        const std::size_t length = std::min(body.size() - at, PacketLength - PacketHead);
        const bool last = at + length == body.size();
        const std::size_t all = length + PacketHead;
        const char head[PacketHead] = {Answer,
                                       static_cast<char>(last ? LastPacket : 0),
                                       static_cast<char>(all >> 8),
                                       static_cast<char>(all & 0xFF),
                                       0,
                                       0,
                                       static_cast<char>(number & 0xFF),
                                       0};
        packets.append(head, sizeof head).append(body, at, length);
        at += length;
    }
    for (std::size_t sent = 0; sent < packets.size();) {
        const auto now = ::send(socket, packets.data() + sent, packets.size() - sent, MSG_NOSIGNAL);
        if (now <= 0)
            throw WireError("the client is gone");
        sent += static_cast<std::size_t>(now);
    }
}

} // namespace testserver::tds
