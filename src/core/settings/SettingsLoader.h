// Fills the members of settings rows from a store, and converts them to their stored text. A missing file,
// key or value leaves the default and is never reported.
#pragma once

#include "core/settings/SettingsTable.h"

namespace tolvex {

// Where rows are loaded from: an ini file or, if its path is empty, the local machine's registry below a
// root.
struct SettingSource {
    QString iniFile;
    QString registryRoot = {};
};

// One entry of a row: `index` from 1 for an indexed row, else 0. Rows that are never read are skipped, and so
// are rows without a registry form if the source is the registry. Cost: one look-up, two if the row has an
// older key.
void LoadEntry(const SettingRow& row, int index, const SettingSource& source, Settings& values);

// The same for an entry with a known text: fills its member as if a file held that text.
void PutEntry(const SettingRow& row, int index, const QString& text, Settings& values);

// All entries of a row, all rows of a group, in order.
void LoadRow(const SettingRow& row, const SettingSource& source, Settings& values);
void LoadRows(SettingRows rows, const SettingSource& source, Settings& values);

// Resizes JumpCartButtons to NumberCartJumpButtons, keeping its content.
void SizeJumpCartButtons(Settings& values);

// The text of an entry's member as held; a date that was never set is empty. The row must be one that is
// read.
QString MemberText(const SettingRow& row, int index, Settings& values);

// The text that saving writes for an entry: a flag without its sign, a tidied location. Nothing if the key is
// to be removed.
std::optional<QString> StoredText(const SettingRow& row, int index, Settings& values);

// The default of an entry as it would be stored, given the other settings.
QString DefaultText(const SettingRow& row, int index, const Settings& values);

} // namespace tolvex
