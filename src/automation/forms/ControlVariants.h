// Converts between the values of this folder's tables, which are variants, and those of controls.
#pragma once

#include "ui/binding/Controls.h"

#include <QVariant>

namespace tolvex {

inline ControlValue ToControl(const QVariant& value) {
    if (value.typeId() == QMetaType::QString)
        return value.toString();
    return qint32{value.toInt()};
}

// 0 for a list without a choice.
inline QVariant FromControl(const ControlValue& value) {
    if (const auto* number = std::get_if<qint32>(&value))
        return *number;
    const auto* text = std::get_if<QString>(&value);
    return text ? *text : QVariant(0);
}

} // namespace tolvex
