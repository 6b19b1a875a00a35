#include "platform/files/TempFile.h"

#include "platform/files/Files.h"
#include "platform/host/HostChanges.h"
#include "platform/paths/ResolvedPath.h"

#include <QCoreApplication>

namespace tolvex::platform {

namespace {

constexpr int prefixLength = 3;
constexpr unsigned numbers = 0xFFFF;

// The start of the search changes with every call, so that it rarely needs a second try.
unsigned firstNumber() {
    return static_cast<unsigned>(NowInNanoseconds() % 1'000'000'000 / 1000 +
                                 QCoreApplication::applicationPid());
}

} // namespace

QString MakeTempFile(const QString& folder, const QString& prefix, int* error) {
    int failed = FolderExists(folder) ? FileAlreadyExists : PathNotFound;
    const unsigned first = firstNumber();
    for (unsigned i = 0; i < numbers && failed == FileAlreadyExists; ++i) {
        const QString number = QString::number((first + i) % numbers + 1, 16).toUpper();
        QString path = folder + (folder.endsWith(u'\\') ? QString() : QStringLiteral("\\")) +
                       prefix.left(prefixLength) + number.rightJustified(4, u'0') + QStringLiteral(".TMP");
        const ResolvedPath at(path);
        failed = at.asNew();
        if (failed == NoError)
            failed = MakeEmptyHostFile(at.host);
        if (failed == NoError) {
            if (error)
                *error = NoError;
            return path;
        }
    }
    if (error)
        *error = failed;
    return {};
}

} // namespace tolvex::platform
