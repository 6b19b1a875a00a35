// Process start to the console ready, on a configured station, compared with a bare main window program: the
// time and the largest memory of each, and their ratio. Each run is a process of its own.
#include "ProcessCost.h"

#include "console/forms/frmConfigure.h"
#include "platform/Prompts.h"
#include "platform/paths/Paths.h"
#include "station/Workstation.h"
#include "ui/style/Style.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QMainWindow>
#include <QTemporaryDir>

#include <cstring>

namespace {

void makeStation(const QString& folder) {
    qputenv("TOLVEX_HOME", QFile::encodeName(folder));
    tolvex::platform::SetMachineFolder(folder);
    QByteArray ini = "[General]\r\nConfigName=Bench\r\n[FileLocations]\r\nData=C:\\DATA\r\n";
    for (int part = 1; part <= 11; ++part)
        ini += "Carts" + QByteArray::number(part) + "=C:\\WALL\r\n";
    for (const char* name : {"C:\\DATA", "C:\\WALL"})
        QDir().mkpath(tolvex::platform::HostPath(QString::fromLatin1(name)));
    QFile file(tolvex::platform::HostPath(QStringLiteral("C:\\WINDOWS\\TOLVEX.INI")));
    if (file.open(QIODevice::WriteOnly))
        file.write(ini + "[LinkMesh]\r\nLinkMeshId=1\r\n");
}

int runChild(int argc, char** argv) {
    QApplication application(argc, argv);
    if (std::strcmp(argv[1], "bare") == 0) {
        QMainWindow window;
        window.show();
        QCoreApplication::processEvents();
        return 0;
    }
    tolvex::ApplyStyle(application, tolvex::Scheme::Light);
    tolvex::Workstation station;
    tolvex::frmConfigure console(station);
    if (!console.load())
        return 1;
    console.show();
    QCoreApplication::processEvents();
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QTemporaryDir runtime;
    if (qEnvironmentVariableIsEmpty("XDG_RUNTIME_DIR"))
        qputenv("XDG_RUNTIME_DIR", QFile::encodeName(runtime.path()));
    if (argc > 1 && (std::strcmp(argv[1], "bare") == 0 || std::strcmp(argv[1], "console") == 0))
        return runChild(argc, argv);

    QTemporaryDir folder;
    makeStation(folder.path());
    runOnce("/proc/self/exe", "console"); // makes the lists and the hotlist
    const Cost bare = middle("/proc/self/exe", "bare");
    const Cost console = middle("/proc/self/exe", "console");
    printBeside("bare main window", bare, "console ready", console);
    return 0;
}
