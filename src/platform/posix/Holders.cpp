#include "platform/process/Holders.h"

#include <QDir>
#include <QFile>
#include <QSet>

#include <unistd.h>

namespace tolvex::platform {

namespace {

QByteArray readAll(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// The first other process that has one of these open, according to the links of its open files.
std::optional<Holder> findHolder(const QSet<QByteArray>& targets) {
    const QStringList names = QDir(QStringLiteral("/proc")).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString& name : names) {
        bool isProcess = false;
        const qint64 process = name.toLongLong(&isProcess);
        if (!isProcess || process == ::getpid())
            continue;
        const QDir files(QStringLiteral("/proc/%1/fd").arg(name));
        for (const QString& file : files.entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot)) {
            char target[4096];
            const ssize_t length =
                ::readlink(files.filePath(file).toUtf8().constData(), target, sizeof target);
            if (length > 0 && targets.contains(QByteArray::fromRawData(target, length)))
                return Holder{
                    process, QString::fromUtf8(readAll(QStringLiteral("/proc/%1/comm").arg(name))).trimmed()};
        }
    }
    return std::nullopt;
}

// Adds the sockets of a system table that listen on the port, named as in the links of open files.
void addListeners(QSet<QByteArray>& sockets, const QString& table, quint16 port) {
    constexpr int addressField = 1;
    constexpr int stateField = 3;
    constexpr int inodeField = 9;
    const QByteArray ending = ':' + QByteArray::number(port, 16).toUpper().rightJustified(4, '0');
    for (const QByteArray& line : readAll(table).split('\n')) {
        const QList<QByteArray> fields = line.simplified().split(' ');
        if (fields.size() > inodeField && fields[addressField].endsWith(ending) && fields[stateField] == "0A")
            sockets += "socket:[" + fields[inodeField] + ']';
    }
}

} // namespace

std::optional<Holder> HolderOfDevice(const QString& hostPath) {
    const QString device = QFileInfo(hostPath).canonicalFilePath();
    return device.isEmpty() ? std::nullopt : findHolder({device.toUtf8()});
}

std::optional<Holder> HolderOfTcpPort(quint16 port) {
    QSet<QByteArray> sockets;
    addListeners(sockets, QStringLiteral("/proc/net/tcp"), port);
    addListeners(sockets, QStringLiteral("/proc/net/tcp6"), port);
    return sockets.isEmpty() ? std::nullopt : findHolder(sockets);
}

} // namespace tolvex::platform
