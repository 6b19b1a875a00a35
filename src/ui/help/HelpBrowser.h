// A text browser with pages and pictures from the help file.
#pragma once

#include <QTextBrowser>

namespace tolvex {

class HelpFile;

class HelpBrowser : public QTextBrowser {
    Q_OBJECT

public:
    explicit HelpBrowser(QWidget* parent = nullptr);
    // Not owned; outlives the browser.
    void setFile(const HelpFile* file) { file_ = file; }

    QVariant loadResource(int type, const QUrl& name) override;

private:
    const HelpFile* file_ = nullptr;
};

} // namespace tolvex
