// The chooser of an audio format: formats of this machine to the left, the attributes of the chosen one to
// the right. It starts at the format nearest to the one given. Only tag, channels and rate of a format are
// stored, so of those that differ in the sample size alone it offers the one that will be recorded.
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

    // The selected format; nothing on a machine without formats.
    std::optional<platform::AudioFormat> chosen() const;

private:
    void showAttributes();
    void showChoice();
    const platform::AudioFormatTag* tag() const;

    QList<platform::AudioFormat> offered_; // a row of the attributes each
    platform::AudioFormat last_;           // the last selected one
    std::unique_ptr<Ui::frmChooseAudioFormat> ui_;
};

} // namespace tolvex
