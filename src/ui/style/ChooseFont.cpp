#include "ui/style/ChooseFont.h"

#include <QFontDialog>

namespace tolvex {

namespace {

// Takes over into `font` what differs between two fonts that the dialog showed one after the other.
void takeChange(const QFont& before, const QFont& now, QFont& font) {
    if (now.family() != before.family())
        font.setFamily(now.family());
    if (now.pointSize() != before.pointSize())
        font.setPointSize(now.pointSize());
    if (now.bold() != before.bold() || now.italic() != before.italic()) {
        font.setBold(now.bold());
        font.setItalic(now.italic());
    }
    if (now.strikeOut() != before.strikeOut() || now.underline() != before.underline()) {
        font.setStrikeOut(now.strikeOut());
        font.setUnderline(now.underline());
    }
}

} // namespace

std::optional<QFont> ChooseFont(const QFont& stored, const QString& title, QWidget* parent) {
    QFontDialog dialog(stored, parent);
    dialog.setOption(QFontDialog::DontUseNativeDialog);
    dialog.setWindowTitle(title);
    QFont last = dialog.currentFont();
    QFont font = stored;
    QObject::connect(&dialog, &QFontDialog::currentFontChanged, &dialog, [&](const QFont& now) {
        takeChange(last, now, font);
        last = now;
    });
    if (dialog.exec() != QDialog::Accepted)
        return std::nullopt;
    return font;
}

} // namespace tolvex
