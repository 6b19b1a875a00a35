// The text of a registry export ("Windows Registry Editor Version 5.00"), independent of the file: parsed
// once, queried by key path and name, edited line by line. Untouched lines stay as they are, including those
// of other hives, of value types that the suite does not use, and text that is not a registry line.
//
// Paths begin with the hive's name ("HKEY_LOCAL_MACHINE\Software\Norvane"). Paths and names match without
// regard to case. docs/formats/registry.md describes the format.
#pragma once

#include "platform/registry/RegistryStore.h"

#include <QMap>

namespace tolvex::platform {

class RegistryDocument {
public:
    // Accepts any bytes; UTF-16 little-endian with its mark, else code page 1252. Cost: one pass.
    explicit RegistryDocument(const QByteArray& bytes = {});

    bool valid() const { return true; }
    // Approximate memory use, in bytes.
    qsizetype cost() const;

    std::optional<RegistryValue> value(const QString& path, const QString& name) const;
    // Whether the key exists, with values or as the parent of another.
    bool hasKey(const QString& path) const;
    // Sorted without regard to case.
    QStringList valueNames(const QString& path) const;
    QStringList subkeys(const QString& path) const;

    // Sets a value, making its key. False, with nothing changed, for a path or name that cannot be written (a
    // line break or zero in it, no key below the hive).
    bool set(const QString& path, const QString& name, const RegistryValue& value);
    // Removes a value; its key stays. False if it did not exist.
    bool remove(const QString& path, const QString& name);

    QByteArray bytes() const;

private:
    struct Value {
        QString name; // as it is spelled
        int line = 0; // in lines_
    };
    struct Key {
        QString path;                // as it is spelled
        int end = 0;                 // the line after its first block's last value
        QMap<QString, Value> values; // by folded name
    };

    void index();
    const Value* find(const QString& path, const QString& name) const;

    bool wide_ = true;
    bool ansi_ = false; // texts in hexadecimal are code page 1252 too (version 4 of the form)
    QByteArray oddByte_;
    QStringList lines_;       // a value with its continuations is one; line ends included
    QMap<QString, Key> keys_; // by folded path
};

} // namespace tolvex::platform
