// The main of test programs with widgets: one application with the program's own style, offscreen.
#include "ui/style/Style.h"

#include <QApplication>

#include <gtest/gtest.h>

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    tolvex::ApplyStyle(application, tolvex::Scheme::Light);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
