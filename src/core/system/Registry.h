// The registry operations of the suite. They report nothing: a failed read returns the default and a failed
// write does nothing. A value equal to its default is never stored.
#pragma once

#include "platform/registry/RegistryStore.h"

namespace tolvex {

using platform::LocalMachineHive;

// Keys of the suite, in the local machine hive.
inline const QString TolvexKey = QStringLiteral("SOFTWARE\\Norvane\\Tolvex"); // options of this program
inline const QString TolvexV2Key =
    QStringLiteral("Software\\Norvane\\Tolvex v2"); // settings without an ini file

// The text up to its first zero character; `fallback` if the value is missing or is not a text (type 1).
QString ReadRegistryString(quint32 hive, const QString& key, const QString& name, const QString& fallback);

// The first 4 bytes of a value of any type; `fallback` if it is missing or has another length.
qint32 ReadRegistryLong(quint32 hive, const QString& key, const QString& name, qint32 fallback);

// Sets the value, making its key; removes it if `value`
// equals `fallback` exactly. A default makes no key.
void WriteRegistryString(quint32 hive, const QString& key, const QString& name, const QString& value,
                         const QString& fallback);
void WriteRegistryLong(quint32 hive, const QString& key, const QString& name, qint32 value, qint32 fallback);

void DeleteRegistryValue(quint32 hive, const QString& key, const QString& name);

// Whether the key can be opened with full access.
bool RegistryKeyExists(quint32 hive, const QString& key);

} // namespace tolvex
