#include "audio/Hotlist.h"

#include "audio/CartStore.h"
#include "core/report/Folders.h"
#include "core/text/RecordLayout.h"
#include "platform/Prompts.h"
#include "platform/files/Files.h"

namespace tolvex {

namespace {

using platform::Answer;
using platform::RecordFile;

constexpr int firstTextLength = 26;
constexpr auto layout = MakeRecordLayout<HotlistRecordLength, HotlistRecord>(
    TextField{0, firstTextLength, &HotlistRecord::Text0},
    TextField{firstTextLength, HotlistRecordLength - firstTextLength, &HotlistRecord::Text26});
static_assert(layout.coversEachByteOnce());

} // namespace

HotlistRecord BlankHotlistRecord() {
    return {QString(firstTextLength, u' '), QString(HotlistRecordLength - firstTextLength, QChar(0))};
}

HotlistBytes EncodeHotlistRecord(const HotlistRecord& record) {
    HotlistBytes bytes;
    layout.encode(record, bytes.data());
    return bytes;
}

HotlistRecord DecodeHotlistRecord(const HotlistBytes& bytes) {
    HotlistRecord record;
    layout.decode(bytes.data(), record);
    return record;
}

bool OpenHotlist(CartStore& carts, const QString& location) {
    if (location.isEmpty() || carts.settings.LastOneWas == -1 || !DirectoryExists(location))
        return false;
    const QString path = location + QStringLiteral("\\GLIC.Lst");
    if (!carts.settings.AutoConfigInProgress && FileLength(path) < 0) {
        const Answer answer = platform::prompts().ask(
            {.text = QStringLiteral("The Public Instant Cart Hotlist has not been found.\n"
                                    "Do you wish to create it in :\n") +
                     path,
             .icon = platform::Icon::Exclamation,
             .buttons = platform::Buttons::YesNoCancel,
             .title = QStringLiteral("File System Startup Error")});
        if (answer == Answer::Cancel)
            return false;
        if (answer == Answer::No)
            return true;
    }
    CloseHotlist(carts);
    Hotlist& hotlist = carts.hotlist;
    const auto open = [&path] { return RecordFile::open(path, HotlistRecordLength, true); };
    hotlist.file = open();
    if (hotlist.file && hotlist.file->count() < HotlistRecordCount) {
        const HotlistBytes blank = EncodeHotlistRecord(BlankHotlistRecord());
        hotlist.file->append(QByteArray(blank.data(), HotlistRecordLength),
                             HotlistRecordCount - hotlist.file->count());
        hotlist.file.reset();
        hotlist.file = open();
    }
    if (hotlist.file)
        hotlist.number = FreeFileNumber(carts);
    return true;
}

void CloseHotlist(CartStore& carts) {
    carts.hotlist = {};
}

} // namespace tolvex
