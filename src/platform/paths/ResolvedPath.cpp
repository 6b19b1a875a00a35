#include "platform/paths/ResolvedPath.h"

#include "platform/host/LookOnly.h"
#include "platform/paths/PathParts.h"
#include "platform/paths/Paths.h"

namespace tolvex::platform {

ResolvedPath::ResolvedPath(const QString& windowsPath)
    : host(HostPath(windowsPath))
    , name(HostName(host)) {
    if (host.isEmpty())
        error = windowsPath.isEmpty() || windowsPath.contains(QChar(0)) ? BadFileNumber : PathNotFound;
}

int ResolvedPath::asNew() const {
    if (error == NoError && LookingOnly())
        return PathFileAccess;
    if (error != NoError || LinkStatusOf(name))
        return error;
    return IsValidName(host.section(u'/', -1)) ? NoError : BadFileNumber;
}

} // namespace tolvex::platform
