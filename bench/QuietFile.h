// A settings file as programs mostly find it: left alone for a while. One that was changed a moment ago is
// compared at each read.
#pragma once

#include "platform/paths/Paths.h"

#include <QDateTime>
#include <QFile>

inline void MakeQuiet(const QString& ini) {
    QFile file(tolvex::platform::HostPath(ini, tolvex::platform::BareName::WindowsFolder));
    if (file.open(QIODevice::ReadWrite))
        file.setFileTime(QDateTime::currentDateTime().addSecs(-60), QFileDevice::FileModificationTime);
}
