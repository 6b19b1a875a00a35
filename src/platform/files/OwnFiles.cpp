#include "platform/files/OwnFiles.h"

#include "platform/host/HostFiles.h"
#include "platform/host/LookOnly.h"
#include "platform/host/Replacement.h"
#include "platform/paths/Paths.h"

namespace tolvex::platform {

namespace {

constexpr qint64 longestFile = 1 << 20;

QString pathOf(const QString& name) {
    return MachineFolder() + u'/' + name;
}

} // namespace

std::optional<QByteArray> ReadOwnFile(const QString& name, int* error) {
    return ReadHostFile(pathOf(name), longestFile, error);
}

int WriteOwnFile(const QString& name, const QByteArray& bytes) {
    return LookingOnly() ? PathFileAccess : ReplaceHostFile(pathOf(name), bytes);
}

} // namespace tolvex::platform
