#include "core/settings/SaveLocalSettings.h"

#include "core/settings/SettingsLoader.h"
#include "core/text/PathNames.h"
#include "platform/profile/ProfileFile.h"

namespace tolvex {

namespace {

struct SavedSection {
    const char* section;
    std::vector<const char*> keys;
};

// The order in which keys are saved, and so the order in which they stand in a new file.
const std::vector<SavedSection>& savedSections() {
    static const std::vector<SavedSection> sections = {
        {"FileLocations", {"Data", "Schedules", "Logs", "Carts", "SampleEditor", "AudioEditor"}},
        {"Audio",
         {"AudioEditorPriority", "AudioEditorRunAtIdleSpeed", "KHz", "Channels", "Format", "Bits",
          "AllowDifferentFormat", "RecordLocal", "PlayerFadeFirePercent", "PlayCartsInstantly",
          "OnlyAllowEjectStoppedCarts", "PlayerFadeSeconds"}},
        {"DateTimeSettings", {"RadioClockComPort"}},
        {"AudioWall",
         {"NumberCartJumpButtons", "JumpCartNumber", "JumpDescription", "CartMinimumHeight",
          "CartMinimumWidth", "ShowICAtLogin", "ShowPadAtLogin", "DisplayICText", "AutoUpdateInterval",
          "SearchCartNotes", "SearchCartsFromStart", "DisplayExtros", "UsersCanSetFirst5IC", "CartBevelWidth",
          "DragDropMoveCarts", "LevelTrigger", "AlwaysUseLevelTrigger"}},
        {"Carts", {"HighlightPlayedCarts", "HighlightPLayedCartsInterval", "KeyboardClose", "MouseClose"}},
        {"LinkMesh", {"LinkMeshId"}},
        {"CartPlayers",
         {"TotalNumberCartPlayers", "AutomaticPlayerAssignment", "SoundCardNumber", "BackColor", "ForeColor",
          "Instant", "EditPlayer", "FirstPlayerInOrder", "LastPlayerInOrder", "RegisterAsToolbars"}},
        {"Audio",
         {"RecordingSoundCard", "SweptVolume", "GeneralVolume", "DuckAudioVolume", "UsePlayerDucking",
          "MaintainLegacyCartList", "UseIndividualCartListFiles", "LockPlayerWhenRecording",
          "UseLargeWLBuffers", "UseLegacyFileCopyMode", "WLDebugMode", "CartFontBold", "CartFontSize",
          "CartFontName", "DisplayCartHasAudioAsSquare", "CartShowCompressed", "DisplayCartTimeHours"}},
        {"Display",
         {"SingleClickPlayCarts", "FormBackcolor", "FormForeColor", "AdjustTheSystemColors",
          "UseInformationWindow", "ShowClock"}},
        {"Audio",
         {"SelectedCartMode", "SelectedCartColor", "SelectedCartColorText", "CartPlayedRecentColor",
          "ShowTimesBarInColor", "TimesBarColor", "TimesBarColorText", "CartNumberColor",
          "EmptyCartNumberColor", "EmptyCartBackColor", "EmptyCartForeColor"}},
    };
    return sections;
}

const SettingRow* rowOf(const char* section, const char* key) {
    for (const SettingGroup& group : AllSettings())
        for (const SettingRow& row : group.rows)
            if (group.file == SettingsFile::Local && qstrcmp(row.section, section) == 0 &&
                qstrcmp(row.key, key) == 0)
                return &row;
    Q_UNREACHABLE();
}

// Rows that are saved in turn: one plain row, or neighbours that share an index and go entry by entry.
using SavedBlock = std::vector<const SettingRow*>;

std::vector<SavedBlock> resolve() {
    std::vector<SavedBlock> blocks;
    for (const SavedSection& saved : savedSections())
        for (const char* key : saved.keys) {
            const SettingRow* row = rowOf(saved.section, key);
            if (row->count && !blocks.empty() && blocks.back().front()->count == row->count)
                blocks.back().push_back(row);
            else
                blocks.push_back({row});
        }
    return blocks;
}

void put(platform::ProfileBatch& batch, const SettingRow& row, int index, Settings& values) {
    const QString section = QLatin1String(row.section);
    const QString key = SettingKey(row, index);
    if (const std::optional<QString> text = StoredText(row, index, values))
        batch.put(section, key, text->isNull() ? QStringLiteral("") : *text);
    else
        batch.remove(section, key);
}

} // namespace

int SaveLocalSettings(Settings& values, const QString& iniFile) {
    if (iniFile.trimmed().isEmpty())
        return platform::ProfileOk;
    static const std::vector<SavedBlock> blocks = resolve();
    platform::ProfileBatch batch(iniFile);
    for (const SavedBlock& block : blocks) {
        const bool indexed = block.front()->count != nullptr;
        const int count = SettingCount(*block.front(), values);
        for (int index = 1; index <= count; ++index)
            for (const SettingRow* row : block)
                put(batch, *row, indexed ? index : 0, values);
    }
    // After their texts were taken: a location loses one backslash a save, not one here and one there.
    values.DataLocation = TidyLocation(values.DataLocation);
    for (CartPart& part : values.CartPartTable)
        part.Location = TidyLocation(part.Location);
    return batch.commit();
}

} // namespace tolvex
