// The start-up screen with its status line, and the about box.
#pragma once

#include "platform/Machine.h"

#include <QDialog>

#include <memory>

namespace Ui {
class frmSplash;
}

namespace tolvex {

class frmSplash : public QDialog {
    Q_OBJECT

public:
    // Shows the name of the operating system, if it is known.
    explicit frmSplash(const platform::SystemVersion& system, QWidget* parent = nullptr);
    ~frmSplash() override;

    void setCurrentAction(const QString& text);
    // As an about box it has an OK button and no status line.
    void becomeAboutBox();
    void setAlwaysOnTop(bool on);

private:
    void showLogo();

    std::unique_ptr<Ui::frmSplash> ui_;
};

} // namespace tolvex
