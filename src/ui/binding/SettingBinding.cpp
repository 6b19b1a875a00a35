#include "ui/binding/SettingBinding.h"

#include "core/settings/SettingsTable.h"

#include <QWidget>

namespace tolvex {

namespace {

FieldLook lookOf(const SettingRow& row, int index) {
    FieldLook look;
    look.control = QString::fromLatin1(row.control);
    if (row.count)
        look.control += QString::number(index);
    look.help = QString::fromUtf8(row.help);
    look.first = row.firstEntry;
    look.lowest = row.lowest;
    look.highest = row.highest;
    look.longest = row.longest;
    return look;
}

} // namespace

void BindSettings(FormBinding& binding, const QWidget* form, Settings& settings) {
    for (const SettingGroup& group : AllSettings())
        for (const SettingRow& row : group.rows) {
            if (!row.bound || form->objectName() != QLatin1String(row.form))
                continue;
            const int first = row.count ? 1 : 0;
            const int last = row.count ? row.count(settings) : 0;
            for (int index = first; index <= last; ++index)
                binding.bind(lookOf(row, index), [&row, &settings, index] {
                    return std::visit([](auto* value) -> FieldRef { return value; }, row.at(settings, index));
                });
        }
}

} // namespace tolvex
