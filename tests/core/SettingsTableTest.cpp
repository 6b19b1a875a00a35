#include "core/settings/SettingsTable.h"

#include "TestPlaces.h"
#include "core/settings/SettingsReference.h"

#include <gtest/gtest.h>

#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>
#include <QSet>

using namespace tolvex;

namespace {

// The quoted texts of a source file, except those in comments.
QSet<QString> textsIn(const QString& path) {
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    static const QRegularExpression pattern(QStringLiteral(R"re(//[^\n]*|"((?:[^"\\\n]|\\.)*)")re"));
    QSet<QString> texts;
    auto found = pattern.globalMatch(QString::fromUtf8(file.readAll()));
    while (found.hasNext())
        texts.insert(found.next().captured(1));
    return texts;
}

// Words that are keys and have another meaning too: they count only beside the name of their section.
bool isPlainWord(const QString& key) {
    static const QRegularExpression pattern(QStringLiteral("^[A-Z][a-z]*$"));
    return pattern.match(key).hasMatch();
}

// Where keys may be named: in the rows themselves.
constexpr const char* rowFiles[] = {"src/core/settings/LocalSettings.cpp",
                                    "src/core/settings/AudioSettings.cpp"};

} // namespace

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

// The page is generated from the rows: TOLVEX_WRITE_DOCS=1 rewrites it.
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

TEST(SettingsTable, NothingButTheRowsNamesAKey) {
    const QDir root(QStringLiteral(TOLVEX_SOURCE_DIR));
    QDirIterator files(root.filePath(QStringLiteral("src")), {"*.h", "*.cpp"}, QDir::Files,
                       QDirIterator::Subdirectories);
    int seen = 0;
    while (files.hasNext()) {
        const QString path = files.next();
        const QString name = root.relativeFilePath(path);
        if (std::any_of(std::begin(rowFiles), std::end(rowFiles),
                        [&name](const char* file) { return name == QLatin1String(file); }))
            continue;
        const QSet<QString> texts = textsIn(path);
        ++seen;
        for (const SettingGroup& group : AllSettings())
            for (const SettingRow& row : group.rows) {
                const QString key = QLatin1String(row.key);
                if (isPlainWord(key) && !texts.contains(QLatin1String(row.section)))
                    continue;
                EXPECT_FALSE(texts.contains(key)) << name.toStdString() << " names " << row.key;
                for (const QString& entry : {key + u'1', key + QStringLiteral("%1")})
                    EXPECT_FALSE(row.count && texts.contains(entry))
                        << name.toStdString() << " names " << row.key;
            }
    }
    EXPECT_GT(seen, 300);
}

// The places determine the order of a new file; two keys with one place would have a random order.
TEST(SettingsTable, EachSavedKeyHasAPlaceOfItsOwn) {
    QSet<int> places;
    for (const SettingGroup& group : AllSettings())
        for (const SettingRow& row : group.rows) {
            if (row.savePosition == 0)
                continue;
            EXPECT_EQ(group.file, SettingsFile::Local) << row.key;
            EXPECT_FALSE(places.contains(row.savePosition)) << row.key;
            places.insert(row.savePosition);
        }
    EXPECT_GT(places.size(), 80);
}

// The controls named by rows exist, in each form that has a design.
TEST(SettingsTable, TheControlsOfRowsAreInTheirForms) {
    int looked = 0;
    QDirIterator designs(QStringLiteral(TOLVEX_SOURCE_DIR "/src"), {"frm*.ui"}, QDir::Files,
                         QDirIterator::Subdirectories);
    while (designs.hasNext()) {
        QFile file(designs.next());
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        const QByteArray design = file.readAll();
        const QString form = QFileInfo(file).completeBaseName();
        for (const SettingGroup& group : AllSettings())
            for (const SettingRow& row : group.rows) {
                EXPECT_TRUE(!row.bound || row.control) << row.key;
                if (!row.control || form != QLatin1String(row.form))
                    continue;
                for (const QByteArray& control : QByteArray(row.control).split(' ')) {
                    const QByteArray name =
                        "name=\"" + control + (row.count && control.endsWith('_') ? "1" : "") + '"';
                    EXPECT_TRUE(design.contains(name)) << row.key << ": " << name.data();
                    ++looked;
                }
            }
    }
    EXPECT_GT(looked, 10);
}
