#include "network/server/RemoteAccess.h"

#include "platform/files/Files.h"
#include "platform/files/OwnFiles.h"

#include <QHostAddress>

#include <algorithm>

namespace tolvex {

namespace {

const QString fileName = QStringLiteral("remotecontrol.txt");
const QString everyone = QStringLiteral("all");
const QString thisComputer = QStringLiteral("this computer");

// An address without a network is one of a single member.
std::optional<QPair<QHostAddress, int>> networkOf(const QString& word) {
    const auto network = QHostAddress::parseSubnet(word);
    return network.first.isNull() ? std::nullopt : std::optional(network);
}

// An IPv4 peer of a socket for both kinds comes in the longer form.
QHostAddress plain(const QHostAddress& address) {
    bool isIPv4 = false;
    const quint32 short4 = address.toIPv4Address(&isIPv4);
    return isIPv4 ? QHostAddress(short4) : address;
}

} // namespace

bool RemoteAccess::allows(const QHostAddress& peer) const {
    const QHostAddress address = plain(peer);
    switch (who) {
    case Who::Everyone:
        return true;
    case Who::ThisComputer:
        return address.isLoopback();
    case Who::Listed:
        break;
    }
    return std::any_of(addresses.begin(), addresses.end(), [&address](const QString& word) {
        const auto network = networkOf(word);
        return network && address.isInSubnet(*network);
    });
}

QString RemoteAccess::text() const {
    switch (who) {
    case Who::Everyone:
        return QStringLiteral("everyone");
    case Who::ThisComputer:
        return thisComputer;
    case Who::Listed:
        break;
    }
    return addresses.join(QStringLiteral(", "));
}

std::optional<RemoteAccess> ParseRemoteAccess(const QStringList& words, QString* why) {
    const QString all = words.join(u' ').simplified().toLower();
    if (all == everyone)
        return RemoteAccess{};
    if (all == thisComputer)
        return RemoteAccess{RemoteAccess::Who::ThisComputer, {}};
    RemoteAccess access{RemoteAccess::Who::Listed, {}};
    for (const QString& word : words) {
        if (!networkOf(word.trimmed())) {
            if (why)
                *why =
                    QStringLiteral("\"%1\" is not an address or a network such as 192.168.1.0/24.").arg(word);
            return std::nullopt;
        }
        access.addresses += word.trimmed();
    }
    if (access.addresses.isEmpty()) {
        if (why)
            *why = QStringLiteral("\"all\", \"this computer\" or addresses are expected.");
        return std::nullopt;
    }
    return access;
}

RemoteAccess ReadRemoteAccess() {
    const RemoteAccess own{RemoteAccess::Who::ThisComputer, {}};
    int error = platform::NoError;
    const std::optional<QByteArray> bytes = platform::ReadOwnFile(fileName, &error);
    if (!bytes)
        return error == platform::FileNotFound || error == platform::PathNotFound ? RemoteAccess{} : own;
    QStringList words;
    for (const QString& line : QString::fromUtf8(*bytes).split(u'\n'))
        if (const QString word = line.trimmed(); !word.isEmpty() && !word.startsWith(u'#'))
            words += word;
    return ParseRemoteAccess(words).value_or(own);
}

int WriteRemoteAccess(const RemoteAccess& access) {
    QString text =
        QStringLiteral("# Who may connect to the remote control: \"all\", \"this computer\", or an\n"
                       "# address or network a line.\n");
    text += access.who == RemoteAccess::Who::Everyone       ? everyone
            : access.who == RemoteAccess::Who::ThisComputer ? thisComputer
                                                            : access.addresses.join(u'\n');
    return platform::WriteOwnFile(fileName, (text + u'\n').toUtf8());
}

} // namespace tolvex
