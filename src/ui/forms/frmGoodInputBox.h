// The program's input box: one question, one text as the answer. It stays above all other windows.
#pragma once

#include "core/settings/SystemColours.h"

#include <QDialog>

#include <memory>

namespace Ui {
class frmGoodInputBox;
}

namespace tolvex {

class frmGoodInputBox : public QDialog {
    Q_OBJECT

public:
    // The visible entry control, and what the answer is.
    enum class Mode {
        Text,         // Text1: the text
        Combo,        // comboCombo: the text, free or chosen
        List,         // comboList: the chosen text
        SortedList,   // comboSortedList: the chosen text
        MultipleList, // listMulti: the 1-based numbers of all selected items, each followed by a comma
        SingleList,   // listMultiNonSel: the 1-based number of the selected item
    };

    explicit frmGoodInputBox(QWidget* parent = nullptr);
    ~frmGoodInputBox() override;

    void setMode(Mode mode);
    void setPrompt(const QString& prompt);
    // The items of the current mode.
    void setItems(const QStringList& items);
    void setText(const QString& text);
    // Longest text that can be typed, 0 for no limit; a
    // longer existing text stays until changed.
    void setMaximumLength(int length);
    // The first character masks the input; empty: plain input.
    void setPasswordCharacter(const QString& character);
    // A colour of the suite; the text colour follows so that it stays readable.
    void setBackColour(qint32 colour);

    bool cancelled() const;
    QString answer() const { return tag_; }

protected:
    void showEvent(QShowEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    // Escape and the close button count as Cancel.
    void reject() override;

private:
    QWidget* control() const;
    void takeAnswer();
    void holdLength(const QString& text);

    std::unique_ptr<Ui::frmGoodInputBox> ui_;
    Mode mode_ = Mode::Text;
    QString prompt_;
    QString tag_;
    QString lastText_;
    int maximumLength_ = 0;
    bool shown_ = false;
};

// Asks for a text. True if the user cancelled: `result` is then empty. `modal`: shown modally on ownerForm,
// else shown and waited for while events run. The icon comes from parentForm, else from ownerForm.
bool GoodInputBox(const QString& prompt, const QString& title, const QString& initial, qint32 maxLength,
                  QString& result, QWidget* ownerForm, const QString& passwordChar = {}, bool modal = true,
                  qint32 backColour = SystemButtonFace, QWidget* parentForm = nullptr);

} // namespace tolvex
