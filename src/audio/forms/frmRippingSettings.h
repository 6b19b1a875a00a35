// CD Ripping Settings: what is done to audio that is taken from a CD, and where CD titles are looked up. It
// shows a record of its own (audio/ripping/RippingSetup.h), which OK stores beside the audio.
#pragma once

#include "audio/ripping/RippingSetup.h"
#include "audio/ripping/ServerTest.h"
#include "ui/binding/FormBinding.h"

#include <QDialog>

#include <memory>

namespace Ui {
class frmRippingSettings;
}

namespace tolvex {

class EnableRules;

class frmRippingSettings : public QDialog {
    Q_OBJECT

public:
    // The first part of the audiowall has a location.
    explicit frmRippingSettings(Settings& settings, QWidget* parent = nullptr);
    ~frmRippingSettings() override;

    // Nothing can be changed or stored then. Set before the form is shown.
    void setReadOnly(bool readOnly);

protected:
    void showEvent(QShowEvent* event) override;

private:
    void addRules();
    void showLevel();
    void testServer();
    void showHint();
    void showServerState(const QString& text, bool good);
    void ok();

    Settings& settings_;
    RippingSetup shown_; // as it was loaded
    RippingSetup setup_;
    bool readOnly_ = false;
    std::unique_ptr<Ui::frmRippingSettings> ui_;
    FormBinding binding_;
    EnableRules* rules_ = nullptr;
    ServerTest test_;
};

} // namespace tolvex
