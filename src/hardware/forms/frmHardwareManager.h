// A small form without controls that holds the hardware open while the program runs. It stays minimised.
#pragma once

#include <QWidget>

namespace tolvex {

class frmHardwareManager : public QWidget {
    Q_OBJECT

public:
    // Creates and shows the one form, or removes it. Calling either again does nothing.
    static void LoadManager();
    static void UnloadManager();

protected:
    void changeEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    frmHardwareManager();
    void backToMinimised();
};

} // namespace tolvex
