#include "audio/SetupOutcome.h"

#include "core/settings/SaveLocalSettings.h"
#include "core/settings/Settings.h"
#include "core/settings/StoredSettings.h"
#include "platform/profile/ProfileCheck.h"

namespace tolvex {

int CheckLocalFile(const Settings& settings) {
    return settings.LocalIniFile.trimmed().isEmpty() ? int{platform::ProfileOk}
                                                     : platform::CheckProfileWrite(settings.LocalIniFile);
}

int SaveLocalFile(Settings& settings) {
    Settings again = settings; // saving tidies them
    const int error = SaveLocalSettings(settings, settings.LocalIniFile);
    // A file that was put in place needs no second write.
    return error == platform::ProfileDeviceError ? SaveLocalSettings(again, again.LocalIniFile) : error;
}

SetupOutcome NothingStored(int profileError, const QString& file) {
    return {ProfileErrorText(profileError, file) + QStringLiteral("; nothing was stored."), {}, profileError};
}

} // namespace tolvex
