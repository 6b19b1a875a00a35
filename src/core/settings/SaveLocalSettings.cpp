#include "core/settings/SaveLocalSettings.h"

#include "core/settings/SettingText.h"
#include "core/settings/SettingsLoader.h"
#include "core/text/PathNames.h"

#include <algorithm>
#include <vector>

namespace tolvex {

namespace {

// Rows saved in turn: one plain row, or neighbours that share an index and are saved entry by entry.
using SavedBlock = std::vector<const SettingRow*>;

std::vector<SavedBlock> savedBlocks() {
    std::vector<const SettingRow*> saved;
    for (const SettingGroup& group : AllSettings())
        for (const SettingRow& row : group.rows)
            if (row.savePosition > 0)
                saved.push_back(&row);
    std::sort(saved.begin(), saved.end(),
              [](const SettingRow* a, const SettingRow* b) { return a->savePosition < b->savePosition; });
    std::vector<SavedBlock> blocks;
    for (const SettingRow* row : saved)
        if (row->count && !blocks.empty() && blocks.back().front()->count == row->count)
            blocks.back().push_back(row);
        else
            blocks.push_back({row});
    return blocks;
}

void put(platform::ProfileBatch& batch, const SettingRow& row, int index, Settings& values) {
    if (const std::optional<QString> text = StoredText(row, index, values))
        PutSettingText(batch, row, text->isNull() ? QStringLiteral("") : *text, index);
    else
        batch.remove(QLatin1String(row.section), SettingKey(row, index));
}

} // namespace

int SaveLocalSettings(Settings& values, const QString& iniFile) {
    if (iniFile.trimmed().isEmpty())
        return platform::ProfileOk;
    static const std::vector<SavedBlock> blocks = savedBlocks();
    platform::ProfileBatch batch(iniFile);
    for (const SavedBlock& block : blocks) {
        const bool indexed = block.front()->count != nullptr;
        const int count = SettingCount(*block.front(), values);
        for (int index = 1; index <= count; ++index)
            for (const SettingRow* row : block)
                put(batch, *row, indexed ? index : 0, values);
    }
    // After their texts were read: a location loses one backslash per save, not one here and one there.
    values.DataLocation = TidyLocation(values.DataLocation);
    for (CartPart& part : values.CartPartTable)
        part.Location = TidyLocation(part.Location);
    return batch.commit();
}

} // namespace tolvex
