#include "platform/files/TempFile.h"

#include "platform/files/Files.h"
#include "platform/paths/ResolvedPath.h"

#include <fcntl.h>
#include <time.h>
#include <unistd.h>

namespace tolvex::platform {

namespace {

constexpr int prefixLength = 3;
constexpr unsigned numbers = 0xFFFF;

// Where the search begins: another number at every call, so that it seldom has to look twice.
unsigned firstNumber() {
    struct timespec now {};
    ::clock_gettime(CLOCK_REALTIME, &now);
    return static_cast<unsigned>(now.tv_nsec / 1000 + ::getpid());
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
        if (failed != NoError)
            break;
        const Descriptor file(::open(at.name.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
        if (file.open()) {
            if (error)
                *error = NoError;
            return path;
        }
        failed = at.failed();
    }
    if (error)
        *error = failed;
    return {};
}

} // namespace tolvex::platform
