#include "databases/compaction/DeadCopies.h"

#include "databases/jet/JetDatabase.h"
#include "jet/Storage.h"
#include "platform/Clock.h"
#include "platform/files/Files.h"

#include <QRegularExpression>

#include <cstdint>

namespace tolvex {

namespace {

constexpr qint64 RestOfTheDead = 24 * 60 * 60; // seconds
constexpr std::uint64_t WholeFile = std::uint64_t{1} << 62;

bool isDead(jet::StorageFile& file) {
    std::uint8_t first = 0;
    const bool isEmpty = file.read(0, &first, 1) == 0;
    return (isEmpty || first == 0) && !file.findLock(0, WholeFile);
}

} // namespace

void RemoveDeadCopies(const QString& folder) {
    static const QRegularExpression copy(QStringLiteral("^MDB[0-9A-F]{1,4}\\.TMP$"),
                                         QRegularExpression::CaseInsensitiveOption);
    for (const QString& name : platform::FolderNames(folder)) {
        const QString path = folder + u'\\' + name;
        if (!copy.match(name).hasMatch() || !platform::FileExists(path) ||
            platform::FileModified(path).secsTo(platform::clock().now()) < RestOfTheDead)
            continue;
        try {
            const std::string host = EnginePath(path);
            const auto file = jet::MachineStorage().open(host, jet::Storage::Open::ReadWrite);
            if (isDead(*file) && file->isNow(host))
                jet::MachineStorage().remove(host);
        } catch (const jet::Error&) {
            // Files that cannot be inspected or removed stay.
        } catch (const DatabaseError&) {
            // Also one that is already gone.
        }
    }
}

} // namespace tolvex
