// A path from a settings file, whatever it holds, must stay below the root it names, and mean the same after
// it is written out and split again.
#include "Require.h"

#include "platform/paths/PathParts.h"

#include <cstddef>
#include <cstdint>

using namespace tolvex::platform;

namespace {

void requireName(const QString& name) {
    require(!name.isEmpty() && name != u"." && name != u".." && !name.contains(u'/') &&
            !name.contains(u'\\') && !name.contains(QChar(0)));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QString path = QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const PathParts current{{"m:"}, {"Work", "Here"}};
    const std::optional<PathParts> parts = SplitPath(path, current);
    if (!parts)
        return 0;
    require(parts->root.size() == 1 || (parts->root.size() == 3 && parts->root[0] == u"unc"));
    for (const QString& name : parts->root + parts->names) {
        requireName(name);
        const QString brief = ShortName(name);
        require(ShortName(brief) == brief && brief.size() <= 12);
        require(FoldName(FoldName(name)) == FoldName(name));
    }
    const std::optional<PathParts> again = SplitPath(parts->text(), current);
    require(again && again->root == parts->root && again->names == parts->names);
    return 0;
}
