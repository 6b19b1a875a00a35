#include "ui/style/TextBoxes.h"

#include "core/text/Numbers.h"
#include "core/text/TextFields.h"
#include "ui/style/Style.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QTimer>
#include <QToolTip>

#include <algorithm>
#include <utility>

namespace tolvex {

namespace {

const QString MarkName = QStringLiteral("lblMark");

// Calls a routine each time the box gets or loses the focus.
class OnFocus : public QObject {
public:
    OnFocus(QLineEdit* box, QEvent::Type type, std::function<void()> then)
        : QObject(box)
        , type_(type)
        , then_(std::move(then)) {
        box->installEventFilter(this);
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == type_)
            then_();
        return QObject::eventFilter(watched, event);
    }

private:
    QEvent::Type type_;
    std::function<void()> then_;
};

} // namespace

void SelectAll(QLineEdit* box) {
    box->setSelection(0, static_cast<int>(box->text().size()));
}

void SelectAllOnFocus(QLineEdit* box) {
    // After the click that gave it the focus has placed its cursor.
    new OnFocus(box, QEvent::FocusIn, [box] { QTimer::singleShot(0, box, [box] { SelectAll(box); }); });
}

void MarkBox(QLineEdit* box, const QString& word) {
    auto* label = box->findChild<QLabel*>(MarkName);
    if (!label && word.isEmpty())
        return;
    if (!label) {
        label = new QLabel(box);
        label->setObjectName(MarkName);
        auto* layout = new QHBoxLayout(box);
        layout->setContentsMargins(8, 0, 12, 0);
        layout->addWidget(label, 0, Qt::AlignRight | Qt::AlignVCenter);
        label->setAttribute(Qt::WA_TransparentForMouseEvents);
    }
    label->setText(word);
    label->setVisible(!word.isEmpty());
    label->setStyleSheet(
        QStringLiteral("color: %1; background: transparent;").arg(tokens().warningText.name()));
    box->setStyleSheet(word.isEmpty()
                           ? QString()
                           : QStringLiteral("QLineEdit { border-color: %1; }").arg(tokens().warning.name()));
    const int room = word.isEmpty() ? 0 : label->sizeHint().width() + 12;
    box->setTextMargins(0, 0, room, 0);
    box->setAccessibleDescription(word);
}

void RestrictTo(QLineEdit* box, const std::function<QString(const QString& text)>& fitting,
                const QString& why) {
    QObject::connect(box, &QLineEdit::textEdited, box, [box, fitting, why](const QString& text) {
        const QString left = fitting(text);
        if (left == text)
            return;
        const int cursor = box->cursorPosition() - static_cast<int>(text.size() - left.size());
        box->setText(left);
        box->setCursorPosition(cursor);
        QToolTip::showText(box->mapToGlobal(QPoint(0, box->height())), why, box);
    });
}

void SetWidthInDigits(QLineEdit* box, int digits) {
    constexpr int around = 28; // frame, padding and the cursor
    box->setFixedWidth(box->fontMetrics().horizontalAdvance(u'0') * digits + around);
}

void TakeDigits(QLineEdit* box, int longest, const QString& also) {
    if (longest > 0)
        box->setMaxLength(longest);
    SelectAllOnFocus(box);
    RestrictTo(
        box,
        [also](const QString& text) {
            QString left;
            for (const QChar c : text)
                if ((c >= u'0' && c <= u'9') || also.contains(c))
                    left += c;
            return left;
        },
        QStringLiteral("Only digits can be typed here."));
}

void ClampOnLeaving(QLineEdit* box, qint32 lowest, qint32 highest) {
    const auto clamp = [box, lowest, highest] {
        const double number = LeadingNumber(box->text());
        const double clamped = std::clamp<double>(number, lowest, highest);
        if (clamped != number || box->text().isEmpty())
            box->setText(QString::number(clamped));
    };
    QObject::connect(box, &QLineEdit::editingFinished, box, clamp); // also on Enter
    new OnFocus(box, QEvent::FocusOut, clamp);
}

void TypeInUpperCase(QLineEdit* box) {
    SelectAllOnFocus(box);
    QObject::connect(box, &QLineEdit::textEdited, box, [box](const QString& text) {
        const int cursor = box->cursorPosition();
        box->setText(UpperCased(text));
        box->setCursorPosition(cursor);
    });
}

} // namespace tolvex
