// The part of the audio window that shows the sound devices of this computer and follows their coming and
// going.
#include "audio/WaveSearch.h"
#include "audio/forms/DeviceTools.h"
#include "audio/forms/frmAudioSetup.h"
#include "core/text/Numbers.h"
#include "ui_frmAudioSetup.h"

namespace tolvex {

namespace {

constexpr int nameLength = 32; // of a device's name in the system's record, its ending zero included

// The name of a recording device in the list; the system's record of a device holds only so much of it.
QString inputName(const platform::WaveDevice& device) {
    const QString name = device.name.section(QChar(u'\0'), 0, 0);
    return name.size() < nameLength ? name : QStringLiteral("Unknown recording device!");
}

// A long name without its middle: the end often tells two devices of one make apart.
QString shortName(const QString& name) {
    constexpr int longest = 60;
    constexpr int end = 24;
    return name.size() <= longest ? name : name.left(longest - end - 1) + QChar(0x2026) + name.right(end);
}

// Long names make neither the form nor the open list wide; the whole name is in the entry's tool tip.
void addDevice(QComboBox* list, const QString& text, const platform::WaveDevice& device) {
    platform::WaveDevice shown = device;
    shown.name = shortName(text);
    list->addItem(platform::WaveDeviceLabel(shown));
    list->setItemData(list->count() - 1, device.name, Qt::ToolTipRole);
}

} // namespace

QComboBox* frmAudioSetup::deviceList(int player) const {
    return findChild<QComboBox*>(QStringLiteral("listCartPlayer_%1").arg(player));
}

int frmAudioSetup::players() const {
    return ToLong(LeadingNumber(ui_->txtNumberCartPlayers->text()));
}

void frmAudioSetup::fillDevices() {
    for (int n = 1; n <= CartPlayerCount; ++n) {
        QComboBox* list = deviceList(n);
        list->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
        list->clear();
        list->addItem(platform::WaveMapperName());
        for (const platform::WaveDevice& device : platform::WaveOutputs())
            addDevice(list, device.name, device);
    }
    ui_->listRecordPlayer->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    ui_->listRecordPlayer->clear();
    for (const platform::WaveDevice& device : platform::WaveInputs())
        addDevice(ui_->listRecordPlayer, inputName(device), device);
    if (platform::WaveInputs().isEmpty())
        ui_->listRecordPlayer->setPlaceholderText(QStringLiteral("This machine has no recording device."));
}

// The output of a player: in automatic mode the one that it gets at the next start. -1: the mapper.
int frmAudioSetup::outputOf(int player) const {
    if (!ui_->optCartPlayerAutoMode->isChecked())
        return deviceList(player)->currentIndex() - 1;
    int output = -1;
    for (int n = 1; n <= player; ++n) {
        const int found = FindSuitableOutput(output + 1, 44100, 1);
        if (found < 0)
            return LastSuitableOutput(44100, 1);
        output = found;
    }
    return output;
}

// Shows what automatic assignment does, or which players share a device.
void frmAudioSetup::showDevices() {
    const int count = std::clamp(players(), 0, CartPlayerCount);
    QStringList lines;
    if (ui_->optCartPlayerAutoMode->isChecked() && count > 0) {
        QStringList names;
        for (int n = 1; n <= count; ++n) {
            const int output = outputOf(n);
            names += QStringLiteral("Player %1: %2")
                         .arg(n)
                         .arg(output < 0 ? platform::WaveMapperName() : platform::WaveOutputs()[output].name);
        }
        lines += QStringLiteral("At the next start: ") + names.join(QStringLiteral("; "));
    } else {
        for (int n = 1; n <= count; ++n)
            for (int other = 1; other < n; ++other)
                if (deviceList(n)->currentIndex() == deviceList(other)->currentIndex()) {
                    lines += QStringLiteral("Players %1 and %2 share a device.").arg(other).arg(n);
                    break;
                }
    }
    ui_->lblDevices->setText(lines.join(u'\n'));
    ui_->lblDevices->setVisible(!lines.isEmpty());
}

void frmAudioSetup::addTools() {
    tools_ = new DeviceTools(this,
                             {[this](int player) { return outputOf(player); },
                              [this] { return ui_->listRecordPlayer->currentIndex(); },
                              [this] {
                                  const QLineEdit* box =
                                      setup_.zqs ? ui_->txtCartVolume : ui_->txtGeneralVolume;
                                  return ToLong(LeadingNumber(box->text()));
                              },
                              [this](const MovedDevice& moved) {
                                  if (moved.player)
                                      deviceList(moved.player)->setCurrentIndex(moved.now + 1);
                                  else
                                      ui_->listRecordPlayer->setCurrentIndex(moved.now);
                              }},
                             settings_);
}

// A device came or went. Numbers stay, so each list keeps its choice by the number.
void frmAudioSetup::refreshDevices() {
    tools_->stop();
    QStringList before;
    for (const platform::WaveDevice& device : platform::WaveOutputs() + platform::WaveInputs())
        before += platform::WaveDeviceLabel(device);
    platform::RefreshWaveDevices();
    QStringList now;
    for (const platform::WaveDevice& device : platform::WaveOutputs() + platform::WaveInputs())
        now += platform::WaveDeviceLabel(device);
    if (now == before)
        return;
    QList<std::pair<QComboBox*, int>> choices = {
        {ui_->listRecordPlayer, ui_->listRecordPlayer->currentIndex()}};
    for (int n = 1; n <= CartPlayerCount; ++n)
        choices += {deviceList(n), deviceList(n)->currentIndex()};
    for (const auto& [list, chosen] : choices)
        list->hidePopup(); // its marked row would be lost
    fillDevices();
    for (const auto& [list, chosen] : choices)
        list->setCurrentIndex(chosen < list->count() ? chosen : -1);
    ui_->lblStatus->setText(QStringLiteral("The sound devices of this computer have changed."));
    showDevices();
}

} // namespace tolvex
