#include "platform/RegistryStore.h"
#include <map>
namespace tolvex::platform {
static std::map<QString, std::map<QString, RegistryValue>> store;
std::optional<RegistryValue> RegistryRead(quint32, const QString& key, const QString& name) {
    auto k = store.find(key.toLower()); if (k == store.end()) return {};
    auto v = k->second.find(name.toLower()); if (v == k->second.end()) return {};
    return v->second;
}
bool RegistryOpens(quint32, const QString& key) { return store.count(key.toLower()); }
bool RegistryWrite(quint32, const QString& key, const QString& name, const RegistryValue& value) { store[key.toLower()][name.toLower()] = value; return true; }
bool RegistryDelete(quint32, const QString& key, const QString& name) { auto k = store.find(key.toLower()); return k != store.end() && k->second.erase(name.toLower()); }
QStringList RegistryValueNames(quint32, const QString&) { return {}; }
QStringList RegistrySubkeys(quint32, const QString&) { return {}; }
}
