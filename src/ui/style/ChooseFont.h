// The dialog for fonts, for stored fonts that need not be installed on this machine.
#pragma once

#include <QFont>
#include <QString>

#include <optional>

class QWidget;

namespace tolvex {

// Lets the user change a font. The dialog shows another font for one that is not installed; what the user
// leaves alone (family, size, style, effects) stays as it is in `stored`. Nothing when it is cancelled.
std::optional<QFont> ChooseFont(const QFont& stored, const QString& title, QWidget* parent);

} // namespace tolvex
