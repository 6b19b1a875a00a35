#include "jet/DatabaseUsers.h"

#include "jet/pager/Sharing.h"

namespace jet {

DatabaseUsers FindDatabaseUsers(Storage& storage, const std::string& path) {
    const std::string resolved = storage.resolve(path);
    const auto file = storage.open(resolved, Storage::Open::ReadOnly);
    Sharing sharing(storage, *file, resolved, false, Sharing::Wait{0});
    DatabaseUsers users{sharing.isInUse(), sharing.otherUsers()};
    users.any = users.any || !users.computers.empty();
    return users;
}

} // namespace jet
