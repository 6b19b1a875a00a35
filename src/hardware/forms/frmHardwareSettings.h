// Assigns actions to the lines of the hardware cards: one tab per card. Apply writes the whole table to the
// local ini file, OK applies and closes, Cancel closes without writing.
#pragma once

#include "hardware/HardwareCards.h"

#include <QDialog>

#include <memory>

namespace Ui {
class frmHardwareSettings;
}

namespace tolvex {

class CardPage;

class frmHardwareSettings : public QDialog {
    Q_OBJECT

public:
    // Reads the table from the local ini file. Each driver failure is reported once. Table and settings
    // outlive the form.
    frmHardwareSettings(HardwareCardTable& cards, const Settings& settings, QWidget* parent = nullptr);
    ~frmHardwareSettings() override;

    // Cancel, Escape and the window's own close button: asks if there are changes that were not applied.
    void reject() override;

    // The list for the wiring cabinet, in print layout.
    QString listHtml() const;

protected:
    void showEvent(QShowEvent* event) override;

private:
    void apply();
    void ok();
    void print();
    void saveList();
    void showChanges();

    HardwareCardTable& cards_;
    const Settings& settings_;
    std::unique_ptr<Ui::frmHardwareSettings> ui_;
    QList<CardPage*> pages_;
    bool loaded_ = false;
    bool shown_ = false;
};

} // namespace tolvex
