// On which port the radio clock hangs.
#pragma once

#include "ui/binding/FormBinding.h"

#include <QDialog>

#include <functional>
#include <memory>

namespace Ui {
class frmDateTimeSetup;
}

namespace tolvex {

struct Settings;

class frmDateTimeSetup : public QDialog {
    Q_OBJECT

public:
    // Shows the test of the clock on a port (1 to 4), modally. Without one the test button is disabled and
    // says so.
    using ClockTest = std::function<void(int port, QWidget* owner)>;

    explicit frmDateTimeSetup(Settings& settings, ClockTest test = {}, QWidget* parent = nullptr);
    ~frmDateTimeSetup() override;

private:
    void testClock();
    void store();

    Settings& settings_;
    std::unique_ptr<Ui::frmDateTimeSetup> ui_;
    FormBinding binding_{this};
    ClockTest test_;
};

} // namespace tolvex
