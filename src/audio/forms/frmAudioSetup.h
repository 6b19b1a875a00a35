// Audio Setup: the cart players and their devices, colours and volumes, the recording format, the audio
// editor, and the low-level options. It shows a record of its own (audio/AudioSetup.h), which OK stores.
#pragma once

#include "audio/AudioSetup.h"
#include "platform/devices/WaveDeviceWatch.h"
#include "ui/binding/FormBinding.h"

#include <QDialog>

#include <memory>

class QComboBox;

namespace Ui {
class frmAudioSetup;
}

namespace tolvex {

class DeviceTools;
class EnableRules;

class frmAudioSetup : public QDialog {
    Q_OBJECT

public:
    explicit frmAudioSetup(Settings& settings, QWidget* parent = nullptr);
    ~frmAudioSetup() override;

    // The product for split transmissions; set before the form is shown.
    bool zqsMode() const { return setup_.zqs; }
    void setZqsMode(bool on);

protected:
    void showEvent(QShowEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void fillLists();
    void fillDevices();
    void bindFields();
    void addRules();
    void addFilters();
    void connectColours();
    void limitPlayers();
    void showFormat();
    void showDevices();
    void addTools();
    void refreshDevices();
    int outputOf(int player) const;
    void chooseFormat();
    void chooseEditor();
    void startTunelane();
    void store();

    QComboBox* deviceList(int player) const;
    int players() const;

    Settings& settings_;
    AudioSetup setup_;
    std::unique_ptr<Ui::frmAudioSetup> ui_;
    FormBinding binding_;
    EnableRules* rules_ = nullptr;
    DeviceTools* tools_ = nullptr;
    platform::WaveDeviceWatch watch_;
    bool typed_ = false; // a character into the number of players, not a paste
};

} // namespace tolvex
