#include "audio/CartNotes.h"

#include "audio/CartStore.h"
#include "platform/Files.h"
#include "platform/SteadyTime.h"

#include <QHash>
#include <QSet>

#include <chrono>

namespace tolvex {

namespace {

using std::chrono::milliseconds;

// How long a folder is taken to be as it was without asking for its time of change.
constexpr milliseconds trusted{100};

// A folder that changed this short a time before it was listed may change again and keep its time of change.
// Disk formats whose times have no fraction have the coarsest clock.
milliseconds tickOf(const QDateTime& modified) {
    return milliseconds(modified.time().msec() == 0 ? 2500 : 50);
}

// What a folder holds of notes. A name in it is worth a look at the file; the others need none.
struct NotesFolder {
    QSet<QString> names; // upper-cased, without the path
    bool listed = false; // false: it cannot be listed, so every file has to be looked for
    bool settled = false;
    QDateTime modified;
    milliseconds trustedUntil{0};
};

QHash<QString, NotesFolder>& folders() {
    static QHash<QString, NotesFolder> known;
    return known;
}

NotesFolder list(const QString& location, const QDateTime& modified) {
    NotesFolder folder;
    folder.modified = modified;
    folder.settled = modified.addDuration(tickOf(modified)) < QDateTime::currentDateTime();
    const QStringList names = platform::FolderNames(location);
    folder.listed = !names.isEmpty() || !modified.isValid();
    for (const QString& name : names)
        if (name.endsWith(QLatin1String(".RTF"), Qt::CaseInsensitive) ||
            name.endsWith(QLatin1String(".TXT"), Qt::CaseInsensitive))
            folder.names.insert(name.toUpper());
    return folder;
}

const NotesFolder& folderAt(const QString& location) {
    NotesFolder& folder = folders()[location];
    const milliseconds now = platform::SteadyTime();
    if (now < folder.trustedUntil)
        return folder;
    const QDateTime modified = platform::FileModified(location);
    if (!folder.settled || folder.modified != modified)
        folder = list(location, modified);
    // A large folder that changes all the time takes at most a fifth of a search.
    const milliseconds listed = platform::SteadyTime();
    folder.trustedUntil = listed + std::max(trusted, 4 * (listed - now));
    return folder;
}

} // namespace

QString CartNotesPath(qint32 cart, bool* exists) {
    const QString stem = CartFileStem(cart);
    bool found = false;
    QString path;
    if (!stem.isEmpty()) {
        const QString& location = settings().CartPartTable[PartOfCart(cart)].Location;
        const NotesFolder& folder = folderAt(location);
        const auto isThere = [&](const QString& candidate) {
            const bool mayBe = !folder.listed || folder.names.contains(candidate.mid(location.size() + 1));
            return mayBe && platform::FileExists(candidate);
        };
        const QString richText = stem + QStringLiteral(".RTF");
        const QString plainText = stem + QStringLiteral(".TXT");
        const bool rich = isThere(richText);
        found = rich || isThere(plainText);
        path = found && !rich ? plainText : richText;
    }
    if (exists)
        *exists = found;
    return path;
}

void ForgetCartNotes() {
    folders().clear();
}

} // namespace tolvex
