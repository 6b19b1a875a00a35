// Registry values of the local machine: typed values under key paths, matched
// without regard to case. If the platform has no registry they live in one text file
// in REGEDIT export form in the machine folder ("system.reg"), replaced atomically
// under a lock and read again after every change. Key paths are relative to the hive
// ("Software\Norvane\Tolvex v2"); the suite uses only the local machine's hive.
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <optional>

namespace tolvex::platform {

// The handle of the local machine hive.
inline constexpr quint32 LocalMachineHive = 0x80000002u;

enum class RegistryType : quint32 {
    None = 0,
    Text = 1,
    ExpandText = 2,
    Binary = 3,
    Number = 4,
    MultiText = 7
};

struct RegistryValue {
    RegistryType type = RegistryType::None;
    // As stored: text in code page 1252, with or without its terminating zero; a number as 4 bytes, low byte
    // first.
    QByteArray data;
};

// A value; nothing if key or value is missing, the hive is unknown or the store cannot be read. An empty name
// is the key's default value.
std::optional<RegistryValue> RegistryRead(quint32 hive, const QString& key, const QString& name);

// Whether the key exists and may be read and written.
bool RegistryOpens(quint32 hive, const QString& key);

// Sets a value, making the key and its parents. True on success.
bool RegistryWrite(quint32 hive, const QString& key, const QString& name, const RegistryValue& value);

// Removes a value; the key stays. True if it existed and is gone.
bool RegistryDelete(quint32 hive, const QString& key, const QString& name);

// Names of values and of keys directly below a key, sorted without regard to case.
QStringList RegistryValueNames(quint32 hive, const QString& key);
QStringList RegistrySubkeys(quint32 hive, const QString& key);

} // namespace tolvex::platform
