#include "audio/LocalKeys.h"

#include "core/settings/SettingsLoader.h"
#include "core/settings/StoredSettings.h"

namespace tolvex {

namespace {

// Calls `visit(row, index)` for each key that is read and saved, sizes before the rows that have them. The
// visitor may change the settings.
template<typename Visit>
void forEachKey(const Settings& settings, const Visit& visit) {
    for (const SettingGroup& group : AllSettings()) {
        if (group.file != SettingsFile::Local)
            continue;
        for (const SettingRow& row : group.rows) {
            const int count = row.at && row.savePosition > 0 ? SettingCount(row, settings) : 0;
            for (int entry = 1; entry <= count; ++entry)
                visit(row, row.count ? entry : 0);
        }
    }
}

} // namespace

LocalKeys::LocalKeys(const Settings& settings) {
    if (settings.LocalIniFile.trimmed().isEmpty())
        return;
    forEachKey(settings, [&](const SettingRow& row, int index) {
        texts_.insert({&row, index}, StoredTextOf(row, index, settings.LocalIniFile));
    });
}

int LocalKeys::takeNewer(Settings& settings) const {
    int taken = 0;
    if (texts_.isEmpty())
        return taken;
    forEachKey(settings, [&](const SettingRow& row, int index) {
        const std::optional<QString> now = StoredTextOf(row, index, settings.LocalIniFile);
        if (now == texts_.value({&row, index}) || now == StoredText(row, index, settings))
            return; // not changed, or by an OK of this program
        LoadEntry(row, index, {settings.LocalIniFile}, settings);
        if (&row == &RowOf<&Settings::NumberCartJumpButtons>())
            SizeJumpCartButtons(settings);
        ++taken;
    });
    return taken;
}

} // namespace tolvex
