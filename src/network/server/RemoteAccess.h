// Who may connect to the remote control: everyone, as in the rest of the suite, or fewer. The setting is this
// program's own. It lies outside the suite's files, in "remotecontrol.txt" in the machine folder: a line
// "all", a line "this computer", or an address or network ("192.168.1.0/24") per line. "#" begins a comment
// line.
#pragma once

#include <QString>
#include <QStringList>

#include <optional>

class QHostAddress;

namespace tolvex {

struct RemoteAccess {
    enum class Who { Everyone, ThisComputer, Listed };
    Who who = Who::Everyone;
    QStringList addresses; // of Listed

    bool allows(const QHostAddress& peer) const;
    // "everyone", "this computer", "192.168.1.0/24, 10.0.0.7".
    QString text() const;
    bool operator==(const RemoteAccess&) const = default;
};

// Parses "all", "this computer", or addresses and networks. For other words: nothing, and a sentence in *why.
std::optional<RemoteAccess> ParseRemoteAccess(const QStringList& words, QString* why = nullptr);

// The setting in force; everyone if there is no file. A file that cannot be read or understood lets in this
// computer only.
RemoteAccess ReadRemoteAccess();
// FileError number.
int WriteRemoteAccess(const RemoteAccess& access);

} // namespace tolvex
