#include "core/settings/SettingText.h"

namespace tolvex {

QString SettingText(const SettingRow& row, const QString& file, const QString& fallback, int index,
                    int buffer) {
    return platform::ProfileText(QLatin1String(row.section), SettingKey(row, index), fallback, file,
                                 buffer ? buffer : row.buffer);
}

int WriteSettingText(const SettingRow& row, const QString& text, const QString& file, int index) {
    return platform::WriteProfileText(QLatin1String(row.section), SettingKey(row, index), text, file);
}

void PutSettingText(platform::ProfileBatch& batch, const SettingRow& row, const QString& text, int index) {
    batch.put(QLatin1String(row.section), SettingKey(row, index), text);
}

} // namespace tolvex
