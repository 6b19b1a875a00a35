// A form of the network on a workstation of a test's own, used by mouse and keyboard.
#pragma once

#include "support/MachineFolder.h"
#include "support/ScriptedPrompts.h"
#include "support/WaitFor.h"

#include "core/settings/Settings.h"
#include "platform/profile/ProfileFile.h"

#include <QAbstractButton>
#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QTableView>
#include <QTest>

#include <gtest/gtest.h>

namespace tolvex::tests {

template<typename Widget>
Widget* find(const QWidget& form, const char* name) {
    auto* widget = form.findChild<Widget*>(QString::fromLatin1(name));
    if (!widget)
        throw std::runtime_error(std::string("no control ") + name);
    return widget;
}

inline void clickCell(QTableView& grid, int row, int column) {
    const QModelIndex cell = grid.model()->index(row, column);
    grid.scrollTo(cell);
    QTest::mouseClick(grid.viewport(), Qt::LeftButton, {}, grid.visualRect(cell).center());
}

// No text of the form is cut off.
inline void expectTextsFit(const QWidget& form) {
    for (const QLabel* label : form.findChildren<QLabel*>())
        if (label->isVisible() && !label->text().isEmpty()) {
            EXPECT_GE(label->height(),
                      label->wordWrap() ? label->heightForWidth(label->width()) : label->sizeHint().height())
                << label->objectName().toStdString();
        }
}

class FormTest : public testing::Test {
protected:
    FormTest() {
        platform::ForgetProfiles();
        machine.makeFolder(QStringLiteral("C:\\DATA"));
        settings.DataLocation = QStringLiteral("C:\\DATA");
        settings.LocalIniFile = QStringLiteral("TOLVEX.INI");
        machine.write(QStringLiteral("C:\\WINDOWS\\TOLVEX.INI"), "[General]\r\n");
    }
    // Shows a form as the window in front.
    void show(QWidget& window) {
        shown_ = &window;
        window.show();
        window.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    }
    void clickButton(const char* name) {
        auto* button = find<QAbstractButton>(*shown_, name);
        ASSERT_TRUE(button->isVisible() && button->isEnabled()) << name;
        QTest::mouseClick(button, Qt::LeftButton);
    }

    TestMachine machine;
    ScriptedPrompts prompts;
    Settings settings;

private:
    QWidget* shown_ = nullptr;
};

} // namespace tolvex::tests
