#include "ui/forms/frmGoodInputBox.h"

#include "platform/Prompts.h"
#include "ui/style/Colours.h"
#include "ui/style/FitForm.h"
#include "ui/style/Monitors.h"
#include "ui/style/OpenForms.h"
#include "ui_frmGoodInputBox.h"

#include <QEvent>
#include <QListWidget>
#include <QProxyStyle>

#include <utility>

namespace tolvex {

namespace {

// A line edit with a given mask character instead of the style's.
class MaskStyle : public QProxyStyle {
public:
    explicit MaskStyle(QChar mask)
        : mask_(mask) {}
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* data) const override {
        return hint == SH_LineEdit_PasswordCharacter ? mask_.unicode()
                                                     : QProxyStyle::styleHint(hint, option, widget, data);
    }

private:
    QChar mask_;
};

} // namespace

frmGoodInputBox::frmGoodInputBox(QWidget* parent)
    : QDialog(parent)
    , ui_(std::make_unique<Ui::frmGoodInputBox>()) {
    ui_->setupUi(this);
    setWindowFlag(Qt::WindowStaysOnTopHint);
    EnterForm(this);
    setMode(Mode::Text);
    ui_->Text1->installEventFilter(this);
    connect(ui_->Text1, &QLineEdit::textEdited, this, &frmGoodInputBox::holdLength);
    connect(ui_->TLength, &QLineEdit::textChanged, this,
            [this](const QString& length) { maximumLength_ = std::max(0, length.toInt()); });
    connect(ui_->cmdOK, &QPushButton::clicked, this, &frmGoodInputBox::takeAnswer);
    connect(ui_->cmdCancel, &QPushButton::clicked, this, &frmGoodInputBox::reject);
    for (QListWidget* list : {ui_->listMulti, ui_->listMultiNonSel})
        connect(list, &QListWidget::itemDoubleClicked, ui_->cmdOK, &QPushButton::click);
}

frmGoodInputBox::~frmGoodInputBox() = default;

QWidget* frmGoodInputBox::control() const {
    switch (mode_) {
    case Mode::Combo:
        return ui_->comboCombo;
    case Mode::List:
        return ui_->comboList;
    case Mode::SortedList:
        return ui_->comboSortedList;
    case Mode::MultipleList:
        return ui_->listMulti;
    case Mode::SingleList:
        return ui_->listMultiNonSel;
    case Mode::Text:
        break;
    }
    return ui_->Text1;
}

void frmGoodInputBox::setMode(Mode mode) {
    mode_ = mode;
    for (QWidget* entry :
         {static_cast<QWidget*>(ui_->Text1), static_cast<QWidget*>(ui_->comboCombo),
          static_cast<QWidget*>(ui_->comboList), static_cast<QWidget*>(ui_->comboSortedList),
          static_cast<QWidget*>(ui_->listMulti), static_cast<QWidget*>(ui_->listMultiNonSel)})
        entry->setVisible(entry == control());
    ui_->lblCaption->setBuddy(control());
    setPrompt(prompt_);
}

void frmGoodInputBox::setPrompt(const QString& prompt) {
    prompt_ = prompt;
    control()->setAccessibleName(prompt);
    // A prompt is not a caption: an ampersand in it is literal, although the label has a buddy.
    ui_->lblCaption->setText(QString(prompt).replace(u'&', QStringLiteral("&&")));
}

void frmGoodInputBox::setItems(const QStringList& items) {
    if (auto* combo = qobject_cast<QComboBox*>(control())) {
        combo->clear();
        combo->addItems(items);
        if (mode_ == Mode::SortedList) {
            combo->model()->sort(0);
            combo->setCurrentIndex(0);
        }
    } else if (auto* list = qobject_cast<QListWidget*>(control())) {
        list->clear();
        list->addItems(items);
    }
}

void frmGoodInputBox::setText(const QString& text) {
    ui_->Text1->setText(text);
    lastText_ = text;
    if (mode_ == Mode::Combo)
        ui_->comboCombo->setEditText(text);
}

void frmGoodInputBox::setMaximumLength(int length) {
    ui_->TLength->setText(QString::number(length));
}

void frmGoodInputBox::setPasswordCharacter(const QString& character) {
    if (character.isEmpty())
        return;
    auto* style = new MaskStyle(character.front());
    style->setParent(ui_->Text1);
    ui_->Text1->setStyle(style);
    ui_->Text1->setEchoMode(QLineEdit::Password);
}

void frmGoodInputBox::setBackColour(qint32 colour) {
    if (colour < 0)
        return; // a system colour: it is the palette's own background
    const QColor back = ToColor(colour, palette());
    QPalette colours = palette();
    colours.setColor(QPalette::Window, back);
    colours.setColor(QPalette::WindowText, back.lightness() > 128 ? Qt::black : Qt::white);
    setPalette(colours);
    ui_->lblCaption->setPalette(colours);
}

bool frmGoodInputBox::cancelled() const {
    return ui_->CancelL->text().toInt() > 0;
}

// Typing beyond the limit is refused; a text that was longer from the start can only be shortened.
void frmGoodInputBox::holdLength(const QString& text) {
    if (maximumLength_ > 0 && text.size() > maximumLength_ && text.size() > lastText_.size()) {
        const int typed = static_cast<int>(text.size() - lastText_.size());
        const int cursor = std::max(0, ui_->Text1->cursorPosition() - typed);
        // A paste is cut to fit; a single key is dropped.
        const QString kept = lastText_.size() < maximumLength_ ? text.left(maximumLength_) : lastText_;
        ui_->Text1->setText(kept);
        ui_->Text1->setCursorPosition(kept == lastText_ ? cursor : maximumLength_);
    }
    lastText_ = ui_->Text1->text();
}

void frmGoodInputBox::takeAnswer() {
    tag_.clear();
    if (auto* combo = qobject_cast<QComboBox*>(control())) {
        tag_ = combo->currentText();
    } else if (mode_ == Mode::SingleList) {
        const QList<QListWidgetItem*> chosen = ui_->listMultiNonSel->selectedItems();
        if (chosen.isEmpty()) {
            platform::prompts().ask({QStringLiteral("You must select an item before clicking 'OK'"),
                                     platform::Icon::Exclamation, platform::Buttons::Ok});
            return;
        }
        tag_ = QString::number(ui_->listMultiNonSel->row(chosen.front()) + 1);
    } else if (mode_ == Mode::MultipleList) {
        for (int i = 0; i < ui_->listMulti->count(); ++i)
            if (ui_->listMulti->item(i)->isSelected())
                tag_ += QString::number(i + 1) + u',';
    } else {
        tag_ = ui_->Text1->text();
    }
    accept();
}

void frmGoodInputBox::reject() {
    ui_->CancelL->setText(QStringLiteral("1"));
    tag_.clear();
    QDialog::reject();
}

void frmGoodInputBox::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    if (std::exchange(shown_, true))
        return;
    FitForm(this);
    clsMonitors().CenterFormOnMonitor(this, parentWidget());
    control()->setFocus();
    if (mode_ == Mode::Text)
        ui_->Text1->selectAll();
    else if (mode_ == Mode::Combo)
        ui_->comboCombo->lineEdit()->selectAll();
}

bool frmGoodInputBox::eventFilter(QObject* watched, QEvent* event) {
    if (watched == ui_->Text1 && event->type() == QEvent::FocusIn)
        ui_->Text1->selectAll();
    return QDialog::eventFilter(watched, event);
}

bool GoodInputBox(const QString& prompt, const QString& title, const QString& initial, qint32 maxLength,
                  QString& result, QWidget* ownerForm, const QString& passwordChar, bool modal,
                  qint32 backColour, QWidget* parentForm) {
    frmGoodInputBox box(ownerForm);
    if (const QWidget* iconForm = parentForm ? parentForm : ownerForm)
        box.setWindowIcon(iconForm->windowIcon());
    box.setBackColour(backColour);
    box.setWindowTitle(title.trimmed());
    box.setPrompt(prompt.trimmed());
    box.setText(initial);
    box.setMaximumLength(maxLength);
    box.setPasswordCharacter(passwordChar);
    if (modal) {
        box.exec();
    } else {
        box.show();
        while (box.isVisible())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    result = box.cancelled() ? QString() : box.answer();
    return box.cancelled();
}

} // namespace tolvex
