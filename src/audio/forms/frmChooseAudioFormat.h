// The chooser of an audio format: formats of this machine to the left, the attributes of the chosen one to
// the right. It begins at the format nearest to the one given.
#pragma once

#include "platform/devices/AudioFormats.h"

#include <QDialog>

#include <memory>

namespace Ui {
class frmChooseAudioFormat;
}

namespace tolvex {

class frmChooseAudioFormat : public QDialog {
    Q_OBJECT

public:
    frmChooseAudioFormat(qint32 tag, qint32 channels, qint32 rate, QWidget* parent = nullptr);
    ~frmChooseAudioFormat() override;

    // What is selected; nothing on a machine without formats.
    std::optional<platform::AudioFormat> chosen() const;

private:
    void showAttributes();
    void showChoice();
    const platform::AudioFormatTag* tag() const;

    platform::AudioFormat last_; // that was chosen
    std::unique_ptr<Ui::frmChooseAudioFormat> ui_;
};

} // namespace tolvex
