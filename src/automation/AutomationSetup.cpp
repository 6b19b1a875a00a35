#include "automation/AutomationSetup.h"

#include "automation/SettingWords.h"
#include "core/settings/SettingText.h"
#include "core/settings/SettingsLoader.h"
#include "core/text/Numbers.h"

#include <vector>

namespace tolvex {

namespace {

constexpr const char* cartModes[] = {"Never", "Only in K-OVA", "Always in K-OVA Live and K-OVA"};
constexpr const char* releaseModes[] = {"release control after a wait (see below)",
                                        "release control immediately.", "never release control."};
constexpr const char* requestModes[] = {"only request control when told to by the user.",
                                        "constantly request control silently.",
                                        "attempt to gain control anyway."};

template<auto member>
AutomationKey keyOf(std::span<const char* const> words = {}) {
    const SettingRow& row = RowOf<member>();
    return {row.key, row.control, member, words, row.kind == SettingKind::Flag, &row};
}

const std::vector<AutomationKey>& keys() {
    using S = Settings;
    static const std::vector<AutomationKey> all = {
        keyOf<&S::DefaultDatabase>(),
        keyOf<&S::GenerateAdvertRecFiles>(),
        keyOf<&S::LogWhenStationController>(),
        keyOf<&S::DisplayInstantCarts>(cartModes),
        keyOf<&S::AllowControl>(),
        keyOf<&S::ReleaseMode>(releaseModes),
        keyOf<&S::ReleaseTime>(),
        keyOf<&S::RequestMode>(requestModes),
        keyOf<&S::GetControlKLogStart>(),
    };
    return all;
}

} // namespace

std::span<const AutomationKey> AutomationKeys() {
    return keys();
}

const AutomationKey* FindAutomationKey(const QString& key) {
    for (const AutomationKey& row : keys())
        if (key.compare(QLatin1String(row.key), Qt::CaseInsensitive) == 0)
            return &row;
    return nullptr;
}

QString AutomationFolder(const Settings& settings) {
    return settings.DataLocation + QStringLiteral("\\SCHEDULE");
}

QVariant AutomationKeyValue(const Settings& settings, const AutomationKey& key) {
    return std::visit(
        [&](auto member) -> QVariant {
            if constexpr (std::is_same_v<decltype(member), QString Settings::*>) {
                return settings.*member;
            } else {
                const qint32 number = settings.*member;
                if (key.isFlag)
                    return number != 0;
                return key.words.empty() ? number
                                         : std::clamp(number, 0, static_cast<qint32>(key.words.size()) - 1);
            }
        },
        key.member);
}

void SetAutomationKeyValue(Settings& settings, const AutomationKey& key, const QVariant& value) {
    std::visit(
        [&](auto member) {
            auto& held = settings.*member;
            if constexpr (std::is_same_v<decltype(member), QString Settings::*>)
                held = value.toString();
            else
                held = static_cast<std::decay_t<decltype(held)>>(value.toInt());
        },
        key.member);
}

QString AutomationKeyText(const Settings& settings, const AutomationKey& key) {
    const QVariant value = AutomationKeyValue(settings, key);
    if (key.isFlag)
        return FlagWord(value.toBool());
    return key.words.empty() ? value.toString() : QString::fromUtf8(key.words[size_t(value.toInt())]);
}

QVariant ParseAutomationKey(const AutomationKey& key, const QString& text, QString* why) {
    if (std::holds_alternative<QString Settings::*>(key.member))
        return text;
    if (key.isFlag)
        return ParseFlag(text, why);
    if (!key.words.empty())
        return ParseWord(key.words, text, why);
    return ParseWhole(text, 0, INT16_MAX, why);
}

int StoreAutomationSetup(Settings& settings) {
    platform::ProfileBatch batch(settings.LocalIniFile);
    for (const AutomationKey& key : keys())
        PutSettingText(batch, *key.row, StoredText(*key.row, 0, settings).value_or(QStringLiteral("")));
    return batch.commit();
}

} // namespace tolvex
