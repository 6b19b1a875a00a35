#include "ui/forms/frmEditText.h"

#include "ui/style/OpenForms.h"
#include "ui_frmEditText.h"

namespace tolvex {

frmEditText::frmEditText(QWidget* parent)
    : QDialog(parent)
    , ui_(std::make_unique<Ui::frmEditText>()) {
    ui_->setupUi(this);
    setWindowFlag(Qt::WindowStaysOnTopHint);
    setModal(true);
    EnterForm(this);
    connect(ui_->OKB, &QPushButton::clicked, this, [this] {
        Tag = ui_->rtxtText->toPlainText();
        accept();
    });
    connect(ui_->CancelB, &QPushButton::clicked, this, &QDialog::reject);
}

frmEditText::~frmEditText() = default;

void frmEditText::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    if (std::exchange(shown_, true))
        return;
    ui_->rtxtText->setPlainText(Tag);
    ui_->rtxtText->moveCursor(QTextCursor::Start);
    ui_->rtxtText->setFocus();
}

} // namespace tolvex
