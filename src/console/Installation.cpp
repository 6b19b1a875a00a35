#include "console/Installation.h"

#include "audio/CartStore.h"
#include "audio/Hotlist.h"
#include "core/report/Folders.h"
#include "core/settings/SettingText.h"
#include "databases/suite/DatabaseKinds.h"
#include "databases/suite/FindDatabases.h"
#include "databases/users/UsersDatabase.h"
#include "network/TerminalList.h"
#include "platform/profile/ProfileFile.h"
#include "station/Workstation.h"

namespace tolvex {

namespace {

InstalledItem localIni(const Settings& values) {
    const QString data = SettingText(RowOf<&Settings::DataLocation>(), values.LocalIniFile);
    const QString carts =
        SettingText(RowOf<&Settings::CartPartTable, &CartPart::Location>(), values.LocalIniFile, {}, 1);
    const bool saved = !values.DataLocation.isEmpty() && data == values.DataLocation &&
                       carts == values.CartPartTable[1].Location;
    return {QStringLiteral("Settings of this workstation"), values.LocalIniFile, saved};
}

InstalledItem file(const QString& what, const QString& path, qint64 length = 1) {
    return {what, path, FileLength(path) >= length};
}

// The default database that configuration makes, or the one of its kind that it found. If a default is named,
// none is made: its absence is no fault of the configuration.
QList<InstalledItem> automationDatabase(const Settings& settings) {
    const QString ours = QStringLiteral("KOVA26.MDB");
    const QString folder = settings.DataLocation + QStringLiteral("\\SCHEDULE\\");
    QString name = SettingText(RowOf<&Settings::DefaultDatabase>(), settings.LocalIniFile);
    const bool named = !name.isEmpty();
    if (!named)
        FindDatabaseOfType(folder, KOVAType, &name, 1);
    const InstalledItem item =
        file(QStringLiteral("Automation database"), folder + (name.isEmpty() ? ours : name));
    return named && !item.present ? QList<InstalledItem>() : QList{item};
}

} // namespace

QList<InstalledItem> LookAtInstallation(Workstation& station) {
    const Settings& values = station.settings;
    const QString data = values.DataLocation;
    QList<InstalledItem> items = {localIni(values)};
    if (data.trimmed().isEmpty()) {
        items += {QStringLiteral("Data location"), QStringLiteral("not set"), false};
    } else {
        for (const char* folder : DataFolders) {
            const QString path = data + u'\\' + QLatin1String(folder);
            items += {QStringLiteral("Folder"), path, DirectoryExists(path)};
        }
        items += automationDatabase(values);
        items += file(QStringLiteral("Users database"), UsersDatabaseFile(values));
        items += file(QStringLiteral("Terminal list"), TerminalListPath(station.terminals),
                      qint64{TerminalRecordLength} * values.NumberTerminals);
    }
    for (int part = 1; part <= PartOfCart(values.NoCarts); ++part)
        items += file(QStringLiteral("Cart list"),
                      values.CartPartTable[part].Location + QStringLiteral("\\Carts%1.lst").arg(part),
                      CartListRecordLength * CartListRecords(station.carts, part));
    items += file(QStringLiteral("Hotlist"), values.CartPartTable[1].Location + QStringLiteral("\\GLIC.Lst"),
                  qint64{HotlistRecordLength} * HotlistRecordCount);
    return items;
}

QList<InstalledItem> MissingItems(Workstation& station) {
    QList<InstalledItem> items = LookAtInstallation(station);
    items.removeIf([](const InstalledItem& item) { return item.present; });
    return items;
}

} // namespace tolvex
