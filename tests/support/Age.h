// Files and folders that have not changed for a while.
#pragma once

#include <QFile>
#include <QString>

#include <gtest/gtest.h>

#include <ctime>

#include <fcntl.h>
#include <sys/stat.h>

namespace tolvex::tests {

// Sets the time of change at a host path to an hour ago.
inline void LetAge(const QString& hostPath) {
    const struct timespec hourAgo { std::time(nullptr) - 3600, 0 };
    const struct timespec times[2] = {hourAgo, hourAgo};
    ASSERT_EQ(::utimensat(AT_FDCWD, QFile::encodeName(hostPath).constData(), times, 0), 0);
}

} // namespace tolvex::tests
