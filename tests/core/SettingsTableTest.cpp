#include "core/settings/SettingsTable.h"

#include "TestPlaces.h"
#include "core/settings/SettingsReference.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QSet>

using namespace tolvex;

TEST(SettingsTable, EveryKeyIsDeclaredOnceAndFoundInAnyCase) {
    QSet<QString> seen;
    for (const SettingGroup& group : AllSettings())
        for (const SettingRow& row : group.rows) {
            const int index = row.count ? 3 : 0;
            const QString section = QLatin1String(row.section);
            const QString name = section.toLower() + u'/' + SettingKey(row, index).toLower();
            EXPECT_FALSE(seen.contains(name)) << name.toStdString();
            seen.insert(name);
            const SettingPlace place = FindSetting(section.toUpper(), SettingKey(row, index).toLower());
            EXPECT_EQ(place.row, &row) << name.toStdString();
            EXPECT_EQ(place.index, index);
            EXPECT_TRUE(row.at || row.written) << name.toStdString();
            EXPECT_GT(qstrlen(row.help), 10u) << name.toStdString();
        }
    EXPECT_GT(seen.size(), 100);
    for (const char* key : {"Carts", "Carts0", "Carts01", "Carts123456", "Carts12", "Cart1", "KHz1", ""})
        EXPECT_FALSE(FindSetting(QStringLiteral("FileLocations"), QLatin1String(key))) << key;
}

// The page is made from the rows: TOLVEX_WRITE_DOCS=1 writes it anew.
TEST(SettingsTable, TheReferencePageTellsWhatTheRowsSay) {
    QFile page(QStringLiteral(TOLVEX_SOURCE_DIR "/docs/settings.md"));
    if (qEnvironmentVariableIsSet("TOLVEX_WRITE_DOCS")) {
        ASSERT_TRUE(page.open(QIODevice::WriteOnly));
        page.write(SettingsReference().toUtf8());
        page.close();
    }
    ASSERT_TRUE(page.open(QIODevice::ReadOnly));
    EXPECT_EQ(QString::fromUtf8(page.readAll()), SettingsReference());
}
