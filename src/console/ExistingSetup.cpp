#include "console/ExistingSetup.h"

#include "core/report/Folders.h"

#include <algorithm>

namespace tolvex {

namespace {

using platform::DriveType;

constexpr const char* systemIni = "\\TLVX_SYS.INI";
// Folders of a drive that may hold the system ini file, in search order.
constexpr const char* dataFolders[] = {"", "\\TOLVEX\\SYSTEM", "\\SYSTEM"};
// The same for the cart lists; %1 is the number of the part.
constexpr const char* cartFolders[] = {
    "", "\\AUDIO%1", "\\TOLVEX\\AUDIO", "\\TOLVEX\\AUDIO\\AUDIO%1", "\\AUDIO", "\\AUDIO\\AUDIO%1"};

QString numbered(const char* folder, int part) {
    return QString::fromLatin1(folder).replace(QLatin1String("%1"), QString::number(part));
}

// A file that indicates a system, and its folder.
struct Sign {
    int part = 0; // 0: the system ini file, which gives the data path
    QString folder;
    QString file;
};

QList<Sign> signsOn(const QString& drive) {
    QList<Sign> signs;
    for (const char* folder : dataFolders) {
        const QString path = drive + QLatin1String(folder);
        signs += {0, path, path + QLatin1String(systemIni)};
    }
    for (int part = 1; part <= CartPaths::count; ++part)
        for (const char* folder : cartFolders) {
            const QString path = drive + numbered(folder, part);
            signs += {part, path, path + numbered("\\Carts%1.LST", part)};
        }
    return signs;
}

// One pass over drives; later finds replace earlier ones. True if anything was found.
bool searchDrives(const QString& letters, const SetupSearch& search, ExistingSetup& setup) {
    QList<Sign> signs;
    for (const QChar letter : letters)
        signs += signsOn(letter + QStringLiteral(":"));
    QStringList files;
    for (const Sign& sign : std::as_const(signs))
        files += sign.file;
    const std::optional<SetupSearch::Lengths> lengths = search.fileLengths(files);
    setup.stopped = !lengths;
    bool found = false;
    for (const Sign& sign : std::as_const(signs))
        if (lengths && lengths->value(sign.file, -1) > 0) {
            (sign.part == 0 ? setup.dataPath : setup.cartPaths[sign.part]) = sign.folder;
            found = true;
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

SetupSearch::Lengths SetupSearch::LengthsOfFiles(const QStringList& paths) {
    Lengths lengths;
    for (const QString& path : paths)
        lengths.insert(path, FileLength(path));
    return lengths;
}

ExistingSetup FindExistingSetup(bool networkOnly, const SetupSearch& search) {
    ExistingSetup setup;
    const std::optional<QString> remote = search.lettersOfType(DriveType::Remote);
    setup.stopped = !remote;
    if (remote)
        setup.found = setup.foundOnNetwork = searchDrives(remote->toLower(), search, setup);
    if (setup.stopped || networkOnly || !setup.dataPath.isEmpty())
        return setup;
    const std::optional<QString> fixed = search.lettersOfType(DriveType::Fixed);
    const std::optional<QString> optical = search.lettersOfType(DriveType::CdRom);
    setup.stopped = !fixed || !optical;
    if (!setup.stopped)
        setup.found |= searchDrives((*fixed + *optical).toUpper(), search, setup);
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
