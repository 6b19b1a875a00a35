// Any bytes from a remote control peer, in pieces of any length: the buffer stays within its bound if its
// owner closes a peer that exceeds it, and a command is text without line ends.
#include "Require.h"

#include "network/server/RemoteCommands.h"

#include <cstddef>
#include <cstdint>

using namespace tolvex;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    RemoteCommands commands;
    qsizetype performed = 0;
    for (qsizetype at = 0; at < bytes.size();) {
        const qsizetype length = static_cast<unsigned char>(bytes[at]) + 1;
        const auto command = commands.take(bytes.mid(at, length));
        at += length;
        if (commands.isEndless())
            commands.clear();
        if (!command)
            continue;
        ++performed;
        require(!command->text.contains(u'\r') && !command->text.contains(u'\n'));
        require((command->effect == RemoteCommand::Effect::Cart) ==
                (command->cart > 0 || command->reply().startsWith(u'P')));
        require(command->reply().isEmpty() == (command->effect == RemoteCommand::Effect::Ignored));
        require(RemoteReplyLine(QDateTime::fromSecsSinceEpoch(0), command->reply()).endsWith("\r\n"));
    }
    require(performed <= bytes.count('\r'));
    return 0;
}
