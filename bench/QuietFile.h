// A settings file in its usual state: unchanged for a while. One changed a moment ago is compared at each
// read.
#pragma once

#include "platform/paths/Paths.h"

#include <QDateTime>
#include <QFile>

inline void MakeQuiet(const QString& ini) {
    QFile file(tolvex::platform::HostPath(ini, tolvex::platform::BareName::WindowsFolder));
    if (file.open(QIODevice::ReadWrite))
        file.setFileTime(QDateTime::currentDateTime().addSecs(-60), QFileDevice::FileModificationTime);
}
