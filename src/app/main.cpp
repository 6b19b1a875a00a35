// The window program.
#include "app/window/QtPrompts.h"
#include "console/forms/frmConfigure.h"
#include "core/system/Product.h"
#include "platform/paths/Paths.h"
#include "platform/process/SingleInstance.h"
#include "station/Workstation.h"
#include "ui/style/Monitors.h"
#include "ui/style/Style.h"

#include <QApplication>
#include <QGuiApplication>
#include <QIcon>
#include <QMessageBox>
#include <QScreen>

namespace {

using namespace tolvex;

void tellScreens(ScreenFacts& facts) {
    const QScreen* primary = QGuiApplication::primaryScreen();
    if (!primary)
        return;
    const clsMonitors monitors;
    facts.PrimaryWidth = primary->geometry().width();
    facts.PrimaryHeight = primary->geometry().height();
    facts.WorkAreaBottom = primary->availableGeometry().bottom() + 1;
    facts.DesktopWidth = monitors.DesktopWidth();
    facts.MonitorWidths.clear();
    for (qint16 i = 1; i <= monitors.Count(); ++i)
        facts.MonitorWidths.append(monitors.Monitor(i)->Width);
}

// The command line as typed. Arguments separated by the shell are joined with single blanks.
QString typedCommandLine(const QStringList& arguments) {
    return arguments.mid(1).join(u' ');
}

} // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    QApplication::setApplicationName(QString::fromLatin1(ProductName));
    QApplication::setDesktopFileName(QStringLiteral("tolvex-config"));
    QApplication::setQuitOnLastWindowClosed(false);
    ApplyStyle(application, DesktopScheme(application));
    QApplication::setWindowIcon(QIcon(QStringLiteral(":/icons/tolvex-config.svg")));

    QString why;
    if (!platform::SetMachineFolder({}, &why)) {
        QMessageBox::critical(nullptr, QString::fromLatin1(ProductName), why);
        return 3;
    }
    Workstation station;
    station.startUp.typedCommandLine = typedCommandLine(application.arguments());
    tellScreens(station.startUp.screens);
    QtPrompts prompts(station.settings);
    platform::setPrompts(&prompts);

    {
        const platform::SingleInstance instance;
        frmConfigure console(station);
        if (console.load(instance.first())) {
            clsMonitors().CenterFormOnMonitor(&console);
            console.show();
            while (console.isVisible())
                QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        } else {
            console.close();
        }
    }
    platform::setPrompts(nullptr);
    return 0;
}
