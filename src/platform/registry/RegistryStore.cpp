#include "platform/registry/RegistryStore.h"

#include "platform/files/FileCache.h"
#include "platform/files/FileUpdate.h"
#include "platform/host/HostFiles.h"
#include "platform/paths/Paths.h"
#include "platform/registry/RegistryDocument.h"

namespace tolvex::platform {

namespace {

// No store is longer; a longer file is something else.
constexpr qint64 longestFile = 64 << 20;

// The data engine is part of this program. A new store reports it as an installation would.
constexpr char engineKey[] = "HKEY_LOCAL_MACHINE\\Software\\Microsoft\\DataAccess";
constexpr char engineName[] = "FullInstallVer";
constexpr char engineVersion[] = "2.81.1117.0";

// Hives by their handles' last digit.
constexpr const char* hives[] = {"HKEY_CLASSES_ROOT", "HKEY_CURRENT_USER", "HKEY_LOCAL_MACHINE",
                                 "HKEY_USERS"};
constexpr quint32 firstHive = 0x80000000u;

QString storeFile() {
    return MachineFolder() + QLatin1String("/system.reg");
}

RegistryDocument newStore() {
    RegistryDocument document;
    document.set(QLatin1String(engineKey), QLatin1String(engineName), {RegistryType::Text, engineVersion});
    return document;
}

// The store as it is now; null if it cannot be read. A missing one is a new one.
std::shared_ptr<const RegistryDocument> open() {
    static FileCache<RegistryDocument> cache(longestFile);
    const QString file = storeFile();
    if (!MayAccess(file, Access::Exists)) {
        static const auto fresh = std::make_shared<const RegistryDocument>(newStore());
        return fresh;
    }
    return cache.open(file);
}

// The path with its hive; empty for an unknown hive.
QString fullPath(quint32 hive, const QString& key) {
    const quint32 number = hive - firstHive;
    return number < std::size(hives) ? QLatin1String(hives[number]) + u'\\' + key : QString();
}

// Applies one change to the current store; `change` says whether it succeeded.
template<class Change>
bool update(Change change) {
    bool done = false;
    const int error = UpdateHostFile(storeFile(), longestFile, [&](const std::optional<QByteArray>& now) {
        RegistryDocument document = now ? RegistryDocument(*now) : newStore();
        done = change(document);
        return done ? FileChange{document.bytes()} : FileChange{};
    });
    return done && error == NoError;
}

} // namespace

std::optional<RegistryValue> RegistryRead(quint32 hive, const QString& key, const QString& name) {
    const auto store = open();
    return store ? store->value(fullPath(hive, key), name) : std::nullopt;
}

bool RegistryOpens(quint32 hive, const QString& key) {
    const auto store = open();
    if (!store || !store->hasKey(fullPath(hive, key)))
        return false;
    const QString file = storeFile();
    return !MayAccess(file, Access::Exists) || MayAccess(file, Access::ReadAndWrite);
}

bool RegistryWrite(quint32 hive, const QString& key, const QString& name, const RegistryValue& value) {
    return update([&](RegistryDocument& document) { return document.set(fullPath(hive, key), name, value); });
}

bool RegistryDelete(quint32 hive, const QString& key, const QString& name) {
    if (!RegistryRead(hive, key, name))
        return false; // the common case of a default that is not stored, without a lock
    return update([&](RegistryDocument& document) { return document.remove(fullPath(hive, key), name); });
}

QStringList RegistryValueNames(quint32 hive, const QString& key) {
    const auto store = open();
    return store ? store->valueNames(fullPath(hive, key)) : QStringList();
}

QStringList RegistrySubkeys(quint32 hive, const QString& key) {
    const auto store = open();
    return store ? store->subkeys(fullPath(hive, key)) : QStringList();
}

} // namespace tolvex::platform
