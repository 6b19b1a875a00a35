#include "core/PathNames.h"

#include "platform/Paths.h"

namespace tolvex {

namespace {

qsizetype lastSeparator(const QString& path) {
    return std::max(path.lastIndexOf(u'\\'), path.lastIndexOf(u'/'));
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

} // namespace tolvex
