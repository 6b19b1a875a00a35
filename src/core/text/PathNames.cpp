#include "core/text/PathNames.h"

#include "core/text/TextFields.h"
#include "platform/paths/PathParts.h"
#include "platform/paths/Paths.h"

#include <QStringList>

namespace tolvex {

namespace {

qsizetype lastSeparator(const QString& path) {
    return std::max(path.lastIndexOf(u'\\'), path.lastIndexOf(u'/'));
}

// Names that mean a device in every folder, with any extension.
bool isDeviceName(const QString& name) {
    const QString stem = name.section(u'.', 0, 0).trimmed().toUpper();
    if (stem.size() == 4 && (stem.startsWith(u"COM") || stem.startsWith(u"LPT")))
        return stem[3] >= u'1' && stem[3] <= u'9';
    return stem == u"CON" || stem == u"PRN" || stem == u"AUX" || stem == u"NUL";
}

} // namespace

QString FileNameOf(const QString& path) {
    return path.mid(lastSeparator(path) + 1);
}

QString PathWithoutExtension(const QString& path) {
    const qsizetype point = path.lastIndexOf(u'.');
    return point > lastSeparator(path) ? path.left(point) : path;
}

QString FolderOf(const QString& path, bool keepSeparator) {
    const qsizetype separator = lastSeparator(path);
    return separator < 0 ? QString() : path.left(separator + (keepSeparator ? 1 : 0));
}

QString MakeShortPath(const QString& path) {
    return platform::ShortPath(path).left(1023);
}

QString WithoutTrailingBackslash(QString path) {
    if (path.endsWith(u'\\'))
        path.chop(1);
    return path;
}

QString TidyLocation(const QString& path) {
    return WithoutTrailingBackslash(UpperCased(path.trimmed()));
}

QString LocationFault(const QString& path) {
    QString names = path.trimmed();
    names.replace(u'/', u'\\');
    const bool share = names.startsWith(u"\\\\");
    const bool drive = names.size() > 1 && names[1] == u':' && names[0].isLetter();
    const QStringList parts = names.mid(drive ? 2 : 0).split(u'\\', Qt::SkipEmptyParts);
    if (share && parts.size() < 2)
        return QStringLiteral("a server and a share are expected after \"\\\\\"");
    for (const QString& name : parts)
        if (!platform::IsValidName(name) || isDeviceName(name))
            return QStringLiteral("\"%1\" cannot be the name of a folder").arg(name);
    return {};
}

QString FileNameFault(const QString& name) {
    if (name.trimmed().isEmpty() || name.endsWith(u' ') || name.endsWith(u'.'))
        return QStringLiteral("A file name cannot be empty or end with a blank or a full stop");
    if (!platform::IsValidName(name))
        return QStringLiteral("A file name cannot hold any of \\ / : * ? \" < > |");
    if (isDeviceName(name))
        return QStringLiteral("\"%1\" is the name of a device").arg(name.section(u'.', 0, 0));
    return {};
}

} // namespace tolvex
