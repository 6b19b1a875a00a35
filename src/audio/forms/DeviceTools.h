// What the audio window does with real devices besides choosing them: the test tone of each player, the level
// of the recording device, and the notice that stored numbers mean other devices now. It works on the
// window's controls by their names.
#pragma once

#include "audio/DeviceIdentity.h"
#include "audio/devices/LevelReader.h"
#include "audio/devices/ToneTest.h"

#include <QObject>

class QDialog;
class QLabel;
class QPushButton;

namespace tolvex {

class LevelMeter;

class DeviceTools : public QObject {
    Q_OBJECT

public:
    // The choices in the window's controls now, and how to change one.
    struct Choices {
        std::function<int(int player)> outputOf; // number of the output, from 0; -1: the system's own choice
        std::function<int()> input;              // number of the input; -1: none
        std::function<int()> volume;             // percent
        std::function<void(const MovedDevice&)> putRight;
    };
    // Belongs to the window.
    DeviceTools(QDialog* window, Choices choices, const Settings& settings);

    void stop();

private:
    void toggleTone(int player);
    void toggleLevel();
    void stopLevel();
    void endTone(const QString& how);
    void showMoved();

    QPushButton* testButton(int player) const;

    Choices choices_;
    QList<MovedDevice> moved_;
    ToneTest tone_;
    LevelReader reader_;
    int playing_ = 0; // the player that is tested
    QLabel* status_;
    QPushButton* levelButton_;
    LevelMeter* meter_;
};

} // namespace tolvex
