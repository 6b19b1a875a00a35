// Fills the members of settings rows from a store and gives their stored text. A missing file, key or value
// leaves the default and is never reported.
#pragma once

#include "core/settings/SettingsTable.h"

namespace tolvex {

// Where rows are loaded from: an ini file or, when its path is empty, the local machine's registry below a
// root.
struct SettingSource {
    QString iniFile;
    QString registryRoot = {};
};

// One entry of a row: `index` from 1 for an indexed row, else 0. Rows that are never read are skipped, and so
// are rows that have no registry form when the source is the registry. Cost: one look-up, two where an older
// key stands beside the row.
void LoadEntry(const SettingRow& row, int index, const SettingSource& source, Settings& values);

// The same for an entry whose text is known: fills its member as if a file held that text.
void PutEntry(const SettingRow& row, int index, const QString& text, Settings& values);

// All entries of a row, all rows of a group, in order.
void LoadRow(const SettingRow& row, const SettingSource& source, Settings& values);
void LoadRows(SettingRows rows, const SettingSource& source, Settings& values);

// Sizes JumpCartButtons by NumberCartJumpButtons, keeping its content.
void SizeJumpCartButtons(Settings& values);

// The text of an entry's member as it is held; a date that was never set is empty. The row is one that is
// read.
QString MemberText(const SettingRow& row, int index, Settings& values);

// The text that saving writes for an entry: a flag without its sign, a location tidied. Nothing when the key
// is to be removed.
std::optional<QString> StoredText(const SettingRow& row, int index, Settings& values);

// The default of an entry as it would be stored, with the other settings as they are held.
QString DefaultText(const SettingRow& row, int index, const Settings& values);

} // namespace tolvex
