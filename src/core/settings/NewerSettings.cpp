#include "core/settings/NewerSettings.h"

#include "core/settings/SettingsLoader.h"

namespace tolvex {

QStringList TakeNewer(std::span<const SettingRow* const> rows, Settings now, Settings& shown,
                      Settings& wanted) {
    QStringList changed;
    for (const SettingRow* row : rows) {
        const QString newer = StoredText(*row, 0, now).value_or(QString());
        const QString before = StoredText(*row, 0, shown).value_or(QString());
        if (newer == before)
            continue;
        changed += QString::fromUtf8(row->help);
        if (StoredText(*row, 0, wanted).value_or(QString()) == before)
            PutEntry(*row, 0, newer, wanted);
        PutEntry(*row, 0, newer, shown);
    }
    return changed;
}

QString NewerSettingsText(const QStringList& changed) {
    return QStringLiteral("Another workstation has changed these settings in the meantime:\n\n%1\n\nNothing "
                          "has been stored yet. What you did not change is shown as it is now; click OK "
                          "again to store the rest.")
        .arg(changed.join(u'\n'));
}

} // namespace tolvex
