// Selects the port of the radio clock.
#pragma once

#include "ui/binding/FormBinding.h"

#include <QDialog>

#include <memory>

namespace Ui {
class frmDateTimeSetup;
}

namespace tolvex {

struct Settings;

class frmDateTimeSetup : public QDialog {
    Q_OBJECT

public:
    explicit frmDateTimeSetup(Settings& settings, QWidget* parent = nullptr);
    ~frmDateTimeSetup() override;

private:
    void testClock();
    void store();

    Settings& settings_;
    std::unique_ptr<Ui::frmDateTimeSetup> ui_;
    FormBinding binding_{this};
};

} // namespace tolvex
