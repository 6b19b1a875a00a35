#include "station/StartUp.h"

#include "core/system/Product.h"
#include "core/system/Registry.h"
#include "core/text/Numbers.h"
#include "core/text/TextFields.h"
#include "platform/Machine.h"
#include "platform/Prompts.h"
#include "station/Workstation.h"

#include <numeric>

namespace tolvex {

namespace {

struct LogSource {
    const char* shortName;
    const char* name;
};
// By log item type; higher types have no name.
constexpr LogSource logSources[] = {
    {"Srce", "Source"},    {"Time", "Ab. Time"},   {"Cart", "Cart"},        {"Link", "R. Link"},
    {"Ad", "Ad. Break"},   {"Hdwr", "Hardware"},   {"RWF", "R.W. Frame"},   {"Song", "Rotaweave"},
    {"Text", "Text Msg"},  {"ST", "S Tailor"},     {"----", "<Empty>"},     {"CMD", "Command"},
    {"S.Ct", "Spl. Cart"}, {"S.Gr", "Spl. Group"}, {"S.Ad", "Spl. Advert"},
};

void fillLogSources(Settings& values) {
    values.LogSourceShortNames.fill({});
    values.LogSourceNames.fill({});
    for (std::size_t type = 0; type < std::size(logSources); ++type) {
        values.LogSourceShortNames.at(type) = QLatin1String(logSources[type].shortName);
        values.LogSourceNames.at(type) = QLatin1String(logSources[type].name);
    }
}

void warnOfLowScreen(const ScreenFacts& screen) {
    constexpr int lowestHeight = 600;
    const QString name = QStringLiteral("LowDisplayResWarning");
    if (screen.PrimaryHeight >= lowestHeight || ReadRegistryLong(LocalMachineHive, TolvexV2Key, name, 0) != 0)
        return;
    platform::Message message;
    message.text = QStringLiteral("%1 is designed to work with a minimum screen resolution of 800x600.\n\n"
                                  "Your screen is set smaller than this, so some graphics will not appear "
                                  "correctly.\n\n"
                                  "Norvane supports %1 only at a resolution of 800x600 or higher; ask "
                                  "support@norvane.example for more information.")
                       .arg(QLatin1String(ProductName));
    message.icon = platform::Icon::Exclamation;
    platform::prompts().ask(message);
    WriteRegistryLong(LocalMachineHive, TolvexV2Key, name, 1, 0);
}

// Several screens are supported on the versions tested with them, and on no later one.
bool knowsSeveralMonitors(const platform::SystemVersion& version) {
    return version.platform == 1 ? version.minor == 10 : version.platform == 2 && version.major == 5;
}

qint32 twips(int pixels, double twipsPerPixel) {
    return ToLong(pixels * twipsPerPixel);
}

void measureScreens(const ScreenFacts& screen, Settings& values) {
    int width = screen.PrimaryWidth;
    values.MonitorCount = 1;
    if (values.MultiMonitorAllowed) {
        const QList<int>& monitors = screen.MonitorWidths;
        values.MonitorCount = static_cast<qint16>(monitors.size());
        // A window that spans more than two screens is not useful.
        width = monitors.size() < 3 ? screen.DesktopWidth : monitors[0] + monitors[1];
    }
    values.ScreenWidthTwips = twips(width, screen.TwipsPerPixelX);
    // Whatever the screens' heights: no window reaches below the primary screen's work area.
    values.ScreenHeightTwips = twips(screen.WorkAreaBottom, screen.TwipsPerPixelY);
}

} // namespace

QString RunByProgram(const StartUp& startUp) {
    const QString name = QStringLiteral("/RUNBY=");
    const qsizetype found = startUp.typedCommandLine.indexOf(name, 0, Qt::CaseInsensitive);
    return found < 0 ? QString() : startUp.typedCommandLine.mid(found + name.size()).trimmed();
}

QString NamedSystemIniFile(const Workstation& station) {
    const StartUp& state = station.startUp;
    return state.systemIni.isEmpty() ? SwitchValue(station.settings.CommandLine, QStringLiteral("/SI:"))
                                     : state.systemIni;
}

bool ChooseLocalIniFile(Workstation& station) {
    const StartUp& state = station.startUp;
    QString& iniFile = station.settings.LocalIniFile;
    iniFile = QStringLiteral("TOLVEX.INI");
    const QString named = state.localIni.isEmpty()
                              ? SwitchValue(station.settings.CommandLine, QStringLiteral("/LI:"))
                              : state.localIni;
    if (!named.isNull()) {
        iniFile = named;
        return true;
    }
    if (ReadRegistryLong(LocalMachineHive, TolvexKey, QStringLiteral("MultiConfigFile"), 0) == 0)
        return true;
    const platform::PointerKeeper pointer(platform::Pointer::Default);
    iniFile = platform::prompts().chooseConfigurationSet(TolvexKey, QStringLiteral("tolvex.ini"));
    return !iniFile.isEmpty();
}

bool InitialiseProgram(Workstation& station) {
    StartUp& state = station.startUp;
    Settings& values = station.settings;
    values.CommandLine = u' ' + state.typedCommandLine.toUpper();
    if (!state.iniFileChosen && !ChooseLocalIniFile(station))
        return false;
    state.iniFileChosen = true;
    if (values.DebugLevel == 0 && values.CommandLine.contains(QLatin1String("/DEBUG")))
        values.DebugLevel = -1;
    values.OSVersion = platform::OperatingSystem();
    warnOfLowScreen(state.screens);
    const bool severalMonitors = !values.CommandLine.contains(QLatin1String("/NOMULTIMONITOR")) &&
                                 knowsSeveralMonitors(values.OSVersion);
    values.MultiMonitorAllowed = severalMonitors ? -1 : 0;
    measureScreens(state.screens, values);
    fillLogSources(values);
    return true;
}

} // namespace tolvex
