#include "core/system/Registry.h"

#include "platform/CodePage.h"

#include <QtEndian>

namespace tolvex {

using platform::RegistryType;
using platform::RegistryValue;

namespace {

void store(quint32 hive, const QString& key, const QString& name, const RegistryValue& value,
           bool isDefault) {
    if (!isDefault)
        platform::RegistryWrite(hive, key, name, value);
    else
        platform::RegistryDelete(hive, key, name);
}

} // namespace

QString ReadRegistryString(quint32 hive, const QString& key, const QString& name, const QString& fallback) {
    const std::optional<RegistryValue> value = platform::RegistryRead(hive, key, name);
    if (!value || value->type != RegistryType::Text)
        return fallback;
    const qsizetype end = value->data.indexOf('\0');
    return platform::FromCodePage(end < 0 ? value->data : value->data.left(end));
}

qint32 ReadRegistryLong(quint32 hive, const QString& key, const QString& name, qint32 fallback) {
    const std::optional<RegistryValue> value = platform::RegistryRead(hive, key, name);
    if (!value || value->data.size() != 4)
        return fallback;
    return qFromLittleEndian<qint32>(value->data.constData());
}

void WriteRegistryString(quint32 hive, const QString& key, const QString& name, const QString& value,
                         const QString& fallback) {
    store(hive, key, name, {RegistryType::Text, platform::ToCodePage(value)}, value == fallback);
}

void WriteRegistryLong(quint32 hive, const QString& key, const QString& name, qint32 value, qint32 fallback) {
    QByteArray bytes(4, '\0');
    qToLittleEndian(value, bytes.data());
    store(hive, key, name, {RegistryType::Number, bytes}, value == fallback);
}

void DeleteRegistryValue(quint32 hive, const QString& key, const QString& name) {
    platform::RegistryDelete(hive, key, name);
}

bool RegistryKeyExists(quint32 hive, const QString& key) {
    return platform::RegistryOpens(hive, key);
}

} // namespace tolvex
