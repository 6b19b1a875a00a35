// Any bytes as a registry store: nothing is lost, and a written value reads back.
#include "Require.h"

#include "platform/registry/RegistryDocument.h"

#include <cstdint>

using namespace tolvex::platform;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    RegistryDocument document(bytes);
    require(bytes.isEmpty() || document.bytes() == bytes);

    const QString hive = QStringLiteral("HKEY_LOCAL_MACHINE");
    for (const QString& key : document.subkeys(hive).mid(0, 8)) {
        const QString path = hive + u'\\' + key;
        require(document.hasKey(path));
        for (const QString& name : document.valueNames(path).mid(0, 8)) {
            const std::optional<RegistryValue> value = document.value(path, name);
            require(value && document.set(path, name, *value));
            const std::optional<RegistryValue> same = RegistryDocument(document.bytes()).value(path, name);
            require(same && same->type == value->type);
        }
    }
    const QString path = hive + QStringLiteral("\\Software\\Fuzz");
    for (const RegistryType type : {RegistryType::Text, RegistryType::Number, RegistryType::MultiText}) {
        const RegistryValue value{type, bytes.left(40)};
        require(document.set(path, QStringLiteral("value"), value));
        const auto same = RegistryDocument(document.bytes()).value(path, QStringLiteral("VALUE"));
        require(same && same->type == type);
        require(same->data == value.data || (type == RegistryType::Text && same->data + '\0' == value.data));
    }
    require(document.remove(path, QStringLiteral("Value")));
    require(!document.value(path, QStringLiteral("value")));
    return 0;
}
