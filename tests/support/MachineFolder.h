// A machine of a test's own: a temporary machine folder in force from construction to destruction, with
// drive C: and any others the test declares. Everything in it goes with it.
//
//     TestMachine machine;
//     machine.addDrive(u'M', DriveType::Remote);
//     machine.write("M:\\TLVX_SYS.INI", "[Tolvex]\r\n");
//     EXPECT_EQ(machine.read("C:\\WINDOWS\\TOLVEX.INI"), ...);
#pragma once

#include "platform/files/Files.h"
#include "platform/paths/Paths.h"

#include <QDir>
#include <QTemporaryDir>

#include <stdexcept>

namespace tolvex::tests {

class TestMachine {
public:
    TestMachine() { use(); }
    ~TestMachine() { platform::SetApplicationFolder({}); }
    TestMachine(const TestMachine&) = delete;
    TestMachine& operator=(const TestMachine&) = delete;

    // Puts the machine in force again, as a new start of the program finds it: nothing remembered.
    void use() {
        QString why;
        if (!folder_.isValid() || !platform::SetMachineFolder(folder_.path(), &why))
            throw std::runtime_error(("No machine folder: " + why).toStdString());
    }

    // Host paths, for what only the host can do.
    QString path() const { return folder_.path(); }
    QString host(const QString& windowsPath) const { return platform::HostPath(windowsPath); }

    // An empty drive of its own.
    void addDrive(QChar letter, platform::DriveType type = platform::DriveType::Fixed) {
        make(QStringLiteral("dosdevices/%1:").arg(letter.toLower()));
        platform::SetTypeOfDrive(letter, type);
    }
    void removeDrive(QChar letter) {
        const QString drive = folder_.filePath(QStringLiteral("dosdevices/%1:").arg(letter.toLower()));
        if (!QFile::remove(drive))
            QDir(drive).removeRecursively();
    }
    void addShare(const QString& server, const QString& share) {
        make(QStringLiteral("dosdevices/unc/%1/%2").arg(server, share));
    }
    // A drive or device ("com1") that leads to a host path.
    void link(const QString& device, const QString& hostPath) {
        if (!QFile::link(hostPath, folder_.filePath(QStringLiteral("dosdevices/") + device)))
            throw std::runtime_error(("No link: " + device).toStdString());
    }

    // Writes a file, making its folders.
    void write(const QString& windowsPath, const QByteArray& bytes) {
        const QString hostPath = host(windowsPath);
        QDir().mkpath(QFileInfo(hostPath).path());
        QFile file(hostPath);
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
            throw std::runtime_error(("Not written: " + windowsPath).toStdString());
    }
    void makeFolder(const QString& windowsPath) { QDir().mkpath(host(windowsPath)); }
    // Empty when it is missing; exists() tells the two apart.
    QByteArray read(const QString& windowsPath) const {
        QFile file(host(windowsPath));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    bool exists(const QString& windowsPath) const { return QFileInfo::exists(host(windowsPath)); }

private:
    void make(const QString& name) {
        if (!QDir(folder_.path()).mkpath(name))
            throw std::runtime_error(("Not made: " + name).toStdString());
    }

    QTemporaryDir folder_;
};

} // namespace tolvex::tests
