// The registry store: values of the local machine hive.
#include "app/ctl/Commands.h"

#include "platform/CodePage.h"
#include "platform/registry/RegistryStore.h"

#include <QtEndian>

namespace tolvex::ctl {

namespace {

using namespace platform;

const char* typeName(RegistryType type) {
    switch (type) {
    case RegistryType::None:
        return "REG_NONE";
    case RegistryType::Text:
        return "REG_SZ";
    case RegistryType::ExpandText:
        return "REG_EXPAND_SZ";
    case RegistryType::Binary:
        return "REG_BINARY";
    case RegistryType::Number:
        return "REG_DWORD";
    case RegistryType::MultiText:
        return "REG_MULTI_SZ";
    }
    return "other";
}

QString textOf(QByteArray data) {
    while (data.endsWith('\0'))
        data.chop(1);
    return FromCodePage(data.replace('\0', '\n'));
}

QJsonValue valueOf(const RegistryValue& value) {
    switch (value.type) {
    case RegistryType::Text:
    case RegistryType::ExpandText:
    case RegistryType::MultiText:
        return textOf(value.data);
    case RegistryType::Number:
        if (value.data.size() == 4)
            return qFromLittleEndian<qint32>(value.data.constData());
        break;
    default:
        break;
    }
    return QString::fromLatin1(value.data.toHex(' '));
}

// A key as given, without its hive.
QString keyArgument(const QString& given) {
    for (const char* hive : {"HKEY_LOCAL_MACHINE", "HKLM"}) {
        const QLatin1String name(hive);
        if (given.compare(name, Qt::CaseInsensitive) == 0)
            return {};
        if (given.startsWith(name + u'\\', Qt::CaseInsensitive))
            return given.mid(name.size() + 1);
    }
    return given;
}

void collect(const QString& key, QJsonArray& records) {
    for (const QString& name : RegistryValueNames(LocalMachineHive, key))
        if (const auto value = RegistryRead(LocalMachineHive, key, name))
            records += QJsonObject{{QStringLiteral("key"), key},
                                   {QStringLiteral("name"), name},
                                   {QStringLiteral("type"), QLatin1String(typeName(value->type))},
                                   {QStringLiteral("value"), valueOf(*value)}};
    for (const QString& name : RegistrySubkeys(LocalMachineHive, key))
        collect(key.isEmpty() ? name : key + u'\\' + name, records);
}

int missing(const Call& call, const QString& key) {
    return call.no(QStringLiteral("The registry has no %1.")
                       .arg(call.arguments.size() > 1
                                ? QStringLiteral("value %1 in %2").arg(call.argument(1), key)
                                : QStringLiteral("key ") + key));
}

int list(Call& call) {
    const QString key = keyArgument(call.argument(0));
    if (!key.isEmpty() && !RegistryOpens(LocalMachineHive, key))
        return missing(call, key);
    QJsonArray records;
    collect(key, records);
    call.output.records(records, {{"key", "Key"}, {"name", "Name"}, {"type", "Type"}, {"value", "Value"}});
    return Done;
}

int get(Call& call) {
    const QString key = keyArgument(call.argument(0));
    const auto value = RegistryRead(LocalMachineHive, key, call.argument(1));
    if (!value)
        return missing(call, key);
    call.output.value("value", valueOf(*value));
    return Done;
}

int set(Call& call) {
    RegistryValue value{RegistryType::Text, ToCodePage(call.argument(2))};
    if (call.has("--dword")) {
        bool good = false;
        const qint64 number = call.argument(2).toLongLong(&good, 0);
        if (!good || number < INT32_MIN || number > UINT32_MAX)
            return call.wrong(
                QStringLiteral("With --dword the value is a whole number of 32 bits, not \"%1\".")
                    .arg(call.argument(2)));
        value = {RegistryType::Number, QByteArray(4, '\0')};
        qToLittleEndian(static_cast<quint32>(number), value.data.data());
    } else if (FromCodePage(value.data) != call.argument(2)) {
        return call.wrong(QStringLiteral("\"%1\" has a character that the suite's values cannot hold.")
                              .arg(call.argument(2)));
    }
    const QString key = keyArgument(call.argument(0));
    if (key.isEmpty())
        return call.wrong(
            QStringLiteral("A key below the hive is expected, such as Software\\Norvane\\Tolvex."));
    if (!RegistryWrite(LocalMachineHive, key, call.argument(1), value))
        return call.fail(QStringLiteral(
            "The registry store in the machine folder could not be written; is the disk full or read-only?"));
    if (call.output.json())
        call.output.value("value", valueOf(value));
    return Done;
}

int remove(Call& call) {
    const QString key = keyArgument(call.argument(0));
    if (!RegistryRead(LocalMachineHive, key, call.argument(1)))
        return missing(call, key);
    if (!RegistryDelete(LocalMachineHive, key, call.argument(1)))
        return call.fail(QStringLiteral(
            "The registry store in the machine folder could not be written; is the disk full or read-only?"));
    return Done;
}

} // namespace

CommandRows RegistryCommands() {
    return {
        {"registry list", "[KEY]", "List the values of a key and of all keys below it", list},
        {"registry get", "KEY NAME", "Print a value", get},
        Changing({"registry set",
                  "KEY NAME VALUE",
                  "Set a value, making its key",
                  set,
                  {{"--dword", nullptr, "a number instead of a text"}}}),
        Changing({"registry delete", "KEY NAME", "Remove a value", remove}),
    };
}

} // namespace tolvex::ctl
