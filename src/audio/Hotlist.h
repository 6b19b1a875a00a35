// The public instant cart hotlist: GLIC.Lst in the folder of the first part of the audiowall, 40 records of
// 256 bytes (docs/formats/hotlist.md). This program makes it and keeps it open; it does not use what is in
// it.
#pragma once

#include <QString>

#include <array>

namespace tolvex {

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

// Opens the list in a folder, making it (after a question, unless automatic configuration runs) and growing
// it to 40 records. True when the caller may go on, which includes No to the question and a file that cannot
// be opened; false on Cancel, for an empty or missing folder, and when there are no system settings.
bool OpenHotlist(const QString& location);

void CloseHotlist();

// The channel of the open list; 0 when it is closed.
int HotlistFileNumber();

} // namespace tolvex
