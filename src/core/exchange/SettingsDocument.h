// The stored settings of a workstation as one JSON document, for keeping and for setting up others:
//
//     { "format": "tolvex-settings", "version": 1, "computer": "STUDIO1",
//       "files": { "local": "C:\\WINDOWS\\TOLVEX.INI", ... },
//       "settings": { "local": { "Display": { "ShowClock": true, ... }, ... }, "system": ..., "audiowall":
//       ... } }
//
// It holds what the files hold and no defaults, below the name of the file that each came from; "files" says
// where that was and is not read again. Flags are booleans, numbers and colours numbers, texts texts, dates
// ISO 8601. A value that could not be set by hand, one outside its range for instance, is { "stored": "..."
// }: the text as it stands in the file. Devices that were given out automatically belong to one machine and
// are left out.
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
    QStringList unknown; // names of files that there are none of
    QString problem;     // why it cannot be used at all
};

// Cost: one pass; nesting and length are limited, and anything may be in it.
SettingsDocument ReadSettingsDocument(const QByteArray& bytes);

// The text that a document's value stores for a row. Nothing, with the end of a sentence in *why, when it
// cannot be stored. A text taken as it stands in another file may be one that could not be set by hand; *why
// then says what is unusual about it, and is empty otherwise.
std::optional<QString> TextOfDocumentValue(const SettingRow& row, const QJsonValue& value, QString* why);

} // namespace tolvex
