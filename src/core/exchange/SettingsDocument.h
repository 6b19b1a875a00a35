// The stored settings of a workstation as one JSON document, for backup and for setting up others:
//
//     { "format": "tolvex-settings", "version": 1, "computer": "STUDIO1",
//       "files": { "local": "C:\\WINDOWS\\TOLVEX.INI", ... },
//       "settings": { "local": { "Display": { "ShowClock": true, ... }, ... }, "system": ..., "audiowall":
//       ... } }
//
// It holds the stored values without defaults, under the name of the file that each came from; "files"
// records where that file was and is ignored on import. Flags are booleans, numbers and colours numbers,
// texts texts, dates ISO 8601. A value that could not be set by hand, for instance one outside its range, is
// { "stored": "..." }: the text as it stands in the file. Automatically assigned devices belong to one
// machine and are left out.
#pragma once

#include "core/settings/StoredSettings.h"

#include <QJsonValue>

namespace tolvex {

QByteArray ExportSettings(const SettingsFiles& files);

// A setting of a document.
struct DocumentEntry {
    SettingsFile file = SettingsFile::Local;
    QString section;
    QString key;
    QJsonValue value;
};

struct SettingsDocument {
    QList<DocumentEntry> entries;
    QStringList unknown; // file names that do not exist here
    QString problem;     // why the document cannot be used at all
};

// Cost: one pass; nesting and length are limited, and any content is accepted.
SettingsDocument ReadSettingsDocument(const QByteArray& bytes);

// The text that a document's value stores for a row. Nothing, with the end of a sentence in *why, if it
// cannot be stored. A text copied as it stood in another file may be one that could not be set by hand; *why
// then says what is unusual about it, and is empty otherwise.
std::optional<QString> TextOfDocumentValue(const SettingRow& row, const QJsonValue& value, QString* why);

} // namespace tolvex
