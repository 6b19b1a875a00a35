// The public instant cart hotlist: GLIC.Lst in the folder of the first part of the audiowall, 40 records of
// 256 bytes (docs/formats/hotlist.md). This program makes it and keeps it open; it does not use what is in
// it.
#pragma once

#include "platform/files/Files.h"

#include <QString>

#include <array>
#include <memory>

namespace tolvex {

struct CartStore;

inline constexpr int HotlistRecordLength = 256;
inline constexpr int HotlistRecordCount = 40;

struct HotlistRecord {
    QString Text0;  // 26 characters
    QString Text26; // 230 characters
    bool operator==(const HotlistRecord&) const = default;
};
using HotlistBytes = std::array<char, HotlistRecordLength>;

// 26 blanks, then 230 zero bytes.
HotlistRecord BlankHotlistRecord();
HotlistBytes EncodeHotlistRecord(const HotlistRecord& record);
HotlistRecord DecodeHotlistRecord(const HotlistBytes& bytes);

// The list while it is open.
struct Hotlist {
    std::unique_ptr<platform::RecordFile> file; // null: closed
    qint16 number = 0;                          // its channel; 0 while it is closed
};

// Opens the list in a folder, making it (after a question, unless automatic configuration runs) and growing
// it to 40 records. True when the caller may go on, which includes No to the question and a file that cannot
// be opened; false on Cancel, for an empty or missing folder, and when there are no system settings.
bool OpenHotlist(CartStore& carts, const QString& location);

void CloseHotlist(CartStore& carts);

} // namespace tolvex
