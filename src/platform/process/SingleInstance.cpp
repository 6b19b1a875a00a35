#include "platform/process/SingleInstance.h"

#include "platform/paths/Paths.h"

#include <QLockFile>

namespace tolvex::platform {

SingleInstance::SingleInstance()
    : lock_(std::make_unique<QLockFile>(MachineFolder() + QStringLiteral("/tolvex-config.lock"))) {
    // A run lasts for weeks: a lock is stale only if its holder is gone, never because of its age.
    lock_->setStaleLockTime(0);
    first_ = lock_->tryLock(0);
    // A folder that accepts no lock file must not keep the program from starting.
    if (!first_ && lock_->error() != QLockFile::LockFailedError)
        first_ = true;
}

SingleInstance::~SingleInstance() = default;

} // namespace tolvex::platform
