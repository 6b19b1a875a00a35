// What the tests of the sound windows' logic start from: a workstation whose ini file another program shares,
// with declared devices.
#pragma once

#include "AudioTest.h"

#include "audio/LoadAudioSettings.h"
#include "platform/devices/WaveDevices.h"
#include "platform/posix/HostCalls.h"
#include "platform/profile/ProfileFile.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace tolvex::tests {

class SetupTest : public AudioTest {
protected:
    SetupTest() {
        platform::ForgetProfiles();
        settings.LocalIniFile = iniPath;
        machine.write(iniPath, "[Other]\r\nKey=kept\r\n[Audio]\r\nOthers=1\r\n[FileLocations]\r\n"
                               "Carts1=D:\\WALL\r\n");
        setOutputs(6);
        setLocations("D:\\WALL");
    }
    ~SetupTest() override {
        platform::RefreshWaveDevices();
        platform::RestoreHostCalls();
    }

    static void setOutputs(int count, int inputs = 2) {
        QList<platform::WaveDevice> out;
        for (int n = 0; n < count; ++n)
            out += {QStringLiteral("Output %1").arg(n), QStringLiteral("o%1").arg(n), 0, all, true};
        QList<platform::WaveDevice> in;
        for (int n = 0; n < inputs; ++n)
            in += {QStringLiteral("Input %1").arg(n), QStringLiteral("i%1").arg(n), 0, all, true};
        platform::SetWaveDevices(out, in);
    }
    // The settings of a new start from the files.
    Settings loaded() {
        platform::ForgetProfiles();
        Settings values;
        CartStore carts{values};
        values.LocalIniFile = iniPath;
        ReadAudioSettings(carts, iniPath, {});
        return values;
    }
    QString value(const char* section, const char* key, const QString& file = iniPath) const {
        return platform::ProfileText(QString::fromLatin1(section), QString::fromLatin1(key),
                                     QStringLiteral("<none>"), file);
    }

    // The file of that name, Audwall.ini or the local one, passes every check and fails when it is put in
    // place.
    template<char First>
    static void failToReplace() {
        platform::hostCalls().rename = [](const char* from, const char* to) {
            return std::strrchr(to, '/')[1] == First ? (errno = EIO, -1) : std::rename(from, to);
        };
    }

    inline static const QString iniPath = QStringLiteral("C:\\WINDOWS\\TOLVEX.INI");
    inline static const QString wallIni = QStringLiteral("D:\\WALL\\Audwall.ini");
    static constexpr quint32 all = platform::WaveFormat4M16 | platform::WaveFormat4S16;
};

} // namespace tolvex::tests
