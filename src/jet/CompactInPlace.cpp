#include "jet/CompactInPlace.h"

#include "jet/Database.h"
#include "jet/pager/Swap.h"

namespace jet {

CompactResult CompactInPlace(Storage& storage, const std::string& path, const InPlaceNames& names,
                             const std::u16string& password, const OnLoss& lost) {
    const std::string file = storage.resolve(path);
    OpenOptions options;
    options.readOnly = true;
    options.exclusive = true;
    options.password = password;
    Database from = Database::open(storage, file, options);
    if (!from.isHeldAlone())
        throw Error(ErrorNumber::CannotUpdateReadOnly, path + ": the file may not be written");
    from.emptyLog();
    Swap swap(storage, file, file.substr(0, file.rfind('/') + 1) + names.copy);
    const CompactResult result = CompactInto(from, swap.file(), lost);
    swap.finish(names.backup);
    return result;
}

} // namespace jet
