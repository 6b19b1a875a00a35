// A machine of a test's own: a temporary machine folder that is current while the object lives, with drive C:
// and any others that the test declares. Its contents are deleted with it.
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

    // Makes the machine current again, as at a new start of the program: without caches.
    void use() {
        QString why;
        if (!folder_.isValid() || !platform::SetMachineFolder(folder_.path(), &why))
            throw std::runtime_error(("No machine folder: " + why).toStdString());
    }

    // Host paths, for operations of the host only.
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
    // Empty if it is missing; use exists() to distinguish.
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
