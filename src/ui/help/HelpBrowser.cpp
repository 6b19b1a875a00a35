#include "ui/help/HelpBrowser.h"

#include "ui/help/HelpFile.h"

#include <QUrl>

namespace tolvex {

HelpBrowser::HelpBrowser(QWidget* parent)
    : QTextBrowser(parent) {}

QVariant HelpBrowser::loadResource(int type, const QUrl& name) {
    const std::optional<QByteArray> bytes = file_ ? file_->read(name.path()) : std::nullopt;
    if (!bytes)
        return {};
    if (type == QTextDocument::ImageResource)
        return QImage::fromData(*bytes);
    return type == QTextDocument::HtmlResource ? QVariant(QString::fromUtf8(*bytes)) : QVariant(*bytes);
}

} // namespace tolvex
