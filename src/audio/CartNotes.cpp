#include "audio/CartNotes.h"

#include "audio/CartStore.h"
#include "platform/SteadyTime.h"
#include "platform/files/Files.h"
#include "platform/files/FolderReader.h"

#include <QHash>

#include <chrono>
#include <limits>
#include <memory>

namespace tolvex {

namespace {

using std::chrono::milliseconds;

// How long a folder is taken to be as it was without asking for its time of change.
constexpr milliseconds trusted{100};

// Names that one call of ListCartNotes looks at: a fraction of a millisecond on a disk of this machine.
constexpr int namesAtOnce = 500;

// A folder that changed this short a time before it was listed may change again and keep its time of change.
// Disk formats whose times have no fraction have the coarsest clock.
milliseconds tickOf(const QDateTime& modified) {
    return milliseconds(modified.time().msec() == 0 ? 2500 : 50);
}

enum Notes : quint8 { RichText = 1, PlainText = 2 };
// The notes that each cart has, as flags. One that is named here is worth a look at its file.
using NotesByCart = QHash<qint32, quint8>;

// A listing under way.
struct Listing {
    Listing(const QString& location, const QDateTime& changed)
        : begun(platform::SteadyTime())
        , settled(changed.addDuration(tickOf(changed)) < QDateTime::currentDateTime())
        , modified(changed)
        , names(location) {}

    milliseconds begun;
    bool settled;
    QDateTime modified;
    platform::FolderReader names;
    NotesByCart notes;
};

} // namespace

// What is known of a folder.
struct NotesFolder {
    NotesByCart notes;
    bool listed = false;  // false: it cannot be listed, so every file has to be looked for
    bool settled = false; // it was at rest when it was listed
    QDateTime modified;
    milliseconds trustedUntil{0};
    std::shared_ptr<Listing> listing; // null: none under way
};

struct KnownNotes {
    QHash<QString, NotesFolder> folders;
};

namespace {

QHash<QString, NotesFolder>& folders(CartStore& carts) {
    if (!carts.notes)
        carts.notes = std::make_shared<KnownNotes>();
    return carts.notes->folders;
}

// The cart whose files are called so, as CartFileName gives it in any case; 0 for any other name.
qint32 cartCalled(QStringView stem) {
    const qsizetype digits = stem.size() - 3;
    if (digits < 5 || (digits > 5 && stem[3] == u'0') || !stem.startsWith(u"TLV", Qt::CaseInsensitive) ||
        !stem[3].isDigit())
        return 0;
    return stem.mid(3).toInt();
}

void take(const QString& name, NotesByCart& notes) {
    const QStringView extension = QStringView(name).right(4);
    const quint8 kind = extension.compare(u".RTF", Qt::CaseInsensitive) == 0   ? RichText
                        : extension.compare(u".TXT", Qt::CaseInsensitive) == 0 ? PlainText
                                                                               : 0;
    const qint32 cart = kind != 0 ? cartCalled(QStringView(name).chopped(4)) : 0;
    if (cart != 0)
        notes[cart] |= kind;
}

void finish(NotesFolder& folder) {
    const std::shared_ptr<Listing> done = std::exchange(folder.listing, nullptr);
    folder.notes = done->notes;
    folder.listed = done->names.isOpen() || !done->modified.isValid();
    folder.settled = done->settled;
    folder.modified = done->modified;
    // A large folder that changes all the time takes at most a fifth of a search.
    const milliseconds now = platform::SteadyTime();
    folder.trustedUntil = now + std::max(trusted, 4 * (now - done->begun));
}

// Looks at no more than so many names. True when it is known what the folder at `location` has.
bool learn(NotesFolder& folder, const QString& location, int names) {
    if (!folder.listing) {
        const milliseconds now = platform::SteadyTime();
        if (now < folder.trustedUntil)
            return true;
        const QDateTime modified = platform::FileModified(location);
        if (folder.settled && folder.modified == modified) {
            folder.trustedUntil = now + trusted;
            return true;
        }
        folder.listing = std::make_shared<Listing>(location, modified);
    }
    QString name;
    for (; names > 0; --names) {
        if (!folder.listing->names.next(name)) {
            finish(folder);
            return true;
        }
        take(name, folder.listing->notes);
    }
    return false;
}

// The kinds of notes, the preferred one first.
struct Candidate {
    quint8 kind;
    const char* extension;
};
constexpr Candidate candidates[] = {{RichText, ".RTF"}, {PlainText, ".TXT"}};

bool isCart(const CartStore& carts, qint32 cart) {
    return cart >= 1 && cart <= carts.settings.NoCarts;
}

const QString& locationOf(const CartStore& carts, qint32 cart) {
    return carts.settings.CartPartTable[PartOfCart(cart)].Location;
}

quint8 kindsOf(CartStore& carts, qint32 cart) {
    if (!isCart(carts, cart))
        return 0;
    NotesFolder& folder = folders(carts)[locationOf(carts, cart)];
    learn(folder, locationOf(carts, cart), std::numeric_limits<int>::max());
    return folder.listed ? folder.notes.value(cart) : RichText | PlainText;
}

QString pathOf(const CartStore& carts, qint32 cart, const Candidate& candidate) {
    return CartFileStem(carts, cart) + QLatin1String(candidate.extension);
}

} // namespace

QString CartNotesPath(CartStore& carts, qint32 cart, bool* exists) {
    const quint8 kinds = kindsOf(carts, cart);
    for (const Candidate& candidate : candidates) {
        QString path = pathOf(carts, cart, candidate);
        if ((kinds & candidate.kind) == 0 || !platform::FileExists(path))
            continue;
        if (exists)
            *exists = true;
        return path;
    }
    if (exists)
        *exists = false;
    return isCart(carts, cart) ? pathOf(carts, cart, candidates[0]) : QString();
}

qint64 ReadCartNotes(CartStore& carts, qint32 cart, char* bytes, qint64 most) {
    const quint8 kinds = kindsOf(carts, cart);
    for (const Candidate& candidate : candidates) {
        if ((kinds & candidate.kind) == 0)
            continue;
        const QString path = pathOf(carts, cart, candidate);
        const qint64 length = platform::ReadFileStart(path, bytes, most);
        if (length >= 0 || platform::FileExists(path))
            return length;
    }
    return -1;
}

bool ListCartNotes(CartStore& carts, qint32 cart) {
    return !isCart(carts, cart) ||
           learn(folders(carts)[locationOf(carts, cart)], locationOf(carts, cart), namesAtOnce);
}

} // namespace tolvex
