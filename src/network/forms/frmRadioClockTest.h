// Tests the reception of a radio clock on a port, before it is put in use.
#pragma once

#include "network/clock/ReceiverTest.h"

#include <QDialog>

#include <memory>

namespace Ui {
class frmRadioClockTest;
}

namespace tolvex {

class frmRadioClockTest : public QDialog {
    Q_OBJECT

public:
    explicit frmRadioClockTest(QWidget* parent = nullptr);
    ~frmRadioClockTest() override;

    // Closes the port that is open and tests the one of this number; below 1 none.
    void setPort(int number);

private:
    void showState(const QString& state, bool isFault = false);

    std::unique_ptr<Ui::frmRadioClockTest> ui_;
    ReceiverTest test_;
};

} // namespace tolvex
