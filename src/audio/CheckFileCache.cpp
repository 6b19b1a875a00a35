#include "audio/CheckFileCache.h"

#include "core/settings/Settings.h"
#include "core/system/Registry.h"
#include "platform/Prompts.h"
#include "platform/profile/ProfileFile.h"

namespace tolvex {

namespace {

using platform::Answer;

constexpr quint32 consumerPlatform = 1;
constexpr quint64 largeMemory = 0x4000000; // bytes
constexpr char16_t checkedValue[] = u"CheckedForVCACHE";
constexpr qint32 refused = 1;
constexpr qint32 optimised = 2;

const QString systemIni = QStringLiteral("system.ini");
const QString section = QStringLiteral("vcache");
const QString smallest = QStringLiteral("MinFileCache");
const QString largest = QStringLiteral("MaxFileCache");

void tell(const char* text) {
    platform::prompts().ask({.text = QLatin1String(text), .icon = platform::Icon::Information});
}

void remember(const QString& registryPath, qint32 answer) {
    WriteRegistryLong(LocalMachineHive, registryPath, QString::fromUtf16(checkedValue), answer, 0);
}

Answer askToOptimise() {
    return platform::prompts().ask(
        {.text = QStringLiteral(
             "Your Windows(TM) Operating System is not optimised for Audio playback\n\n"
             "Do you want it to be automatically configured?\n\n"
             "If you are not sure, click Cancel and contact Norvane for more information\n\n"
             "(If you click No, you can later perform this change from Advanced under Audio Setup in Tolvex "
             "Configuration)"),
         .icon = platform::Icon::Question,
         .buttons = platform::Buttons::YesNoCancel});
}

} // namespace

void CheckFileCache(Settings& settings, const QString& registryPath, bool verbose) {
    if (registryPath.isEmpty())
        return;
    settings.OSVersion = platform::OperatingSystem();
    if (settings.OSVersion.platform != consumerPlatform) {
        if (verbose)
            tell("Your Windows(TM) Operating System does not need to be optimised, as it is natively "
                 "optimized "
                 "for Audio playback");
        return;
    }
    if (!verbose &&
        ReadRegistryLong(LocalMachineHive, registryPath, QString::fromUtf16(checkedValue), 0) != 0)
        return;
    const qint32 lower = platform::ProfileInteger(section, smallest, 0, systemIni);
    const qint32 upper = platform::ProfileInteger(section, largest, 0, systemIni);
    const qint32 wanted = platform::PhysicalMemory() >= largeMemory ? 8192 : 4096;
    if (lower == wanted && upper == wanted) {
        if (verbose)
            tell("Your Windows(TM) Operating System is optimized for Audio playback");
        remember(registryPath, optimised);
        return;
    }
    switch (askToOptimise()) {
    case Answer::Yes: {
        platform::ProfileBatch batch(systemIni);
        batch.put(section, smallest, qint64{wanted});
        batch.put(section, largest, qint64{wanted});
        batch.commit();
        remember(registryPath, optimised);
        tell("Your system has been optimised, and this will take effect after you re-start Windows");
        break;
    }
    case Answer::No:
        remember(registryPath, refused);
        break;
    default:
        break; // asked again at the next load
    }
}

} // namespace tolvex
