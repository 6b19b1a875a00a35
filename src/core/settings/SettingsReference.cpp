#include "core/settings/SettingsReference.h"

#include "core/settings/SettingsLoader.h"

namespace tolvex {

namespace {

struct FileHeading {
    SettingsFile file;
    const char* heading;
    const char* about;
};
constexpr FileHeading headings[] = {
    {SettingsFile::Local, "Local ini file",
     "`TOLVEX.INI` in the Windows folder, or the file chosen with `/LI:` or as a configuration set."},
    {SettingsFile::System, "System ini file",
     "`TLVX_SYS.INI` in the data location, or the file named with `/SI:`; shared by the whole station."},
    {SettingsFile::Audiowall, "Audiowall ini file",
     "`Audwall.ini` in the folder of the first part of the audiowall; it belongs to the audio."},
};

QString code(const QString& text) {
    return text.isEmpty() ? QStringLiteral("empty") : u'`' + text + u'`';
}

QString rowText(const SettingRow& row) {
    QString key = QLatin1String(row.key);
    if (row.count)
        key += QStringLiteral("<n>");
    QString notes = QLatin1String(row.help);
    if (row.oldKey)
        notes += QStringLiteral(" Older key: `[%1] %2%3`.")
                     .arg(QLatin1String(row.oldSection), QLatin1String(row.oldKey),
                          QLatin1String(row.count ? "<n>" : ""));
    if (row.subkey)
        notes += QStringLiteral(" Registry: `%1`, `%2%3`.")
                     .arg(QLatin1String(row.subkey), QLatin1String(row.valueName),
                          QLatin1String(row.count ? "<n>" : ""));
    return QStringLiteral("| `%1` | `%2` | %3 | %4 | %5 | %6 |\n")
        .arg(QLatin1String(row.section), key, SettingKindName(row), SettingRangeText(row),
             SettingDefaultNote(row), notes);
}

} // namespace

QString SettingKindName(const SettingRow& row) {
    switch (row.kind) {
    case SettingKind::Flag:
        return QStringLiteral("flag");
    case SettingKind::Word:
        return QStringLiteral("16-bit number");
    case SettingKind::Number:
    case SettingKind::NumberText:
        return QStringLiteral("number");
    case SettingKind::Colour:
        return QStringLiteral("colour");
    case SettingKind::Path:
        return QStringLiteral("path");
    case SettingKind::Date:
        return QStringLiteral("date");
    default:
        return QStringLiteral("text");
    }
}

QString SettingRangeText(const SettingRow& row) {
    if (row.kind == SettingKind::Flag)
        return QStringLiteral("0, 1");
    if (row.longest)
        return QStringLiteral("at most %1 characters").arg(row.longest);
    const bool whole = row.kind == SettingKind::Word || row.kind == SettingKind::Number ||
                       row.kind == SettingKind::NumberText;
    if (!whole || (row.lowest == INT32_MIN && row.highest == INT32_MAX))
        return {};
    return row.highest == INT32_MAX ? QStringLiteral("from %1").arg(row.lowest)
                                    : QStringLiteral("%1 to %2").arg(row.lowest).arg(row.highest);
}

QString SettingDefaultNote(const SettingRow& row) {
    if (row.defaultNote)
        return QLatin1String(row.defaultNote);
    if (!row.at)
        return QStringLiteral("derived");
    if (row.kind == SettingKind::Date)
        return QStringLiteral("none");
    if (row.kind == SettingKind::Colour)
        return QStringLiteral("`0x%1`").arg(static_cast<quint32>(row.defaultNumber), 0, 16);
    return code(DefaultText(row, 0, Settings{}));
}

QString SettingsReference() {
    QString page = QStringLiteral(
        "# Settings\n\n"
        "Every key of the suite's ini files that this program reads into its settings or writes from them. "
        "The page is\n"
        "generated from the program's own table; `tolvexctl settings list` shows the values of a "
        "workstation.\n\n"
        "- `<n>` is a number from 1 up, without a blank before it.\n"
        "- Flags are stored as 0 or 1; -1, or any other number, counts as on. Colours are decimal numbers "
        "with blue in the\n"
        "  high byte; with the top bit set they name a colour of the system.\n"
        "- `tolvexctl settings set` enforces the range; loading accepts any value in the file.\n"
        "- An older key, if there is one, is read first, and its value is the default of the key. Only "
        "the key is written.\n"
        "- The registry form, below `Software\\Norvane\\Tolvex v2` of the local machine, is used only "
        "without "
        "an ini file.\n");
    for (const FileHeading& heading : headings) {
        page += QStringLiteral("\n## %1\n\n%2\n\n")
                    .arg(QLatin1String(heading.heading), QLatin1String(heading.about));
        page += QStringLiteral(
            "| section | key | kind | range | default | meaning |\n|---|---|---|---|---|---|\n");
        for (const SettingGroup& group : AllSettings())
            if (group.file == heading.file)
                for (const SettingRow& row : group.rows)
                    page += rowText(row);
    }
    return page;
}

} // namespace tolvex
