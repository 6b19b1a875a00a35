#include "console/ExistingSetup.h"

#include <algorithm>

namespace tolvex {

namespace {

using platform::DriveType;

constexpr const char* systemIni = "\\TLVX_SYS.INI";
// Folders of a drive that hold the system ini file, in the order in which they are looked at.
constexpr const char* dataFolders[] = {"", "\\TOLVEX\\SYSTEM", "\\SYSTEM"};
// The same for the cart lists; %1 is the number of the part.
constexpr const char* cartFolders[] = {
    "", "\\AUDIO%1", "\\TOLVEX\\AUDIO", "\\TOLVEX\\AUDIO\\AUDIO%1", "\\AUDIO", "\\AUDIO\\AUDIO%1"};

QString numbered(const char* folder, int part) {
    return QString::fromLatin1(folder).replace(QLatin1String("%1"), QString::number(part));
}

// Later finds take the place of earlier ones. True when anything was found.
bool searchDrive(const QString& drive, const SetupSearch& search, ExistingSetup& setup) {
    bool found = false;
    const auto isThere = [&](const QString& path) { return search.fileLength(path) > 0; };
    for (const char* folder : dataFolders) {
        const QString path = drive + QLatin1String(folder);
        if (isThere(path + QLatin1String(systemIni))) {
            setup.dataPath = path;
            found = true;
        }
    }
    for (int part = 1; part <= CartPaths::count; ++part)
        for (const char* folder : cartFolders) {
            const QString path = drive + numbered(folder, part);
            if (isThere(path + numbered("\\Carts%1.LST", part))) {
                setup.cartPaths[part] = path;
                found = true;
            }
        }
    return found;
}

// How far a search is, over all the drives that it may come to.
struct Course {
    const SetupSearch& search;
    int total = 0;
    int done = 0;

    bool goesOn(const QString& drive) const { return search.goesOn(done, total, drive); }
};

// True when anything was found.
bool searchDrives(const QString& letters, Course& course, ExistingSetup& setup) {
    bool found = false;
    for (const QChar letter : letters) {
        const QString drive = letter + QStringLiteral(":");
        if (!course.goesOn(drive)) {
            setup.stopped = true;
            break;
        }
        found |= searchDrive(drive, course.search, setup);
        ++course.done;
    }
    return found;
}

} // namespace

QString DriveLettersOfType(DriveType type) {
    constexpr int bits = 31;
    QString letters;
    const quint32 drives = platform::LogicalDrives();
    for (int bit = 0; bit < bits; ++bit) {
        const QChar letter(u'A' + bit);
        if (drives >> bit & 1U && platform::TypeOfDrive(letter) == type)
            letters += letter;
    }
    return letters;
}

ExistingSetup FindExistingSetup(bool networkOnly, const SetupSearch& search) {
    const QString remote = search.lettersOfType(DriveType::Remote).toLower();
    QString local;
    if (!networkOnly)
        local = (search.lettersOfType(DriveType::Fixed) + search.lettersOfType(DriveType::CdRom)).toUpper();
    Course course{search, int(remote.size() + local.size())};
    ExistingSetup setup;
    setup.found = setup.foundOnNetwork = searchDrives(remote, course, setup);
    if (!setup.stopped && setup.dataPath.isEmpty())
        setup.found |= searchDrives(local, course, setup);
    if (!setup.stopped && !course.goesOn({}))
        setup.stopped = true;
    return setup;
}

bool IsWorthAsking(const ExistingSetup& setup) {
    const auto isSet = [](const QString& path) { return !path.isEmpty(); };
    return setup.found && std::any_of(setup.cartPaths.begin(), setup.cartPaths.end(), isSet);
}

CartPaths FilledCartPaths(const CartPaths& paths) {
    CartPaths filled = paths;
    QString running;
    for (const QString& path : paths)
        if (!path.isEmpty())
            running = path;
    for (QString& path : filled) {
        if (path.isEmpty())
            path = running;
        else
            running = path;
    }
    return filled;
}

QString AcceptanceQuestion(const QString& dataPath, const CartPaths& filledPaths, const QString& indent) {
    QString list = indent + filledPaths[1];
    for (const QString& path : filledPaths)
        if (!list.contains(path))
            list += u'\n' + indent + path;
    return QStringLiteral("Tolvex data has been found in: \n\n ") + dataPath +
           QStringLiteral("\n\nand the audiowall has been found in: \n\n") + list +
           QStringLiteral("\n\nDo you want to use these locations?");
}

} // namespace tolvex
