// Process start to the console ready, on a configured station, beside a bare main window program: the time
// and the largest memory of each, and their ratio. Each run is a process of its own.
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

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <vector>

namespace {

constexpr int Runs = 15;

struct Cost {
    double milliseconds = 0;
    long kilobytes = 0;
};

Cost runOnce(const char* self, const char* mode) {
    const auto start = std::chrono::steady_clock::now();
    const pid_t child = fork();
    if (child == 0) {
        execl(self, self, mode, static_cast<char*>(nullptr));
        _exit(127);
    }
    int status = 0;
    rusage usage{};
    wait4(child, &status, 0, &usage);
    const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - start;
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0)
        std::fprintf(stderr, "%s failed\n", mode);
    return {took.count(), usage.ru_maxrss};
}

Cost middle(const char* self, const char* mode) {
    std::vector<double> times;
    Cost cost;
    for (int i = 0; i < Runs; ++i) {
        const Cost one = runOnce(self, mode);
        times.push_back(one.milliseconds);
        cost.kilobytes = std::max(cost.kilobytes, one.kilobytes);
    }
    std::sort(times.begin(), times.end());
    cost.milliseconds = times[times.size() / 2];
    return cost;
}

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
    std::printf("%-28s %10s %12s\n", "", "ms", "KB at most");
    std::printf("%-28s %10.1f %12ld\n", "bare main window", bare.milliseconds, bare.kilobytes);
    std::printf("%-28s %10.1f %12ld\n", "console ready", console.milliseconds, console.kilobytes);
    std::printf("%-28s %10.2f %12.2f\n", "ratio", console.milliseconds / bare.milliseconds,
                double(console.kilobytes) / double(bare.kilobytes));
    return 0;
}
