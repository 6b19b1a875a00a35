#include "audio/AudiowallKeys.h"

#include "audio/LoadAudioSettings.h"
#include "core/report/ProblemReport.h"
#include "core/settings/SettingText.h"
#include "core/settings/SettingsLoader.h"
#include "core/settings/StoredSettings.h"
#include "platform/files/Files.h"
#include "platform/profile/ProfileCheck.h"

#include <algorithm>

namespace tolvex {

bool AudiowallFileExists(const Settings& settings) {
    return platform::FileExists(AudiowallIniFile(settings));
}

AudiowallKeys::AudiowallKeys(const Settings& settings, bool wasThere)
    : file_(AudiowallIniFile(settings))
    , isGone_(wasThere && !AudiowallFileExists(settings)) {}

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
    const int error = needsWriting() ? platform::CheckProfileWrite(file_) : platform::ProfileOk;
    return error == platform::ProfileOk && isGone_ ? platform::ProfileFileNotFound : error;
}

int AudiowallKeys::commit() const {
    platform::ProfileBatch batch(file_);
    for (const Key& key : keys_)
        if (key.isWritten)
            PutSettingText(batch, *key.row, key.text);
    return batch.commit();
}

int AudiowallKeys::write(Settings& settings) {
    if (isGone_)
        return check();
    int error = commit();
    // The device may fail when the folder is flushed; the file is in place then and needs no second write.
    if (error == platform::ProfileDeviceError)
        error = commit();
    if (error)
        return error;
    for (const Key& key : keys_)
        LoadRow(*key.row, {file_}, settings);
    return platform::ProfileOk;
}

QString AudiowallKeys::errorText(int profileError) const {
    if (profileError == platform::ProfileFileNotFound && isGone_)
        return QStringLiteral("%1 is gone since its settings were read (error %2)")
            .arg(file_)
            .arg(profileError);
    return ProfileErrorText(profileError, file_);
}

void AudiowallKeys::sayNotWritten(int profileError) const {
    ShowExclamation(errorText(profileError) +
                    QStringLiteral("; the settings of this workstation were stored."));
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
