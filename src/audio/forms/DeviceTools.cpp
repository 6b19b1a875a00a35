#include "audio/forms/DeviceTools.h"

#include "audio/forms/LevelMeter.h"
#include "core/settings/Settings.h"
#include "ui/style/Style.h"

#include <QDialog>
#include <QLabel>
#include <QPushButton>
#include <QTabWidget>

namespace tolvex {

namespace {

constexpr double toneSeconds = 1.5;
const QString testCaption = QStringLiteral("Test");
const QString stopCaption = QStringLiteral("Stop");
const QString showCaption = QStringLiteral("Show level");
const QString hideCaption = QStringLiteral("Hide level");

const platform::WaveDevice* deviceOf(const QList<platform::WaveDevice>& devices, int number) {
    return number >= 0 && number < devices.size() ? &devices[number] : nullptr;
}

} // namespace

DeviceTools::DeviceTools(QDialog* window, Choices choices, const Settings& settings)
    : QObject(window)
    , choices_(std::move(choices))
    , moved_(FindMovedDevices(settings))
    , status_(window->findChild<QLabel*>(QStringLiteral("lblStatus")))
    , levelButton_(window->findChild<QPushButton*>(QStringLiteral("cmdLevel")))
    , meter_(window->findChild<LevelMeter*>(QStringLiteral("meterLevel"))) {
    for (int player = 1; player <= CartPlayerCount; ++player)
        connect(testButton(player), &QPushButton::clicked, this, [this, player] { toggleTone(player); });
    tone_.onEnd = [this](const QString& how) { endTone(how); };
    connect(levelButton_, &QPushButton::clicked, this, &DeviceTools::toggleLevel);
    meter_->hide();
    reader_.onLevel = [this](const SoundLevel& level) { meter_->setLevel(level); };
    reader_.onEnd = [this](const QString& how) {
        stopLevel();
        status_->setText(how);
    };
    // Tone and level run only while their tab is in front.
    connect(window->findChild<QTabWidget*>(), &QTabWidget::currentChanged, this, &DeviceTools::stop);
    connect(window, &QDialog::finished, this, &DeviceTools::stop);
    auto* repair = window->findChild<QPushButton*>(QStringLiteral("cmdRepair"));
    connect(repair, &QPushButton::clicked, this, [this] {
        for (const MovedDevice& moved : std::as_const(moved_))
            if (moved.now >= 0)
                choices_.putRight(moved);
        moved_.removeIf([](const MovedDevice& moved) { return moved.now >= 0; });
        showMoved();
        status_->setText(moved_.isEmpty()
                             ? QStringLiteral("The numbers are right again; OK stores them.")
                             : QStringLiteral("The numbers of the devices that are there are right again; OK "
                                              "stores them."));
    });
    showMoved();
}

QPushButton* DeviceTools::testButton(int player) const {
    return parent()->findChild<QPushButton*>(QStringLiteral("cmdTest_%1").arg(player));
}

void DeviceTools::stop() {
    if (playing_ || reader_.running())
        status_->setText(QStringLiteral("Stopped."));
    if (playing_)
        testButton(std::exchange(playing_, 0))->setText(testCaption);
    tone_.stop();
    stopLevel();
}

void DeviceTools::toggleTone(int player) {
    const bool stopping = playing_ == player;
    if (playing_)
        testButton(std::exchange(playing_, 0))->setText(testCaption);
    tone_.stop();
    status_->setText(stopping ? QStringLiteral("Stopped.") : QString());
    if (stopping)
        return;
    QString why;
    const platform::WaveDevice* device = deviceOf(platform::WaveOutputs(), choices_.outputOf(player));
    if (!tone_.start(device, choices_.volume(), toneSeconds, &why)) {
        status_->setText(why);
        return;
    }
    playing_ = player;
    testButton(player)->setText(stopCaption);
    status_->setText(
        QStringLiteral("Player %1 is %2: left, right, both.").arg(player).arg(tone_.description()));
}

void DeviceTools::endTone(const QString& how) {
    const int player = std::exchange(playing_, 0);
    testButton(player)->setText(testCaption);
    status_->setText(how.isEmpty() ? QStringLiteral("Player %1: the tone was played.").arg(player) : how);
}

void DeviceTools::toggleLevel() {
    if (reader_.running())
        return stopLevel();
    QString why;
    const platform::WaveDevice* device = deviceOf(platform::WaveInputs(), choices_.input());
    if (!device)
        why = QStringLiteral("No recording device is chosen.");
    if (!device || !reader_.start(device, &why)) {
        status_->setText(why);
        return;
    }
    meter_->clear();
    meter_->show();
    levelButton_->setText(hideCaption);
}

void DeviceTools::stopLevel() {
    reader_.stop();
    meter_->hide();
    levelButton_->setText(showCaption);
}

void DeviceTools::showMoved() {
    auto* label = parent()->findChild<QLabel*>(QStringLiteral("lblMoved"));
    auto* repair = parent()->findChild<QPushButton*>(QStringLiteral("cmdRepair"));
    QStringList texts;
    bool canRepair = false;
    for (const MovedDevice& moved : std::as_const(moved_)) {
        texts += moved.text() + u'.';
        canRepair = canRepair || moved.now >= 0;
    }
    label->setText(texts.join(u'\n'));
    label->setStyleSheet(QStringLiteral("color: %1;").arg(tokens().warningText.name()));
    label->setVisible(!texts.isEmpty());
    repair->setVisible(canRepair);
}

} // namespace tolvex
