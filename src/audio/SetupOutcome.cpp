#include "audio/SetupOutcome.h"

#include "core/report/ProblemReport.h"
#include "core/settings/Settings.h"
#include "core/settings/StoredSettings.h"
#include "platform/profile/ProfileCheck.h"

namespace tolvex {

int CheckLocalFile(const Settings& settings) {
    return settings.LocalIniFile.trimmed().isEmpty() ? int{platform::ProfileOk}
                                                     : platform::CheckProfileWrite(settings.LocalIniFile);
}

SetupOutcome NothingStored(int profileError, const QString& file) {
    return {ProfileErrorText(profileError, file) + QStringLiteral("; nothing was stored."), {}, profileError};
}

void SayWallNotWritten(int profileError, const QString& file) {
    ShowExclamation(ProfileErrorText(profileError, file) +
                    QStringLiteral("; the settings of this workstation were stored."));
}

} // namespace tolvex
