// Audiowall Settings: size and looks of the carts with live samples, jump buttons, what happens at logon,
// highlighting, level trigger, fades, the search's defaults. It shows a record of its own
// (audio/AudiowallSetup.h), which OK stores.
#pragma once

#include "audio/AudiowallSetup.h"
#include "ui/binding/FormBinding.h"

#include <QDialog>

#include <memory>

namespace Ui {
class frmAudioWallSetup;
}

namespace tolvex {

class CartView;
struct CartPicking;
struct CartStore;

class frmAudioWallSetup : public QDialog {
    Q_OBJECT

public:
    // The settings are those that were loaded just now.
    explicit frmAudioWallSetup(Settings& settings, QWidget* parent = nullptr);
    ~frmAudioWallSetup() override;

    // Lets the carts of the jump buttons be picked from the audiowall. Both outlive the window.
    void offerCarts(CartStore& carts, CartPicking& picking);

protected:
    void showEvent(QShowEvent* event) override;

private:
    void fillLists();
    void addRules();
    void addFilters();
    void makeSamples();
    void showSamples();
    void showContrast();
    void showCartSize();
    void showJumpHint();
    void chooseTimesBarText();
    void updateNumberButtons();
    void changeFont();
    void store();

    Settings& settings_;
    AudiowallSetup setup_;
    std::unique_ptr<Ui::frmAudioWallSetup> ui_;
    FormBinding binding_;
};

} // namespace tolvex
