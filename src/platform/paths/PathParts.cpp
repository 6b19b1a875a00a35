#include "platform/paths/PathParts.h"

namespace tolvex::platform {

namespace {

bool isDriveAt(const QString& path) {
    return path.size() >= 2 && path[1] == u':' && path[0].toUpper() >= u'A' && path[0].toUpper() <= u'Z';
}

// "COM1" to "COM256" and "LPT1" and so on, with or without a trailing colon, name a device if they stand
// alone. Returns the name of its link, or an empty text.
QString deviceLink(const QString& path) {
    if (path.size() > 7)
        return {};
    QString name = path.toLower();
    if (name.endsWith(u':'))
        name.chop(1);
    if (name.size() < 4 || name.size() > 6 || !(name.startsWith(u"com") || name.startsWith(u"lpt")))
        return {};
    for (const QChar c : QStringView(name).mid(3))
        if (c < u'0' || c > u'9')
            return {};
    return name;
}

void addNames(QStringList& names, QStringView rest) {
    for (QStringView name : rest.split(u'\\', Qt::SkipEmptyParts)) {
        if (name == u"..") {
            if (!names.isEmpty())
                names.removeLast();
            continue;
        }
        while (!name.isEmpty() && (name.back() == u'.' || name.back() == u' '))
            name.chop(1);
        if (!name.isEmpty())
            names += name.toString();
    }
}

bool isPlain(QChar c) {
    return (c >= u'A' && c <= u'Z') || (c >= u'a' && c <= u'z') || (c >= u'0' && c <= u'9') ||
           QStringView(u"!#$%&'()-@^_`{}~").contains(c);
}

bool arePlain(QStringView text) {
    for (const QChar c : text)
        if (!isPlain(c))
            return false;
    return true;
}

// Up to `most` plain characters of a text, in upper case.
QString plainStart(QStringView text, int most) {
    QString start;
    for (const QChar c : text)
        if (isPlain(c) && c != u'~' && start.size() < most)
            start += c.toUpper();
    return start;
}

// FNV-1a, 64 bits, as its authors publish it.
quint64 hashOf(const QByteArray& bytes) {
    quint64 hash = 0xCBF29CE484222325ULL;
    for (const char byte : bytes) {
        hash ^= static_cast<unsigned char>(byte);
        hash *= 0x100000001B3ULL;
    }
    return hash;
}

} // namespace

QString PathParts::text() const {
    QString path = isShare() ? QStringLiteral("\\\\%1\\%2").arg(root[1], root[2]) : root[0].toUpper();
    if (names.isEmpty() && path.endsWith(u':'))
        path += u'\\';
    for (const QString& name : names)
        path += u'\\' + name;
    return path;
}

std::optional<PathParts> SplitPath(const QString& path, const PathParts& current) {
    if (path.isEmpty() || path.contains(QChar(0)))
        return std::nullopt;
    QString text = path;
    text.replace(u'/', u'\\');
    if (text.startsWith(u"\\\\?\\UNC\\", Qt::CaseInsensitive))
        text = QStringLiteral("\\\\") + text.mid(8);
    else if (text.startsWith(u"\\\\?\\") || text.startsWith(u"\\\\.\\"))
        text = text.mid(4);
    if (const QString link = deviceLink(text); !link.isEmpty())
        return PathParts{{link}, {}};

    PathParts parts;
    if (text.startsWith(u"\\\\")) {
        // Server and share are one unit: ".." after them must not lead to another share.
        const qsizetype server = text.indexOf(u'\\', 2);
        const qsizetype share = server < 0 ? -1 : text.indexOf(u'\\', server + 1);
        parts.root = {QStringLiteral("unc")};
        addNames(parts.root, QStringView(text).left(server).mid(2));
        addNames(parts.root, QStringView(text).left(share).mid(server + 1));
        if (server < 0 || !parts.isShare() || !IsValidName(parts.root[1]) || !IsValidName(parts.root[2]))
            return std::nullopt;
        if (share >= 0)
            addNames(parts.names, QStringView(text).mid(share));
        return parts;
    }
    QStringView rest(text);
    parts.root = current.root;
    if (isDriveAt(text)) {
        parts.root = {text.left(2).toLower()};
        rest = rest.mid(2);
    }
    if (!rest.startsWith(u'\\') && parts.root == current.root)
        parts.names = current.names;
    addNames(parts.names, rest);
    return parts;
}

bool IsBareName(const QString& path) {
    return !path.contains(u'\\') && !path.contains(u'/') && !isDriveAt(path) && path != u"." && path != u"..";
}

bool IsValidName(const QString& name) {
    for (const QChar c : name)
        if (c < u' ' || QStringView(u"<>:\"|?*\\/").contains(c))
            return false;
    return !name.isEmpty();
}

QString FoldName(const QString& name) {
    QString folded = name;
    for (QChar& c : folded)
        c = c.toUpper();
    return folded;
}

QString ShortName(const QString& name) {
    const qsizetype point = name.lastIndexOf(u'.');
    const QStringView base = QStringView(name).left(point < 0 ? name.size() : point);
    const QStringView extension = point < 0 ? QStringView() : QStringView(name).mid(point + 1);
    const bool fits = !base.isEmpty() && base.size() <= 8 && extension.size() <= 3 && arePlain(base) &&
                      arePlain(extension) && (point < 0 || !extension.isEmpty());
    if (fits)
        return name;
    QString digits = QString::number(hashOf(name.toUtf8()) % (36 * 36 * 36 * 36), 36).toUpper();
    QString result = plainStart(base, 3) + u'~' + digits.rightJustified(4, u'0');
    if (const QString end = plainStart(extension, 3); !end.isEmpty())
        result += u'.' + end;
    return result;
}

} // namespace tolvex::platform
