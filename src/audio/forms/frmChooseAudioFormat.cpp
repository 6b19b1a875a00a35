#include "audio/forms/frmChooseAudioFormat.h"

#include "ui/style/OpenForms.h"
#include "ui_frmChooseAudioFormat.h"

namespace tolvex {

using platform::AudioFormat;
using platform::AudioFormatTag;

frmChooseAudioFormat::frmChooseAudioFormat(qint32 tag, qint32 channels, qint32 rate, QWidget* parent)
    : QDialog(parent)
    , ui_(std::make_unique<Ui::frmChooseAudioFormat>()) {
    ui_->setupUi(this);
    EnterForm(this);
    connect(ui_->cmdOK, &QPushButton::clicked, this, &QDialog::accept);
    connect(ui_->cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
    connect(ui_->listAttributes, &QListWidget::itemDoubleClicked, this, &QDialog::accept);
    connect(ui_->listTags, &QListWidget::currentRowChanged, this, &frmChooseAudioFormat::showAttributes);
    connect(ui_->listAttributes, &QListWidget::currentRowChanged, this, &frmChooseAudioFormat::showChoice);
    for (const AudioFormatTag& known : platform::AudioFormatTags())
        ui_->listTags->addItem(known.name);
    if (const std::optional<AudioFormat> start = platform::SuggestAudioFormat(tag, channels, rate))
        for (qsizetype i = 0; i < platform::AudioFormatTags().size(); ++i)
            if (const AudioFormatTag& known = platform::AudioFormatTags()[i]; known.tag == start->tag) {
                ui_->listTags->setCurrentRow(int(i));
                ui_->listAttributes->setCurrentRow(int(offered_.indexOf(*start)));
            }
    showChoice();
    ui_->listAttributes->setFocus();
}

frmChooseAudioFormat::~frmChooseAudioFormat() = default;

const AudioFormatTag* frmChooseAudioFormat::tag() const {
    const int row = ui_->listTags->currentRow();
    return row < 0 ? nullptr : &platform::AudioFormatTags()[row];
}

std::optional<AudioFormat> frmChooseAudioFormat::chosen() const {
    const int row = ui_->listAttributes->currentRow();
    return tag() && row >= 0 ? std::optional(offered_[row]) : std::nullopt;
}

// After a change of the tag the selection stays as near to rate and channels as it can.
void frmChooseAudioFormat::showAttributes() {
    const AudioFormat before = last_;
    ui_->listAttributes->clear();
    offered_.clear();
    if (!tag())
        return;
    for (const AudioFormat& format : tag()->formats)
        if (format == platform::SuggestAudioFormat(format.tag, format.channels, format.rate)) {
            offered_ += format;
            ui_->listAttributes->addItem(platform::AudioFormatDetails(format));
        }
    if (const auto nearest = platform::SuggestAudioFormat(tag()->tag, before.channels, before.rate))
        ui_->listAttributes->setCurrentRow(int(offered_.indexOf(*nearest)));
}

void frmChooseAudioFormat::showChoice() {
    const std::optional<AudioFormat> format = chosen();
    ui_->cmdOK->setEnabled(format.has_value());
    if (format) {
        last_ = *format;
        ui_->lblChoice->setText(tag()->name + u' ' + platform::AudioFormatDetails(*format));
    } else if (platform::AudioFormatTags().isEmpty()) {
        ui_->lblChoice->setText(QStringLiteral("This machine knows no audio format."));
    }
}

} // namespace tolvex
