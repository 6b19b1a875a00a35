#include "core/system/DataEngine.h"

#include "core/system/Registry.h"
#include "core/text/Numbers.h"
#include "platform/Prompts.h"

namespace tolvex {

namespace {

const QString key = QStringLiteral("Software\\Microsoft\\DataAccess");
constexpr double oldestUsable = 2.5;

// Where to get the components.
const QString downloadPage = QStringLiteral("https://www.microsoft.com/download");

QString installedVersion() {
    const QString version = ReadRegistryString(LocalMachineHive, key, QStringLiteral("FullInstallVer"), {});
    return version.isEmpty() ? ReadRegistryString(LocalMachineHive, key, QStringLiteral("Version"), {})
                             : version;
}

void stop(const QString& text) {
    platform::Message message;
    message.text = text + downloadPage;
    message.icon = platform::Icon::Stop;
    platform::prompts().ask(message);
}

} // namespace

bool CheckDataEngine(bool showMessages, QString* version) {
    QString installed = installedVersion();
    const bool old = !installed.isEmpty() && LeadingNumber(installed) < oldestUsable;
    if (installed.isEmpty() && showMessages)
        stop(QStringLiteral("You must have the Norvane and Microsoft Database Engines installed to use this "
                            "product.\n\nA combined update utility can be downloaded from: "));
    if (old && showMessages)
        stop(QStringLiteral("You need to download and install the latest versions of Microsoft MDAC and Jet "
                            "4.0.\n\nYou can obtain these by visiting:\n\n"));
    if (old) {
        platform::prompts().openAddress(downloadPage);
        installed.clear();
    }
    if (version)
        *version = installed;
    return !installed.isEmpty();
}

} // namespace tolvex
