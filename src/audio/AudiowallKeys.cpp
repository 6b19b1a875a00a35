#include "audio/AudiowallKeys.h"

#include "audio/LoadAudioSettings.h"
#include "core/settings/SettingText.h"
#include "core/settings/SettingsLoader.h"
#include "core/settings/StoredSettings.h"
#include "platform/profile/ProfileCheck.h"

#include <algorithm>

namespace tolvex {

AudiowallKeys::AudiowallKeys(const Settings& settings)
    : file_(AudiowallIniFile(settings)) {}

void AudiowallKeys::set(const SettingRow& row, const QString& text, bool changed,
                        const std::function<bool(const QString& stored)>& fits) {
    const std::optional<QString> before = StoredTextOf(row, 0, file_);
    keys_ += {&row, text, before, changed || !before || !fits(*before)};
    changed_ = changed_ || changed;
}

bool AudiowallKeys::needsWriting() const {
    return std::any_of(keys_.begin(), keys_.end(), [](const Key& key) { return key.isWritten; });
}

int AudiowallKeys::check() const {
    return needsWriting() ? platform::CheckProfileWrite(file_) : platform::ProfileOk;
}

int AudiowallKeys::write(Settings& settings) {
    platform::ProfileBatch batch(file_);
    for (const Key& key : keys_)
        if (key.isWritten)
            PutSettingText(batch, *key.row, key.text);
    if (const int error = batch.commit())
        return error;
    for (const Key& key : keys_)
        LoadRow(*key.row, {file_}, settings);
    return platform::ProfileOk;
}

int AudiowallKeys::putBack() {
    platform::ProfileBatch batch(file_);
    for (const Key& key : keys_)
        if (key.isWritten && key.before)
            PutSettingText(batch, *key.row, *key.before);
        else if (key.isWritten)
            batch.remove(QLatin1String(key.row->section), QLatin1String(key.row->key));
    return batch.commit();
}

} // namespace tolvex
